// Text to text: char and varchar sources into char and varchar destinations, and the
// whole-character shortening that they share with the bulk-copy family
// (comnb_truncate_chars).
//
// A char source is maxlength bytes, or with format flag 1 the bytes before its first zero
// byte (looked for only within maxlength); a varchar source is its length word, taken within
// 0..256. Each format's locale is its own, else the context's default. When the two resolve
// to different character sets the text is translated (com_intl_xlate) straight into the
// destination; when they share a set the bytes are copied, shortened to whole characters
// when the set has characters of more than one byte. With no context and no locales both
// sides are the built-in single-byte set and the text is copied byte for byte.
//
// A char destination of M bytes takes at most M bytes of text, or M - 1 when flag 1 asks
// for a terminator, so the terminator never lands inside a character. A value that fits is
// finished by comn__padchar; a cut one is terminated (flag 1) but not padded and gives
// CS_CONV_TRUNCATED. A varchar destination takes at most 256 bytes. A translation that had
// to replace characters finishes the destination the same way and reports CS_CONV_BADXLT;
// any other failure of the translation (CS_CONV_NOXLT) is returned at once.
#include <algorithm>
#include <cstring>

#include "comnlib/convert.h"
#include "comnlib/intl.h"

namespace comn {
namespace {

constexpr int32_t kVarRoom = 256;
constexpr int32_t kVarFrame = 258;

struct Text {
    const uint8_t *p;
    int32_t len;
};

Text char_source(const DataFormat *fmt, const void *src) {
    const auto *p = static_cast<const uint8_t *>(src);
    int32_t len = std::max(fmt->maxlength, 0);
    if (fmt->format & CS_FMT_NULLTERM) {
        if (const void *z = std::memchr(p, 0, static_cast<size_t>(len)))
            len = static_cast<int32_t>(static_cast<const uint8_t *>(z) - p);
    }
    return {p, len};
}

Text varchar_source(const DataFormat *, const void *src) {
    int16_t len;
    std::memcpy(&len, src, sizeof len);
    return {static_cast<const uint8_t *>(src) + sizeof len, std::clamp<int32_t>(len, 0, kVarRoom)};
}

const LocaleHandle *handle_of(const ComContext *ctx, const DataFormat *fmt) {
    return fmt->locale ? fmt->locale : ctx ? ctx->conv.default_locale : nullptr;
}

// What went into the destination's text area.
struct Placed {
    int32_t status; // CS_SUCCEED, CS_CONV_BADXLT, or a failure to return at once
    int32_t len;    // bytes written
    bool cut;       // not the whole source
};

// Puts the source text into out[0..room), translated or copied.
Placed place(ComContext *ctx, DataFormat *srcfmt, Text s, DataFormat *destfmt, uint8_t *out,
             int32_t room) {
    if (s.len == 0 || room <= 0) return {CS_SUCCEED, 0, s.len > 0};
    int32_t mode = COM_XLT_MODE_COPY;
    if (handle_of(ctx, srcfmt) != handle_of(ctx, destfmt))
        com_intl_will_xlate(ctx, srcfmt, destfmt, &mode);
    if (mode == COM_XLT_MODE_COPY) {
        const CharAttrib *attr = com_intl_charattr(ctx, destfmt);
        const int32_t n =
            attr->mb_level > 1
                ? comnb_truncate_chars(attr, reinterpret_cast<const char *>(s.p), s.len, room)
                : std::min(s.len, room);
        std::memcpy(out, s.p, static_cast<size_t>(n));
        return {CS_SUCCEED, n, n < s.len};
    }
    // The translation sees plain texts of exactly the source's bytes and the room given.
    DataFormat from = *srcfmt, to = *destfmt;
    from.datatype = to.datatype = CS_CHAR;
    from.maxlength = s.len;
    to.maxlength = room;
    int32_t produced = 0, state[2] = {0, 0};
    const int32_t rc =
        com_intl_xlate(ctx, &from, const_cast<uint8_t *>(s.p), &to, out, &produced, state);
    const int32_t n = std::clamp(produced, 0, room);
    if (rc == CS_SUCCEED || rc == CS_CONV_OVERFLOW) return {CS_SUCCEED, n, state[0] < s.len};
    if (rc == CS_CONV_BADXLT) return {rc, n, state[0] < s.len};
    return {rc, 0, true};
}

template <Text (*Source)(const DataFormat *, const void *)>
int32_t to_char(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    auto *out = static_cast<uint8_t *>(dest);
    const int32_t m = std::max(destfmt->maxlength, 0);
    const bool nullterm = destfmt->format & CS_FMT_NULLTERM;
    const Placed r = place(ctx, srcfmt, Source(srcfmt, src), destfmt, out, nullterm ? m - 1 : m);
    if (r.status != CS_SUCCEED && r.status != CS_CONV_BADXLT) {
        *destlen = 0;
        return r.status;
    }
    *destlen = r.len;
    int32_t rc;
    if (r.cut) {
        if (nullterm && m >= 1) {
            out[r.len] = 0;
            *destlen = r.len + 1;
        }
        rc = CS_CONV_TRUNCATED;
    } else {
        rc = comn__padchar(r.len, destfmt, dest, destlen);
        if (rc == CS_CONV_OVERFLOW) rc = CS_CONV_TRUNCATED;
    }
    return r.status == CS_CONV_BADXLT ? r.status : rc;
}

template <Text (*Source)(const DataFormat *, const void *)>
int32_t to_varchar(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                   int32_t *destlen) {
    auto *out = static_cast<uint8_t *>(dest);
    const Placed r = place(ctx, srcfmt, Source(srcfmt, src), destfmt, out + 2, kVarRoom);
    const auto l16 = static_cast<int16_t>(r.len);
    std::memcpy(out, &l16, sizeof l16);
    *destlen = kVarFrame;
    if (r.status != CS_SUCCEED) return r.status;
    return r.cut ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t comnb_truncate_chars(const CharAttrib *attr, const char *text, int32_t length,
                                      int32_t limit) {
    if (limit <= 0) return 0;
    if (length < limit) return length;
    const uint8_t *widths = attr ? attr->widthmap : nullptr;
    if (!widths) return limit;
    int32_t pos = 0; // [0, limit]: always a character boundary
    while (pos < limit) {
        // A width of 0 would never advance; such a byte counts as one character of 1 byte.
        const int32_t w = std::max(widths[static_cast<uint8_t>(text[pos])] & 0x0f, 1);
        if (pos + w > limit) break;
        pos += w;
    }
    return pos;
}

#define COMN_DEFINE_TEXT_(src)                                                                     \
    COMN_API int32_t comn_##src##tochar(ComContext *ctx, DataFormat *srcfmt, void *s,              \
                                        DataFormat *destfmt, void *dest, int32_t *destlen) {       \
        return comn::to_char<comn::src##_source>(ctx, srcfmt, s, destfmt, dest, destlen);          \
    }                                                                                              \
    COMN_API int32_t comn_##src##tovarchar(ComContext *ctx, DataFormat *srcfmt, void *s,           \
                                           DataFormat *destfmt, void *dest, int32_t *destlen) {    \
        return comn::to_varchar<comn::src##_source>(ctx, srcfmt, s, destfmt, dest, destlen);       \
    }
COMN_DEFINE_TEXT_(char)
COMN_DEFINE_TEXT_(varchar)
#undef COMN_DEFINE_TEXT_
}
