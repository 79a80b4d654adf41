// Client operations and text reads where decimal_oracle.py does not reach: raw magnitudes
// beyond their precision, and texts with more digits than the value keeps.
#include <gtest/gtest.h>

#include <string>

#include "num_helpers.h"

using namespace numtest;

// Digits past those kept (the scale's and one more) are dropped in mode 1, the first of them
// rounding what was kept before the value is brought to its scale: 1.0045 reads as 1.005
// and becomes 1.01. Far more digits than a value holds are dropped the same way.
TEST(NumericParse, DroppedDigitsRoundWhatWasKept) {
    EXPECT_EQ(text_of(value_of("1.0045", 9, 2)), "1.01");
    EXPECT_EQ(text_of(value_of("1.0044", 9, 2)), "1.00");
    EXPECT_EQ(text_of(value_of(("0." + std::string(2000, '7')).c_str(), 77, 10)), "0.7777777778");
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
