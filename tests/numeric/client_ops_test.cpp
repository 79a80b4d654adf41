// Client operations on NumericValue and the numeric-to-numeric conversion where
// decimal_oracle.py does not reach: operands and formats outside the domain,
// raw magnitudes beyond their precision, and the source-value marker.
#include <gtest/gtest.h>

#include <string>

#include "num_helpers.h"

using namespace numtest;

namespace {

using Op = int32_t (*)(NumericValue *, NumericValue *, NumericValue *);

} // namespace

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

TEST(NumericClient, NumericToNumericFormats) {
    struct Case {
        int dp, ds;
        int rc;
        const char *value;
    } cases[] = {
        {CS_SRC_VALUE, CS_SRC_VALUE, CS_SUCCEED, "42.5"},
        {0, 0, CS_CONV_PRECISION, nullptr},
        {78, 0, CS_CONV_PRECISION, nullptr},
        {5, 78, CS_CONV_SCALE, nullptr},
        {5, -1, CS_CONV_SCALE, nullptr},
    };
    for (const auto &c : cases) {
        NumericValue src = value_of("42.5", 5, 1), dst{};
        DataFormat sf{}, df{};
        sf.datatype = df.datatype = CS_NUMERIC;
        df.precision = c.dp;
        df.scale = c.ds;
        int32_t len = 0;
        EXPECT_EQ(comn_numtonum(nullptr, &sf, &src, &df, &dst, &len), c.rc) << c.dp << "," << c.ds;
        EXPECT_EQ(len, 35);
        if (c.value) {
            EXPECT_EQ(text_of(dst), c.value);
        }
    }
    NumericValue bad{};
    DataFormat sf{}, df{};
    df.precision = df.scale = 5;
    int32_t len = -7;
    EXPECT_EQ(comn_numtonum(nullptr, &sf, &bad, &df, &bad, &len), CS_CONV_DOMAIN);
    EXPECT_EQ(len, -7);
}
