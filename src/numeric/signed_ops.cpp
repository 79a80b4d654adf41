// Signed exact-numeric operations: addition and subtraction, multiplication, division,
// rounding to a number of places, ceiling and floor.
//
// Each operation forms its exact result on wide limbs at a scale of its own (the larger
// operand scale for a sum, the sum of the scales for a product, the result's scale for a
// quotient) and hands it to finish(), which brings it to the result descriptor's scale.
// Digits dropped there are rounded half away from zero on the first dropped digit, and the
// result must fit the descriptor's precision and length, else the code is 1. Rounding is not
// reported as an error: the result descriptor's scale is the caller's request.
#include <cstring>

#include "numeric/descriptor.h"

using namespace comn::nume;
namespace wide = comn::wide;

extern "C" {

int32_t com__exctnume_addorsub(const ExactNumericRef *a, const ExactNumericRef *b,
                               ExactNumericRef *r, int32_t op) {
    Nat x, y;
    load(a, x);
    load(b, y);
    const bool na = negative(a);
    const bool nb = negative(b) != (op == COMN_NUME_SUB);
    const int scale = a->scale > b->scale ? a->scale : b->scale;
    if (a->scale < scale) wide::mul_pow10(x, scale - a->scale); // < 2^256 * 10^77: fits
    if (b->scale < scale) wide::mul_pow10(y, scale - b->scale);
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

int32_t com__exctnume_mul(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r) {
    Nat x, y, p;
    load(a, x);
    load(b, y);
    wide::mul(p, x, y); // at most 8 limbs
    return finish(r, p, a->scale + b->scale, negative(a) != negative(b));
}

int32_t com__exctnume_div(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *q,
                          ExactNumericRef *rem) {
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
    if (shift > 0)
        wide::mul_pow10(x, shift);
    else if (shift < 0)
        wide::mul_pow10(y, -shift);
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
