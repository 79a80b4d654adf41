// Money to and from integers and floating point, and the client conversions built on them.
#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "money/money_internal.h"

namespace {

using comn::kMoneyMax;
using comn::kMoneyMin;
using comn::mny_get;
using comn::mny_make;

TEST(MoneyNumbers, IntegersRoundHalfAwayAndNarrowToZero) {
    struct {
        int64_t money;
        int32_t code, value;
    } const cases[] = {
        {25000, 0, 3}, // random values are compared with Python by money_oracle.py
        {-25000, 0, -3},
        {21474836474999, 0, INT32_MAX},
        {21474836475000, 1, 0},
        {-21474836484999, 0, INT32_MIN},
        {-21474836485000, 1, 0},
        {2147483648000, 0, 214748365}, // 214748364.8 rounds to a 32-bit value: no overflow
        {kMoneyMin, 1, 0},
        {kMoneyMax, 1, 0},
    };
    for (const auto &c : cases) {
        const MoneyValue m = mny_make(c.money);
        int32_t out = 77;
        EXPECT_EQ(com__mnytoint(&m, &out), c.code) << c.money;
        EXPECT_EQ(out, c.value) << c.money;
    }
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
    EXPECT_EQ(i, -2);
}

TEST(MoneyNumbers, WideningAndNarrowing) {
    const Money4Value n{-1};
    MoneyValue w;
    com__mny4tomny(&n, &w);
    EXPECT_EQ(w.high, -1);
    EXPECT_EQ(w.low, 0xFFFFFFFFu);
    Money4Value out{5};
    for (int64_t v : {int64_t{INT32_MAX} + 1, int64_t{INT32_MIN} - 1, int64_t{0x80000000}}) {
        w = mny_make(v);
        EXPECT_EQ(com__mnytomny4(&w, &out), -1) << v;
        EXPECT_EQ(out.mny4, 5) << v; // not written
    }
    w = mny_make(INT32_MIN);
    EXPECT_EQ(com__mnytomny4(&w, &out), 4);
    EXPECT_EQ(out.mny4, INT32_MIN);
}

// Rounding and the limit are compared with Python by money_oracle.py; these are the cases
// it does not generate.
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

template <typename T>
T load(const void *p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename S, typename D>
int32_t convert(ComConvFunc fn, S src, D *dst, int32_t *len) {
    DataFormat sf{}, df{};
    return fn(nullptr, &sf, &src, &df, dst, len);
}

TEST(MoneyClientConversions, MoneyToIntegersClampWithTheLength) {
    struct {
        ComConvFunc fn;
        int64_t money;
        int32_t rc;
        int64_t out;
        int32_t len;
    } const cases[] = {
        {comn_moneytoi1, 2554999, CS_SUCCEED, 255, 1},
        {comn_moneytoi1, 2555000, CS_CONV_OVERFLOW, 255, 1}, // 255.5 rounds to 256
        {comn_moneytoi1, -5000, CS_CONV_OVERFLOW, 0, 1},     // -0.5 rounds to -1
        {comn_moneytoi1, -4999, CS_SUCCEED, 0, 1},
        {comn_moneytoi2, -327685000, CS_CONV_OVERFLOW, -32768, 2},
        {comn_moneytoi2, 327674999, CS_SUCCEED, 32767, 2},
        {comn_moneytoi4, kMoneyMax, CS_CONV_OVERFLOW, INT32_MAX, 4},
        {comn_moneytoi4, kMoneyMin, CS_CONV_OVERFLOW, INT32_MIN, 4},
        {comn_moneytoi8, -21474836480000, CS_SUCCEED, INT32_MIN, 4},
    };
    for (const auto &c : cases) {
        int32_t len = 0;
        int64_t out = 0; // wide enough for any destination; compared by its size
        const int32_t rc = convert(c.fn, mny_make(c.money), &out, &len);
        EXPECT_EQ(rc, c.rc) << c.money;
        EXPECT_EQ(len, c.len) << c.money;
        int64_t got = 0;
        if (len == 1) got = load<uint8_t>(&out);
        if (len == 2) got = load<int16_t>(&out);
        if (len == 4) got = load<int32_t>(&out);
        EXPECT_EQ(got, c.out) << c.money;
    }
    int32_t len = 0;
    int16_t i2 = 0;
    EXPECT_EQ(convert(comn_mny4toi2, Money4Value{-327675000}, &i2, &len), CS_SUCCEED);
    EXPECT_EQ(i2, -32768); // -32767.5 rounds away from zero to the bound itself
}

TEST(MoneyClientConversions, BitFloatAndMoneyDestinations) {
    int32_t len = 0;
    uint8_t bit = 9;
    EXPECT_EQ(convert(comn_moneytobit, mny_make(int64_t{1} << 32), &bit, &len), CS_SUCCEED);
    EXPECT_EQ(bit, 1);
    EXPECT_EQ(convert(comn_mny4tobit, Money4Value{0}, &bit, &len), CS_SUCCEED);
    EXPECT_EQ(bit, 0);
    EXPECT_EQ(len, 1);

    double d = 0;
    EXPECT_EQ(convert(comn_moneytoflt8, mny_make(1), &d, &len), CS_SUCCEED);
    EXPECT_EQ(d, 0.0001);
    EXPECT_EQ(len, 8);
    float f = 0;
    EXPECT_EQ(convert(comn_mny4toflt4, Money4Value{25000}, &f, &len), CS_SUCCEED);
    EXPECT_EQ(f, 2.5f);
    EXPECT_EQ(len, 4);

    Money4Value s{7};
    EXPECT_EQ(convert(comn_moneytomny4, mny_make(int64_t{INT32_MAX} + 1), &s, &len),
              CS_CONV_OVERFLOW);
    EXPECT_EQ(s.mny4, 0);
    EXPECT_EQ(len, 4);
    EXPECT_EQ(convert(comn_moneytomny4, mny_make(-5), &s, &len), CS_SUCCEED);
    EXPECT_EQ(s.mny4, -5);
    MoneyValue m{};
    EXPECT_EQ(convert(comn_mny4tomoney, Money4Value{-5}, &m, &len), CS_SUCCEED);
    EXPECT_EQ(mny_get(m), -5);
    EXPECT_EQ(len, 8);
    EXPECT_EQ(convert(comn_moneytomoney, mny_make(kMoneyMin), &m, &len), CS_SUCCEED);
    EXPECT_EQ(mny_get(m), kMoneyMin);
    EXPECT_EQ(convert(comn_mny4tomny4, Money4Value{INT32_MIN}, &s, &len), CS_SUCCEED);
    EXPECT_EQ(s.mny4, INT32_MIN);
}

TEST(MoneyClientConversions, IntoMoney) {
    int32_t len = 0;
    MoneyValue m{};
    Money4Value s{};
    EXPECT_EQ(convert(comn_i1tomoney, uint8_t{255}, &m, &len), CS_SUCCEED);
    EXPECT_EQ(mny_get(m), 2550000);
    EXPECT_EQ(len, 8);
    EXPECT_EQ(convert(comn_i4tomoney, INT32_MIN, &m, &len), CS_SUCCEED);
    EXPECT_EQ(mny_get(m), int64_t{INT32_MIN} * 10000);
    EXPECT_EQ(convert(comn_i2tomny4, int16_t{-32768}, &s, &len), CS_SUCCEED);
    EXPECT_EQ(s.mny4, -327680000);
    EXPECT_EQ(len, 4);
    EXPECT_EQ(convert(comn_i4tomny4, int32_t{214749}, &s, &len), CS_CONV_OVERFLOW);
    EXPECT_EQ(s.mny4, 0);
    EXPECT_EQ(convert(comn_flt8tomoney, 1e300, &m, &len), CS_CONV_OVERFLOW);
    EXPECT_EQ(mny_get(m), 0);
    EXPECT_EQ(convert(comn_flt8tomoney, -0.12345, &m, &len), CS_SUCCEED);
    EXPECT_EQ(mny_get(m), -1234); // x + 0.00005 rounds to just below 0.1235
    EXPECT_EQ(convert(comn_flt4tomny4, 0.5f, &s, &len), CS_SUCCEED);
    EXPECT_EQ(s.mny4, 5000);
    EXPECT_EQ(convert(comn_flt8tomny4, 214748.3647, &s, &len), CS_SUCCEED);
    EXPECT_EQ(s.mny4, INT32_MAX);
    EXPECT_EQ(convert(comn_flt4tomoney, std::numeric_limits<float>::infinity(), &m, &len),
              CS_CONV_OVERFLOW);
}

} // namespace
