// Signed operations and the integer conversions against 128-bit arithmetic (doubles are
// compared with Python by the cross-conversion oracle).
#include <gtest/gtest.h>

#include <random>

#include "num_helpers.h"

using namespace numtest;

TEST(NumericSigned, RandomOperationsMatchExactIntegers) {
    std::mt19937_64 rng(11);
    for (int i = 0; i < 20000; ++i) {
        const int pa = 1 + rng() % 12, pb = 1 + rng() % 12; // scaled quotients fit 128 bits
        const int sa = rng() % (pa + 1), sb = rng() % (pb + 1);
        const int rs = rng() % 12;
        const i128 a = random_units(rng, pa), b = random_units(rng, pb);
        Num x(a, pa, sa), y(b, pb, sb), r(0, 38, rs);
        // Sum and difference at the common scale, then to the result's scale.
        const int cs = sa > sb ? sa : sb;
        const i128 as = a * pow10(cs - sa), bs = b * pow10(cs - sb);
        auto at_scale = [&](i128 v, int from) {
            return rs >= from ? v * pow10(rs - from) : div_round(v, pow10(from - rs));
        };
        ASSERT_EQ(com__exctnume_addorsub(x.get(), y.get(), r.get(), COMN_NUME_ADD), 0);
        EXPECT_TRUE(r.units() == at_scale(as + bs, cs));
        ASSERT_EQ(com__exctnume_addorsub(x.get(), y.get(), r.get(), COMN_NUME_SUB), 0);
        EXPECT_TRUE(r.units() == at_scale(as - bs, cs));
        if (b != 0) {
            // a / b at scale rs = a * 10^(rs - sa + sb) / b
            const int shift = rs - sa + sb;
            const i128 q =
                shift >= 0 ? div_round(a * pow10(shift), b) : div_round(a, b * pow10(-shift));
            Num rem(0, 38, 0);
            ASSERT_EQ(com__exctnume_div(x.get(), y.get(), r.get(), rem.get()), 0);
            EXPECT_TRUE(r.units() == q);
            const i128 exact = shift >= 0 ? (a * pow10(shift)) % b : a % (b * pow10(-shift));
            if (exact == 0) {
                EXPECT_EQ(rem->length, 0);
            } else {
                EXPECT_TRUE(rem.units() == exact);
            }
        } else {
            EXPECT_EQ(com__exctnume_div(x.get(), y.get(), r.get(), nullptr), 3);
        }
        if (r.units() == 0) {
            EXPECT_EQ(r.buf[0], 0);
        }
        // Ceiling and floor to whole units.
        Num whole(0, 38, 0);
        const i128 t = a / pow10(sa), frac = a % pow10(sa);
        ASSERT_EQ(com__exctnume_ceilingfloor(x.get(), whole.get(), COMN_NUME_CEILING), 0);
        EXPECT_TRUE(whole.units() == t + (frac > 0));
        ASSERT_EQ(com__exctnume_ceilingfloor(x.get(), whole.get(), COMN_NUME_FLOOR), 0);
        EXPECT_TRUE(whole.units() == t - (frac < 0));
    }
}

TEST(NumericConversions, IntegersAtTheDestinationScale) {
    Num x(0, 12, 2);
    EXPECT_EQ(com__longtoexctnume(-2147483647 - 1, x.get()), 0);
    EXPECT_TRUE(x.units() == static_cast<i128>(-2147483648LL) * 100);
    Num small(0, 3, 1);
    EXPECT_EQ(com__longtoexctnume(100, small.get()), 1);
    EXPECT_EQ(com__longtoexctnume(99, small.get()), 0);
    EXPECT_TRUE(small.units() == 990);
    Num wide_x(0, 25, 5);
    EXPECT_EQ(com__longlongtoexctnume(INT64_MIN, wide_x.get()), 0);
    EXPECT_TRUE(wide_x.units() == static_cast<i128>(INT64_MIN) * 100000);
}
