// Helpers shared by the exact-numeric files: reading and writing the magnitude behind an
// ExactNumericRef as a wide natural number, and the one place that decides how a result is
// rounded and fitted into its destination.
#pragma once

#include <array>

#include "comnlib/numeric.h"
#include "numeric/wide.h"

namespace comn {
// Com__Nume_Prec_To_Len as the library reads it (defined in tables.cpp).
[[gnu::visibility("hidden")]] extern const std::array<uint8_t, CS_MAX_PREC + 1> kPrecToLen;
} // namespace comn

namespace comn::nume {

using wide::Nat;

// Magnitude bytes of a descriptor, clamped to what a Nat can hold (a descriptor is at most
// 35 bytes long; anything else is a caller's error that must still not overrun).
inline int mag_len(const ExactNumericRef *x) {
    const int n = x->length - 1;
    return n < 0 ? 0 : n > wide::kCap * 8 ? wide::kCap * 8 : n;
}

inline uint8_t *mag(const ExactNumericRef *x) {
    return x->bytes + 1;
}

inline bool negative(const ExactNumericRef *x) {
    return x->bytes[0] != 0;
}

inline void load(const ExactNumericRef *x, Nat &out) {
    wide::from_be(out, mag(x), mag_len(x));
}

// Writes |value| and its sign into r: the value must be below 10^precision (for a precision
// of 1..77) and fit r's magnitude bytes, else COMN_ARITH_OVERFLOW (r may then hold part of it).
// Zero is always stored with sign byte 0.
inline int32_t store(ExactNumericRef *r, const Nat &value, bool neg) {
    if (r->precision >= 1 && r->precision <= CS_MAX_PREC && !wide::below_pow10(value, r->precision))
        return COMN_ARITH_OVERFLOW;
    if (r->length < 1 || !wide::to_be(value, mag(r), mag_len(r))) return COMN_ARITH_OVERFLOW;
    r->bytes[0] = neg && !wide::is_zero(value) ? 1 : 0;
    return COMN_ARITH_OK;
}

// Brings value, held at scale `scale` (may be negative), to r's scale, rounding half away
// from zero on the first dropped digit, and stores it.
inline int32_t finish(ExactNumericRef *r, Nat &value, int scale, bool neg) {
    const int shift = r->scale - scale;
    if (shift > 0) {
        if (!wide::mul_pow10(value, shift)) return COMN_ARITH_OVERFLOW;
    } else if (shift < 0) {
        bool inexact;
        wide::div_pow10_round(value, -shift, inexact);
    }
    return store(r, value, neg);
}

// The signed operations behind com__exctnume_addorsub, _mul and _div, called directly by
// the client operations.
int32_t addorsub(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r,
                 int32_t op);
int32_t mul(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *r);
int32_t div(const ExactNumericRef *a, const ExactNumericRef *b, ExactNumericRef *q,
            ExactNumericRef *rem);

// src brought to precision 1..77 and scale 0..77 in dst (which must not overlap src, whose
// own precision and scale are valid): COMN_ARITH_OK, COMN_ARITH_DROPPED when decimals were
// rounded away (dst holds the rounded value) or COMN_ARITH_OVERFLOW.
int32_t rescale(const NumericValue &src, int32_t precision, int32_t scale, NumericValue *dst);

} // namespace comn::nume
