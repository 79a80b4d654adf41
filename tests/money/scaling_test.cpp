// Multiply-and-add, divide down, the long divisions, the shift and digit extraction, checked
// against exact 128-bit arithmetic where a plain formula exists.
#include <random>

#include <gtest/gtest.h>

#include "comnlib/money.h"
#include "money/money_internal.h"

namespace {

using comn::i128;
using comn::kMoneyMax;
using comn::kMoneyMin;
using comn::mny_get;
using comn::mny_make;

TEST(MoneyScaling, MultiplyAndAddFollowsTheMagnitude) {
    struct {
        int64_t in;
        uint32_t m;
        int32_t a;
        int64_t out;
        int32_t code;
    } const cases[] = {
        {123, 0, -5, -5, 0},                                  // m 0: the value becomes the addend
        {-7, 10, 3, -73, 0},                                  // the addend moves away from zero
        {922337203685477580, 10, 7, kMoneyMax, 0},            // the largest value exactly
        {-922337203685477580, 10, 8, -922337203685477580, 1}, // 2^63: overflow, unchanged
        {kMoneyMin, 1, 0, kMoneyMin, 1},                      // |min| does not fit the result
        {int64_t{1} << 40, 0xFFFFFFFF, 0, int64_t{1} << 40, 1},
        {5, 2, -20, 5, 1}, // the sum turns negative
    };
    for (const auto &c : cases) {
        MoneyValue v = mny_make(c.in);
        EXPECT_EQ(com__mnyscale(&v, c.m, c.a), c.code) << c.in << " * " << c.m << " + " << c.a;
        EXPECT_EQ(mny_get(v), c.out) << c.in << " * " << c.m << " + " << c.a;
    }
    MoneyValue v = mny_make(kMoneyMax);
    EXPECT_EQ(comn_mnyscale(&v, 2, 0), CS_CONV_OVERFLOW);
}

TEST(MoneyScaling, DivideDownTruncatesAndReturnsTheMagnitudeRemainder) {
    MoneyValue v = mny_make(-70000);
    EXPECT_EQ(comn_mnydown(&v, 3), 1);
    EXPECT_EQ(mny_get(v), -23333);

    v = mny_make(1000);
    EXPECT_EQ(com__mnydown(&v, 0), 0);
    EXPECT_EQ(mny_get(v), 1000);
    EXPECT_EQ(com_mnydown(&v, 0x10007), 6); // only the low 16 bits (7) divide
    EXPECT_EQ(mny_get(v), 142);

    v = mny_make(kMoneyMin);
    EXPECT_EQ(com__mnydown(&v, 10), 8);
    EXPECT_EQ(mny_get(v), kMoneyMin / 10);
}

TEST(MoneyScaling, LongDivisions) {
    std::mt19937_64 rng(4);
    for (int i = 0; i < 20000; ++i) {
        const int64_t a = static_cast<int64_t>(rng() >> (1 + rng() % 60));
        uint32_t d = static_cast<uint32_t>(rng() >> (32 + rng() % 32));
        if (d == 0) d = 1;
        const MoneyValue x = mny_make(a),
                         y = mny_make(static_cast<int64_t>(d) - (int64_t{7} << 32));
        MoneyValue q{};
        comn_mnyxdiv(&x, &y, &q); // the divisor's high word is ignored
        ASSERT_EQ(mny_get(q), a / d) << a << " / " << d;
        if (d < 65536) {
            comn__mny16div(&x, &y, &q);
            ASSERT_EQ(mny_get(q), a / d) << a << " / " << d;
        }
    }
    // The signed leading digit carries a negative dividend through: -65535 / 2 truncates, but
    // -(2^32) + 5 leaves a positive partial at its low digits and comes out floored.
    const MoneyValue two = mny_make(2);
    MoneyValue q{}, x = mny_make(-65535);
    comn__mny16div(&x, &two, &q);
    EXPECT_EQ(mny_get(q), -32767);
    x = mny_make(-(int64_t{1} << 32) + 5);
    com_mnyxdiv(&x, &two, &q);
    EXPECT_EQ(mny_get(q), -2147483646);
}

TEST(MoneyScaling, ShiftIsLogicalOncePerSignificantBit) {
    struct {
        int64_t in;
        int32_t count;
        int64_t out;
    } const cases[] = {
        {1024, 0, 1024},
        {1024, 1, 512},
        {1024, 3, 256},
        {1024, 4, 128},
        {-2, 1, kMoneyMax}, // zero fill: the sign is not kept
        {int64_t{1} << 32, 1, int64_t{1} << 31},
    };
    for (const auto &c : cases) {
        MoneyValue v = mny_make(c.in);
        com__mnyshift(&v, c.count);
        EXPECT_EQ(mny_get(v), c.out) << c.in << " >> " << c.count;
    }
}

TEST(MoneyScaling, DigitExtractionRoundsThenYieldsDigitsFromTheRight) {
    MoneyValue v = mny_make(-123456);
    EXPECT_EQ(comn_mnyinit(&v, 2), -1);
    EXPECT_EQ(mny_get(v), 1235);
    std::string digits;
    char c = 0;
    while (true) {
        const int32_t more = comn_mnyndigit(&v, &c);
        digits.insert(digits.begin(), c);
        if (!more) break;
    }
    EXPECT_EQ(digits, "1235");

    v = mny_make(123449);
    EXPECT_EQ(com_mnyinit(&v, 2), 0);
    EXPECT_EQ(mny_get(v), 1234);
    v = mny_make(kMoneyMax);
    EXPECT_EQ(com__mnyinit(&v, 40), 0);
    EXPECT_EQ(mny_get(v), 0);
    v = mny_make(kMoneyMin);
    EXPECT_EQ(com__mnyinit(&v, 4), -1);
    EXPECT_EQ(mny_get(v), 922337203685478);
}

} // namespace
