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

#include "numeric/fixed_width.h"

using namespace comn::nume;
namespace wide = comn::wide;

namespace {

using namespace comn::fixed;

// Stores v / 10^drop (drop = 1..19), rounded half away from zero, into r. Out of line so that
// the products that need no rounding keep a lean path.
[[gnu::noinline]] int32_t store_rounded128(u128 v, int drop, ExactNumericRef *r, bool neg) {
    return store_words(r, wide::div_pow10_round128(v, drop), neg);
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
    if (a->scale == b->scale && r->scale == a->scale && fits_result(r)) {
        const bool na = negative(a), nb = negative(b) != (op == COMN_NUME_SUB);
        bool neg;
        if (u128 x, y, z; load128(a, x) && load128(b, y) && signed_add(x, na, y, nb, z, neg))
            return store_words(r, z, neg);
        // A carry out of 128 bits, or longer operands: four limbs.
        if (U256 x, y, z; load256(a, x) && load256(b, y))
            return signed_add(x, na, y, nb, z, neg) ? store_words(r, z, neg) : COMN_ARITH_OVERFLOW;
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
        return COMN_ARITH_OVERFLOW;
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
        if (drop == 0) return store_words(r, z, neg);
        if (high == 0) // a product below 2^128 rounded to r's scale in one word
            return store_rounded128((mid << 64) | static_cast<u64>(ll), drop, r, neg);
    }
    return mul_general(a, b, r);
}

int32_t mul_general(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r) {
    Nat x, y, p;
    load(a, x);
    load(b, y);
    if (!wide::mul(p, x, y)) return COMN_ARITH_OVERFLOW; // at most 8 limbs for real descriptors
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
            U256 quot;
            if (!div_round256(x, y, quot)) return COMN_ARITH_OVERFLOW;
            return store_words(q, quot, negative(a) != negative(b));
        }
    }
    Nat x, y;
    load(a, x);
    load(b, y);
    const bool na = negative(a), neg = na != negative(b);
    if (wide::is_zero(y)) {
        std::memset(q->bytes, 0, static_cast<size_t>(mag_len(q) + 1));
        if (rem) rem->length = 0;
        return COMN_ARITH_DIVZERO;
    }
    // q = a * 10^shift / b with shift = q.scale - a.scale + b.scale in [-77, 154]; the
    // dividend stays below 10^232 and the divisor below 10^155.
    const int shift = q->scale - a->scale + b->scale;
    if (!wide::mul_pow10(shift > 0 ? x : y, shift > 0 ? shift : -shift)) return COMN_ARITH_OVERFLOW;
    Nat quot, r;
    wide::divmod(x, y, quot, r);
    const bool exact = wide::is_zero(r);
    if (rem) {
        if (exact) {
            rem->length = 0;
        } else {
            if (rem->length < 1 || !wide::to_be(r, mag(rem), mag_len(rem)))
                return COMN_ARITH_OVERFLOW;
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
