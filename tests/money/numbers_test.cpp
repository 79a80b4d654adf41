// Money to and from integers, floating point and exact numerics, and the client conversions
// built on them. Rounding to integers and to and from doubles is compared with Python by
// money_oracle.py; the exact numerics are compared here with 128-bit arithmetic.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "money/money_internal.h"
#include "numeric/num_helpers.h"

namespace {

using comn::kMoneyMax;
using comn::kMoneyMin;
using comn::mny_get;
using comn::mny_make;
using numtest::div_round;
using numtest::i128;
using numtest::pow10;

TEST(MoneyNumbers, FourByteIntegersAndWidths) {
    MoneyValue m;
    EXPECT_EQ(com__inttomny(&m, INT32_MIN), 0);
    EXPECT_EQ(mny_get(m), int64_t{INT32_MIN} * 10000);
    Money4Value s{9};
    EXPECT_EQ(com__inttomny4(&s, 214748), 0);
    EXPECT_EQ(s.mny4, 2147480000);
    EXPECT_EQ(com__inttomny4(&s, -214749), 1);
    EXPECT_EQ(s.mny4, 0);
    int32_t i = 0;
    s.mny4 = -15000;
    EXPECT_EQ(com__mny4toint(&s, &i), 0);
    EXPECT_EQ(i, -2); // -1.5 rounds away from zero

    com__mny4tomny(&s, &m);
    EXPECT_EQ(mny_get(m), -15000);
    for (int64_t v : {int64_t{INT32_MAX} + 1, int64_t{INT32_MIN} - 1}) {
        m = mny_make(v);
        EXPECT_EQ(com__mnytomny4(&m, &s), -1) << v;
        EXPECT_EQ(s.mny4, -15000) << v; // not written
    }
    m = mny_make(INT32_MIN);
    EXPECT_EQ(com__mnytomny4(&m, &s), 4);
    EXPECT_EQ(s.mny4, INT32_MIN);
}

// The floating-point paths the oracle does not take: no value, a zero length, NaN, the
// single-precision and 4-byte forms.
TEST(MoneyNumbers, FloatingPointEdges) {
    MoneyValue m = mny_make(99);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(com__flt8tomny(&nan, 8, &m), -1);
    EXPECT_EQ(mny_get(m), 0);
    m = mny_make(99);
    EXPECT_EQ(com__flt8tomny(nullptr, 8, &m), 8); // no value: zero
    EXPECT_EQ(mny_get(m), 0);
    const double one = 1;
    EXPECT_EQ(com__flt8tomny(&one, 0, &m), 8);
    EXPECT_EQ(mny_get(m), 0);
    const float f = -3.25f;
    EXPECT_EQ(com__flt4tomny(&f, 4, &m), 8);
    EXPECT_EQ(mny_get(m), -32500);

    Money4Value s{3};
    const double big = 214748.3648, small = -214748.3648;
    EXPECT_EQ(com__flt8tomny4(&big, 8, &s), -1);
    EXPECT_EQ(s.mny4, 0);
    EXPECT_EQ(com__flt8tomny4(&small, 8, &s), 4);
    EXPECT_EQ(s.mny4, INT32_MIN);
    EXPECT_EQ(com__flt4tomny4(&f, 4, &s), 4);
    EXPECT_EQ(s.mny4, -32500);

    float out4 = 0;
    EXPECT_EQ(com__mnytoflt4(&m, 8, &out4), 4);
    EXPECT_EQ(out4, -3.25f);
    double out8 = 0;
    const Money4Value n{-12345};
    EXPECT_EQ(com__mny4toflt8(&n, &out8), 8);
    EXPECT_EQ(out8, -1.2345);
    EXPECT_EQ(com__mny4toflt4(&n, &out4), 4);
    EXPECT_EQ(out4, -1.2345f);
}

// ---- Client conversions ----

// A source value of up to 8 bytes, copied from its own type.
struct Src {
    uint8_t bytes[8]{};
    template <typename T>
    Src(T v) {
        static_assert(sizeof v <= sizeof bytes);
        std::memcpy(bytes, &v, sizeof v);
    }
};

// The destination as a number, read by its length: 1 byte unsigned, 2 and 4 signed (or a
// float), 8 money (or a double).
double read_dst(const uint8_t *p, int32_t len, bool floating) {
    auto load = [p](auto v) {
        std::memcpy(&v, p, sizeof v);
        return static_cast<double>(v);
    };
    if (len == 1) return load(uint8_t{});
    if (len == 2) return load(int16_t{});
    if (len == 4) return floating ? load(float{}) : load(int32_t{});
    if (floating) return load(double{});
    MoneyValue m;
    std::memcpy(&m, p, sizeof m);
    return static_cast<double>(mny_get(m));
}

TEST(MoneyClientConversions, ClampRoundAndLength) {
    const bool F = true, I = false;
    struct {
        ComConvFunc fn;
        Src src;
        int32_t rc, len;
        bool floating;
        double out;
    } const cases[] = {
        {comn_moneytoi1, mny_make(2554999), CS_SUCCEED, 1, I, 255},
        {comn_moneytoi1, mny_make(2555000), CS_CONV_OVERFLOW, 1, I, 255}, // 255.5 rounds to 256
        {comn_moneytoi1, mny_make(-5000), CS_CONV_OVERFLOW, 1, I, 0},     // -0.5 rounds to -1
        {comn_moneytoi2, mny_make(-327685000), CS_CONV_OVERFLOW, 2, I, -32768},
        {comn_moneytoi2, mny_make(327674999), CS_SUCCEED, 2, I, 32767},
        {comn_mny4toi2, Money4Value{-327675000}, CS_SUCCEED, 2, I, -32768}, // rounds to the bound
        {comn_moneytoi4, mny_make(kMoneyMax), CS_CONV_OVERFLOW, 4, I, INT32_MAX},
        {comn_moneytoi4, mny_make(kMoneyMin), CS_CONV_OVERFLOW, 4, I, INT32_MIN},
        {comn_moneytoi8, mny_make(-21474836480000), CS_SUCCEED, 4, I, INT32_MIN},
        {comn_moneytobit, mny_make(int64_t{1} << 32), CS_SUCCEED, 1, I, 1},
        {comn_mny4tobit, Money4Value{0}, CS_SUCCEED, 1, I, 0},
        {comn_moneytoflt8, mny_make(1), CS_SUCCEED, 8, F, 0.0001},
        {comn_mny4toflt4, Money4Value{25000}, CS_SUCCEED, 4, F, 2.5},
        {comn_moneytomny4, mny_make(int64_t{INT32_MAX} + 1), CS_CONV_OVERFLOW, 4, I, 0},
        {comn_moneytomny4, mny_make(-5), CS_SUCCEED, 4, I, -5},
        {comn_mny4tomoney, Money4Value{-5}, CS_SUCCEED, 8, I, -5},
        {comn_moneytomoney, mny_make(-1), CS_SUCCEED, 8, I, -1},
        {comn_mny4tomny4, Money4Value{INT32_MIN}, CS_SUCCEED, 4, I, INT32_MIN},
        {comn_i1tomoney, uint8_t{255}, CS_SUCCEED, 8, I, 2550000},
        {comn_i4tomoney, INT32_MIN, CS_SUCCEED, 8, I, INT32_MIN * 10000.0},
        {comn_i2tomny4, int16_t{-32768}, CS_SUCCEED, 4, I, -327680000},
        {comn_i4tomny4, int32_t{214749}, CS_CONV_OVERFLOW, 4, I, 0},
        {comn_flt8tomoney, 1e300, CS_CONV_OVERFLOW, 8, I, 0},
        {comn_flt8tomoney, -0.12345, CS_SUCCEED, 8, I, -1234}, // x + 0.00005 is below 0.1235
        {comn_flt4tomny4, 0.5f, CS_SUCCEED, 4, I, 5000},
        {comn_flt8tomny4, 214748.3647, CS_SUCCEED, 4, I, INT32_MAX},
        {comn_flt4tomoney, std::numeric_limits<float>::infinity(), CS_CONV_OVERFLOW, 8, I, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        DataFormat sf{}, df{};
        uint8_t out[8];
        std::memset(out, 0x5A, sizeof out);
        int32_t len = 0;
        Src src = c.src;
        EXPECT_EQ(c.fn(nullptr, &sf, src.bytes, &df, out, &len), c.rc);
        EXPECT_EQ(len, c.len);
        EXPECT_EQ(read_dst(out, len, c.floating), c.out);
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

TEST(MoneyNumeric, FormatsAndSourcesOutsideTheDomain) {
    struct {
        int precision, scale;
        int32_t rc;
    } const formats[] = {{0, 0, CS_CONV_PRECISION},
                         {78, 0, CS_CONV_PRECISION},
                         {10, 78, CS_CONV_SCALE},
                         {10, -1, CS_CONV_SCALE}};
    for (const auto &f : formats) {
        DataFormat sf{}, df{};
        df.precision = f.precision;
        df.scale = f.scale;
        MoneyValue m = mny_make(10000);
        NumericValue out{};
        int32_t len = 0;
        EXPECT_EQ(comn_moneytonum(nullptr, &sf, &m, &df, &out, &len), f.rc);
        EXPECT_EQ(len, 35);
        // The same precision and scale bytes on a numeric source are outside its domain
        // (a scale byte of 255 included).
        NumericValue n = numtest::numeric_of(1, 5, 0);
        n.precision = static_cast<uint8_t>(f.precision);
        n.scale = static_cast<uint8_t>(f.scale);
        len = 0;
        EXPECT_EQ(comn_numtomoney(nullptr, &sf, &n, &df, &m, &len), CS_CONV_DOMAIN);
        EXPECT_EQ(mny_get(m), 10000);
        EXPECT_EQ(len, 0);
    }
}

} // namespace
