// Integers, floats and bit into exact numerics: comn_i1tonum, comn_i2tonum, comn_i4tonum,
// comn_i8tonum, comn_bittonum, comn_flt4tonum and comn_flt8tonum, one template instantiated
// from COMN_INTO_NUMERIC_SOURCES.
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

namespace comn {
namespace {

template <typename T, bool Bit = false>
struct IntSource {
    using type = T;
    static constexpr bool bit = Bit;
    static constexpr bool floating = false;
    static int32_t store(T v, ExactNumericRef *x) { return com__longtoexctnume(v, x); }
};

template <typename T>
struct FloatSource {
    using type = T;
    static constexpr bool bit = false;
    static constexpr bool floating = true;
    static int32_t store(T v, ExactNumericRef *x) { return com__doubletoexctnume(v, x); }
};

using N_i1 = IntSource<uint8_t>;
using N_i2 = IntSource<int16_t>;
using N_i4 = IntSource<int32_t>;
using N_i8 = IntSource<int32_t>; // the platform long, stored in 32 bits
using N_bit = IntSource<uint8_t, true>;
using N_flt4 = FloatSource<float>;
using N_flt8 = FloatSource<double>;

// Decimal digits before the point of |v| (1 for |v| below 1). Exact below 10^15; above it a
// double holds no fraction, and the count may be one too high, which only costs a decimal
// place that would have been zero.
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

template <typename S>
int32_t into_numeric(DataFormat *destfmt, const void *src, void *dest, int32_t *destlen) {
    typename S::type v;
    std::memcpy(&v, src, sizeof v);
    if constexpr (S::bit) {
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
        if constexpr (S::floating) {
            if (std::isfinite(v)) scale = std::max(prec - integer_digits(v), 0);
        }
    }

    auto *out = static_cast<NumericValue *>(dest);
    out->precision = static_cast<uint8_t>(prec);
    out->scale = static_cast<uint8_t>(scale);
    ExactNumericRef x{comn_num_getlen(prec), out->precision, out->scale, out->array};
    if (S::store(v, &x) != COMN_ARITH_OK) {
        std::memset(out->array, 0, static_cast<size_t>(x.length));
        return CS_CONV_OVERFLOW;
    }
    return CS_SUCCEED;
}

} // namespace
} // namespace comn

#define COMN_DEFINE_INTO_NUM_(a)                                                                   \
    COMN_CONV_ROUTINE(comn_##a##tonum) {                                                           \
        return comn::into_numeric<comn::N_##a>(destfmt, src, dest, destlen);                       \
    }
COMN_INTO_NUMERIC_SOURCES(COMN_DEFINE_INTO_NUM_)
