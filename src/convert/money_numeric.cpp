// Client conversions between money and exact numerics: comn_moneytonum, comn_mny4tonum,
// comn_numtomoney and comn_numtomny4.
//
// Into a numeric: the result length is 35; the destination format's precision must be 1..77
// (else CS_CONV_PRECISION) and its scale 0..77 (else CS_CONV_SCALE); the precision and scale
// bytes are written from the format and the money value, exact at four decimals, is brought
// to that scale (half away from zero) and must fit the precision, else CS_CONV_OVERFLOW.
// From a numeric: a source whose precision byte is not 1..77 or whose scale byte is 78 or
// more is CS_CONV_DOMAIN before anything is written; a value outside the money range gives
// CS_CONV_OVERFLOW with 0 in the destination.
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/numeric.h"
#include "money/money_internal.h"
#include "convert/buffers.h"
#include "convert/entry.h"

namespace comn {
namespace {

int32_t money_to_num(const MoneyValue &m, DataFormat *destfmt, void *dest, int32_t *destlen) {
    *destlen = static_cast<int32_t>(sizeof(NumericValue));
    const int32_t precision = destfmt->precision;
    const int32_t scale = destfmt->scale;
    if (precision < 1 || precision > CS_MAX_PREC) return CS_CONV_PRECISION;
    if (scale < 0 || scale > CS_MAX_SCALE) return CS_CONV_SCALE;
    auto *out = static_cast<NumericValue *>(dest);
    out->precision = static_cast<uint8_t>(precision);
    out->scale = static_cast<uint8_t>(scale);

    uint8_t bytes[9];
    ExactNumericRef src{9, 19, 4, bytes};
    com__mny8toexctnume(&m, &src);
    ExactNumericRef dst{comn_num_getlen(precision), out->precision, out->scale, out->array};
    return comn__arith_to_conv(com__exctnume_round(&src, &dst, scale));
}

// Validates a numeric source and converts it to 8-byte money; CS_SUCCEED, CS_CONV_DOMAIN or
// CS_CONV_OVERFLOW (then m is 0).
int32_t num_to_money(const void *src, MoneyValue *m) {
    const auto *n = static_cast<const NumericValue *>(src);
    if (n->precision < 1 || n->precision > CS_MAX_PREC || n->scale > CS_MAX_SCALE)
        return CS_CONV_DOMAIN;
    const ExactNumericRef x{comn_num_getlen(n->precision), n->precision, n->scale,
                            const_cast<uint8_t *>(n->array)};
    if (com__exctnumetomny8(&x, m) != 1) {
        mny_set(m, 0);
        return CS_CONV_OVERFLOW;
    }
    return CS_SUCCEED;
}

// The money types are their value records.
using T_money = MoneyValue;
using T_mny4 = Money4Value;

template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    if constexpr (std::is_same_v<S, T_money>) {
        MoneyValue m;
        std::memcpy(&m, src, sizeof m);
        return money_to_num(m, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<S, T_mny4>) {
        Money4Value s;
        std::memcpy(&s, src, sizeof s);
        MoneyValue m;
        com__mny4tomny(&s, &m);
        return money_to_num(m, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_money>) {
        MoneyValue m;
        const int32_t rc = num_to_money(src, &m);
        if (rc == CS_CONV_DOMAIN) return rc;
        *destlen = 8;
        store(dest, m);
        return rc;
    } else {
        MoneyValue m;
        int32_t rc = num_to_money(src, &m);
        if (rc == CS_CONV_DOMAIN) return rc;
        *destlen = 4;
        Money4Value s{0};
        if (rc == CS_SUCCEED && com__mnytomny4(&m, &s) != 4) {
            s.mny4 = 0;
            rc = CS_CONV_OVERFLOW;
        }
        store(dest, s);
        return rc;
    }
}

} // namespace
} // namespace comn

COMN_CONV_PAIR(money, num)
COMN_CONV_PAIR(mny4, num)
COMN_CONV_PAIR(num, money)
COMN_CONV_PAIR(num, mny4)
