// Signed exact-numeric operations: addition and subtraction, multiplication, division,
// rounding to a number of places, ceiling and floor.
//
// Each operation forms its exact result on wide limbs at a scale of its own (the larger
// operand scale for a sum, the sum of the scales for a product, the result's scale for a
// quotient) and hands it to finish(), which brings it to the result descriptor's scale.
// Digits dropped there are rounded half away from zero on the first dropped digit, and the
// result must fit the descriptor's precision and length, else the code is 1. Rounding is not
// reported as an error: the result descriptor's scale is the caller's request.
//
// Sums that need no rescaling take fixed-width paths first: one 128-bit word for operands of
// up to 38 digits, four 64-bit limbs for up to 32 magnitude bytes. Products of two 128-bit
// operands do too, and are rounded in one word when they lose at most 19 digits to the
// result's scale and stay below 2^128. Quotients whose scaled dividend and divisor fit four
// limbs are formed on fixed arrays as well.
#include <cstring>

#include "numeric/descriptor.h"

using namespace comn::nume;
namespace wide = comn::wide;

namespace {

using wide::u128;
using wide::u64;

// Fixed-width path: when no rescaling is needed, operands and results of at most 32
// magnitude bytes are handled as four 64-bit limbs without the general loops.
struct U256 {
    u64 w[4];
};

// False when the magnitude is longer than 32 bytes.
inline bool load256(const ExactNumericRef *x, U256 &v) {
    const uint8_t *p = mag(x);
    int n = x->length - 1;
    if (n == 32) { // precisions 75 to 77
        v = U256{{wide::load_be64(p + 24), wide::load_be64(p + 16), wide::load_be64(p + 8),
                  wide::load_be64(p)}};
        return true;
    }
    if (n < 0 || n > 32) return false;
    v = U256{};
    int i = 0;
    for (; n >= 8; n -= 8)
        v.w[i++] = wide::load_be64(p + n - 8);
    for (int j = 0; j < n; ++j)
        v.w[i] = (v.w[i] << 8) | p[j];
    return true;
}

inline bool is_zero(const U256 &v) {
    return (v.w[0] | v.w[1] | v.w[2] | v.w[3]) == 0;
}

inline bool less(const U256 &a, const U256 &b) {
    // Subtract with borrow: branch-free, in registers.
    u64 borrow = 0;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const u64 d = a.w[i] - b.w[i];
        borrow = (a.w[i] < b.w[i]) | (d < borrow);
    }
    return borrow != 0;
}

// a + b; false on a carry out of 256 bits.
inline bool add256(const U256 &a, const U256 &b, U256 &r) {
    u64 c = 0;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const u128 t = static_cast<u128>(a.w[i]) + b.w[i] + c;
        r.w[i] = static_cast<u64>(t);
        c = static_cast<u64>(t >> 64);
    }
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

// Stores v into r (magnitude of at most 32 bytes) after the precision and length tests.
inline int32_t store256(ExactNumericRef *r, const U256 &v, bool neg) {
    if (r->precision >= 1 && r->precision <= CS_MAX_PREC) {
        const wide::Pow10Limbs &lim = wide::kPow10Limbs.e[r->precision];
        const U256 bound{{lim.w[0], lim.w[1], lim.w[2], lim.w[3]}};
        if (!less(v, bound)) return kOverflow;
    }
    uint8_t *p = mag(r);
    int n = r->length - 1;
    if (n == 32) {
        for (int k = 0; k < 4; ++k)
            wide::store_be64(p + 24 - 8 * k, v.w[k]);
        r->bytes[0] = neg && !is_zero(v) ? 1 : 0;
        return kOk;
    }
    int i = 0;
    for (; n >= 8; n -= 8)
        wide::store_be64(p + n - 8, v.w[i++]);
    if (i < 4) {
        u64 top = v.w[i];
        for (int j = n - 1; j >= 0; --j, top >>= 8)
            p[j] = static_cast<uint8_t>(top);
        if (top != 0) return kOverflow;
        for (int k = i + 1; k < 4; ++k)
            if (v.w[k] != 0) return kOverflow;
    }
    r->bytes[0] = neg && !is_zero(v) ? 1 : 0;
    return kOk;
}

inline bool fits_result(const ExactNumericRef *r) {
    return r->length >= 1 && r->length <= 33;
}

// Up to 38 digits: one 128-bit word (magnitudes of at most 16 bytes).
inline bool load128(const ExactNumericRef *x, u128 &v) {
    const uint8_t *p = mag(x);
    const int n = x->length - 1;
    if (n == 16) {
        v = (static_cast<u128>(wide::load_be64(p)) << 64) | wide::load_be64(p + 8);
        return true;
    }
    if (n < 0 || n > 16) return false;
    v = 0;
    for (int i = 0; i < n; ++i)
        v = (v << 8) | p[i];
    return true;
}

// Stores v into r (magnitude of at most 32 bytes). Below 2^128 a value passes any precision
// of 39 digits or more unchecked.
inline int32_t store128(ExactNumericRef *r, u128 v, bool neg) {
    if (r->precision >= 1 && r->precision <= 38) {
        const wide::Pow10Limbs &lim = wide::kPow10Limbs.e[r->precision];
        if (v >= ((static_cast<u128>(lim.w[1]) << 64) | lim.w[0])) return kOverflow;
    }
    uint8_t *p = mag(r);
    const int n = r->length - 1;
    if (n >= 16) {
        std::memset(p, 0, static_cast<size_t>(n - 16));
        wide::store_be64(p + n - 16, static_cast<u64>(v >> 64));
        wide::store_be64(p + n - 8, static_cast<u64>(v));
    } else {
        u128 rest = v;
        for (int i = n - 1; i >= 0; --i, rest >>= 8)
            p[i] = static_cast<uint8_t>(rest);
        if (rest != 0) return kOverflow;
    }
    r->bytes[0] = neg && v != 0 ? 1 : 0;
    return kOk;
}

// Stores v / 10^drop (drop = 1..19), rounded half away from zero, into r. Out of line so that
// the products that need no rounding keep a lean path.
[[gnu::noinline]] int32_t store_rounded128(u128 v, int drop, ExactNumericRef *r, bool neg) {
    return store128(r, wide::div_pow10_round128(v, drop), neg);
}

// x = x * 10^k (k >= 0) on four limbs; false when the product needs more.
inline bool mul_pow10_256(U256 &x, int k) {
    for (; k > 0; k -= 19) {
        const u64 m = wide::kPow10[k < 19 ? k : 19];
        u64 c = 0;
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i) {
            const u128 t = static_cast<u128>(x.w[i]) * m + c;
            x.w[i] = static_cast<u64>(t);
            c = static_cast<u64>(t >> 64);
        }
        if (c != 0) return false;
    }
    return true;
}

// q = x / y and r = x % y on four limbs, y != 0. The divisor's length picks a path: one limb
// divides limb by limb in hardware; two to four run the schoolbook division with the length
// fixed at compile time.
inline void divmod256(const U256 &x, const U256 &y, U256 &q, U256 &r) {
    int xn = 4, yn = 4;
    while (xn > 0 && x.w[xn - 1] == 0)
        --xn;
    while (y.w[yn - 1] == 0)
        --yn;
    q = U256{};
    r = U256{};
    if (xn < yn) {
        r = x;
        return;
    }
    u64 u[5], v[5];
    if (yn == 1) {
        u64 rest = 0;
        for (int i = xn - 1; i >= 0; --i)
            q.w[i] = wide::div128(rest, x.w[i], y.w[0], rest);
        r.w[0] = rest;
        return;
    }
    const int s = __builtin_clzll(y.w[yn - 1]);
    wide::shl_into(y.w, yn, s, v);
    wide::shl_into(x.w, xn, s, u);
    const int m = xn - yn;
    if (yn == 2)
        wide::knuth_div<2>(u, v, 2, m, q.w);
    else if (yn == 3)
        wide::knuth_div<3>(u, v, 3, m, q.w);
    else
        wide::knuth_div<4>(u, v, 4, m, q.w);
    wide::shr_from(u, yn, s, r.w);
}

} // namespace

namespace comn::nume {

// The general forms, kept out of line so that the fixed-width paths stay small.
[[gnu::noinline]] int32_t addorsub_general(const ExactNumericRef *a, const ExactNumericRef *b,
                                           ExactNumericRef *r, int32_t op);
[[gnu::noinline]] int32_t mul_general(const ExactNumericRef *a, const ExactNumericRef *b,
                                      ExactNumericRef *r);

int32_t addorsub(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r,
                 int32_t op) {
    if (u128 x, y; a->scale == b->scale && r->scale == a->scale && fits_result(r) &&
                   load128(a, x) && load128(b, y)) {
        const bool na = negative(a), nb = negative(b) != (op == COMN_NUME_SUB);
        if (na != nb) return x >= y ? store128(r, x - y, na) : store128(r, y - x, nb);
        if (x + y >= x) return store128(r, x + y, na);
        // A carry out of 128 bits: the four-limb path below takes it.
    }
    if (U256 fx, fy, fz; a->scale == b->scale && r->scale == a->scale && fits_result(r) &&
                         load256(a, fx) && load256(b, fy)) {
        const bool na = negative(a), nb = negative(b) != (op == COMN_NUME_SUB);
        if (na == nb) return add256(fx, fy, fz) ? store256(r, fz, na) : kOverflow;
        if (less(fx, fy)) {
            sub256(fy, fx, fz);
            return store256(r, fz, nb);
        }
        sub256(fx, fy, fz);
        return store256(r, fz, na);
    }
    return addorsub_general(a, b, r, op);
}

int32_t addorsub_general(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r,
                         int32_t op) {
    Nat x, y;
    load(a, x);
    load(b, y);
    const bool na = negative(a);
    const bool nb = negative(b) != (op == COMN_NUME_SUB);
    const int scale = a->scale > b->scale ? a->scale : b->scale;
    // Below 2^256 * 10^77 for ordinary scales; only nonsense scales exceed the limbs.
    if (!wide::mul_pow10(x, scale - a->scale) || !wide::mul_pow10(y, scale - b->scale))
        return kOverflow;
    bool neg;
    if (na == nb) {
        wide::add(x, x, y);
        neg = na;
    } else if (wide::cmp(x, y) >= 0) {
        wide::sub(x, x, y);
        neg = na;
    } else {
        wide::sub(x, y, x);
        neg = nb;
    }
    return finish(r, x, scale, neg);
}

int32_t mul(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r) {
    const int drop = a->scale + b->scale - r->scale; // digits the product loses to r's scale
    if (U256 fx, fy; drop >= 0 && drop <= 19 && fits_result(r) && load256(a, fx) &&
                     load256(b, fy) && (fx.w[2] | fx.w[3] | fy.w[2] | fy.w[3]) == 0) {
        // 128 x 128 bits: four partial products.
        const u128 ll = static_cast<u128>(fx.w[0]) * fy.w[0];
        const u128 lh = static_cast<u128>(fx.w[0]) * fy.w[1];
        const u128 hl = static_cast<u128>(fx.w[1]) * fy.w[0];
        const u128 hh = static_cast<u128>(fx.w[1]) * fy.w[1];
        const u128 mid = (ll >> 64) + static_cast<u64>(lh) + static_cast<u64>(hl);
        const u128 high = hh + (lh >> 64) + (hl >> 64) + (mid >> 64);
        const U256 z{{static_cast<u64>(ll), static_cast<u64>(mid), static_cast<u64>(high),
                      static_cast<u64>(high >> 64)}};
        const bool neg = negative(a) != negative(b);
        if (drop == 0) return store256(r, z, neg);
        if (high == 0) // a product below 2^128 rounded to r's scale in one word
            return store_rounded128((mid << 64) | static_cast<u64>(ll), drop, r, neg);
    }
    return mul_general(a, b, r);
}

int32_t mul_general(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r) {
    Nat x, y, p;
    load(a, x);
    load(b, y);
    if (!wide::mul(p, x, y)) return kOverflow; // at most 8 limbs for real descriptors
    return finish(r, p, a->scale + b->scale, negative(a) != negative(b));
}

int32_t div(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *q,
            ExactNumericRef *rem) {
    // Fixed-width path: no remainder wanted, a dividend that stays within four limbs once
    // scaled up, and a divisor of at most four limbs.
    if (U256 x, y;
        rem == nullptr && fits_result(q) && load256(a, x) && load256(b, y) && !is_zero(y)) {
        const int shift = q->scale - a->scale + b->scale;
        if (shift >= 0 && mul_pow10_256(x, shift)) {
            U256 quot, r, gap;
            divmod256(x, y, quot, r);
            // Half away from zero: up when the remainder is at least half the divisor, that
            // is when it is no less than what it lacks of the divisor.
            sub256(y, r, gap);
            if (!less(r, gap) && !add256(quot, U256{{1, 0, 0, 0}}, quot)) return kOverflow;
            return store256(q, quot, negative(a) != negative(b));
        }
    }
    Nat x, y;
    load(a, x);
    load(b, y);
    const bool na = negative(a), neg = na != negative(b);
    if (wide::is_zero(y)) {
        std::memset(q->bytes, 0, static_cast<size_t>(mag_len(q) + 1));
        if (rem) rem->length = 0;
        return kDivZero;
    }
    // q = a * 10^shift / b with shift = q.scale - a.scale + b.scale in [-77, 154]; the
    // dividend stays below 10^232 and the divisor below 10^155.
    const int shift = q->scale - a->scale + b->scale;
    if (!wide::mul_pow10(shift > 0 ? x : y, shift > 0 ? shift : -shift)) return kOverflow;
    Nat quot, r;
    wide::divmod(x, y, quot, r);
    const bool exact = wide::is_zero(r);
    if (rem) {
        if (exact) {
            rem->length = 0;
        } else {
            if (rem->length < 1 || !wide::to_be(r, mag(rem), mag_len(rem))) return kOverflow;
            rem->bytes[0] = na ? 1 : 0;
        }
    }
    if (!exact) {
        // Half away from zero: round up when the remainder is at least half the divisor.
        Nat twice;
        wide::add(twice, r, r);
        if (wide::cmp(twice, y) >= 0) {
            Nat one;
            wide::set_u64(one, 1);
            wide::add(quot, quot, one);
        }
    }
    return store(q, quot, neg);
}

} // namespace comn::nume

extern "C" {

int32_t com__exctnume_addorsub(const ExactNumericRef *a, const ExactNumericRef *b,
                               ExactNumericRef *r, int32_t op) {
    return addorsub(a, b, r, op);
}

int32_t com__exctnume_mul(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r) {
    return mul(a, b, r);
}

int32_t com__exctnume_div(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *q,
                          ExactNumericRef *rem) {
    return div(a, b, q, rem);
}

int32_t com__exctnume_round(const ExactNumericRef *x, ExactNumericRef *r, int32_t places) {
    Nat v;
    load(x, v);
    // Round once, straight to the coarser of the requested places and r's scale.
    if (places > r->scale) places = r->scale;
    if (places < -2 * CS_MAX_PREC) places = -2 * CS_MAX_PREC;
    int scale = x->scale;
    if (places < scale) {
        bool inexact;
        wide::div_pow10_round(v, scale - places, inexact);
        scale = places;
    }
    return finish(r, v, scale, negative(x));
}

int32_t com__exctnume_ceilingfloor(const ExactNumericRef *x, ExactNumericRef *r, int32_t op) {
    Nat v;
    load(x, v);
    const bool neg = negative(x);
    // Truncate toward zero; a dropped fraction moves a positive value up for the ceiling and
    // a negative value down (away from zero) for the floor.
    if (wide::div_pow10_trunc(v, x->scale) && neg == (op == COMN_NUME_FLOOR)) {
        Nat one;
        wide::set_u64(one, 1);
        wide::add(v, v, one);
    }
    return finish(r, v, 0, neg);
}

} // extern "C"
