// Translation between the Japanese sets eucjis, sjis and deckanji, and from each of them to
// plain ASCII.
//
// All three carry the JIS X 0208 characters, a 94 x 94 grid of rows and cells (1..94):
// - eucjis writes row and cell as two bytes A0 + row, A0 + cell; 8E leads a half-width kana
//   (two bytes) and 8F a supplementary kanji (three bytes).
// - deckanji writes JIS X 0208 exactly as eucjis does; a second byte 21-7E instead marks the
//   set's own user-defined characters, and it has neither half-width kana nor a 8F plane.
// - sjis packs two rows into one lead byte: rows 1-62 under 81-9F, rows 63-94 under E0-EF; an
//   odd row takes second bytes 40-7E and 80-9E, an even row 9F-FC. Leads F0-FC hold
//   user-defined characters and single bytes A1-DF are half-width kana.
// Only JIS X 0208 characters cross between sets. Everything else becomes one "?" per source
// byte with COM_XLT_BADCHAR, so every converter writes exactly as many bytes as it takes. A
// character cut by the end of the source or of the destination is left for the next call.
#include "xlate_internal.h"

namespace comn {
namespace {

// One source character.
struct Char {
    enum Kind : uint8_t { Ascii, Jis, Other, Cut } kind;
    uint8_t len; // bytes it takes (for Cut: bytes it needs)
    uint8_t c1;  // Ascii: the byte; Jis: A0 + row
    uint8_t c2;  //                  Jis: A0 + cell
};

constexpr bool in(unsigned b, unsigned lo, unsigned hi) {
    return b >= lo && b <= hi;
}

// Reads a pair whose lead byte is an A1-FE row, as eucjis and deckanji share it.
constexpr Char euc_pair(const uint8_t *p, int32_t left) {
    if (left < 2) return {Char::Cut, 2, 0, 0};
    if (in(p[1], 0xA1, 0xFE)) return {Char::Jis, 2, p[0], p[1]};
    return {Char::Other, 2, 0, 0};
}

struct FromEuc {
    static constexpr Char read(const uint8_t *p, int32_t left) {
        const unsigned b = p[0];
        if (b == 0x8E) return {left < 2 ? Char::Cut : Char::Other, 2, 0, 0};
        if (b == 0x8F) return {left < 3 ? Char::Cut : Char::Other, 3, 0, 0};
        if (in(b, 0xA1, 0xFE)) return euc_pair(p, left);
        return {Char::Other, 1, 0, 0};
    }
};

struct FromDecKanji {
    static constexpr Char read(const uint8_t *p, int32_t left) {
        if (in(p[0], 0xA1, 0xFE)) return euc_pair(p, left);
        return {Char::Other, 1, 0, 0};
    }
};

struct FromSjis {
    static constexpr Char read(const uint8_t *p, int32_t left) {
        const unsigned s1 = p[0];
        if (!in(s1, 0x81, 0x9F) && !in(s1, 0xE0, 0xFC)) return {Char::Other, 1, 0, 0};
        if (left < 2) return {Char::Cut, 2, 0, 0};
        const unsigned s2 = p[1];
        if (s1 > 0xEF || !(in(s2, 0x40, 0x7E) || in(s2, 0x80, 0xFC))) return {Char::Other, 2, 0, 0};
        // Row pair of the lead byte: 81-9F hold pairs 1..31, E0-EF pairs 32..47.
        const unsigned pair = s1 <= 0x9F ? s1 - 0x80 : s1 - 0xC0; // [1, 47]
        const bool even = s2 >= 0x9F;
        const unsigned row = 2 * pair - (even ? 0 : 1);                          // [1, 94]
        const unsigned cell = even ? s2 - 0x9E : s2 - (s2 < 0x80 ? 0x3F : 0x40); // [1, 94]
        return {Char::Jis, 2, static_cast<uint8_t>(0xA0 + row), static_cast<uint8_t>(0xA0 + cell)};
    }
};

// Writers of a JIS X 0208 character, given as A0 + row, A0 + cell.
struct ToEuc {
    static constexpr bool has_jis = true;
    static void write(uint8_t *d, unsigned c1, unsigned c2) {
        d[0] = static_cast<uint8_t>(c1);
        d[1] = static_cast<uint8_t>(c2);
    }
};

struct ToSjis {
    static constexpr bool has_jis = true;
    static void write(uint8_t *d, unsigned c1, unsigned c2) {
        const unsigned h = (c1 + 1) / 2; // [51, 7F]
        d[0] = static_cast<uint8_t>(h < 0x70 ? h + 0x30 : h + 0x70);
        if (c1 & 1)
            d[1] = static_cast<uint8_t>(c2 < 0xE0 ? c2 - 0x61 : c2 - 0x60);
        else
            d[1] = static_cast<uint8_t>(c2 - 2);
    }
};

struct ToAscii {
    static constexpr bool has_jis = false;
    static void write(uint8_t *, unsigned, unsigned) {}
};

template <class From, class To>
int32_t convert(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen, int32_t *consumed,
                int32_t *produced) {
    const XlateSpan span = xlate_span(srclen, dstlen);
    const int32_t n = span.n;
    int32_t bits = span.bits;
    int32_t i = 0;
    while (i < n) {
        if (src[i] < 0x80) {
            dst[i] = src[i];
            ++i;
            continue;
        }
        const Char c = From::read(src + i, n - i);
        if (c.kind == Char::Cut) break; // leave it for the next call
        if (To::has_jis && c.kind == Char::Jis) {
            To::write(dst + i, c.c1, c.c2);
        } else {
            for (int k = 0; k < c.len; ++k)
                dst[i + k] = '?';
            bits |= COM_XLT_BADCHAR;
        }
        i += c.len;
    }
    *consumed = i;
    *produced = i;
    return bits;
}

} // namespace
} // namespace comn

extern "C" {

#define COMN_JA_CONVERTERS(X)                                                                      \
    X(com__fou_eucjis_to_sjis, FromEuc, ToSjis)                                                    \
    X(com__fou_eucjis_to_deckanji, FromEuc, ToEuc)                                                 \
    X(com__fou_eucjis_to_ascii8, FromEuc, ToAscii)                                                 \
    X(com__fou_sjis_to_eucjis_deckanj, FromSjis, ToEuc)                                            \
    X(com__fou_sjis_to_ascii8, FromSjis, ToAscii)                                                  \
    X(com__fou_deckanji_to_eucjis, FromDecKanji, ToEuc)                                            \
    X(com__fou_deckanji_to_sjis, FromDecKanji, ToSjis)                                             \
    X(com__fou_deckanji_to_ascii8, FromDecKanji, ToAscii)

#define COMN_JA_ENTRY(name, from, to)                                                              \
    COMN_API int32_t name(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen,        \
                          int32_t *consumed, int32_t *produced) {                                  \
        return comn::convert<comn::from, comn::to>(src, srclen, dst, dstlen, consumed, produced);  \
    }
COMN_JA_CONVERTERS(COMN_JA_ENTRY)
#undef COMN_JA_ENTRY

} // extern "C"
