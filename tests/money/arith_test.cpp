// Money arithmetic without exact numerics: the overflow rules at the extremes, the three
// layers' result codes, and the 4-byte forms.
#include <gtest/gtest.h>

#include "comnlib/money.h"
#include "money/money_internal.h"
#include "inline_addsub_check.h"

namespace {

using comn::kMoneyMax;
using comn::kMoneyMin;
using comn::mny_get;
using comn::mny_make;

using Binary = int32_t (*)(const MoneyValue *, const MoneyValue *, MoneyValue *);

struct BinaryCase {
    const char *name;
    Binary internal, client, old;
    int64_t a, b;
    int64_t expect;
    int32_t code;
};

TEST(MoneyArith, AddSubAtTheExtremes) {
    const BinaryCase cases[] = {
        {"add", com__mnyadd, comn_mnyadd, com_mnyadd, 5, -7, -2, 0},
        {"add max+1", com__mnyadd, comn_mnyadd, com_mnyadd, kMoneyMax, 1, 0, 1},
        {"add min+min", com__mnyadd, comn_mnyadd, com_mnyadd, kMoneyMin, kMoneyMin, 0, 1},
        {"add min+max", com__mnyadd, comn_mnyadd, com_mnyadd, kMoneyMin, kMoneyMax, -1, 0},
        {"add carry", com__mnyadd, comn_mnyadd, com_mnyadd, 0xFFFFFFFF, 1, 0x100000000, 0},
        {"sub", com__mnysub, comn_mnysub, com_mnysub, 5, 7, -2, 0},
        {"sub min-1", com__mnysub, comn_mnysub, com_mnysub, kMoneyMin, 1, 0, 1},
        {"sub 0-min", com__mnysub, comn_mnysub, com_mnysub, 0, kMoneyMin, 0, 1},
        {"sub -1-min", com__mnysub, comn_mnysub, com_mnysub, -1, kMoneyMin, kMoneyMax, 0},
        {"sub max-(-1)", com__mnysub, comn_mnysub, com_mnysub, kMoneyMax, -1, 0, 1},
        {"sub borrow", com__mnysub, comn_mnysub, com_mnysub, 0x100000000, 1, 0xFFFFFFFF, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const MoneyValue a = mny_make(c.a), b = mny_make(c.b);
        MoneyValue d = mny_make(12345);
        EXPECT_EQ(c.internal(&a, &b, &d), c.code);
        EXPECT_EQ(mny_get(d), c.expect);
        d = mny_make(12345);
        EXPECT_EQ(c.old(&a, &b, &d), c.code);
        EXPECT_EQ(mny_get(d), c.expect);
        EXPECT_EQ(c.client(&a, &b, &d), c.code ? CS_CONV_OVERFLOW : CS_SUCCEED);
    }
}

TEST(MoneyArith, NegationKeepsOrSkipsOnOverflow) {
    MoneyValue src = mny_make(kMoneyMin), dst = mny_make(7);
    EXPECT_EQ(comn_mnyminus(&src, &dst), CS_CONV_OVERFLOW);
    EXPECT_EQ(mny_get(dst), kMoneyMin);
    for (int64_t v : {int64_t{0}, int64_t{1}, int64_t{-1}, int64_t{0x100000000}, kMoneyMax}) {
        src = mny_make(v);
        EXPECT_EQ(com__mnyminus(&src, &dst), 0);
        EXPECT_EQ(mny_get(dst), -v);
    }
    Money4Value s4{INT32_MIN}, d4{42};
    EXPECT_EQ(comn_mny4minus(&s4, &d4), CS_CONV_OVERFLOW);
    EXPECT_EQ(d4.mny4, 42); // left as it was
    s4.mny4 = -5;
    EXPECT_EQ(com_mny4minus(&s4, &d4), 0);
    EXPECT_EQ(d4.mny4, 5);
}

TEST(MoneyArith, IncrementAndDecrementWrapInPlace) {
    struct {
        int32_t (*op)(MoneyValue *);
        int64_t in, out;
        int32_t code;
    } const cases[] = {
        {comn_mnyinc, kMoneyMax, kMoneyMin, CS_CONV_OVERFLOW},
        {comn_mnyinc, 0xFFFFFFFF, 0x100000000, CS_SUCCEED},
        {comn_mnyinc, -1, 0, CS_SUCCEED},
        {comn_mnydec, kMoneyMin, kMoneyMax, CS_CONV_OVERFLOW},
        {comn_mnydec, 0x100000000, 0xFFFFFFFF, CS_SUCCEED},
        {comn_mnydec, 0, -1, CS_SUCCEED},
        {com_mnyinc, kMoneyMax, kMoneyMin, 1},
        {com_mnydec, kMoneyMin, kMoneyMax, 1},
    };
    for (const auto &c : cases) {
        MoneyValue v = mny_make(c.in);
        EXPECT_EQ(c.op(&v), c.code) << c.in;
        EXPECT_EQ(mny_get(v), c.out) << c.in;
    }
}

TEST(MoneyArith, CompareOrdersSignedHighUnsignedLow) {
    const int64_t values[] = {kMoneyMin,  -0x100000000, -1,         0,           1,
                              0x7FFFFFFF, 0x80000000,   0xFFFFFFFF, 0x100000000, kMoneyMax};
    for (int64_t a : values)
        for (int64_t b : values) {
            const MoneyValue x = mny_make(a), y = mny_make(b);
            const int32_t want = a < b ? -1 : (a > b ? 1 : 0);
            EXPECT_EQ(comn_mnycmp(&x, &y), want);
            EXPECT_EQ(com_mnycmp(&x, &y), want);
        }
    const Money4Value p{1}, n{-1};
    EXPECT_EQ(comn_mny4cmp(&n, &p), -1);
    EXPECT_EQ(com_mny4cmp(&p, &n), 1);
    EXPECT_EQ(comn_mny4cmp(&p, &p), 0);
}

TEST(MoneyArith, FourByteAddSubStoreZeroOnOverflow) {
    struct {
        int32_t (*op)(const Money4Value *, const Money4Value *, Money4Value *);
        int32_t a, b, out, code;
    } const cases[] = {
        {comn_mny4add, INT32_MAX, 1, 0, CS_CONV_OVERFLOW},
        {comn_mny4add, INT32_MIN, -1, 0, CS_CONV_OVERFLOW},
        {comn_mny4add, INT32_MIN, INT32_MAX, -1, CS_SUCCEED},
        {comn_mny4sub, INT32_MIN, 1, 0, CS_CONV_OVERFLOW},
        {comn_mny4sub, 0, INT32_MIN, 0, CS_CONV_OVERFLOW},
        {comn_mny4sub, -1, INT32_MIN, INT32_MAX, CS_SUCCEED},
        {com_mny4add, INT32_MAX, 1, 0, 1},
    };
    for (const auto &c : cases) {
        const Money4Value a{c.a}, b{c.b};
        Money4Value d{99};
        EXPECT_EQ(c.op(&a, &b, &d), c.code);
        EXPECT_EQ(d.mny4, c.out);
    }
}

// The header's inline forms of addition and subtraction against the routines they stand in
// for; inline_portable_test.cpp runs the same check over the plain C overflow test.
TEST(MoneyArith, InlineAddSubAgreeWithTheRoutines) {
    check_inline_addsub();
}

TEST(MoneyArith, ExtremesCopyCodesAndStubs) {
    MoneyValue m{};
    comn_mnymaxpos(&m);
    EXPECT_EQ(m.high, 0x7FFFFFFF);
    EXPECT_EQ(m.low, 0xFFFFFFFFu);
    com_mnymaxneg(&m);
    EXPECT_EQ(static_cast<uint32_t>(m.high), 0x80000000u);
    EXPECT_EQ(m.low, 0u);
    // The 4-byte copy reports CS_SUCCEED in the client form but 0 in the old one.
    const Money4Value s{-7};
    Money4Value d{};
    EXPECT_EQ(comn_mny4copy(&s, &d), CS_SUCCEED);
    EXPECT_EQ(com_mny4copy(&s, &d), 0);
    EXPECT_EQ(d.mny4, -7);
    EXPECT_EQ(com__mnyrem(&m, &m, &m), 1);
    EXPECT_EQ(com__mnyrem4(&s, &s, &d), 1);
}

} // namespace
