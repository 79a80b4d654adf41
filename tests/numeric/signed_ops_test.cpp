// Signed operations and the machine-number conversions, against 128-bit arithmetic and strtod.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "num_helpers.h"

using namespace numtest;

TEST(NumericSigned, RandomOperationsMatchExactIntegers) {
    std::mt19937_64 rng(11);
    for (int i = 0; i < 20000; ++i) {
        const int pa = 1 + rng() % 12, pb = 1 + rng() % 12; // products stay below 10^35
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
        ASSERT_EQ(com__exctnume_mul(x.get(), y.get(), r.get()), 0);
        EXPECT_TRUE(r.units() == at_scale(a * b, sa + sb));
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
        // Rounding to a number of places (negative: tens, hundreds...) half away from zero,
        // capped at the result's scale; ceiling and floor to whole units.
        const int places = static_cast<int>(rng() % 16) - 3;
        const int p = places < rs ? places : rs;
        const i128 rounded =
            p < sa ? div_round(a, pow10(sa - p)) * pow10(rs - p) : a * pow10(rs - sa);
        ASSERT_EQ(com__exctnume_round(x.get(), r.get(), places), 0);
        EXPECT_TRUE(r.units() == rounded) << static_cast<long long>(a) << " " << places;
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

TEST(NumericConversions, DoublesConvertExactlyBothWays) {
    struct Case {
        double d;
        int p, s;
        int rc;
        i128 want;
    } cases[] = {
        {0.1, 20, 20, 0, static_cast<i128>(10000000000000000555ull)}, // exact binary value
        {-0.125, 5, 2, 0, -13},
        {1e20, 21, 0, 0, pow10(20)},
        {1e21, 21, 0, 1, 0},
        {-0.0, 5, 2, 0, 0},
        {4e-320, 5, 2, 0, 0},
        {NAN, 5, 2, 1, 0},
        {INFINITY, 5, 2, 1, 0},
    };
    for (const auto &c : cases) {
        Num x(0, c.p, c.s);
        EXPECT_EQ(com__doubletoexctnume(c.d, x.get()), c.rc) << c.d;
        if (c.rc == 0) {
            EXPECT_TRUE(x.units() == c.want) << c.d;
            EXPECT_EQ(x.buf[0], c.want < 0);
        }
    }
    std::mt19937_64 rng(5);
    for (int i = 0; i < 5000; ++i) {
        const int p = 1 + rng() % 38, s = rng() % (p + 1);
        const i128 v = random_units(rng, p);
        Num x(v, p, s);
        double d = 0;
        EXPECT_EQ(com__subexctnumetoflt8(x.get(), &d), 0);
        char text[64];
        std::string digits;
        u128 m = v < 0 ? -static_cast<u128>(v) : v;
        do {
            digits.insert(digits.begin(), char('0' + static_cast<int>(m % 10)));
            m /= 10;
        } while (m);
        std::snprintf(text, sizeof text, "%s%se-%d", v < 0 ? "-" : "", digits.c_str(), s);
        EXPECT_EQ(d, std::strtod(text, nullptr)) << text;
    }
}
