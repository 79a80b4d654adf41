// Limb-level division: the general schoolbook division on wide naturals and the four-limb
// form, checked by the division identity x = q * y + r with r < y, which rests only on the
// (independent) multiplication, addition and comparison. Dividends are built as q * y + r
// from chosen quotients so that the estimate's rare corrections are reached on purpose.
#include <gtest/gtest.h>

#include <random>
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

// Divisors whose top limbs make the quotient estimate land on its rare cases: a partial
// remainder whose top limbs equal the divisor's (the limb is then all ones), and lower
// divisor limbs large enough that the estimate is one too large and is added back.
TEST(NumericDivision, EstimateCorrections) {
    const u64 ones = ~u64{0}, top = u64{1} << 63;
    // Top limbs equal to the divisor's, lower limbs below it.
    check(nat({0, 0, 5, top}), nat({7, 5, top}), "equal top limbs, n = 3");
    check(nat({0, 0, 0, ones}), nat({1, 0, ones}), "equal top limbs, all ones");
    check(nat({3, 0, 9, 2, top + 1}), nat({4, 9, 2, top + 1}), "equal top limbs, n = 4");
    // q * (d1:d0) * 2^64 over (d1:d0:2^64 - 1): the three-limb estimate is q, the answer q - 1.
    for (u64 q : {u64{1}, u64{5}, ones / 3, ones}) {
        const Nat y = nat({ones, 12345, top | 99});
        const Nat x = compose(nat({q}), nat({0, 12345, top | 99}), nat({}));
        check(x, y, "add back");
    }
    // Unnormalised divisors of every length, with the remainder at its largest.
    for (int n = 1; n <= 4; ++n) {
        std::vector<u64> limbs(static_cast<size_t>(n), ones);
        limbs.back() = 1;
        const Nat y = nat(limbs);
        Nat r = y;
        Nat one = nat({1});
        comn::wide::sub(r, y, one);
        check(compose(nat({ones, ones}), y, r), y, "largest remainder");
    }
}

// Random quotients, divisors and remainders of every length up to the capacity, with limbs
// drawn from patterns (all ones, top bit only, zero) as well as at random.
TEST(NumericDivision, RandomIdentities) {
    std::mt19937_64 rng(17);
    auto limb = [&rng]() -> u64 {
        switch (rng() % 6) {
        case 0:
            return ~u64{0};
        case 1:
            return u64{1} << 63;
        case 2:
            return 0;
        default:
            return rng();
        }
    };
    auto random_nat = [&](int n) {
        std::vector<u64> limbs(static_cast<size_t>(n));
        for (auto &l : limbs)
            l = limb();
        return nat(limbs);
    };
    for (int i = 0; i < 40000; ++i) {
        const int yn = 1 + static_cast<int>(rng() % 6);
        const int qn = static_cast<int>(rng() % (i % 2 ? 4 : 9)); // half the cases fit four limbs
        Nat y = random_nat(yn);
        if (comn::wide::is_zero(y)) y = nat({1 + rng() % 1000});
        Nat r = random_nat(yn), q2;
        comn::wide::divmod(Nat(r), y, q2, r); // any remainder below y
        const Nat x = compose(random_nat(qn), y, r);
        if (x.n > comn::wide::kCap) continue;
        check(x, y, "random");
        if (HasFatalFailure()) {
            ADD_FAILURE() << "case " << i;
            return;
        }
    }
}

// Rounded four-limb quotients against the remainder test on the general division, with
// dividends up to 2^256 - 1 (where adding half the divisor first would carry out).
TEST(NumericDivision, RoundedQuotients) {
    std::mt19937_64 rng(23);
    for (int i = 0; i < 20000; ++i) {
        U256 x{}, y{};
        for (auto &l : x.w)
            l = rng() % 4 == 0 ? ~u64{0} : rng();
        const int yn = 1 + static_cast<int>(rng() % 4);
        for (int k = 0; k < yn; ++k)
            y.w[k] = rng() % 5 == 0 ? ~u64{0} : rng() >> (rng() % 64);
        if (comn::fixed::is_zero(y)) y.w[0] = 3;
        const Nat nx = nat({x.w[0], x.w[1], x.w[2], x.w[3]});
        const Nat ny = nat({y.w[0], y.w[1], y.w[2], y.w[3]});
        Nat q, r, twice;
        comn::wide::divmod(nx, ny, q, r);
        comn::wide::add(twice, r, r);
        if (comn::wide::cmp(twice, ny) >= 0) comn::wide::add(q, q, nat({1}));
        U256 fq;
        ASSERT_TRUE(comn::fixed::div_round256(x, y, fq)) << "case " << i;
        for (int k = 0; k < 4; ++k)
            ASSERT_EQ(fq.w[k], k < q.n ? q.w[k] : 0) << "case " << i << " limb " << k;
    }
}
