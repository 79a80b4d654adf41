// Money multiplication and division at the edges (zero operands, halves, the extremes, the
// 4-byte narrowing) and the conversions between money and exact numerics. Random operands
// are compared with exact arithmetic by money_oracle.py.
#include <cstring>

#include <gtest/gtest.h>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "comnlib/numeric.h"
#include "money/money_internal.h"

namespace {

using comn::kMoneyMax;
using comn::kMoneyMin;
using comn::mny_get;
using comn::mny_make;

TEST(MoneyMulDiv, ChosenCases) {
    struct {
        int32_t (*op)(const MoneyValue *, const MoneyValue *, MoneyValue *);
        int64_t a, b, out;
        int32_t rc;
    } const cases[] = {
        {comn_mnymul, 10001, 10001, 10002, CS_SUCCEED},
        {comn_mnymul, 0, kMoneyMin, 0, CS_SUCCEED},
        {comn_mnymul, 1, 5000, 1, CS_SUCCEED},
        {comn_mnymul, -1, 5000, -1, CS_SUCCEED},
        {comn_mnymul, kMoneyMin, 10000, kMoneyMin, CS_SUCCEED},
        {comn_mnymul, kMoneyMin, -10000, 0, CS_CONV_OVERFLOW},
        {comn_mnydivide, 10000, 0, 0, CS_CONV_DIVZERO},
        {comn_mnydivide, 10000, 30000, 3333, CS_SUCCEED},
        {comn_mnydivide, -20000, 30000, -6667, CS_SUCCEED},
        {comn_mnydivide, kMoneyMin, -10000, 0, CS_CONV_OVERFLOW},
        {comn_mnydivide, kMoneyMax, 1, 0, CS_CONV_OVERFLOW},
        {com_mnydivide, 1, 0, 0, 3},
        {com_mnymul, kMoneyMax, 20000, 0, 1},
    };
    for (const auto &c : cases) {
        const MoneyValue a = mny_make(c.a), b = mny_make(c.b);
        MoneyValue r = mny_make(77);
        EXPECT_EQ(c.op(&a, &b, &r), c.rc) << c.a << ", " << c.b;
        EXPECT_EQ(mny_get(r), c.out) << c.a << ", " << c.b;
    }
}

TEST(MoneyMulDiv, FourByteFormsNarrowTheWideResult) {
    struct {
        int32_t (*op)(const Money4Value *, const Money4Value *, Money4Value *);
        int32_t a, b, out, rc;
    } const cases[] = {
        {comn_mny4mul, 20000, 30000, 60000, CS_SUCCEED},
        {comn_mny4mul, 5000000, 5000000, 0, CS_CONV_OVERFLOW}, // 500 * 500 > 214748.3647
        {comn_mny4divide, 10000, 0, 0, CS_CONV_DIVZERO},
        {comn_mny4divide, 2000000000, 5000, 0, CS_CONV_OVERFLOW},
        {comn_mny4divide, -10000, 70000, -1429, CS_SUCCEED},
        {com_mny4mul, INT32_MIN, 10000, INT32_MIN, 0},
    };
    for (const auto &c : cases) {
        const Money4Value a{c.a}, b{c.b};
        Money4Value r{77};
        EXPECT_EQ(c.op(&a, &b, &r), c.rc) << c.a << ", " << c.b;
        EXPECT_EQ(r.mny4, c.out) << c.a << ", " << c.b;
    }
}

// ---- Money and exact numerics ----

NumericValue numeric(int precision, int scale, bool negative, uint64_t magnitude) {
    NumericValue n{};
    n.precision = static_cast<uint8_t>(precision);
    n.scale = static_cast<uint8_t>(scale);
    const int len = precision <= CS_MAX_PREC ? Com__Nume_Prec_To_Len[precision] : 2;
    n.array[0] = negative ? 1 : 0;
    for (int i = len - 1; i >= 1 && magnitude; --i, magnitude >>= 8)
        n.array[i] = static_cast<uint8_t>(magnitude);
    return n;
}

uint64_t magnitude_of(const NumericValue &n) {
    uint64_t m = 0;
    for (int i = 1; i < Com__Nume_Prec_To_Len[n.precision]; ++i)
        m = (m << 8) | n.array[i];
    return m;
}

TEST(MoneyNumeric, MoneyToNumericRescalesAndChecksTheFormat) {
    struct {
        int64_t money;
        int precision, scale;
        int32_t rc;
        bool negative;
        uint64_t magnitude;
    } const cases[] = {
        {123456, 10, 2, CS_SUCCEED, false, 1235},   // 12.3456 -> 12.35
        {-123500, 10, 1, CS_SUCCEED, true, 124},    // -12.35 -> -12.4 (half away)
        {10000, 10, 6, CS_SUCCEED, false, 1000000}, // scaled up
        {kMoneyMin, 19, 4, CS_SUCCEED, true, uint64_t{1} << 63},
        {1000000, 3, 1, CS_CONV_OVERFLOW, false, 0}, // 100.0 needs 4 digits
        {10000, 0, 0, CS_CONV_PRECISION, false, 0},
        {10000, 78, 0, CS_CONV_PRECISION, false, 0},
        {10000, 10, 78, CS_CONV_SCALE, false, 0},
        {10000, 10, -1, CS_CONV_SCALE, false, 0},
    };
    for (const auto &c : cases) {
        DataFormat sf{}, df{};
        df.precision = c.precision;
        df.scale = c.scale;
        MoneyValue m = mny_make(c.money);
        NumericValue out{};
        int32_t len = 0;
        EXPECT_EQ(comn_moneytonum(nullptr, &sf, &m, &df, &out, &len), c.rc) << c.money;
        EXPECT_EQ(len, 35);
        if (c.rc != CS_SUCCEED) continue;
        EXPECT_EQ(out.precision, c.precision);
        EXPECT_EQ(out.scale, c.scale);
        EXPECT_EQ(out.array[0], c.negative ? 1 : 0) << c.money;
        EXPECT_EQ(magnitude_of(out), c.magnitude) << c.money;
    }
    DataFormat sf{}, df{};
    df.precision = 5;
    df.scale = 2;
    Money4Value s{-15};
    NumericValue out{};
    int32_t len = 0;
    EXPECT_EQ(comn_mny4tonum(nullptr, &sf, &s, &df, &out, &len), CS_SUCCEED);
    EXPECT_EQ(out.array[0], 0); // -0.0015 rounds to zero at two places: no sign
    EXPECT_EQ(magnitude_of(out), 0u);
}

TEST(MoneyNumeric, NumericToMoney) {
    struct {
        NumericValue n;
        int32_t rc;
        int64_t money;
        int32_t len;
    } const cases[] = {
        {numeric(10, 2, false, 1234), CS_SUCCEED, 123400, 8},
        {numeric(10, 6, true, 1234550), CS_SUCCEED, -12346, 8}, // half away from zero
        {numeric(19, 4, true, uint64_t{1} << 63), CS_SUCCEED, kMoneyMin, 8},
        {numeric(19, 4, false, uint64_t{1} << 63), CS_CONV_OVERFLOW, 0, 8},
        {numeric(20, 0, false, 1000000000000000000), CS_CONV_OVERFLOW, 0, 8},
        {numeric(0, 0, false, 1), CS_CONV_DOMAIN, 99, 0},
        {numeric(78, 0, false, 1), CS_CONV_DOMAIN, 99, 0},
        {numeric(10, 78, false, 1), CS_CONV_DOMAIN, 99, 0},
    };
    for (const auto &c : cases) {
        DataFormat sf{}, df{};
        NumericValue n = c.n;
        MoneyValue m = mny_make(99);
        int32_t len = 0;
        EXPECT_EQ(comn_numtomoney(nullptr, &sf, &n, &df, &m, &len), c.rc);
        EXPECT_EQ(mny_get(m), c.money);
        EXPECT_EQ(len, c.len);
    }
    DataFormat sf{}, df{};
    NumericValue n = numeric(10, 0, false, 214749);
    Money4Value s{5};
    int32_t len = 0;
    EXPECT_EQ(comn_numtomny4(nullptr, &sf, &n, &df, &s, &len), CS_CONV_OVERFLOW);
    EXPECT_EQ(s.mny4, 0);
    EXPECT_EQ(len, 4);
    n = numeric(10, 4, true, 2147483648);
    EXPECT_EQ(comn_numtomny4(nullptr, &sf, &n, &df, &s, &len), CS_SUCCEED);
    EXPECT_EQ(s.mny4, INT32_MIN);
}

} // namespace
