// Wide-word natural numbers for the exact-numeric routines.
//
// A stored magnitude is at most 34 big-endian bytes; the arithmetic underneath works on
// 64-bit limbs, least significant first, with 128-bit intermediate products. Intermediates
// stay below 10^232 (a 77-digit value shifted by up to 154 digits for division), so a fixed
// capacity of 16 limbs (1024 bits) always suffices and nothing allocates.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace comn::wide {

// Byte images are read and written with byte swaps of native 64-bit words.
static_assert(std::endian::native == std::endian::little, "little-endian hosts only");

using u64 = uint64_t;
__extension__ using u128 = unsigned __int128;

constexpr int kCap = 16;

// n is the count of significant limbs (0 for zero); limbs at n and above are unspecified.
struct Nat {
    u64 w[kCap];
    int n = 0;
};

inline constexpr u64 kPow10[20] = {1ull,
                                   10ull,
                                   100ull,
                                   1000ull,
                                   10000ull,
                                   100000ull,
                                   1000000ull,
                                   10000000ull,
                                   100000000ull,
                                   1000000000ull,
                                   10000000000ull,
                                   100000000000ull,
                                   1000000000000ull,
                                   10000000000000ull,
                                   100000000000000ull,
                                   1000000000000000ull,
                                   10000000000000000ull,
                                   100000000000000000ull,
                                   1000000000000000000ull,
                                   10000000000000000000ull};

inline void trim(Nat &x) {
    while (x.n > 0 && x.w[x.n - 1] == 0)
        --x.n;
}

// r = the limbs w[0..n) less any leading zero limbs. False when they exceed the capacity.
inline bool take_limbs(Nat &r, const u64 *w, int n) {
    while (n > 0 && w[n - 1] == 0)
        --n;
    if (n > kCap) return false;
    for (int i = 0; i < n; ++i)
        r.w[i] = w[i];
    r.n = n;
    return true;
}

inline bool is_zero(const Nat &x) {
    return x.n == 0;
}

// Copies the significant limbs only.
inline void copy(Nat &dst, const Nat &src) {
    for (int i = 0; i < src.n; ++i)
        dst.w[i] = src.w[i];
    dst.n = src.n;
}

inline void set_u64(Nat &x, u64 v) {
    x.w[0] = v;
    x.n = v != 0;
}

inline u64 load_be64(const uint8_t *p) {
    u64 v;
    std::memcpy(&v, p, 8);
    return __builtin_bswap64(v);
}

inline void store_be64(uint8_t *p, u64 v) {
    v = __builtin_bswap64(v);
    std::memcpy(p, &v, 8);
}

// Reads len (0..kCap*8) big-endian bytes.
inline void from_be(Nat &x, const uint8_t *p, int len) {
    int i = 0;
    while (len >= 8) {
        x.w[i++] = load_be64(p + len - 8);
        len -= 8;
    }
    if (len > 0) {
        u64 v = 0;
        for (int j = 0; j < len; ++j)
            v = (v << 8) | p[j];
        x.w[i++] = v;
    }
    x.n = i;
    trim(x);
}

// Writes the low len bytes big-endian; false when the value needs more than len bytes.
inline bool to_be(const Nat &x, uint8_t *p, int len) {
    int i = 0;
    int rest = len;
    while (rest >= 8) {
        store_be64(p + rest - 8, i < x.n ? x.w[i] : 0);
        ++i;
        rest -= 8;
    }
    u64 top = i < x.n ? x.w[i] : 0;
    for (int j = rest - 1; j >= 0; --j) {
        p[j] = static_cast<uint8_t>(top);
        top >>= 8;
    }
    if (top != 0) return false;
    for (int k = i + 1; k < x.n; ++k)
        if (x.w[k] != 0) return false;
    return true;
}

inline int cmp(const Nat &a, const Nat &b) {
    if (a.n != b.n) return a.n < b.n ? -1 : 1;
    for (int i = a.n - 1; i >= 0; --i)
        if (a.w[i] != b.w[i]) return a.w[i] < b.w[i] ? -1 : 1;
    return 0;
}

// r = a + b; r may alias either. False when the capacity is exceeded.
inline bool add(Nat &r, const Nat &a, const Nat &b) {
    const Nat &l = a.n >= b.n ? a : b;
    const Nat &s = a.n >= b.n ? b : a;
    const int ln = l.n, sn = s.n;
    u64 c = 0;
    int i = 0;
    for (; i < sn; ++i) {
        u128 t = static_cast<u128>(l.w[i]) + s.w[i] + c;
        r.w[i] = static_cast<u64>(t);
        c = static_cast<u64>(t >> 64);
    }
    for (; i < ln; ++i) {
        u128 t = static_cast<u128>(l.w[i]) + c;
        r.w[i] = static_cast<u64>(t);
        c = static_cast<u64>(t >> 64);
    }
    r.n = ln;
    if (c) {
        if (ln == kCap) return false;
        r.w[r.n++] = c;
    }
    return true;
}

// r = a - b for a >= b; r may alias either.
inline void sub(Nat &r, const Nat &a, const Nat &b) {
    u64 borrow = 0;
    const int an = a.n, bn = b.n;
    for (int i = 0; i < an; ++i) {
        const u64 bi = i < bn ? b.w[i] : 0;
        const u64 d1 = a.w[i] - bi;
        const u64 b1 = a.w[i] < bi;
        const u64 d2 = d1 - borrow;
        const u64 b2 = d1 < borrow;
        r.w[i] = d2;
        borrow = b1 | b2;
    }
    r.n = an;
    trim(r);
}

// x = x * m + addend, in place (m > 0). False when the capacity is exceeded.
inline bool mul_small_add(Nat &x, u64 m, u64 addend) {
    u64 c = addend;
    for (int i = 0; i < x.n; ++i) {
        u128 t = static_cast<u128>(x.w[i]) * m + c;
        x.w[i] = static_cast<u64>(t);
        c = static_cast<u64>(t >> 64);
    }
    if (c) {
        if (x.n == kCap) return false;
        x.w[x.n++] = c;
    }
    return true;
}

// x = x * 10^k, k >= 0. False when the capacity is exceeded.
inline bool mul_pow10(Nat &x, int k) {
    if (x.n == 0) return true;
    while (k >= 19) {
        if (!mul_small_add(x, kPow10[19], 0)) return false;
        k -= 19;
    }
    return k == 0 || mul_small_add(x, kPow10[k], 0);
}

// r = a * b; r must not alias a or b. False when the capacity is exceeded.
inline bool mul(Nat &r, const Nat &a, const Nat &b) {
    if (a.n == 0 || b.n == 0) {
        r.n = 0;
        return true;
    }
    if (a.n + b.n > kCap + 1) return false;
    const int rn = a.n + b.n;
    u64 tmp[kCap + 1];
    for (int i = 0; i < rn; ++i)
        tmp[i] = 0;
    for (int j = 0; j < b.n; ++j) {
        u64 c = 0;
        const u64 bj = b.w[j];
        for (int i = 0; i < a.n; ++i) {
            u128 t = static_cast<u128>(a.w[i]) * bj + tmp[i + j] + c;
            tmp[i + j] = static_cast<u64>(t);
            c = static_cast<u64>(t >> 64);
        }
        tmp[j + a.n] = c;
    }
    return take_limbs(r, tmp, rn);
}

// (hi:lo) / d for hi < d: quotient, remainder in rem.
inline u64 div128(u64 hi, u64 lo, u64 d, u64 &rem) {
#if defined(__x86_64__)
    u64 q, r;
    __asm__("divq %4" : "=a"(q), "=d"(r) : "a"(lo), "d"(hi), "rm"(d) : "cc");
    rem = r;
    return q;
#else
    const u128 nn = (static_cast<u128>(hi) << 64) | lo;
    rem = static_cast<u64>(nn % d);
    return static_cast<u64>(nn / d);
#endif
}

// Division by an invariant normalised divisor (top bit set) with a precomputed reciprocal
// (Moller and Granlund, "Improved division by invariant integers", algorithm 4): one
// multiplication instead of a hardware division per limb.
struct Reciprocal {
    u64 d;
    u64 v; // floor((2^128 - 1) / d) - 2^64
};

constexpr Reciprocal make_reciprocal(u64 d) {
    return {d, static_cast<u64>(~static_cast<u128>(0) / d - (static_cast<u128>(1) << 64))};
}

// (u1:u0) / d for u1 < d.
inline u64 div_preinv(u64 u1, u64 u0, const Reciprocal &rc, u64 &rem) {
    u128 q = static_cast<u128>(rc.v) * u1;
    q += (static_cast<u128>(u1) << 64) | u0;
    u64 q1 = static_cast<u64>(q >> 64) + 1;
    const u64 q0 = static_cast<u64>(q);
    u64 r = u0 - q1 * rc.d;
    if (r > q0) {
        --q1;
        r += rc.d;
    }
    if (r >= rc.d) {
        ++q1;
        r -= rc.d;
    }
    rem = r;
    return q1;
}

// The reciprocal of a normalised d: floor((2^128 - 1) / d) - 2^64 is the quotient of
// (2^64 - 1 - d : 2^64 - 1) by d, one hardware division rather than a table seed refined by
// Newton steps (docs/benchmarks.md).
inline Reciprocal reciprocal(u64 d) {
    u64 rem;
    return {d, div128(~d, ~u64{0}, d, rem)};
}

inline constexpr Reciprocal kTen19 = make_reciprocal(kPow10[19]);
static_assert(kPow10[19] >> 63 == 1, "10^19 is already normalised");

// x = x / 10^19 in place; returns the remainder.
inline u64 div_ten19(Nat &x) {
    u64 r = 0;
    for (int i = x.n - 1; i >= 0; --i)
        x.w[i] = div_preinv(r, x.w[i], kTen19, r);
    trim(x);
    return r;
}

// Reciprocals of the normalised powers 10^k << shift, k = 1..19, for dividing by a power of
// ten without computing a reciprocal or using a hardware division.
struct Pow10Recip {
    Reciprocal rc;
    int shift;
};
inline constexpr auto kPow10Recip = [] {
    struct {
        Pow10Recip e[20];
    } t{};
    for (int k = 1; k < 20; ++k) {
        int s = 0;
        while ((kPow10[k] << s) >> 63 == 0)
            ++s;
        t.e[k] = {make_reciprocal(kPow10[k] << s), s};
    }
    return t;
}();

// v / 10^k for k = 1..19, with the remainder in rem.
inline u128 divmod_pow10(u128 v, int k, u64 &rem) {
    const Pow10Recip &p = kPow10Recip.e[k];
    const int s = p.shift; // 0 only for 10^19
    const u64 hi = static_cast<u64>(v >> 64), lo = static_cast<u64>(v);
    const u64 u2 = s ? hi >> (64 - s) : 0;
    const u64 u1 = (hi << s) | (s ? lo >> (64 - s) : 0);
    const u64 u0 = lo << s;
    u64 r;
    const u64 q1 = div_preinv(u2, u1, p.rc, r);
    const u64 q0 = div_preinv(r, u0, p.rc, r);
    rem = r >> s;
    return (static_cast<u128>(q1) << 64) | q0;
}

// v / 10^k (k = 1..19) rounded half away from zero on the first dropped digit: up when the
// dropped part is at least 5 * 10^(k-1).
inline u128 div_pow10_round128(u128 v, int k) {
    u64 rem;
    const u128 q = divmod_pow10(v, k, rem);
    return q + (rem >= 5 * kPow10[k - 1]);
}

// q[0..n-1] = x[0..n-1] / d (n >= 1, d > 0; q may be x); returns the remainder. The divisor
// is normalised (shifted so that its top bit is set) with a reciprocal, and the dividend
// shifted with it on the fly: one multiplication per limb instead of a hardware division
// (docs/benchmarks.md).
inline u64 divrem_1(const u64 *x, int n, u64 d, u64 *q) {
    const int s = __builtin_clzll(d);
    const Reciprocal rc = reciprocal(d << s);
    u64 r = s ? x[n - 1] >> (64 - s) : 0; // < 2^s <= normalised d
    for (int i = n - 1; i >= 0; --i) {
        const u64 lo = (x[i] << s) | (s && i > 0 ? x[i - 1] >> (64 - s) : 0);
        q[i] = div_preinv(r, lo, rc, r);
    }
    return r >> s;
}

// x = x / d in place (d > 0); returns the remainder.
inline u64 div_small(Nat &x, u64 d) {
    if (x.n <= 1) {
        const u64 v = x.n ? x.w[0] : 0;
        set_u64(x, v / d);
        return v % d;
    }
    const u64 r = divrem_1(x.w, x.n, d, x.w);
    trim(x);
    return r;
}

// dst[0..len] = src[0..len-1] << s (0 <= s < 64): len + 1 limbs, the last the bits shifted out.
inline void shl_into(const u64 *src, int len, int s, u64 *dst) {
    dst[len] = s ? src[len - 1] >> (64 - s) : 0;
    for (int i = len - 1; i > 0; --i)
        dst[i] = (src[i] << s) | (s ? src[i - 1] >> (64 - s) : 0);
    dst[0] = src[0] << s;
}

// dst[0..len-1] = src[0..len] >> s, the inverse of shl_into.
inline void shr_from(const u64 *src, int len, int s, u64 *dst) {
    for (int i = 0; i < len; ++i)
        dst[i] = (src[i] >> s) | (s ? src[i + 1] << (64 - s) : 0);
}

// The reciprocal of a normalised two-limb divisor (d1:d0), floor((2^192 - 1) / (d1:d0)) -
// 2^64, from the reciprocal of d1 (Moller and Granlund, "Improved division by invariant
// integers", algorithm 6).
inline u64 reciprocal_3by2(u64 d1, u64 d0) {
    u64 v = reciprocal(d1).v;
    u64 p = d1 * v + d0;
    if (p < d0) {
        --v;
        if (p >= d1) {
            --v;
            p -= d1;
        }
        p -= d1;
    }
    const u128 t = static_cast<u128>(v) * d0;
    const u64 t1 = static_cast<u64>(t >> 64), t0 = static_cast<u64>(t);
    p += t1;
    if (p < t1) {
        --v;
        if (p > d1 || (p == d1 && t0 >= d0)) --v;
    }
    return v;
}

// (u2:u1:u0) / (d1:d0) for (u2:u1) < (d1:d0), d1 normalised, v its 3/2 reciprocal: one
// quotient limb, the remainder left in r (algorithm 5 of the same paper).
inline u64 div_3by2(u64 u2, u64 u1, u64 u0, u64 d1, u64 d0, u64 v, u128 &r) {
    const u128 q = static_cast<u128>(v) * u2 + ((static_cast<u128>(u2) << 64) | u1);
    u64 q1 = static_cast<u64>(q >> 64);
    const u64 q0 = static_cast<u64>(q);
    const u128 d = (static_cast<u128>(d1) << 64) | d0;
    const u64 r1 = u1 - q1 * d1;
    r = ((static_cast<u128>(r1) << 64) | u0) - static_cast<u128>(d0) * q1 - d;
    ++q1;
    if (static_cast<u64>(r >> 64) >= q0) {
        --q1;
        r += d;
    }
    if (r >= d) [[unlikely]] {
        ++q1;
        r -= d;
    }
    return q1;
}

// u[0..n-1] -= qh * v[0..n-1]; returns the limb to borrow from above.
inline u64 submul(u64 *u, const u64 *v, int n, u64 qh) {
    u64 carry = 0;
    for (int i = 0; i < n; ++i) {
        const u128 p = static_cast<u128>(qh) * v[i] + carry;
        const u64 plo = static_cast<u64>(p);
        carry = static_cast<u64>(p >> 64) + (u[i] < plo);
        u[i] -= plo;
    }
    return carry;
}

// u[0..n-1] += v[0..n-1]; returns the carry.
inline u64 add_back(u64 *u, const u64 *v, int n) {
    u64 c = 0;
    for (int i = 0; i < n; ++i) {
        const u128 t = static_cast<u128>(u[i]) + v[i] + c;
        u[i] = static_cast<u64>(t);
        c = static_cast<u64>(t >> 64);
    }
    return c;
}

// Schoolbook division on normalised limbs: u holds the dividend shifted left with the divisor
// (m + n + 1 limbs), v the divisor (n >= 2 limbs, top bit set). Each quotient limb is
// estimated from the top three limbs of the partial remainder and the top two of the
// divisor by one 3-by-2 step, which is exact or one too large; the rest of the divisor is
// then subtracted and, rarely, added back. The m + 1 quotient limbs go to q and u is left
// holding the shifted remainder in its low n limbs. N fixes n at compile time (0: taken
// from n_rt) so that short divisors get straight-line loops.
template <int N>
[[gnu::always_inline]] inline void schoolbook_div(u64 *u, const u64 *v, int n_rt, int m, u64 *q) {
    const int n = N ? N : n_rt;
    const u64 d1 = v[n - 1], d0 = v[n - 2];
    const u128 d = (static_cast<u128>(d1) << 64) | d0;
    const u64 inv = reciprocal_3by2(d1, d0);
    // The partial remainder's top two limbs stay in registers as r; the limbs below them are
    // in u[j .. j + n - 3], where each step's subtraction leaves them.
    u128 r = (static_cast<u128>(u[m + n]) << 64) | u[m + n - 1];
    for (int j = m; j >= 0; --j) {
        u64 *uj = u + j;
        if (r == d) [[unlikely]] {
            // The top limbs equal the divisor's: the partial remainder is at least 2^64 - 1
            // times the divisor (and below 2^64 times it), so that is the limb.
            uj[n] = d1;
            uj[n - 1] = d0;
            uj[n] -= submul(uj, v, n, ~u64{0});
            r = (static_cast<u128>(uj[n - 1]) << 64) | uj[n - 2];
            q[j] = ~u64{0};
            continue;
        }
        u64 qh =
            div_3by2(static_cast<u64>(r >> 64), static_cast<u64>(r), uj[n - 2], d1, d0, inv, r);
        const u64 cy = submul(uj, v, n - 2, qh);
        const u128 rest = r - cy;
        if (r < cy) [[unlikely]] { // one too large: add the divisor back
            --qh;
            r = rest + d + add_back(uj, v, n - 2);
        } else {
            r = rest;
        }
        q[j] = qh;
    }
    u[n - 2] = static_cast<u64>(r);
    u[n - 1] = static_cast<u64>(r >> 64);
    u[n] = 0;
}

// q = a / b, r = a % b for b != 0. q and r must not alias a or b.
inline void divmod(const Nat &a, const Nat &b, Nat &q, Nat &r) {
    if (cmp(a, b) < 0) {
        q.n = 0;
        copy(r, a);
        return;
    }
    if (b.n == 1) {
        copy(q, a);
        set_u64(r, div_small(q, b.w[0]));
        return;
    }
    const int n = b.n, m = a.n - b.n;
    const int s = __builtin_clzll(b.w[n - 1]);
    u64 v[kCap + 1], u[kCap + 1];
    shl_into(b.w, n, s, v);
    shl_into(a.w, a.n, s, u);
    schoolbook_div<0>(u, v, n, m, q.w);
    q.n = m + 1;
    trim(q);
    shr_from(u, n, s, r.w);
    r.n = n;
    trim(r);
}

// x = x / 10^k rounded half away from zero on the first dropped digit (k >= 0). inexact
// reports whether any non-zero digit was dropped.
inline void div_pow10_round(Nat &x, int k, bool &inexact) {
    inexact = false;
    if (k <= 0 || x.n == 0) return;
    // Drop all but the first dropped digit, remembering whether anything was non-zero.
    int rest = k - 1;
    while (rest > 0 && x.n > 0) {
        const int step = rest > 19 ? 19 : rest;
        if ((step == 19 ? div_ten19(x) : div_small(x, kPow10[step])) != 0) inexact = true;
        rest -= step;
    }
    if (x.n == 0) {
        // Too few digits to reach the first dropped one: the result is 0.
        return;
    }
    const u64 digit = div_small(x, 10);
    if (digit != 0) inexact = true;
    if (digit >= 5) {
        Nat one;
        set_u64(one, 1);
        add(x, x, one);
    }
}

// x = x << k bits. False when the capacity is exceeded.
inline bool shl(Nat &x, int k) {
    if (x.n == 0 || k == 0) return true;
    const int limbs = k / 64, bits = k % 64;
    const int n = x.n + limbs + 1;
    if (n > kCap + 1) return false;
    u64 out[kCap + 1];
    for (int i = 0; i < n; ++i)
        out[i] = 0;
    for (int i = 0; i < x.n; ++i) {
        out[i + limbs] |= x.w[i] << bits;
        if (bits) out[i + limbs + 1] |= x.w[i] >> (64 - bits);
    }
    return take_limbs(x, out, n);
}

// x = x >> k bits; returns whether bit k - 1 (the first bit shifted out) was set.
inline bool shr(Nat &x, int k) {
    if (k <= 0 || x.n == 0) return false;
    const int limbs = k / 64, bits = k % 64;
    const int hb = k - 1;
    const bool half = hb / 64 < x.n && ((x.w[hb / 64] >> (hb % 64)) & 1);
    if (limbs >= x.n) {
        x.n = 0;
        return half;
    }
    const int n = x.n - limbs;
    for (int i = 0; i < n; ++i) {
        u64 v = x.w[i + limbs] >> bits;
        if (bits && i + limbs + 1 < x.n) v |= x.w[i + limbs + 1] << (64 - bits);
        x.w[i] = v;
    }
    x.n = n;
    trim(x);
    return half;
}

// x = x / 10^k truncated (k >= 0); returns whether a non-zero remainder was dropped.
inline bool div_pow10_trunc(Nat &x, int k) {
    bool inexact = false;
    while (k > 0 && x.n > 0) {
        const int step = k > 19 ? 19 : k;
        if ((step == 19 ? div_ten19(x) : div_small(x, kPow10[step])) != 0) inexact = true;
        k -= step;
    }
    return inexact;
}

// 10^p for p = 0..77 as limbs (10^77 < 2^256).
struct Pow10Limbs {
    u64 w[4];
    int n;
};

constexpr auto make_pow10_limbs() {
    struct Table {
        Pow10Limbs e[78];
    } t{};
    u64 w[4] = {1, 0, 0, 0};
    for (int p = 0; p <= 77; ++p) {
        int n = 0;
        for (int i = 0; i < 4; ++i) {
            t.e[p].w[i] = w[i];
            if (w[i]) n = i + 1;
        }
        t.e[p].n = n;
        u64 c = 0;
        for (auto &limb : w) {
            const u128 v = static_cast<u128>(limb) * 10 + c;
            limb = static_cast<u64>(v);
            c = static_cast<u64>(v >> 64);
        }
    }
    return t;
}

inline constexpr auto kPow10Limbs = make_pow10_limbs();

// x < 10^p for p = 0..77.
inline bool below_pow10(const Nat &x, int p) {
    const Pow10Limbs &e = kPow10Limbs.e[p];
    if (x.n != e.n) return x.n < e.n;
    for (int i = x.n - 1; i >= 0; --i)
        if (x.w[i] != e.w[i]) return x.w[i] < e.w[i];
    return false;
}

// Decimal digits of x (no leading zeros; "0" for zero) into out, which needs room for
// 20 * x.n digits; returns the count. x is consumed.
inline int to_digits(Nat &x, char *out) {
    static constexpr char kPairs[] =
        "00010203040506070809101112131415161718192021222324252627282930"
        "31323334353637383940414243444546474849505152535455565758596061"
        "62636465666768697071727374757677787980818283848586878889909192"
        "93949596979899";
    u64 chunks[kCap + 2];
    int nc = 0;
    while (x.n > 1)
        chunks[nc++] = div_ten19(x);
    u64 top = x.n ? x.w[0] : 0;
    // The top chunk may hold up to 20 digits.
    char buf[20];
    int b = 20;
    do {
        if (top >= 10) {
            const unsigned r = static_cast<unsigned>(top % 100);
            top /= 100;
            b -= 2;
            std::memcpy(buf + b, kPairs + 2 * r, 2);
        } else {
            buf[--b] = static_cast<char>('0' + top);
            top = 0;
        }
    } while (top != 0);
    int len = 20 - b;
    std::memcpy(out, buf + b, len);
    for (int c = nc - 1; c >= 0; --c) {
        u64 v = chunks[c];
        char *p = out + len + 19;
        // 19 digits: one single digit and nine pairs.
        for (int k = 0; k < 9; ++k) {
            const unsigned r = static_cast<unsigned>(v % 100);
            v /= 100;
            p -= 2;
            std::memcpy(p, kPairs + 2 * r, 2);
        }
        *--p = static_cast<char>('0' + v);
        len += 19;
    }
    return len;
}

// Bit length of x.
inline int bit_length(const Nat &x) {
    return x.n == 0 ? 0 : 64 * (x.n - 1) + (64 - __builtin_clzll(x.w[x.n - 1]));
}

} // namespace comn::wide
