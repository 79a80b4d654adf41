// Money arithmetic that the differential test (money_oracle.py) cannot reach: the extremes,
// the copy codes of the two layers and the remainder stubs.
#include <gtest/gtest.h>

#include "comnlib/money.h"
#include "money/money_internal.h"

namespace {

using comn::mny_get;
using comn::mny_make;

TEST(MoneyArith, ExtremesCopyCodesAndStubs) {
    MoneyValue m = mny_make(5);
    const struct {
        void (*set)(MoneyValue *);
        int64_t want;
    } extremes[] = {
        {comn_mnymaxpos, comn::kMoneyMax}, {com_mnymaxneg, comn::kMoneyMin}, {com_mnyzero, 0}};
    for (const auto &e : extremes) {
        e.set(&m);
        EXPECT_EQ(mny_get(m), e.want);
    }
    // The 4-byte copy reports CS_SUCCEED in the client form but 0 in the old one.
    const Money4Value s{-7};
    Money4Value d{};
    EXPECT_EQ(comn_mny4copy(&s, &d), CS_SUCCEED);
    EXPECT_EQ(com_mny4copy(&s, &d), 0);
    EXPECT_EQ(d.mny4, -7);
    com_mny4zero(&d);
    EXPECT_EQ(d.mny4, 0);
    // Remainders are not provided: both answer 1 and write nothing.
    EXPECT_EQ(com__mnyrem(&m, &m, &m), 1);
    EXPECT_EQ(com__mnyrem4(&s, &s, &d), 1);
    EXPECT_EQ(d.mny4, 0);
}

} // namespace
