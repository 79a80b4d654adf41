// Conversions from exact numeric sources (CS_NUMERIC, CS_DECIMAL).
//
// Every source is first checked: precision 1..77 and scale below 78, else CS_CONV_DOMAIN
// before anything is written.
//
// To bit, the integers and the floats: the value becomes its nearest double (ties to even),
// and from there the scalar family's conversion from a double decides, unchanged: the same bounds,
// truncation toward zero, clamping with CS_CONV_OVERFLOW, non-zero gives 1 for bit. A valid
// image is below 2^256 (its 32 magnitude bytes), so the double is always finite.
//
// To text and varchar: the value's text ("-" for negative values, at least one integer digit,
// the scale's digits after a point) is built in an 80-byte area: a sign, a leading "0", the
// point and 77 digits, so every value a valid image can hold prints (79 bytes would refuse a
// negative value with 77 decimals). Text destinations get min(maxlength, length) bytes and
// the padding flags; a text that does not fit is CS_CONV_OVERFLOW. Varchar destinations always
// hold the whole text (80 < 256).
//
// To binary and varbinary: the 35 bytes of the value as they stand.
//
// Numeric to numeric (comn_numtonum): a precision or scale of CS_SRC_VALUE takes the
// source's; the numerics' own rescaling does the rest (rounding half away from zero; lost
// digits give CS_CONV_TRUNCATED).
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/numeric.h"
#include "convert/cross_text.h"
#include "convert/entry.h"
#include "convert/scalar.h"
#include "numeric/descriptor.h"

namespace comn {
namespace {

// A private copy of the source (source and destination may be the same value); false when
// the image is outside its type's domain.
bool load_source(const void *src, NumericValue *s) {
    std::memcpy(s, src, sizeof *s);
    return s->precision >= 1 && s->precision <= CS_MAX_PREC && s->scale <= CS_MAX_SCALE;
}

ExactNumericRef view(NumericValue &s) {
    return ExactNumericRef{comn_num_getlen(s.precision), s.precision, s.scale, s.array};
}

// The validated source as its nearest double: CS_SUCCEED, CS_CONV_DOMAIN or
// CS_CONV_OVERFLOW (the last cannot arise from a valid image; see above).
int32_t num_to_double(const void *src, double *d) {
    NumericValue s;
    if (!load_source(src, &s)) return CS_CONV_DOMAIN;
    const ExactNumericRef x = view(s);
    return com__subexctnumetoflt8(&x, d) == COMN_ARITH_OK ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

constexpr int32_t kTextArea = 80; // "-0." and 77 digits
static_assert(kTextArea <= cross::kVarcharData, "a numeric text always fits a varchar whole");

// The validated source's text at area + *start, ending at the area's end: its length, or
// CS_CONV_DOMAIN / CS_CONV_OVERFLOW (a magnitude beyond what the area holds).
int32_t num_text(const void *src, char (&area)[kTextArea], int32_t *start) {
    NumericValue s;
    if (!load_source(src, &s)) return CS_CONV_DOMAIN;
    const ExactNumericRef x = view(s);
    *start = com__subexctnumetochar(&x, area, kTextArea);
    return *start < 0 ? CS_CONV_OVERFLOW : kTextArea - *start;
}

int32_t to_char(const void *src, DataFormat *destfmt, void *dest, int32_t *destlen) {
    char area[kTextArea];
    int32_t start = 0;
    const int32_t n = num_text(src, area, &start);
    if (n < 0) return n;
    return cross::put_text(area + start, n, destfmt, dest, destlen);
}

int32_t to_varchar(const void *src, void *dest, int32_t *destlen) {
    char area[kTextArea];
    int32_t start = 0;
    const int32_t n = num_text(src, area, &start);
    if (n == CS_CONV_DOMAIN) return n;
    if (n < 0) return cross::put_vartext_error(n, dest, destlen);
    return cross::put_vartext(area + start, n, dest, destlen);
}

int32_t to_num(const void *src, DataFormat *destfmt, void *dest, int32_t *destlen) {
    NumericValue s;
    if (!load_source(src, &s)) return CS_CONV_DOMAIN;
    *destlen = static_cast<int32_t>(sizeof(NumericValue));
    const int32_t prec = destfmt->precision == CS_SRC_VALUE ? s.precision : destfmt->precision;
    if (prec < 1 || prec > CS_MAX_PREC) return CS_CONV_PRECISION;
    const int32_t scale = destfmt->scale == CS_SRC_VALUE ? s.scale : destfmt->scale;
    if (scale < 0 || scale > CS_MAX_SCALE) return CS_CONV_SCALE;

    return comn__arith_to_conv_trunc(
        nume::rescale(s, prec, scale, static_cast<NumericValue *>(dest)));
}

// S is T_num, the one source; the scalar destinations are convert/scalar.h's types.
template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    static_assert(std::is_same_v<S, T_num>, "the family's one source");
    if constexpr (std::is_same_v<D, T_num>) {
        return to_num(src, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_char>) {
        return to_char(src, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_varchar>) {
        return to_varchar(src, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_bin> || std::is_same_v<D, T_varbin>) {
        NumericValue s;
        if (!load_source(src, &s)) return CS_CONV_DOMAIN;
        if constexpr (std::is_same_v<D, T_bin>)
            return comn_fixedtobin(&s, sizeof s, destfmt, dest, destlen);
        else
            return comn_fixedtovarbin(&s, sizeof s, destfmt, dest, destlen);
    } else {
        double d;
        const int32_t rc = num_to_double(src, &d);
        if (rc != CS_SUCCEED) return rc;
        return scalar_convert<T_flt8, D>(&d, dest, destlen);
    }
}

} // namespace
} // namespace comn

#define COMN_NUM_TO_(b) COMN_CONV_PAIR(num, b)
COMN_NUMERIC_TO_SCALAR(COMN_NUM_TO_)
COMN_TEXT_BIN_DESTS(COMN_NUM_TO_)
COMN_CONV_PAIR(num, num)
