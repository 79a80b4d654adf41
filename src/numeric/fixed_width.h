// Fixed-width exact-numeric arithmetic: a magnitude of a valid descriptor is at most 32 bytes,
// so sums, products of 38-digit operands and quotients whose scaled dividend stays below
// 2^256 are formed on four 64-bit limbs (or one 128-bit word) in registers, without the
// general loops of wide.h. Shared by the signed operations and the client operations.
// The division and the store of its result are forced inline (schoolbook_div in wide.h as
// well): across a call the four-limb words would pass through memory.
#pragma once

#include <cstring>
#if defined(__x86_64__)
#include <x86intrin.h>
#endif

#include "numeric/descriptor.h"

namespace comn::fixed {

using wide::u128;
using wide::u64;

// Four limbs, least significant first.
struct U256 {
    u64 w[4];
};

// Reads n (0..32) big-endian magnitude bytes. The full 32 are built straight in registers: a
// limb array filled in a loop would be read back wider than it was written, which stalls.
inline U256 load256(const uint8_t *p, int n) {
    if (n == 32) // precisions 75 to 77
        return {{wide::load_be64(p + 24), wide::load_be64(p + 16), wide::load_be64(p + 8),
                 wide::load_be64(p)}};
    U256 v{};
    int i = 0;
    for (; n >= 8; n -= 8)
        v.w[i++] = wide::load_be64(p + n - 8);
    for (int j = 0; j < n; ++j)
        v.w[i] = (v.w[i] << 8) | p[j];
    return v;
}

// False when the descriptor's magnitude is longer than 32 bytes.
inline bool load256(const ExactNumericRef *x, U256 &v) {
    const int n = x->length - 1;
    if (n < 0 || n > 32) return false;
    v = load256(nume::mag(x), n);
    return true;
}

inline bool is_zero(const U256 &v) {
    return (v.w[0] | v.w[1] | v.w[2] | v.w[3]) == 0;
}

// a < b, deciding on the highest limb that differs: for the bound tests and sign decisions
// that is nearly always the top one.
inline bool less(const U256 &a, const U256 &b) {
    for (int i = 3; i > 0; --i)
        if (a.w[i] != b.w[i]) return a.w[i] < b.w[i];
    return a.w[0] < b.w[0];
}

// The borrow out of a - b (that is, a < b) as 0 or 1, without branches: for the tests whose
// outcome is as good as random, such as the rounding of a quotient.
inline u64 borrow_of(const U256 &a, const U256 &b) {
    u64 borrow = 0;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const u128 t = static_cast<u128>(a.w[i]) - b.w[i] - borrow;
        borrow = static_cast<u64>(t >> 64) & 1;
    }
    return borrow;
}

// a + b; false on a carry out of 256 bits.
inline bool add256(const U256 &a, const U256 &b, U256 &r) {
#if defined(__x86_64__)
    unsigned char c = 0;
    unsigned long long t;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        c = _addcarry_u64(c, a.w[i], b.w[i], &t);
        r.w[i] = t;
    }
#else
    u64 c = 0;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const u128 t = static_cast<u128>(a.w[i]) + b.w[i] + c;
        r.w[i] = static_cast<u64>(t);
        c = static_cast<u64>(t >> 64);
    }
#endif
    return c == 0;
}

// a - b for a >= b.
inline void sub256(const U256 &a, const U256 &b, U256 &r) {
    u64 borrow = 0;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const u64 d = a.w[i] - b.w[i];
        const u64 nb = (a.w[i] < b.w[i]) | (d < borrow);
        r.w[i] = d - borrow;
        borrow = nb;
    }
}

// Stores v as n (0..32) big-endian bytes; false when it needs more.
inline bool store256(uint8_t *p, int n, const U256 &v) {
    if (n == 32) {
        for (int k = 0; k < 4; ++k)
            wide::store_be64(p + 24 - 8 * k, v.w[k]);
        return true;
    }
    int i = 0;
    for (; n >= 8; n -= 8)
        wide::store_be64(p + n - 8, v.w[i++]);
    u64 top = v.w[i];
    for (int j = n - 1; j >= 0; --j, top >>= 8)
        p[j] = static_cast<uint8_t>(top);
    if (top != 0) return false;
    for (int k = i + 1; k < 4; ++k)
        if (v.w[k] != 0) return false;
    return true;
}

// v < 10^precision for a precision of 1..77 (anything else passes).
inline bool fits_precision(const U256 &v, int precision) {
    if (precision < 1 || precision > CS_MAX_PREC) return true;
    const wide::Pow10Limbs &lim = wide::kPow10Limbs.e[precision];
    return less(v, U256{{lim.w[0], lim.w[1], lim.w[2], lim.w[3]}});
}

// Stores v into r (magnitude of at most 32 bytes) after the precision and length tests.
[[gnu::always_inline]] inline int32_t store_words(ExactNumericRef *r, const U256 &v, bool neg) {
    if (!fits_precision(v, r->precision)) return COMN_ARITH_OVERFLOW;
    if (!store256(nume::mag(r), r->length - 1, v)) return COMN_ARITH_OVERFLOW;
    r->bytes[0] = neg && !is_zero(v) ? 1 : 0;
    return COMN_ARITH_OK;
}

inline bool fits_result(const ExactNumericRef *r) {
    return r->length >= 1 && r->length <= 33;
}

// Up to 38 digits: one 128-bit word from n (0..16) big-endian bytes.
inline u128 load128(const uint8_t *p, int n) {
    if (n == 16) return (static_cast<u128>(wide::load_be64(p)) << 64) | wide::load_be64(p + 8);
    u128 v = 0;
    for (int i = 0; i < n; ++i)
        v = (v << 8) | p[i];
    return v;
}

// Reads n (1..16) big-endian magnitude bytes from an area with 16 readable bytes at p (a
// value's magnitude area): the first 16 bytes shifted down by those past the magnitude.
inline u128 load128_area(const uint8_t *p, int n) {
    const u128 image = (static_cast<u128>(wide::load_be64(p)) << 64) | wide::load_be64(p + 8);
    return image >> (8 * (16 - n));
}

// False when the descriptor's magnitude is longer than 16 bytes.
inline bool load128(const ExactNumericRef *x, u128 &v) {
    const int n = x->length - 1;
    if (n < 0 || n > 16) return false;
    v = load128(nume::mag(x), n);
    return true;
}

// Stores v as n (0..32) big-endian bytes; false when it needs more.
inline bool store128(uint8_t *p, int n, u128 v) {
    if (n >= 16) {
        // Up to 16 leading zero bytes: two zero words, then the value over their tail (a
        // memset of a byte or two costs more than the whole sum).
        wide::store_be64(p, 0);
        wide::store_be64(p + 8, 0);
        wide::store_be64(p + n - 16, static_cast<u64>(v >> 64));
        wide::store_be64(p + n - 8, static_cast<u64>(v));
        return true;
    }
    for (int i = n - 1; i >= 0; --i, v >>= 8)
        p[i] = static_cast<uint8_t>(v);
    return v == 0;
}

// v < 10^precision; below 2^128 a value passes any precision of 39 digits or more.
inline bool fits_precision(u128 v, int precision) {
    if (precision < 1 || precision > 38) return true;
    const wide::Pow10Limbs &lim = wide::kPow10Limbs.e[precision];
    return v < ((static_cast<u128>(lim.w[1]) << 64) | lim.w[0]);
}

// Stores v into r (magnitude of at most 32 bytes) after the precision and length tests.
inline int32_t store_words(ExactNumericRef *r, u128 v, bool neg) {
    if (!fits_precision(v, r->precision)) return COMN_ARITH_OVERFLOW;
    if (!store128(nume::mag(r), r->length - 1, v)) return COMN_ARITH_OVERFLOW;
    r->bytes[0] = neg && v != 0 ? 1 : 0;
    return COMN_ARITH_OK;
}

// The same word operations on one 128-bit word, so that signed_add takes either width.
inline bool less(u128 a, u128 b) {
    return a < b;
}

inline bool add_words(u128 a, u128 b, u128 &r) {
    r = a + b;
    return r >= a;
}

inline bool add_words(const U256 &a, const U256 &b, U256 &r) {
    return add256(a, b, r);
}

inline void sub_words(u128 a, u128 b, u128 &r) {
    r = a - b;
}

inline void sub_words(const U256 &a, const U256 &b, U256 &r) {
    sub256(a, b, r);
}

// The signed sum of magnitudes x and y with signs nx and ny: magnitude z and its sign;
// false on a carry out of the word.
template <class W>
inline bool signed_add(const W &x, bool nx, const W &y, bool ny, W &z, bool &neg) {
    if (nx == ny) {
        neg = nx;
        return add_words(x, y, z);
    }
    if (less(x, y)) {
        sub_words(y, x, z);
        neg = ny;
    } else {
        sub_words(x, y, z);
        neg = nx;
    }
    return true;
}

// x = x * p for x of at most XN limbs, on unrolled rows that stay in registers; false when
// the product needs more than four limbs.
template <int XN>
inline bool mul_by_limbs(U256 &x, const u64 (&p)[4]) {
    u64 out[XN + 4] = {};
#pragma GCC unroll 4
    for (int i = 0; i < XN; ++i) {
        u64 c = 0;
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) {
            const u128 t = static_cast<u128>(x.w[i]) * p[j] + out[i + j] + c;
            out[i + j] = static_cast<u64>(t);
            c = static_cast<u64>(t >> 64);
        }
        out[i + 4] = c;
    }
    u64 spill = 0;
#pragma GCC unroll 4
    for (int k = 4; k < XN + 4; ++k)
        spill |= out[k];
    x = U256{{out[0], out[1], out[2], out[3]}};
    return spill == 0;
}

// x = x * 10^k (k >= 0) from the table of powers; false when the product needs more than
// four limbs.
inline bool mul_pow10_256(U256 &x, int k) {
    if (k == 0 || is_zero(x)) return true;
    if (k > CS_MAX_PREC) return false; // 10^78 alone needs more
    const u64(&p)[4] = wide::kPow10Limbs.e[k].w;
    if ((x.w[2] | x.w[3]) == 0) return mul_by_limbs<2>(x, p);
    return mul_by_limbs<4>(x, p);
}

// The count of significant limbs, by conditional moves: a loop's exit would be mispredicted
// as often as operand lengths vary.
inline int limbs(const U256 &v) {
    int n = v.w[0] != 0;
    n = v.w[1] ? 2 : n;
    n = v.w[2] ? 3 : n;
    return v.w[3] ? 4 : n;
}

// out[0..4] = v << s (0 <= s < 64) on all four limbs, without loops or branches: the limbs
// above the value's length come out zero.
inline void shl_limbs(const U256 &v, int s, u64 (&out)[5]) {
    out[4] = v.w[3] >> 1 >> (63 - s);
#pragma GCC unroll 4
    for (int i = 3; i > 0; --i)
        out[i] = (v.w[i] << s) | (v.w[i - 1] >> 1 >> (63 - s));
    out[0] = v.w[0] << s;
}

// q = x / y and r = x % y on four limbs, y != 0. The divisor's length picks a path: one limb
// divides limb by limb with a reciprocal; two to four run the schoolbook division with the
// length fixed at compile time.
// Without WantRem, r is left unspecified.
template <bool WantRem = true>
[[gnu::always_inline]] inline void divmod256(const U256 &x, const U256 &y, U256 &q, U256 &r) {
    const int xn = limbs(x), yn = limbs(y);
    q = U256{};
    r = U256{};
    if (xn < yn) {
        r = x;
        return;
    }
    if (yn == 1) {
        r.w[0] = wide::divrem_1(x.w, xn, y.w[0], q.w);
        return;
    }
    const int s = __builtin_clzll(y.w[yn - 1]);
    u64 u[5], v[5];
    shl_limbs(y, s, v);
    shl_limbs(x, s, u);
    if (yn == 2)
        wide::schoolbook_div<2>(u, v, 2, xn - 2, q.w);
    else if (yn == 3)
        wide::schoolbook_div<3>(u, v, 3, xn - 3, q.w);
    else
        wide::schoolbook_div<4>(u, v, 4, xn - 4, q.w);
    if (WantRem) wide::shr_from(u, yn, s, r.w);
}

// v / 2.
inline U256 half_of(const U256 &v) {
    U256 h;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i)
        h.w[i] = (v.w[i] >> 1) | (i < 3 ? v.w[i + 1] << 63 : 0);
    return h;
}

// x / y rounded half away from zero (y != 0), which is floor((x + floor(y / 2)) / y): the
// addend is ready before the division starts, so no rounding step waits for its remainder
// (when x + y / 2 passes 2^256 the remainder decides). False when the rounded quotient needs
// more than four limbs.
[[gnu::always_inline]] inline bool div_round256(const U256 &x, const U256 &y, U256 &quot) {
    U256 biased, r;
    if (add256(x, half_of(y), biased)) {
        divmod256<false>(biased, y, quot, r);
        return true;
    }
    // Up when twice the remainder is at least the divisor: the remainder is more than half of
    // y - 1.
    divmod256(x, y, quot, r);
    U256 less_one;
    sub256(y, U256{{1, 0, 0, 0}}, less_one);
    return add256(quot, U256{{borrow_of(half_of(less_one), r), 0, 0, 0}}, quot);
}

} // namespace comn::fixed
