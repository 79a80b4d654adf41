// Limb-level division: the general schoolbook division on wide naturals and the four-limb
// form, checked by the division identity x = q * y + r with r < y, which rests only on the
// (independent) multiplication, addition and comparison.
#include <gtest/gtest.h>

#include <vector>

#include "numeric/fixed_width.h"

namespace {

using comn::fixed::U256;
using comn::wide::Nat;
using comn::wide::u64;

Nat nat(std::vector<u64> limbs) { // least significant first
    Nat x;
    x.n = static_cast<int>(limbs.size());
    for (int i = 0; i < x.n; ++i)
        x.w[i] = limbs[static_cast<size_t>(i)];
    comn::wide::trim(x);
    return x;
}

// x = q * y + r.
Nat compose(const Nat &q, const Nat &y, const Nat &r) {
    Nat p, x;
    EXPECT_TRUE(comn::wide::mul(p, q, y));
    EXPECT_TRUE(comn::wide::add(x, p, r));
    return x;
}

// Checks both divisions of x by y (the four-limb one when x fits four limbs).
void check(const Nat &x, const Nat &y, const char *what) {
    SCOPED_TRACE(what);
    Nat q, r;
    comn::wide::divmod(x, y, q, r);
    ASSERT_LT(comn::wide::cmp(r, y), 0);
    ASSERT_EQ(comn::wide::cmp(compose(q, y, r), x), 0);
    if (x.n > 4 || y.n > 4) return;
    U256 fx{}, fy{}, fq, fr;
    for (int i = 0; i < x.n; ++i)
        fx.w[i] = x.w[i];
    for (int i = 0; i < y.n; ++i)
        fy.w[i] = y.w[i];
    comn::fixed::divmod256(fx, fy, fq, fr);
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(fq.w[i], i < q.n ? q.w[i] : 0) << "quotient limb " << i;
        ASSERT_EQ(fr.w[i], i < r.n ? r.w[i] : 0) << "remainder limb " << i;
    }
}

} // namespace

// Partial remainders whose top limbs equal the divisor's, where the quotient limb is all ones
// without an estimate. The estimate's add-back and the common paths are reached with random
// operands by decimal_oracle.py.
TEST(NumericDivision, EqualTopLimbs) {
    const u64 ones = ~u64{0}, top = u64{1} << 63;
    check(nat({0, 0, 5, top}), nat({7, 5, top}), "n = 3");
    check(nat({0, 0, 0, ones}), nat({1, 0, ones}), "all ones");
    check(nat({3, 0, 9, 2, top + 1}), nat({4, 9, 2, top + 1}), "n = 4");
}
