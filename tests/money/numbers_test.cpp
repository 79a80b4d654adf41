// Money to and from integers, floating point and exact numerics. The client conversions to
// and from integers, bit and floats are compared with Python by money_oracle.py; the exact
// numerics are compared here with 128-bit arithmetic.
#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "money/money_internal.h"
#include "numeric/num_helpers.h"

namespace {

using comn::mny_get;
using comn::mny_make;
using numtest::div_round;
using numtest::i128;
using numtest::pow10;

// The internal forms that the client conversions (which money_oracle.py checks) do not call,
// a narrowing that fails without writing, and double-to-money without a value.
TEST(MoneyNumbers, FormsBesideTheClientConversions) {
    int32_t i = 0;
    const Money4Value n{-15000};
    EXPECT_EQ(com__mny4toint(&n, &i), 0);
    EXPECT_EQ(i, -2); // -1.5 rounds away from zero
    Money4Value s{-7};
    for (int64_t v : {int64_t{INT32_MAX} + 1, int64_t{INT32_MIN} - 1}) {
        const MoneyValue m = mny_make(v);
        EXPECT_EQ(com__mnytomny4(&m, &s), -1) << v;
        EXPECT_EQ(s.mny4, -7) << v;
    }
    MoneyValue m = mny_make(99);
    EXPECT_EQ(com__flt8tomny(nullptr, 8, &m), 8); // no value: zero
    EXPECT_EQ(mny_get(m), 0);
    const double one = 1;
    m = mny_make(99);
    EXPECT_EQ(com__flt8tomny(&one, 0, &m), 8);
    EXPECT_EQ(mny_get(m), 0);
    const float f = -3.25f;
    EXPECT_EQ(com__flt4tomny(&f, 4, &m), 8);
    EXPECT_EQ(mny_get(m), -32500);
    EXPECT_EQ(com__flt4tomny4(&f, 4, &s), 4);
    EXPECT_EQ(s.mny4, -32500);
    // Money into a numeric of impossible precision or scale is refused.
    const struct {
        int precision, scale;
        int32_t rc;
    } formats[] = {{0, 0, CS_CONV_PRECISION},
                   {78, 0, CS_CONV_PRECISION},
                   {10, 78, CS_CONV_SCALE},
                   {10, -1, CS_CONV_SCALE}};
    for (const auto &fmt : formats) {
        DataFormat sf{}, df{};
        df.precision = fmt.precision;
        df.scale = fmt.scale;
        NumericValue out{};
        int32_t len = 0;
        EXPECT_EQ(comn_moneytonum(nullptr, &sf, &m, &df, &out, &len), fmt.rc) << fmt.precision;
    }
}

// Money and exact numerics against 128-bit arithmetic: money is exact at four places, the
// numeric side is brought to its scale half away from zero and must fit its precision.
TEST(MoneyNumeric, ConversionsMatchWideIntegers) {
    std::mt19937_64 rng(31);
    auto random_money = [&rng](int bits) -> int64_t {
        const int64_t max = bits == 64 ? INT64_MAX : INT32_MAX;
        if (rng() % 8 == 0) return rng() & 1 ? max : -max - 1;
        const auto v = static_cast<int64_t>(rng() >> (65 - bits + rng() % (bits - 1)));
        return rng() & 1 ? -v : v;
    };
    for (int i = 0; i < 20000; ++i) {
        const bool four = i % 2;
        const int p = 1 + static_cast<int>(rng() % 38);
        const int s = static_cast<int>(rng() % static_cast<uint64_t>(std::min(p, 23) + 1));
        DataFormat sf{}, df{};
        df.precision = p;
        df.scale = s;
        int32_t len = 0;
        // Money into the numeric.
        const int64_t v = random_money(four ? 32 : 64);
        const MoneyValue m = mny_make(v);
        const Money4Value m4{static_cast<int32_t>(v)};
        NumericValue n{};
        const int32_t rc =
            four ? comn_mny4tonum(nullptr, &sf, const_cast<Money4Value *>(&m4), &df, &n, &len)
                 : comn_moneytonum(nullptr, &sf, const_cast<MoneyValue *>(&m), &df, &n, &len);
        const i128 want = s >= 4 ? i128{v} * pow10(s - 4) : div_round(v, pow10(4 - s));
        EXPECT_EQ(len, 35);
        if (want >= pow10(p) || -want >= pow10(p)) {
            EXPECT_EQ(rc, CS_CONV_OVERFLOW) << v << " at " << p << "," << s;
        } else {
            ASSERT_EQ(rc, CS_SUCCEED) << v << " at " << p << "," << s;
            EXPECT_TRUE(numtest::units_of(n) == want) << v << " at " << p << "," << s;
            EXPECT_EQ(n.array[0], want < 0 ? 1 : 0) << "zero carries no sign";
        }
        // A numeric of up to p digits into money.
        const i128 u = numtest::random_units(rng, p);
        NumericValue src = numtest::numeric_of(u, p, s);
        MoneyValue out = mny_make(99);
        Money4Value out4{99};
        const int32_t back = four ? comn_numtomny4(nullptr, &sf, &src, &df, &out4, &len)
                                  : comn_numtomoney(nullptr, &sf, &src, &df, &out, &len);
        const i128 lo = four ? INT32_MIN : INT64_MIN, hi = four ? INT32_MAX : INT64_MAX;
        // Scaling up cannot bring a value already outside the range back (nor fit 128 bits).
        const bool outside = s <= 4 && (u < lo || u > hi);
        const i128 units = outside ? 0 : s <= 4 ? u * pow10(4 - s) : div_round(u, pow10(s - 4));
        const bool fits = !outside && units >= lo && units <= hi;
        EXPECT_EQ(back, fits ? CS_SUCCEED : CS_CONV_OVERFLOW);
        EXPECT_EQ(len, four ? 4 : 8);
        EXPECT_TRUE((four ? out4.mny4 : mny_get(out)) == (fits ? units : 0));
    }
}

} // namespace
