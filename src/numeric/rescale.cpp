// Rescaling a NumericValue to another precision and scale, for the numeric conversion and
// for the client operations that bring an operand to the result's shape.
//
// The magnitude is copied into the new precision's length as it stands (a magnitude that
// does not fit that length overflows even if rescaling would have shrunk it), rescaled to the
// new scale (rounding half away from zero on the first dropped digit) and finally tested
// against the new precision.
#include "numeric/descriptor.h"

namespace comn::nume {

int32_t rescale(const NumericValue &src, int32_t precision, int32_t scale, NumericValue *dst) {
    dst->precision = static_cast<uint8_t>(precision);
    dst->scale = static_cast<uint8_t>(scale);
    const ExactNumericRef from{kPrecToLen[src.precision], src.precision, src.scale,
                               const_cast<uint8_t *>(src.array)};
    ExactNumericRef to{kPrecToLen[precision], dst->precision, dst->scale, dst->array};
    if (com__exctnume_copy(&from, &to) != COMN_ARITH_OK) return COMN_ARITH_OVERFLOW;
    const int32_t rc = com__exctnume_scale(&to, nullptr, scale - src.scale);
    if (rc == COMN_ARITH_OVERFLOW || com__exctnume_checkprecision(&to)) return COMN_ARITH_OVERFLOW;
    return rc == COMN_ARITH_DROPPED ? COMN_ARITH_DROPPED : COMN_ARITH_OK;
}

} // namespace comn::nume
