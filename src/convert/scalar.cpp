// The conversions among tinyint, smallint, int, the platform long ("i8"), bit, real and float:
// every pair of COMN_SCALAR_PAIRS, each the one algorithm of convert/scalar.h.
#include "comnlib/convert.h"
#include "convert/entry.h"
#include "convert/scalar.h"

namespace comn {
namespace {

template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *, void *dest, int32_t *destlen) {
    return scalar_convert<S, D>(src, dest, destlen);
}

} // namespace
} // namespace comn

COMN_SCALAR_PAIRS(COMN_CONV_PAIR)
