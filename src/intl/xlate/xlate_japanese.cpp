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
#include "jis_codes.h"
#include "xlate_internal.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace comn {
namespace {

using namespace jis;

// One source character.
struct Char {
    enum Kind : uint8_t { Jis, Other, Cut } kind;
    uint8_t len; // bytes it takes (for Cut: bytes it needs)
    uint8_t c1;  // Jis: A0 + row
    uint8_t c2;  // Jis: A0 + cell
};

// ---- Readers: lead() and trail() accept exactly the pairs that read() returns as Jis, and
// jis() gives that pair as A0 + row, A0 + cell. read() sees a first byte from 80. ----

// A pair led by an A1-FE row byte, as eucjis and deckanji share it.
constexpr Char euc_pair(const uint8_t *p, int32_t left) {
    if (left < 2) return {Char::Cut, 2, 0, 0};
    if (euc_byte(p[1])) return {Char::Jis, 2, p[0], p[1]};
    return {Char::Other, 2, 0, 0};
}

struct FromEuc {
    static constexpr bool lead(unsigned b) { return euc_byte(b); }
    static constexpr bool trail(unsigned b) { return euc_byte(b); }
    static constexpr void jis(unsigned b0, unsigned b1, unsigned &c1, unsigned &c2) {
        c1 = b0;
        c2 = b1;
    }
    static constexpr Char read(const uint8_t *p, int32_t left) {
        const unsigned b = p[0];
        if (b == 0x8E) return {left < 2 ? Char::Cut : Char::Other, 2, 0, 0};
        if (b == 0x8F) return {left < 3 ? Char::Cut : Char::Other, 3, 0, 0};
        if (euc_byte(b)) return euc_pair(p, left);
        return {Char::Other, 1, 0, 0};
    }
};

struct FromDecKanji : FromEuc {
    static constexpr Char read(const uint8_t *p, int32_t left) {
        if (euc_byte(p[0])) return euc_pair(p, left);
        return {Char::Other, 1, 0, 0};
    }
};

struct FromSjis {
    static constexpr bool lead(unsigned b) { return sjis_lead(b); }
    static constexpr bool trail(unsigned b) { return sjis_trail(b); }
    static constexpr void jis(unsigned s1, unsigned s2, unsigned &c1, unsigned &c2) {
        sjis_to_jis(s1, s2, c1, c2);
    }
    static constexpr Char read(const uint8_t *p, int32_t left) {
        const unsigned s1 = p[0];
        if (!in(s1, 0x81, 0x9F) && !in(s1, 0xE0, 0xFC)) return {Char::Other, 1, 0, 0};
        if (left < 2) return {Char::Cut, 2, 0, 0};
        const unsigned s2 = p[1];
        if (!sjis_lead(s1) || !sjis_trail(s2)) return {Char::Other, 2, 0, 0};
        unsigned c1 = 0, c2 = 0;
        jis(s1, s2, c1, c2);
        return {Char::Jis, 2, static_cast<uint8_t>(c1), static_cast<uint8_t>(c2)};
    }
};

// ---- Writers of a JIS X 0208 pair given as A0 + row, A0 + cell ----

struct ToEuc {
    static constexpr bool has_jis = true;
    static constexpr void pair(unsigned &, unsigned &) {}
};

struct ToSjis {
    static constexpr bool has_jis = true;
    static constexpr void pair(unsigned &c1, unsigned &c2) { jis_to_sjis(c1, c2); }
};

struct ToAscii {
    static constexpr bool has_jis = false;
    static constexpr void pair(unsigned &, unsigned &) {}
};

template <class From, class To>
int32_t convert(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen, int32_t *consumed,
                int32_t *produced) {
    static constexpr auto leads = table(From::lead);
    static constexpr auto trails = table(From::trail);
    const XlateSpan span = xlate_span(srclen, dstlen);
    const int32_t n = span.n;
    unsigned bad = 0;
    int32_t i = 0;
    // Translates and stores the character b0 (b1) at `at`, whose step is 1 + hi: an ASCII
    // byte is stored twice at its own place, a pair at its two places, without a branch.
    auto put = [&](int32_t at, unsigned b0, unsigned b1, unsigned hi) {
        unsigned c1 = 0, c2 = 0;
        From::jis(b0, b1, c1, c2);
        To::pair(c1, c2);
        if constexpr (!To::has_jis) {
            c1 = c2 = '?';
            bad |= hi;
        }
        const unsigned keep = hi - 1; // all ones for an ASCII byte
        dst[at] = static_cast<uint8_t>((b0 & keep) | (c1 & ~keep));
        dst[at + hi] = static_cast<uint8_t>((b0 & keep) | (c2 & ~keep));
    };
    for (;;) {
        // Fast loops over ASCII bytes and ordinary pairs. In them a byte from 80 always leads
        // a valid pair, so the step is 1 + its top bit, and the validity test is a branch that
        // holds until an unusual character comes. The only dependency from one character to
        // the next is that byte. The first loop halves it: it reads the four bytes two
        // characters may span as one word and finds the second character by shifting the
        // word by the first one's length, with no branch on the text.
        while (std::endian::native == std::endian::little && i + 3 < n) {
            uint32_t w;
            std::memcpy(&w, src + i, sizeof w);
            const unsigned a0 = w & 0xFF, a1 = w >> 8 & 0xFF, ha = a0 >> 7;
            w >>= 8 + 8 * ha; // the second character and what follows
            const unsigned b0 = w & 0xFF, b1 = w >> 8 & 0xFF, hb = b0 >> 7;
            if ((ha & ~(leads[a0] & trails[a1])) | (hb & ~(leads[b0] & trails[b1]))) break;
            put(i, a0, a1, ha);
            i += 1 + static_cast<int32_t>(ha);
            put(i, b0, b1, hb);
            i += 1 + static_cast<int32_t>(hb);
        }
        while (i + 1 < n) {
            const unsigned b0 = src[i], b1 = src[i + 1];
            const unsigned hi = b0 >> 7; // 1: b0 leads a pair
            if (hi & ~(leads[b0] & trails[b1])) break;
            put(i, b0, b1, hi);
            i += 1 + static_cast<int32_t>(hi);
        }
        if (i >= n) break;

        // One character the careful way: the end of the text, or an unusual character.
        if (src[i] < 0x80) {
            dst[i] = src[i];
            ++i;
            continue;
        }
        const Char c = From::read(src + i, n - i);
        if (c.kind == Char::Cut) break; // leave it for the next call
        if (To::has_jis && c.kind == Char::Jis) {
            unsigned c1 = c.c1, c2 = c.c2;
            To::pair(c1, c2);
            dst[i] = static_cast<uint8_t>(c1);
            dst[i + 1] = static_cast<uint8_t>(c2);
        } else {
            for (int k = 0; k < c.len; ++k)
                dst[i + k] = '?';
            bad = 1;
        }
        i += c.len;
    }
    *consumed = i;
    *produced = i;
    return span.bits | (bad ? COM_XLT_BADCHAR : 0);
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
