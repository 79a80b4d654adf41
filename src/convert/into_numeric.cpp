// Integers, floats and bit into exact numerics: comn_i1tonum, comn_i2tonum, comn_i4tonum,
// comn_i8tonum, comn_bittonum, comn_flt4tonum and comn_flt8tonum, one template instantiated
// for every source of COMN_INTO_NUMERIC_SOURCES.
//
//  1. A bit source other than 0 or 1 is out of its domain: CS_CONV_DOMAIN, nothing written.
//  2. The result length is 35.
//  3. The destination format's precision must be 1..77 (else CS_CONV_PRECISION) and its scale
//     0..77 (else CS_CONV_SCALE); CS_SRC_VALUE is accepted for either and is resolved without
//     touching the caller's record. These sources carry no precision or scale of their own,
//     so the marker takes the widest the value may need: a precision of 77; a scale of 0 for
//     integers and bit, and for floats as many decimals as the precision leaves beside the
//     value's integer digits.
//  4. The precision and scale bytes are written, then the value: integers exactly; floats
//     from the double's exact binary value, rounded half away from zero at the destination's
//     scale. A value that does not fit the precision, and any NaN or infinity, gives
//     CS_CONV_OVERFLOW with the value 0 in the destination.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/numeric.h"
#include "convert/entry.h"
#include "convert/scalar.h"

namespace comn {
namespace {

// Decimal digits before the point of |v| (1 for |v| below 1). Exact below 10^15; from there
// on, where a double holds no fraction, it counts one digit more than log10 gives, so that a
// log10 rounded near a power of ten can never count too few: one too many only costs a
// decimal place that would have been zero.
int32_t integer_digits(double v) {
    constexpr double kPow10[16] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const double a = std::fabs(v);
    if (!(a >= 1)) return 1;
    if (a >= kPow10[15]) return static_cast<int32_t>(std::floor(std::log10(a))) + 2;
    int32_t d = 1;
    while (d < 15 && a >= kPow10[d])
        ++d;
    return d;
}

// A value of type T, of the scalar kind K (the long and the int share an instance).
template <typename T, Kind K>
int32_t into_numeric(DataFormat *destfmt, const void *src, void *dest, int32_t *destlen) {
    T v;
    std::memcpy(&v, src, sizeof v);
    if constexpr (K == Kind::Bit) {
        if (v > 1) return CS_CONV_DOMAIN;
    }
    *destlen = static_cast<int32_t>(sizeof(NumericValue));
    int32_t prec = destfmt->precision;
    int32_t scale = destfmt->scale;
    if (prec != CS_SRC_VALUE && (prec < 1 || prec > CS_MAX_PREC)) return CS_CONV_PRECISION;
    if (scale != CS_SRC_VALUE && (scale < 0 || scale > CS_MAX_SCALE)) return CS_CONV_SCALE;
    if (prec == CS_SRC_VALUE) prec = CS_MAX_PREC;
    if (scale == CS_SRC_VALUE) {
        scale = 0;
        if constexpr (K == Kind::Float) {
            if (std::isfinite(v)) scale = std::max(prec - integer_digits(v), 0);
        }
    }

    auto *out = static_cast<NumericValue *>(dest);
    out->precision = static_cast<uint8_t>(prec);
    out->scale = static_cast<uint8_t>(scale);
    ExactNumericRef x{comn_num_getlen(prec), out->precision, out->scale, out->array};
    int32_t rc;
    if constexpr (K == Kind::Float)
        rc = com__doubletoexctnume(v, &x);
    else
        rc = com__longtoexctnume(v, &x);
    if (rc != COMN_ARITH_OK) {
        std::memset(out->array, 0, static_cast<size_t>(x.length));
        return CS_CONV_OVERFLOW;
    }
    return CS_SUCCEED;
}

template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    static_assert(std::is_same_v<D, T_num>, "the family's one destination");
    return into_numeric<typename S::type, S::kind>(destfmt, src, dest, destlen);
}

} // namespace
} // namespace comn

#define COMN_INTO_NUM_(a) COMN_CONV_PAIR(a, num)
COMN_INTO_NUMERIC_SOURCES(COMN_INTO_NUM_)
