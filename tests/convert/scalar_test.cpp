// The integer, bit and float family: clamping, truncation toward zero, the "i8" bound,
// domain errors of bit sources, and the result length written before the range test.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "comnlib.h"

namespace {

// Calls a conversion on a source value and returns (status, destination bytes, length).
struct Out {
    int32_t rc;
    int64_t as_int; // destination read as its integer type
    double as_float;
    int32_t len;
};

template <typename S, typename D>
Out run(ComConvFunc f, S src) {
    DataFormat sf{}, df{};
    D dst{};
    std::memset(&dst, 0x5A, sizeof dst);
    int32_t len = -1;
    Out o{};
    o.rc = f(nullptr, &sf, &src, &df, &dst, &len);
    o.len = len;
    if constexpr (std::is_floating_point_v<D>)
        o.as_float = dst;
    else
        o.as_int = dst;
    return o;
}

TEST(ScalarConversions, IntegerNarrowingClampsToTheNearestEnd) {
    struct {
        ComConvFunc f;
        int64_t in, want;
        int32_t rc, len;
    } cases[] = {
        {comn_i4toi2, 40000, 32767, CS_CONV_OVERFLOW, 2},
        {comn_i4toi2, -40000, -32768, CS_CONV_OVERFLOW, 2},
        {comn_i4toi2, 32767, 32767, CS_SUCCEED, 2},
        {comn_i4toi2, -32768, -32768, CS_SUCCEED, 2},
        {comn_i4toi1, 256, 255, CS_CONV_OVERFLOW, 1},
        {comn_i4toi1, -1, 0, CS_CONV_OVERFLOW, 1},
        {comn_i4toi1, 255, 255, CS_SUCCEED, 1},
        {comn_i4toi8, INT32_MIN, INT32_MIN, CS_SUCCEED, 4},
        {comn_i8toi4, INT32_MAX, INT32_MAX, CS_SUCCEED, 4},
    };
    for (const auto &c : cases) {
        Out o;
        if (c.f == comn_i4toi2)
            o = run<int32_t, int16_t>(c.f, static_cast<int32_t>(c.in));
        else if (c.f == comn_i4toi1)
            o = run<int32_t, uint8_t>(c.f, static_cast<int32_t>(c.in));
        else
            o = run<int32_t, int32_t>(c.f, static_cast<int32_t>(c.in));
        EXPECT_EQ(o.rc, c.rc) << c.in;
        EXPECT_EQ(o.as_int, c.want) << c.in;
        EXPECT_EQ(o.len, c.len) << c.in;
    }
    auto o = run<int16_t, uint8_t>(comn_i2toi1, int16_t{-1});
    EXPECT_EQ(o.rc, CS_CONV_OVERFLOW);
    EXPECT_EQ(o.as_int, 0);
}

TEST(ScalarConversions, WideningIsExactAndTinyintIsUnsigned) {
    EXPECT_EQ((run<uint8_t, int16_t>(comn_i1toi2, uint8_t{200}).as_int), 200);
    EXPECT_EQ((run<uint8_t, int32_t>(comn_i1toi4, uint8_t{255}).as_int), 255);
    EXPECT_EQ((run<int16_t, int32_t>(comn_i2toi4, int16_t{-5}).as_int), -5);
    EXPECT_EQ((run<int16_t, int32_t>(comn_i2toi8, int16_t{-32768}).as_int), -32768);
    EXPECT_EQ((run<int16_t, float>(comn_i2toflt4, int16_t{-7}).as_float), -7.0);
    // An int to real rounds to nearest.
    EXPECT_EQ((run<int32_t, float>(comn_i4toflt4, 16777217).as_float), 16777216.0);
    EXPECT_EQ((run<int32_t, double>(comn_i4toflt8, INT32_MIN).as_float), -2147483648.0);
}

TEST(ScalarConversions, FloatToIntegerTruncatesWithinInclusiveBounds) {
    struct {
        ComConvFunc f;
        double in;
        int64_t want;
        int32_t rc;
    } cases[] = {
        {comn_flt8toi4, 2147483647.0, 2147483647, CS_SUCCEED},
        {comn_flt8toi4, 2147483647.5, 2147483647, CS_CONV_OVERFLOW},
        {comn_flt8toi4, -2147483648.0, INT32_MIN, CS_SUCCEED},
        {comn_flt8toi4, -2147483648.5, INT32_MIN, CS_CONV_OVERFLOW},
        {comn_flt8toi4, -1.9, -1, CS_SUCCEED},
        {comn_flt8toi4, 2.9, 2, CS_SUCCEED},
        {comn_flt8toi4, 1e300, INT32_MAX, CS_CONV_OVERFLOW},
        {comn_flt8toi4, -INFINITY, INT32_MIN, CS_CONV_OVERFLOW},
        // The "i8" upper bound is one above the largest 32-bit value: 2^31 passes and wraps.
        {comn_flt8toi8, 2147483648.0, INT32_MIN, CS_SUCCEED},
        {comn_flt8toi8, 2147483648.5, INT32_MAX, CS_CONV_OVERFLOW},
        {comn_flt8toi8, -2147483649.0, INT32_MIN, CS_CONV_OVERFLOW},
        {comn_flt8toi2, 32767.0, 32767, CS_SUCCEED},
        {comn_flt8toi2, 32767.9, 32767, CS_CONV_OVERFLOW},
        {comn_flt8toi2, 32768.0, 32767, CS_CONV_OVERFLOW},
        {comn_flt8toi2, -32768.9, -32768, CS_CONV_OVERFLOW},
        {comn_flt8toi1, 255.0, 255, CS_SUCCEED},
        {comn_flt8toi1, 255.7, 255, CS_CONV_OVERFLOW},
        {comn_flt8toi1, -0.5, 0, CS_CONV_OVERFLOW},
        {comn_flt8toi1, -0.0, 0, CS_SUCCEED},
        {comn_flt8toi4, NAN, 0, CS_CONV_OVERFLOW},
    };
    for (const auto &c : cases) {
        Out o;
        if (c.f == comn_flt8toi2)
            o = run<double, int16_t>(c.f, c.in);
        else if (c.f == comn_flt8toi1)
            o = run<double, uint8_t>(c.f, c.in);
        else
            o = run<double, int32_t>(c.f, c.in);
        EXPECT_EQ(o.rc, c.rc) << c.in;
        EXPECT_EQ(o.as_int, c.want) << c.in;
    }
    // A single of 2^31 is above the int bound but passes the "i8" test.
    EXPECT_EQ((run<float, int32_t>(comn_flt4toi4, 2147483648.0f).rc), CS_CONV_OVERFLOW);
    auto o = run<float, int32_t>(comn_flt4toi8, 2147483648.0f);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.as_int, INT32_MIN);
}

TEST(ScalarConversions, RandomFloatsAgreeWithTruncationInRange) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> dist(-3e9, 3e9);
    for (int i = 0; i < 20000; ++i) {
        double v = dist(rng);
        auto o = run<double, int32_t>(comn_flt8toi4, v);
        if (v >= -2147483648.0 && v <= 2147483647.0) {
            ASSERT_EQ(o.rc, CS_SUCCEED) << v;
            ASSERT_EQ(o.as_int, static_cast<int64_t>(std::trunc(v))) << v;
        } else {
            ASSERT_EQ(o.rc, CS_CONV_OVERFLOW) << v;
            ASSERT_EQ(o.as_int, v < 0 ? INT32_MIN : INT32_MAX) << v;
        }
    }
}

TEST(ScalarConversions, DoubleToSingleClampsOnlyBeyondTheLargestSingle) {
    const float fmax = std::numeric_limits<float>::max();
    auto o = run<double, float>(comn_flt8toflt4, 1e39);
    EXPECT_EQ(o.rc, CS_CONV_OVERFLOW);
    EXPECT_EQ(o.as_float, fmax);
    o = run<double, float>(comn_flt8toflt4, -1e39);
    EXPECT_EQ(o.rc, CS_CONV_OVERFLOW);
    EXPECT_EQ(o.as_float, -fmax);
    o = run<double, float>(comn_flt8toflt4, 1e-50);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.as_float, 0.0);
    o = run<double, float>(comn_flt8toflt4, static_cast<double>(fmax));
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.len, 4);
    o = run<float, double>(comn_flt4toflt8, 0.1f);
    EXPECT_EQ(o.as_float, static_cast<double>(0.1f));
    EXPECT_EQ(o.len, 8);
}

TEST(ScalarConversions, BitSourcesRejectBytesAboveOne) {
    ComConvFunc from_bit[] = {comn_bittoi1,  comn_bittoi2,   comn_bittoi4,  comn_bittoi8,
                              comn_bittobit, comn_bittoflt4, comn_bittoflt8};
    for (ComConvFunc f : from_bit) {
        for (int b = 0; b < 256; ++b) {
            uint8_t src = static_cast<uint8_t>(b);
            DataFormat sf{}, df{};
            double dst = 0;
            int32_t len = -1;
            int32_t rc = f(nullptr, &sf, &src, &df, &dst, &len);
            if (b <= 1) {
                EXPECT_EQ(rc, CS_SUCCEED);
                EXPECT_GT(len, 0);
            } else {
                EXPECT_EQ(rc, CS_CONV_DOMAIN);
                EXPECT_EQ(len, -1) << "the result length must stay unwritten";
            }
        }
    }
    EXPECT_EQ((run<uint8_t, float>(comn_bittoflt4, uint8_t{1}).as_float), 1.0);
}

TEST(ScalarConversions, BitDestinationsAreNonZeroTests) {
    EXPECT_EQ((run<int32_t, uint8_t>(comn_i4tobit, -5).as_int), 1);
    EXPECT_EQ((run<int32_t, uint8_t>(comn_i4tobit, 0).as_int), 0);
    EXPECT_EQ((run<double, uint8_t>(comn_flt8tobit, -0.0).as_int), 0);
    EXPECT_EQ((run<double, uint8_t>(comn_flt8tobit, 1e-300).as_int), 1);
    EXPECT_EQ((run<float, uint8_t>(comn_flt4tobit, 0.001f).as_int), 1);
    auto o = run<int32_t, uint8_t>(comn_i4tobit, 70000);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.len, 1);
}

} // namespace
