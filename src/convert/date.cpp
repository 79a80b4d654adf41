// Conversions from the two datetime types: to each other, to binary and varbinary (the value's
// bytes), and to text in the style the locale chooses. One template per destination kind,
// instantiated for both source types.
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/datetime.h"
#include "datetime/dtlocale.h"
#include "convert/buffers.h"
#include "convert/entry.h"

namespace comn {
namespace {

int32_t format(const DateTimeValue &v, char *out, int32_t max, int32_t style,
               const char *const *names) {
    return com__datetochar(&v, out, max, style, names);
}
int32_t format(const DateTime4Value &v, char *out, int32_t max, int32_t style,
               const char *const *names) {
    return com__date4tochar(&v, out, max, style, names);
}

// Formats the source into out (at most max bytes): the text length, or a conversion code.
// Inlined into both destinations, as it is most of the work of a short conversion.
template <typename V>
[[gnu::always_inline]] inline int32_t to_text(ComContext *ctx, DataFormat *srcfmt, const void *src,
                                              DataFormat *destfmt, char *out, int32_t max,
                                              bool *truncated) {
    const int32_t style = comn_get_datetochar_fmt(ctx, destfmt);
    const int32_t n = format(load<V>(src), out, max, style, dtloc::short_months(ctx, srcfmt));
    *truncated = n == 0;
    if (n == COMN_DATE_NOSTYLE) return CS_CONV_STYLE;
    if (n < 0) return CS_CONV_SYNTAX;
    return n;
}

template <typename V>
int32_t to_char(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    const int32_t max = destfmt->maxlength > 0 ? destfmt->maxlength : 0;
    bool truncated;
    const int32_t n =
        to_text<V>(ctx, srcfmt, src, destfmt, static_cast<char *>(dest), max, &truncated);
    if (n < 0) return n;
    if (truncated) {
        *destlen = max;
        return CS_CONV_TRUNCATED;
    }
    *destlen = n;
    return finish_fitting_text(n, destfmt, dest, destlen);
}

// A varchar destination: 16-bit length word, then up to 256 bytes.
template <typename V>
int32_t to_varchar(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                   int32_t *destlen) {
    constexpr int32_t kVarMax = 256;
    auto *out = static_cast<char *>(dest);
    bool truncated;
    const int32_t n = to_text<V>(ctx, srcfmt, src, destfmt, out + 2, kVarMax, &truncated);
    if (n < 0) return n;
    const auto count = static_cast<int16_t>(truncated ? kVarMax : n);
    std::memcpy(out, &count, sizeof count);
    *destlen = kVarFrame;
    return truncated ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

// One datetime type into the other; a datetime outside the small range is CS_CONV_OVERFLOW.
int32_t to_date4(const void *src, void *dest, int32_t *destlen) {
    *destlen = sizeof(DateTime4Value);
    const DateTimeValue dt = load<DateTimeValue>(src);
    DateTime4Value out;
    if (com__dttodate4(&dt, &out) != COMN_DATE_OK) return CS_CONV_OVERFLOW;
    std::memcpy(dest, &out, sizeof out);
    return CS_SUCCEED;
}

int32_t to_date(const void *src, void *dest, int32_t *destlen) {
    *destlen = sizeof(DateTimeValue);
    const DateTime4Value dt4 = load<DateTime4Value>(src);
    DateTimeValue out;
    com__date4todt(&dt4, &out);
    std::memcpy(dest, &out, sizeof out);
    return CS_SUCCEED;
}

using T_date = DateTimeValue;
using T_date4 = DateTime4Value;

// S is a datetime type, the value's record.
template <typename S, typename D>
int32_t convert(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    if constexpr (std::is_same_v<D, S>) {
        std::memcpy(dest, src, sizeof(S));
        *destlen = sizeof(S);
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, T_date4>) {
        return to_date4(src, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_date>) {
        return to_date(src, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_char>) {
        return to_char<S>(ctx, srcfmt, src, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_varchar>) {
        return to_varchar<S>(ctx, srcfmt, src, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_bin>) {
        return comn_fixedtobin(src, sizeof(S), destfmt, dest, destlen);
    } else {
        return comn_fixedtovarbin(src, sizeof(S), destfmt, dest, destlen);
    }
}

} // namespace
} // namespace comn

// The locale's style when it is one the formatter knows, else 9.
extern "C" COMN_API int32_t comn_get_datetochar_fmt(ComContext *ctx, DataFormat *fmt) {
    const int32_t s = comn::dtloc::dtfmt(ctx, fmt);
    const bool known = (s >= 0 && s <= 8) || (s >= 10 && s <= 15) || (s >= 100 && s <= 112);
    return known ? s : 9;
}

// clang-format off
#define COMN_DATE_SOURCE_(a)                                                                       \
    COMN_CONV_PAIR(a, date) COMN_CONV_PAIR(a, date4) COMN_CONV_PAIR(a, char)                       \
    COMN_CONV_PAIR(a, varchar) COMN_CONV_PAIR(a, bin) COMN_CONV_PAIR(a, varbin)
// clang-format on
COMN_DATE_SOURCE_(date)
COMN_DATE_SOURCE_(date4)
