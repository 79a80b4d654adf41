// Conversions from exact numeric sources (CS_NUMERIC, CS_DECIMAL).
//
// Every source is first checked: precision 1..77 and scale below 78, else CS_CONV_DOMAIN
// before anything is written.
//
// Numeric to numeric (comn_numtonum): a precision or scale of CS_SRC_VALUE takes the
// source's. The magnitude is copied into the destination's length as it stands (a source
// magnitude that does not fit that length overflows even if rescaling would have shrunk it),
// rescaled to the destination's scale (rounding half away from zero; lost digits give
// CS_CONV_TRUNCATED) and finally tested against the destination's precision.
#include <cstring>

#include "comnlib/convert.h"
#include "comnlib/numeric.h"

extern "C" int32_t comn_numtonum(ComContext *, DataFormat *, void *src, DataFormat *destfmt,
                                 void *dest, int32_t *destlen) {
    NumericValue s; // a private copy: source and destination may be the same value
    std::memcpy(&s, src, sizeof s);
    if (s.precision < 1 || s.precision > CS_MAX_PREC || s.scale > CS_MAX_SCALE)
        return CS_CONV_DOMAIN;
    *destlen = static_cast<int32_t>(sizeof(NumericValue));
    const int32_t prec = destfmt->precision == CS_SRC_VALUE ? s.precision : destfmt->precision;
    if (prec < 1 || prec > CS_MAX_PREC) return CS_CONV_PRECISION;
    const int32_t scale = destfmt->scale == CS_SRC_VALUE ? s.scale : destfmt->scale;
    if (scale < 0 || scale > CS_MAX_SCALE) return CS_CONV_SCALE;

    auto *d = static_cast<NumericValue *>(dest);
    d->precision = static_cast<uint8_t>(prec);
    d->scale = static_cast<uint8_t>(scale);
    const ExactNumericRef from{comn_num_getlen(s.precision), s.precision, s.scale, s.array};
    ExactNumericRef to{comn_num_getlen(prec), d->precision, d->scale, d->array};
    if (com__exctnume_copy(&from, &to)) return CS_CONV_OVERFLOW;
    const int32_t rc = com__exctnume_scale(&to, nullptr, scale - s.scale);
    if (rc == 1 || com__exctnume_checkprecision(&to)) return CS_CONV_OVERFLOW;
    return rc == 6 ? CS_CONV_TRUNCATED : CS_SUCCEED;
}
