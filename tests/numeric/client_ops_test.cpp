// Client operations on NumericValue and the numeric-to-numeric conversion.
#include <gtest/gtest.h>

#include <string>

#include "num_helpers.h"

using namespace numtest;

namespace {

using Op = int32_t (*)(NumericValue *, NumericValue *, NumericValue *);

} // namespace

TEST(NumericClient, ResultPrecisionAndScale) {
    struct Case {
        Op op;
        const char *a;
        int ap, as;
        const char *b;
        int bp, bs;
        int rc;
        int p, s;
        const char *value;
    } cases[] = {
        {comn_numdivide, "2", 5, 0, "3", 5, 0, CS_SUCCEED, 11, 6, "0.666667"},
        {comn_numdivide, "-2", 5, 0, "3", 5, 0, CS_SUCCEED, 11, 6, "-0.666667"},
        {comn_nummul, "123.45", 5, 2, "123.4", 4, 1, CS_SUCCEED, 10, 3, "15233.730"},
        {comn_numadd, "99.5", 3, 1, "0.55", 3, 2, CS_SUCCEED, 5, 2, "100.05"},
        {comn_numsub, "1", 1, 0, "2.5", 2, 1, CS_SUCCEED, 3, 1, "-1.5"},
        {comn_numadd, "9", 1, 0, "9", 1, 0, CS_SUCCEED, 2, 0, "18"},
        {comn_numdivide, "1", 1, 0, "0", 1, 0, CS_CONV_DIVZERO, 7, 6, nullptr},
        // Scales beyond 77 are capped and the integer digits keep their room.
        {comn_nummul, "1.5", 77, 70, "2.5", 77, 70, CS_SUCCEED, 77, 62, nullptr},
        {comn_numadd, "1", 77, 0, "0.5", 77, 77, CS_CONV_OVERFLOW, 0, 0, nullptr},
    };
    for (const auto &c : cases) {
        NumericValue a = value_of(c.a, c.ap, c.as), b = value_of(c.b, c.bp, c.bs), r{};
        EXPECT_EQ(c.op(&a, &b, &r), c.rc) << c.a << " " << c.b;
        if (c.p) {
            EXPECT_EQ(r.precision, c.p) << c.a << " " << c.b;
            EXPECT_EQ(r.scale, c.s) << c.a << " " << c.b;
        }
        if (c.value) {
            EXPECT_EQ(text_of(r), c.value);
        }
    }
    NumericValue a = value_of("1.5", 77, 70), b = value_of("2.5", 77, 70), r{};
    ASSERT_EQ(comn_nummul(&a, &b, &r), CS_SUCCEED);
    EXPECT_EQ(text_of(r), "3.75" + std::string(60, '0'));
}

TEST(NumericClient, OperandsOutsideTheDomain) {
    NumericValue good = value_of("1", 5, 0), bad = good, r{};
    r.precision = 99;
    for (auto [p, s] : {std::pair{0, 0}, std::pair{78, 0}, std::pair{5, 78}}) {
        bad.precision = static_cast<uint8_t>(p);
        bad.scale = static_cast<uint8_t>(s);
        for (Op op : {comn_numadd, comn_numsub, comn_nummul, comn_numdivide}) {
            EXPECT_EQ(op(&good, &bad, &r), CS_CONV_DOMAIN);
            EXPECT_EQ(op(&bad, &good, &r), CS_CONV_DOMAIN);
        }
        EXPECT_EQ(comn_numcmp(&good, &bad), CS_CONV_DOMAIN);
    }
    EXPECT_EQ(r.precision, 99); // nothing written
}

// An operand whose magnitude exceeds its precision is taken as it stands while no other
// operand makes it widen; widening to more digits requires that it fit them. The result may
// alias an operand.
TEST(NumericClient, SumsOfRawMagnitudes) {
    auto raw = [](unsigned value, int precision) {
        NumericValue v{};
        v.precision = static_cast<uint8_t>(precision);
        const int len = comn_num_getlen(precision);
        for (int i = len - 1; i >= 1; --i, value >>= 8)
            v.array[i] = static_cast<uint8_t>(value);
        return v;
    };
    struct Case {
        unsigned a;
        int ap;
        unsigned b;
        int bp;
        int rc;
        const char *value;
    } cases[] = {
        {20000, 4, 1, 4, CS_SUCCEED, "20001"},       // no widening: the sum is tested alone
        {5000, 3, 1, 4, CS_SUCCEED, "5001"},         // widens to 4 digits and fits them
        {20000, 3, 1, 4, CS_CONV_OVERFLOW, nullptr}, // widens to 4 digits and does not fit
        {1, 4, 20000, 3, CS_CONV_OVERFLOW, nullptr},
        {65535, 3, 65535, 3, CS_CONV_OVERFLOW, nullptr}, // 131070 is past 4 digits
    };
    for (const auto &c : cases) {
        NumericValue a = raw(c.a, c.ap), b = raw(c.b, c.bp), r{};
        EXPECT_EQ(comn_numadd(&a, &b, &r), c.rc) << c.a << " + " << c.b;
        if (c.value) {
            EXPECT_EQ(text_of(r), c.value) << c.a << " + " << c.b;
        }
        NumericValue in_place = a;
        EXPECT_EQ(comn_numadd(&in_place, &b, &in_place), c.rc) << c.a << " + " << c.b;
        if (c.value) {
            EXPECT_EQ(text_of(in_place), c.value);
        }
    }
    // Operands of 38 digits and fewer at their largest raw magnitudes carry out of 128 bits.
    NumericValue a = raw(0, 38), r{};
    for (int i = 1; i <= 16; ++i)
        a.array[i] = 0xff;
    EXPECT_EQ(comn_numadd(&a, &a, &r), CS_SUCCEED);
    EXPECT_EQ(text_of(r), "680564733841876926926749214863536422910"); // 2 * (2^128 - 1)
}

TEST(NumericClient, CompareAlignsScales) {
    NumericValue a = value_of("1.5", 2, 1), b = value_of("1.50", 3, 2), c = value_of("-1.51", 3, 2);
    EXPECT_EQ(comn_numcmp(&a, &b), 0);
    EXPECT_EQ(comn_numcmp(&a, &c), 1);
    EXPECT_EQ(comn_numcmp(&c, &a), -1);
}

TEST(NumericClient, NumericToNumeric) {
    struct Case {
        const char *src;
        int sp, ss;
        int dp, ds;
        int rc;
        const char *value;
    } cases[] = {
        {"1.25", 5, 2, 5, 1, CS_CONV_TRUNCATED, "1.3"},
        {"-1.25", 5, 2, 5, 1, CS_CONV_TRUNCATED, "-1.3"},
        {"1.20", 5, 2, 5, 1, CS_SUCCEED, "1.2"},
        {"1.2", 5, 1, 9, 4, CS_SUCCEED, "1.2000"},
        {"123", 5, 0, 4, 2, CS_CONV_OVERFLOW, nullptr},
        {"9.5", 2, 1, 1, 0, CS_CONV_OVERFLOW, nullptr},      // rounds to 10
        {"1.000001", 7, 6, 2, 1, CS_CONV_OVERFLOW, nullptr}, // copied before rescaling
        {"42.5", 5, 1, CS_SRC_VALUE, CS_SRC_VALUE, CS_SUCCEED, "42.5"},
        {"1", 5, 0, 0, 0, CS_CONV_PRECISION, nullptr},
        {"1", 5, 0, 78, 0, CS_CONV_PRECISION, nullptr},
        {"1", 5, 0, 5, 78, CS_CONV_SCALE, nullptr},
        {"1", 5, 0, 5, -1, CS_CONV_SCALE, nullptr},
    };
    for (const auto &c : cases) {
        NumericValue src = value_of(c.src, c.sp, c.ss), dst{};
        DataFormat sf{}, df{};
        sf.datatype = df.datatype = CS_NUMERIC;
        df.precision = c.dp;
        df.scale = c.ds;
        int32_t len = 0;
        EXPECT_EQ(comn_numtonum(nullptr, &sf, &src, &df, &dst, &len), c.rc) << c.src;
        EXPECT_EQ(len, 35);
        if (c.value) {
            EXPECT_EQ(text_of(dst), c.value) << c.src;
        }
    }
    NumericValue bad{};
    DataFormat sf{}, df{};
    df.precision = df.scale = 5;
    int32_t len = -7;
    EXPECT_EQ(comn_numtonum(nullptr, &sf, &bad, &df, &bad, &len), CS_CONV_DOMAIN);
    EXPECT_EQ(len, -7);
}
