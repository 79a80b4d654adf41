// Conversions from the two datetime types: to each other, to binary and varbinary (the value's
// bytes), and to text in the style the locale chooses. One template per destination kind,
// instantiated for both source types.
#include <cstring>

#include "comnlib/convert.h"
#include "comnlib/datetime.h"
#include "datetime/dtlocale.h"
#include "convert/buffers.h"

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

template <typename V>
int32_t copy(void *src, void *dest, int32_t *destlen) {
    std::memcpy(dest, src, sizeof(V));
    *destlen = sizeof(V);
    return CS_SUCCEED;
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

// The locale's style when it is one the formatter knows, else 9.
COMN_API int32_t comn_get_datetochar_fmt(ComContext *ctx, DataFormat *fmt) {
    const int32_t s = dtloc::dtfmt(ctx, fmt);
    const bool known = (s >= 0 && s <= 8) || (s >= 10 && s <= 15) || (s >= 100 && s <= 112);
    return known ? s : 9;
}

#define COMN_DATE_SOURCE_(name, V)                                                                 \
    COMN_API int32_t comn_##name##tochar(ComContext *ctx, DataFormat *srcfmt, void *src,           \
                                         DataFormat *destfmt, void *dest, int32_t *destlen) {      \
        return to_char<V>(ctx, srcfmt, src, destfmt, dest, destlen);                               \
    }                                                                                              \
    COMN_API int32_t comn_##name##tovarchar(ComContext *ctx, DataFormat *srcfmt, void *src,        \
                                            DataFormat *destfmt, void *dest, int32_t *destlen) {   \
        return to_varchar<V>(ctx, srcfmt, src, destfmt, dest, destlen);                            \
    }                                                                                              \
    COMN_API int32_t comn_##name##tobin(ComContext *, DataFormat *, void *src,                     \
                                        DataFormat *destfmt, void *dest, int32_t *destlen) {       \
        return comn_fixedtobin(src, sizeof(V), destfmt, dest, destlen);                            \
    }                                                                                              \
    COMN_API int32_t comn_##name##tovarbin(ComContext *, DataFormat *, void *src,                  \
                                           DataFormat *destfmt, void *dest, int32_t *destlen) {    \
        return comn_fixedtovarbin(src, sizeof(V), destfmt, dest, destlen);                         \
    }
COMN_DATE_SOURCE_(date, DateTimeValue)
COMN_DATE_SOURCE_(date4, DateTime4Value)
#undef COMN_DATE_SOURCE_

COMN_API int32_t comn_datetodate(ComContext *, DataFormat *, void *src, DataFormat *, void *dest,
                                 int32_t *destlen) {
    return copy<DateTimeValue>(src, dest, destlen);
}

COMN_API int32_t comn_date4todate4(ComContext *, DataFormat *, void *src, DataFormat *, void *dest,
                                   int32_t *destlen) {
    return copy<DateTime4Value>(src, dest, destlen);
}

COMN_API int32_t comn_datetodate4(ComContext *, DataFormat *, void *src, DataFormat *, void *dest,
                                  int32_t *destlen) {
    *destlen = sizeof(DateTime4Value);
    const DateTimeValue dt = load<DateTimeValue>(src);
    DateTime4Value out;
    if (com__dttodate4(&dt, &out) != COMN_DATE_OK) return CS_CONV_OVERFLOW;
    std::memcpy(dest, &out, sizeof out);
    return CS_SUCCEED;
}

COMN_API int32_t comn_date4todate(ComContext *, DataFormat *, void *src, DataFormat *, void *dest,
                                  int32_t *destlen) {
    *destlen = sizeof(DateTimeValue);
    const DateTime4Value dt4 = load<DateTime4Value>(src);
    DateTimeValue out;
    com__date4todt(&dt4, &out);
    std::memcpy(dest, &out, sizeof out);
    return CS_SUCCEED;
}
}
