// Layout tables and the unsigned magnitude routines.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "num_helpers.h"
#include "numeric/wide.h"

using namespace numtest;

TEST(NumericTables, LengthsAndPrecisionsAgreeWithThePowers) {
    EXPECT_EQ(comn_num_getlen(19), 9);
    EXPECT_EQ(comn_num_getlen(38), 17);
    EXPECT_EQ(comn_num_getprec(9), 19);
    EXPECT_EQ(comn_num_getprec(33), 77);
    EXPECT_EQ(comn_num_getprec(34), 255);
    EXPECT_EQ(comn_num_getprec(35), 255);
    for (int p = 0; p <= 77; ++p) {
        const uint8_t *e = Com__Nume_Byte_Power_Array[p];
        // 10^p and 10^p - 1 never differ in byte length, so both tables agree.
        EXPECT_EQ(e[0], Com__Nume_Prec_To_Len[p]) << p;
        EXPECT_EQ(e[1], 0) << p;
        EXPECT_NE(e[2], 0) << p; // shortest length
        for (int j = e[0] + 1; j < 34; ++j)
            EXPECT_EQ(e[j], 0) << p;
        if (p > 0) {
            // entry p is ten times entry p - 1
            uint8_t prev[34] = {};
            const uint8_t *pe = Com__Nume_Byte_Power_Array[p - 1];
            std::memcpy(prev + (e[0] - pe[0]), pe + 1, pe[0]);
            ExactNumericRef r{e[0], 0, 0, prev};
            ASSERT_EQ(com__exctnume_mulby10_add(&r, 0), 0);
            EXPECT_EQ(0, std::memcmp(prev, e + 1, e[0])) << p;
        }
    }
    for (int len = 2; len <= 33; ++len) {
        const int p = comn_num_getprec(len);
        EXPECT_LE(comn_num_getlen(p), len);
        if (p < 77) {
            EXPECT_GT(comn_num_getlen(p + 1), len);
        }
    }
}

TEST(NumericMagnitude, CopyLosesOnlyZeroBytes) {
    Num src(256, 3, 0), small(0, 2, 0);
    EXPECT_EQ(com__exctnume_copy(src.get(), small.get()), 1);
    src.set(-255);
    small.buf[0] = 0;
    EXPECT_EQ(com__exctnume_copy(src.get(), small.get()), 0);
    EXPECT_EQ(small.units(), -255);
    Num wide_dst(0, 30, 0);
    std::memset(wide_dst.buf, 0xAA, sizeof wide_dst.buf);
    EXPECT_EQ(com__exctnume_copy(src.get(), wide_dst.get()), 0);
    EXPECT_EQ(wide_dst.units(), -255);
}

TEST(NumericMagnitude, CompareSignsAndScales) {
    struct Case {
        i128 a;
        int ap, as;
        i128 b;
        int bp, bs;
        int flags, want;
    } cases[] = {
        {0, 5, 0, 0, 5, 0, 3, 0},       // +0 against +0
        {1, 5, 0, 0, 5, 0, 3, 1},       //
        {-1, 5, 0, 0, 5, 0, 3, -1},     // -1 < +0
        {15, 2, 1, 150, 3, 2, 3, 0},    // 1.5 == 1.50
        {-15, 2, 1, -151, 3, 2, 3, 1},  // -1.5 > -1.51
        {-15, 2, 1, -151, 3, 2, 2, -1}, // magnitudes only
        {7, 1, 0, 7, 30, 0, 0, 0},      // different lengths
        {1, 1, 0, 2, 30, 25, 2, 1},     // 1 > 2e-25
        {-5, 3, 0, 3, 20, 0, 0, 1},     // unsigned: 5 > 3
    };
    for (const auto &c : cases) {
        Num a(c.a, c.ap, c.as), b(c.b, c.bp, c.bs);
        EXPECT_EQ(com__exctnume_cmp(a.get(), b.get(), c.flags), c.want)
            << static_cast<long long>(c.a) << " " << static_cast<long long>(c.b);
    }
    // Negative zero equals zero.
    Num pz(0, 5, 0), nz(0, 5, 0);
    nz.buf[0] = 1;
    EXPECT_EQ(com__exctnume_cmp(pz.get(), nz.get(), 3), 0);
    EXPECT_EQ(com__exctnume_cmp(nz.get(), pz.get(), 3), 0);
    // Scale alignment beyond 77 digits stays exact.
    Num big(pow10(37), 38, 0), tiny(1, 77, 77);
    EXPECT_EQ(com__exctnume_cmp(big.get(), tiny.get(), 3), 1);
    EXPECT_EQ(com__exctnume_cmp(tiny.get(), big.get(), 3), -1);
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
    EXPECT_EQ(p, w);
    // Two bytes never shorten.
    uint8_t z[2] = {0, 9};
    p = z;
    len = 2;
    EXPECT_EQ(com__exctnume_divby10(&p, &len), 9);
    EXPECT_EQ(len, 2);
    // Repeated division yields the decimal digits of a 64-bit number.
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
    EXPECT_EQ(x.units(), 255);
    EXPECT_EQ(com__exctnume_needsbyte(x.get()), 1);
    EXPECT_EQ(com__exctnume_inc(x.get()), 1); // carry out of the top byte
    x.set(25);
    EXPECT_EQ(com__exctnume_mulby10_add(x.get(), 6), 1);
    x.set(254);
    EXPECT_EQ(com__exctnume_needsbyte(x.get()), 0);
    EXPECT_EQ(com__exctnume_inc(x.get()), 0);
    EXPECT_EQ(x.units(), 255);
}

TEST(NumericMagnitude, PrecisionTestAtEveryBoundary) {
    for (int p = 1; p <= 38; ++p) {
        Num below(pow10(p) - 1, p, 0), at(pow10(p), p, 0, comn_num_getlen(p) + 1);
        EXPECT_EQ(com__exctnume_checkprecision(below.get()), 0) << p;
        EXPECT_EQ(com__exctnume_checkprecision(at.get()), 1) << p;
        // A shorter descriptor cannot hold 10^p at all.
        Num shorter(0, p, 0, Com__Nume_Byte_Power_Array[p][0] - 1);
        EXPECT_EQ(com__exctnume_checkprecision(shorter.get()), 0) << p;
    }
}

TEST(NumericMagnitude, AddSubtractMultiplyFitTheirResult) {
    Num a(200, 3, 0), b(100, 3, 0), r1(0, 2, 0), r2(0, 5, 0);
    EXPECT_EQ(com__exctnume_intadd(a.get(), b.get(), r1.get()), 1); // 300 > 255
    EXPECT_EQ(com__exctnume_intadd(a.get(), b.get(), r2.get()), 0);
    EXPECT_EQ(r2.units(), 300);
    EXPECT_EQ(com__exctnume_intsub(r2.get(), a.get(), r1.get()), 0);
    EXPECT_EQ(r1.units(), 100);
    Num big(70000, 5, 0);
    EXPECT_EQ(com__exctnume_intsub(big.get(), a.get(), r1.get()), 1);
    EXPECT_EQ(com__exctnume_intmul(a.get(), b.get(), r2.get()), 0);
    EXPECT_EQ(r2.units(), 20000);
    EXPECT_EQ(com__exctnume_intmul(a.get(), b.get(), r1.get()), 1);
    // Magnitude 1 copies the other operand with the product's sign.
    Num one(-1, 1, 0), x(1234, 9, 0), r3(0, 9, 0);
    EXPECT_EQ(com__exctnume_intmul(one.get(), x.get(), r3.get()), 0);
    EXPECT_EQ(r3.units(), -1234);
    EXPECT_EQ(com__exctnume_intmul(x.get(), one.get(), r3.get()), 0);
    EXPECT_EQ(r3.units(), -1234);
    Num zero(0, 9, 0);
    std::memset(r3.buf, 0x55, sizeof r3.buf);
    EXPECT_EQ(com__exctnume_intmul(zero.get(), one.get(), r3.get()), 0);
    EXPECT_EQ(r3.units(), 0);
    EXPECT_EQ(r3.buf[0], 0);
}

TEST(NumericMagnitude, RandomArithmeticMatchesWideIntegers) {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 20000; ++i) {
        const int pa = 1 + rng() % 38, pb = 1 + rng() % 38;
        const i128 a = static_cast<i128>(((static_cast<u128>(rng()) << 64) | rng()) %
                                         static_cast<u128>(pow10(pa)));
        const i128 b = static_cast<i128>(((static_cast<u128>(rng()) << 64) | rng()) %
                                         static_cast<u128>(pow10(pb)));
        Num x(a, pa, 0), y(b, pb, 0), q(0, 38, 0), r(0, 38, 0), s(0, 38, 0, 18);
        if (b != 0) {
            ASSERT_EQ(com__exctnume_intdiv(x.get(), y.get(), q.get(), r.get()), 0);
            EXPECT_EQ(q.units(), a / b);
            EXPECT_EQ(r.units(), a % b);
        } else {
            EXPECT_EQ(com__exctnume_intdiv(x.get(), y.get(), q.get(), r.get()), 3);
        }
        if (pb <= pa) {
            ASSERT_EQ(com__exctnume_intadd(x.get(), y.get(), s.get()), 0);
            EXPECT_EQ(s.units(), a + b);
        }
        const int c = com__exctnume_cmp(x.get(), y.get(), 0);
        EXPECT_EQ(c, (a > b) - (a < b));
        if (pa + pb <= 38) {
            ASSERT_EQ(com__exctnume_intmul(x.get(), y.get(), s.get()), 0);
            EXPECT_EQ(s.units(), a * b);
        }
    }
}

TEST(NumericMagnitude, ScaleUpAndDownWithDroppedDigits) {
    struct Case {
        i128 v;
        int k;
        int dstp;
        int rc;
        i128 want;
    } cases[] = {
        {123, 2, 9, 0, 12300},  {-123, 2, 9, 0, -12300},  {12345, -2, 9, 6, 123},
        {12350, -2, 9, 6, 124}, {-12350, -2, 9, 6, -124}, {12300, -2, 9, 0, 123},
        {-49, -2, 9, 6, 0},     {99999, 1, 4, 1, 0},      {1, 77, 77, 0, 0},
        {5, -80, 9, 6, 0},      {0, 90, 9, 0, 0},
    };
    for (const auto &c : cases) {
        Num x(c.v, 38, 0), d(0, c.dstp, 0);
        EXPECT_EQ(com__exctnume_scale(x.get(), d.get(), c.k), c.rc)
            << static_cast<long long>(c.v) << " " << c.k;
        if (c.rc != 1 && c.k != 77) {
            EXPECT_EQ(d.units(), c.want);
        }
        // In place gives the same outcome where the value fits.
        if (c.rc != 1 && c.k < 77) {
            Num y(c.v, 38, 0);
            EXPECT_EQ(com__exctnume_scale(y.get(), nullptr, c.k), c.rc);
            EXPECT_EQ(y.units(), c.want);
        }
    }
    // A negative value rounded to zero loses its sign.
    Num n(-4, 5, 0), z(0, 5, 0);
    EXPECT_EQ(com__exctnume_scale(n.get(), z.get(), -1), 6);
    EXPECT_EQ(z.buf[0], 0);
}

TEST(NumericWide, ReciprocalMatchesTheDefinition) {
    std::mt19937_64 rng(3);
    std::vector<uint64_t> ds = {1ull << 63, ~0ull, (1ull << 63) + 1, 10000000000000000000ull};
    for (int i = 0; i < 200000; ++i)
        ds.push_back(rng() | (1ull << 63));
    for (uint64_t d : ds) {
        const u128 want = ~static_cast<u128>(0) / d - (static_cast<u128>(1) << 64);
        ASSERT_EQ(comn::wide::reciprocal(d).v, static_cast<uint64_t>(want)) << d;
    }
}

// Division by the powers of ten through their stored reciprocals against the compiler's
// 128-bit division, and the rounding on the first dropped digit built on it.
TEST(NumericWide, PowerOfTenDivisionMatchesNativeDivision) {
    std::mt19937_64 rng(5);
    for (int k = 1; k <= 19; ++k) {
        const u128 p = comn::wide::kPow10[k];
        std::vector<u128> vs = {0, p - 1, p, p * 5 - 1, p * 5, ~static_cast<u128>(0)};
        for (int i = 0; i < 5000; ++i)
            vs.push_back((static_cast<u128>(rng()) << 64 | rng()) >> (rng() % 128));
        for (const u128 v : vs) {
            uint64_t rem;
            ASSERT_TRUE(comn::wide::divmod_pow10(v, k, rem) == v / p) << k;
            ASSERT_EQ(rem, static_cast<uint64_t>(v % p)) << k;
            const u128 rounded = v / p + (v % p >= p / 2 ? 1 : 0);
            ASSERT_TRUE(comn::wide::div_pow10_round128(v, k) == rounded) << k;
        }
    }
}
