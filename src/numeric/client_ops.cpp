// Client operations on two NumericValues: add, subtract, multiply, divide and compare.
//
// Each decides the result's precision and scale from the operands' (I integer digits and
// scale S, everything capped at 77 digits), writes them into the result and hands the work
// to the signed operation, whose arithmetic code becomes a conversion result here:
//
//   operation      I                                       S before the cap
//   add, subtract  max(a.p - a.s, b.p - b.s)               max(a.s, b.s)
//   multiply       a.p - a.s + b.p - b.s + 1               a.s + b.s
//   divide         a.p - a.s + b.s                         max(a.p + b.s + 1, 6)
//
// The result's precision is I + scale (plus one for a sum, which may carry), 77 at most,
// and its scale is then lowered so that the I integer digits still fit. An operand whose
// scale exceeds its precision has no integer digits (I counts from 0).
//
// A value's magnitude always fits four 64-bit limbs, so the common cases (a sum of operands
// of one scale, a quotient whose scaled dividend stays within four limbs) are done here on
// the fixed-width words straight from the values' bytes; the rest goes to the signed
// operations.
#include <algorithm>

#include "numeric/fixed_width.h"

using namespace comn::nume;
namespace fixed = comn::fixed;
using fixed::u128;

namespace {

bool valid(const NumericValue *v) {
    return v->precision >= 1 && v->precision <= CS_MAX_PREC && v->scale <= CS_MAX_SCALE;
}

int int_digits(const NumericValue *v) {
    return std::max(v->precision - v->scale, 0);
}

ExactNumericRef ref_of(NumericValue *v) {
    return {comn::kPrecToLen[v->precision], v->precision, v->scale, v->array};
}

bool negative(const NumericValue *v) {
    return v->array[0] != 0;
}

// Fixes the result's precision and scale from its integer digits and requested scale.
inline ExactNumericRef shape_result(NumericValue *r, int idigits, int scale, int carry_digit) {
    idigits = std::min(idigits, CS_MAX_PREC);
    scale = std::min(scale, CS_MAX_SCALE);
    const int prec = std::min(idigits + scale + carry_digit, CS_MAX_PREC);
    scale = std::min(scale, prec - idigits);
    r->precision = static_cast<uint8_t>(prec);
    r->scale = static_cast<uint8_t>(scale);
    return ref_of(r);
}

// The magnitude of a valid value: four limbs hold any, one 128-bit word up to 38 digits.
template <class W>
W magnitude(const NumericValue *v);

template <>
inline u128 magnitude(const NumericValue *v) {
    static_assert(sizeof v->array >= 17, "16 readable bytes behind the sign");
    return fixed::load128_area(v->array + 1, comn::kPrecToLen[v->precision] - 1);
}

// Up to 38 digits from one 128-bit word, in registers like the full 32 bytes.
template <>
inline fixed::U256 magnitude(const NumericValue *v) {
    const uint8_t *p = v->array + 1;
    const int n = comn::kPrecToLen[v->precision] - 1;
    if (n <= 16) {
        const u128 x = fixed::load128_area(p, n);
        return {{static_cast<fixed::u64>(x), static_cast<fixed::u64>(x >> 64), 0, 0}};
    }
    return fixed::load256(p, n);
}

// A sum of operands of one scale on words W: the operands need only widen to p digits, which
// they must fit, and the sum keeps their scale. False (nothing written) when a sum on one
// 128-bit word carries out of it; otherwise rc holds the result code.
template <class W>
bool same_scale_sum(const NumericValue *a, const NumericValue *b, NumericValue *result,
                    bool subtract, int idigits, int p, int32_t &rc) {
    const W x = magnitude<W>(a), y = magnitude<W>(b);
    if ((a->precision < p && !fixed::fits_precision(x, p)) ||
        (b->precision < p && !fixed::fits_precision(y, p))) {
        rc = CS_CONV_OVERFLOW;
        return true;
    }
    W z;
    bool neg;
    const bool carried = !fixed::signed_add(x, negative(a), y, negative(b) != subtract, z, neg);
    if (carried && sizeof(W) < sizeof(fixed::U256)) return false;
    // Past 256 bits a sum exceeds 77 digits.
    ExactNumericRef rr = shape_result(result, idigits, a->scale, 1);
    rc = carried ? CS_CONV_OVERFLOW : comn__arith_to_conv(fixed::store_words(&rr, z, neg));
    return true;
}

// Converts v to (precision, scale) into tmp (and points v at it). Rounded-away decimals
// report CS_CONV_TRUNCATED, as a conversion does.
[[gnu::noinline]] int32_t convert(NumericValue *&v, NumericValue &tmp, int precision, int scale) {
    const int32_t rc = comn__arith_to_conv_trunc(rescale(*v, precision, scale, &tmp));
    if (rc != CS_SUCCEED) return rc;
    v = &tmp;
    return CS_SUCCEED;
}

// Brings v to (precision, scale) when it has fewer digits or a smaller scale.
inline int32_t align(NumericValue *&v, NumericValue &tmp, int precision, int scale) {
    if (v->precision >= precision && v->scale >= scale) return CS_SUCCEED;
    return convert(v, tmp, precision, scale);
}

} // namespace

extern "C" {

int32_t comn_num_addorsub(NumericValue *a, NumericValue *b, NumericValue *result, int32_t op) {
    if (!valid(a) || !valid(b)) return CS_CONV_DOMAIN;
    const int idigits = std::min(std::max(int_digits(a), int_digits(b)), CS_MAX_PREC);
    const int s = std::max(a->scale, b->scale);
    const int p = std::min(idigits + s, CS_MAX_PREC);
    if (a->scale == b->scale) {
        const bool subtract = op == COMN_NUME_SUB;
        int32_t rc;
        if (a->precision <= 38 && b->precision <= 38 &&
            same_scale_sum<u128>(a, b, result, subtract, idigits, p, rc))
            return rc;
        // Longer operands, or a carry out of 128 bits.
        same_scale_sum<fixed::U256>(a, b, result, subtract, idigits, p, rc);
        return rc;
    }
    NumericValue ta, tb;
    if (const int32_t rc = align(a, ta, p, s); rc != CS_SUCCEED) return rc;
    if (const int32_t rc = align(b, tb, p, s); rc != CS_SUCCEED) return rc;
    const ExactNumericRef ra = ref_of(a), rb = ref_of(b);
    ExactNumericRef rr = shape_result(result, idigits, s, 1);
    return comn__arith_to_conv(addorsub(&ra, &rb, &rr, op));
}

int32_t comn_numadd(NumericValue *a, NumericValue *b, NumericValue *result) {
    return comn_num_addorsub(a, b, result, COMN_NUME_ADD);
}

int32_t comn_numsub(NumericValue *a, NumericValue *b, NumericValue *result) {
    return comn_num_addorsub(a, b, result, COMN_NUME_SUB);
}

int32_t comn_nummul(NumericValue *a, NumericValue *b, NumericValue *result) {
    if (!valid(a) || !valid(b)) return CS_CONV_DOMAIN;
    const ExactNumericRef ra = ref_of(a), rb = ref_of(b);
    const int idigits = int_digits(a) + int_digits(b) + 1;
    ExactNumericRef rr = shape_result(result, idigits, a->scale + b->scale, 0);
    return comn__arith_to_conv(mul(&ra, &rb, &rr));
}

int32_t comn_numdivide(NumericValue *a, NumericValue *b, NumericValue *result) {
    if (!valid(a) || !valid(b)) return CS_CONV_DOMAIN;
    const ExactNumericRef ra = ref_of(a), rb = ref_of(b);
    const int idigits = int_digits(a) + b->scale;
    const int scale = std::max(a->precision + b->scale + 1, 6);
    fixed::U256 x = magnitude<fixed::U256>(a);
    const fixed::U256 y = magnitude<fixed::U256>(b);
    const bool neg = negative(a) != negative(b);
    ExactNumericRef rr = shape_result(result, idigits, scale, 0);
    // Quotients whose dividend, scaled up to the result's scale, stays within four limbs.
    const int shift = rr.scale - ra.scale + rb.scale;
    if (fixed::U256 q;
        !fixed::is_zero(y) && shift >= 0 && (shift == 0 || fixed::mul_pow10_256(x, shift))) {
        if (!fixed::div_round256(x, y, q)) return CS_CONV_OVERFLOW;
        return comn__arith_to_conv(fixed::store_words(&rr, q, neg));
    }
    return comn__arith_to_conv(div(&ra, &rb, &rr, nullptr));
}

int32_t comn_numcmp(NumericValue *a, NumericValue *b) {
    if (!valid(a) || !valid(b)) return CS_CONV_DOMAIN;
    const ExactNumericRef ra = ref_of(a), rb = ref_of(b);
    return com__exctnume_cmp(&ra, &rb, COMN_NUME_CMP_SIGNED | COMN_NUME_CMP_ALIGN);
}

} // extern "C"
