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
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/intl.h"
#include "convert/buffers.h"
#include "convert/entry.h"

namespace comn {
namespace {

using Text = Span;
constexpr Text (*varchar_source)(const DataFormat *, const void *) = var_source;

[[gnu::always_inline]] inline Text char_source(const DataFormat *fmt, const void *src) {
    const auto *p = static_cast<const uint8_t *>(src);
    int32_t len = std::max(fmt->maxlength, 0);
    if ((fmt->format & CS_FMT_NULLTERM) && len > 0) {
        if (const void *z = std::memchr(p, 0, static_cast<size_t>(len)))
            len = static_cast<int32_t>(static_cast<const uint8_t *>(z) - p);
    }
    return {p, len};
}

// The text of a source of type S.
template <typename S>
constexpr Text (*source)(const DataFormat *,
                         const void *) = std::is_same_v<S, T_char> ? char_source : varchar_source;

[[gnu::always_inline]] inline const LocaleHandle *handle_of(const ComContext *ctx,
                                                            const DataFormat *fmt) {
    return fmt->locale ? fmt->locale : ctx ? ctx->conv.default_locale : nullptr;
}

// Whether text from srcfmt to destfmt is copied (the same handle, or the same character set)
// rather than translated.
[[gnu::always_inline]] inline bool copies(ComContext *ctx, DataFormat *srcfmt,
                                          DataFormat *destfmt) {
    if (handle_of(ctx, srcfmt) == handle_of(ctx, destfmt)) return true;
    int32_t mode = COM_XLT_MODE_COPY;
    com_intl_will_xlate(ctx, srcfmt, destfmt, &mode);
    return mode == COM_XLT_MODE_COPY;
}

// memcpy for the short values that most columns hold, without a call: two overlapping
// moves of 8 or 16 bytes cover any length from 8 to 32.
[[gnu::always_inline]] inline void copy_bytes(uint8_t *out, const uint8_t *in, int32_t n) {
    struct B16 {
        uint8_t b[16];
    };
    if (n >= 16 && n <= 32) {
        B16 a, z;
        std::memcpy(&a, in, 16);
        std::memcpy(&z, in + n - 16, 16);
        std::memcpy(out, &a, 16);
        std::memcpy(out + n - 16, &z, 16);
    } else if (n >= 8 && n < 16) {
        uint64_t a, z;
        std::memcpy(&a, in, 8);
        std::memcpy(&z, in + n - 8, 8);
        std::memcpy(out, &a, 8);
        std::memcpy(out + n - 8, &z, 8);
    } else if (n > 0) { // an empty value may be null
        std::memcpy(out, in, static_cast<size_t>(n));
    }
}

// Copies the longest whole-character prefix of s that fits room bytes into out; returns its
// length.
[[gnu::always_inline]] inline int32_t copy_text(ComContext *ctx, Text s, DataFormat *destfmt,
                                                uint8_t *out, int32_t room) {
    if (room <= 0) return 0;
    // No locale at all is the built-in single-byte set.
    const CharAttrib *attr = handle_of(ctx, destfmt) ? com_intl_charattr(ctx, destfmt) : nullptr;
    const int32_t n =
        attr && attr->mb_level > 1
            ? comnb_truncate_chars(attr, reinterpret_cast<const char *>(s.p), s.len, room)
            : std::min(s.len, room);
    copy_bytes(out, s.p, n);
    return n;
}

// Translates s into out[0..room). Returns the bytes written; *status is CS_SUCCEED,
// CS_CONV_BADXLT or a failure to return at once, *taken the source bytes translated.
int32_t translate(ComContext *ctx, DataFormat *srcfmt, Text s, DataFormat *destfmt, uint8_t *out,
                  int32_t room, int32_t *status, int32_t *taken) {
    *status = CS_SUCCEED;
    *taken = 0;
    if (room <= 0) return 0;
    // The translation sees plain texts of exactly the source's bytes and the room given.
    DataFormat from = *srcfmt, to = *destfmt;
    from.datatype = to.datatype = CS_CHAR;
    from.maxlength = s.len;
    to.maxlength = room;
    int32_t produced = 0, state[2] = {0, 0};
    const int32_t rc =
        com_intl_xlate(ctx, &from, const_cast<uint8_t *>(s.p), &to, out, &produced, state);
    *taken = state[0];
    *status = rc == CS_CONV_OVERFLOW ? CS_SUCCEED : rc; // a short room is the caller's to report
    if (*status != CS_SUCCEED && *status != CS_CONV_BADXLT) return 0;
    return std::clamp(produced, 0, room);
}

// Finishes a char destination holding n bytes of text: terminator and padding for a whole
// value, terminator only for a cut one.
[[gnu::always_inline]] inline int32_t finish_char(int32_t n, bool cut, DataFormat *destfmt,
                                                  uint8_t *out, int32_t *destlen) {
    *destlen = n;
    if (cut) {
        if ((destfmt->format & CS_FMT_NULLTERM) && destfmt->maxlength >= 1) {
            out[n] = 0;
            *destlen = n + 1;
        }
        return CS_CONV_TRUNCATED;
    }
    if (destfmt->format == 0 && destfmt->maxlength >= 0)
        return CS_SUCCEED; // nothing to terminate or pad, and n <= maxlength
    const int32_t rc = comn__padchar(n, destfmt, out, destlen);
    return rc == CS_CONV_OVERFLOW ? CS_CONV_TRUNCATED : rc;
}

// The room a char destination gives text: all of it, less one byte for a terminator.
int32_t char_room(const DataFormat *destfmt) {
    const int32_t m = std::max(destfmt->maxlength, 0);
    return destfmt->format & CS_FMT_NULLTERM ? m - 1 : m;
}

[[gnu::noinline]] int32_t translate_to_char(ComContext *ctx, DataFormat *srcfmt, Text s,
                                            DataFormat *destfmt, uint8_t *out, int32_t *destlen) {
    int32_t status, taken;
    const int32_t n = translate(ctx, srcfmt, s, destfmt, out, char_room(destfmt), &status, &taken);
    if (status != CS_SUCCEED && status != CS_CONV_BADXLT) {
        *destlen = 0;
        return status;
    }
    const int32_t rc = finish_char(n, taken < s.len, destfmt, out, destlen);
    return status == CS_CONV_BADXLT ? status : rc;
}

template <Text (*Source)(const DataFormat *, const void *)>
int32_t to_char(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    auto *out = static_cast<uint8_t *>(dest);
    const Text s = Source(srcfmt, src);
    if (s.len > 0 && !copies(ctx, srcfmt, destfmt)) [[unlikely]]
        return translate_to_char(ctx, srcfmt, s, destfmt, out, destlen);
    const int32_t n = copy_text(ctx, s, destfmt, out, char_room(destfmt));
    return finish_char(n, n < s.len, destfmt, out, destlen);
}

template <Text (*Source)(const DataFormat *, const void *)>
int32_t to_varchar(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                   int32_t *destlen) {
    auto *out = static_cast<uint8_t *>(dest);
    const Text s = Source(srcfmt, src);
    int32_t n, status = CS_SUCCEED, taken;
    if (s.len > 0 && !copies(ctx, srcfmt, destfmt))
        n = translate(ctx, srcfmt, s, destfmt, out + 2, kVarRoom, &status, &taken);
    else
        n = taken = copy_text(ctx, s, destfmt, out + 2, kVarRoom);
    put_length_word(out, n);
    *destlen = kVarFrame;
    if (status != CS_SUCCEED) return status;
    return taken < s.len ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

template <typename S, typename D>
int32_t convert(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    if constexpr (std::is_same_v<D, T_char>)
        return to_char<source<S>>(ctx, srcfmt, src, destfmt, dest, destlen);
    else
        return to_varchar<source<S>>(ctx, srcfmt, src, destfmt, dest, destlen);
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
}

#define COMN_TEXT_TO_TEXT_(a) COMN_CONV_PAIR(a, char) COMN_CONV_PAIR(a, varchar)
COMN_TEXT_TO_TEXT_(char)
COMN_TEXT_TO_TEXT_(varchar)
