// The unsigned magnitude routines against 128-bit arithmetic over random values and
// destination lengths, with the byte-level corners of the single-step routines.
#include <gtest/gtest.h>

#include <random>

#include "num_helpers.h"

using namespace numtest;

// Copy, add, subtract, multiply, divide, compare and scale over random values whose
// destinations have random lengths: a result either fits the destination's bytes and is
// exact, or the routine reports overflow.
TEST(NumericMagnitude, RandomOperationsMatchWideIntegers) {
    std::mt19937_64 rng(7);
    auto abs = [](i128 v) { return v < 0 ? -v : v; };
    for (int i = 0; i < 30000; ++i) {
        const int pa = 1 + rng() % 38, pb = 1 + rng() % 38;
        const int sa = rng() % (pa + 1), sb = rng() % (pb + 1);
        const i128 a = rng() % 16 ? random_units(rng, pa) : (rng() & 1 ? 1 : -1);
        const i128 b = random_units(rng, pb);
        const int bytes = 1 + rng() % 16; // the destination's magnitude length
        auto fits = [&](i128 v) { return bytes == 16 || abs(v) < (i128{1} << (8 * bytes)); };
        Num x(a, pa, sa), y(b, pb, sb), d(0, 38, 0, bytes + 1);
        SCOPED_TRACE(static_cast<long long>(a));

        EXPECT_EQ(com__exctnume_copy(x.get(), d.get()), fits(a) ? 0 : 1);
        if (fits(a)) {
            EXPECT_TRUE(d.units() == a);
        }
        if (pb <= pa && pa < 38) { // the sum stays within 128 bits
            d.set(0);
            EXPECT_EQ(com__exctnume_intadd(x.get(), y.get(), d.get()),
                      fits(abs(a) + abs(b)) ? 0 : 1);
            if (fits(abs(a) + abs(b))) {
                EXPECT_TRUE(d.units() == abs(a) + abs(b));
            }
            if (abs(a) >= abs(b)) {
                EXPECT_EQ(com__exctnume_intsub(x.get(), y.get(), d.get()),
                          fits(abs(a) - abs(b)) ? 0 : 1);
                if (fits(abs(a) - abs(b))) {
                    EXPECT_TRUE(abs(d.units()) == abs(a) - abs(b));
                }
            }
        }
        if (pa + pb <= 38) {
            const i128 p = a * b;
            EXPECT_EQ(com__exctnume_intmul(x.get(), y.get(), d.get()), fits(p) ? 0 : 1);
            if (fits(p)) {
                EXPECT_TRUE(d.units() == p);
            }
        }
        Num q(0, 38, 0), r(0, 38, 0);
        if (b != 0) {
            ASSERT_EQ(com__exctnume_intdiv(x.get(), y.get(), q.get(), r.get()), 0);
            EXPECT_TRUE(q.units() == abs(a) / abs(b));
            EXPECT_TRUE(r.units() == abs(a) % abs(b));
        } else {
            EXPECT_EQ(com__exctnume_intdiv(x.get(), y.get(), q.get(), r.get()), 3);
        }
        // Compare: magnitudes, then signed with the scales aligned where 128 bits hold both.
        EXPECT_EQ(com__exctnume_cmp(x.get(), y.get(), 0), (abs(a) > abs(b)) - (abs(a) < abs(b)));
        if (pa + sb <= 38 && pb + sa <= 38) {
            const i128 xa = a * pow10(sb), yb = b * pow10(sa);
            EXPECT_EQ(
                com__exctnume_cmp(x.get(), y.get(), COMN_NUME_CMP_SIGNED | COMN_NUME_CMP_ALIGN),
                (xa > yb) - (xa < yb));
        }
        // Scale by 10^k into the destination: up exactly, down half away from zero (6 when
        // digits were dropped), never a sign on zero.
        const int k = static_cast<int>(rng() % 77) - 38; // powers of ten within 128 bits
        if (k <= 38 - pa) {
            const i128 want = k >= 0 ? a * pow10(k) : div_round(a, pow10(-k));
            const bool dropped = k < 0 && want * pow10(-k) != a;
            std::memset(d.buf, 0x55, sizeof d.buf);
            EXPECT_EQ(com__exctnume_scale(x.get(), d.get(), k), !fits(want) ? 1
                                                                : dropped   ? 6
                                                                            : 0)
                << k;
            if (fits(want)) {
                EXPECT_TRUE(d.units() == want) << k;
                EXPECT_EQ(d.buf[0], want < 0 ? 1 : 0) << k;
            }
        }
    }
}

TEST(NumericMagnitude, DivideByTenShortensFromTheFront) {
    uint8_t v[4] = {0, 0x01, 0x00, 0x00}; // 65536
    uint8_t *p = v;
    int32_t len = 4;
    EXPECT_EQ(com__exctnume_divby10(&p, &len), 6); // 6553 r 6
    EXPECT_EQ(len, 3);
    EXPECT_EQ(p, v + 1);
    EXPECT_EQ((p[1] << 8) | p[2], 6553);
    // A last byte of 0xFF keeps three bytes: 0x09FF / 10 = 0xFF r 9 with a zero after the first.
    uint8_t w[3] = {0, 0x09, 0xFF};
    p = w;
    len = 3;
    EXPECT_EQ(com__exctnume_divby10(&p, &len), 9);
    EXPECT_EQ(w[2], 0xFF);
    EXPECT_EQ(len, 3);
    // Repeated division yields the decimal digits of a 64-bit number; two bytes never shorten.
    Num n(static_cast<i128>(12345678901234567890ull), 20, 0);
    p = n.buf;
    len = n->length;
    std::string digits;
    for (int i = 0; i < 20; ++i)
        digits.insert(digits.begin(), char('0' + com__exctnume_divby10(&p, &len)));
    EXPECT_EQ(digits, "12345678901234567890");
    EXPECT_EQ(len, 2);
}

TEST(NumericMagnitude, MultiplyByTenIncrementAndNeedsByte) {
    Num x(25, 2, 0); // one magnitude byte
    EXPECT_EQ(com__exctnume_mulby10_add(x.get(), 5), 0);
    EXPECT_TRUE(x.units() == 255);
    EXPECT_EQ(com__exctnume_needsbyte(x.get()), 1);
    EXPECT_EQ(com__exctnume_inc(x.get()), 1); // carry out of the top byte
    x.set(25);
    EXPECT_EQ(com__exctnume_mulby10_add(x.get(), 6), 1);
    x.set(254);
    EXPECT_EQ(com__exctnume_needsbyte(x.get()), 0);
    EXPECT_EQ(com__exctnume_inc(x.get()), 0);
    EXPECT_TRUE(x.units() == 255);
}

// A length holds the largest precision whose own length fits it.
TEST(NumericTables, PrecisionOfALengthIsTheLargestThatFits) {
    for (int len = 2; len <= 33; ++len) {
        const int p = comn_num_getprec(len);
        EXPECT_LE(comn_num_getlen(p), len) << len;
        EXPECT_GT(p < 77 ? comn_num_getlen(p + 1) : 99, len) << len;
    }
}
