// Money and small money to text, varchar, binary and varbinary: comn_moneytochar,
// comn_moneytovarchar, comn_moneytobin, comn_moneytovarbin and the comn_mny4to twins, each
// destination's algorithm instantiated for both money widths.
//
// Text is the money printer's: "-" for negative values, at least one integer digit, no
// separators, and as many decimals as the destination format's precision asks (0 gives the
// printer's default of 2, anything above 4 gives 4), rounded half away from zero. A negative
// precision is written back as 0 into the caller's destination format before printing; that
// change to the caller's record is deliberate and permanent. The text is built right-aligned
// in a 24-byte area, which holds the longest money text ("-922337203685477.5808", 21 bytes).
// Text destinations get min(maxlength, length) bytes and the padding flags (a text that does
// not fit is CS_CONV_OVERFLOW); varchar destinations always hold the whole text.
//
// Binary and varbinary destinations receive the value's bytes (8 or 4) as they stand.
#include <algorithm>
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "convert/cross_text.h"
#include "convert/entry.h"

namespace comn {
namespace {

constexpr int32_t kTextArea = 24;
static_assert(kTextArea <= cross::kVarcharData, "a money text always fits a varchar whole");

struct T_money {
    using value = MoneyValue;
    static char *print(const value &v, char *buf, int32_t flags) {
        return com__mnytochar(&v, buf, kTextArea, flags);
    }
};

struct T_mny4 {
    using value = Money4Value;
    static char *print(const value &v, char *buf, int32_t flags) {
        return com__mny4tochar(&v, buf, kTextArea, flags);
    }
};

// The source's text at *text, ending at the area's end: its length, or CS_CONV_OVERFLOW when
// the printer refuses (it cannot for a 24-byte area).
template <typename M>
int32_t money_text(const void *src, DataFormat *destfmt, char (&area)[kTextArea],
                   const char **text) {
    if (destfmt->precision < 0) destfmt->precision = 0;
    // The printer treats every place count above 4 as 4; clamping first keeps the shift
    // within 32 bits for any precision.
    const int32_t flags = std::min(destfmt->precision, 4) << 8;
    typename M::value v;
    std::memcpy(&v, src, sizeof v);
    *text = M::print(v, area, flags);
    return *text ? static_cast<int32_t>(area + kTextArea - *text) : CS_CONV_OVERFLOW;
}

template <typename M, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    if constexpr (std::is_same_v<D, T_bin>) {
        return comn_fixedtobin(src, sizeof(typename M::value), destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_varbin>) {
        return comn_fixedtovarbin(src, sizeof(typename M::value), destfmt, dest, destlen);
    } else {
        char area[kTextArea];
        const char *text;
        const int32_t n = money_text<M>(src, destfmt, area, &text);
        if constexpr (std::is_same_v<D, T_char>) {
            if (n < 0) return n;
            return cross::put_text(text, n, destfmt, dest, destlen);
        } else {
            if (n < 0) return cross::put_vartext_error(n, dest, destlen);
            return cross::put_vartext(text, n, dest, destlen);
        }
    }
}

} // namespace
} // namespace comn

#define COMN_MONEY_TEXT_(b) COMN_CONV_PAIR(money, b) COMN_CONV_PAIR(mny4, b)
COMN_TEXT_BIN_DESTS(COMN_MONEY_TEXT_)
