// Translation between utf8 and the other shipped sets (ascii8, iso_1, cp850, cp437, roman8,
// mac, eucjis, sjis, deckanji), both ways, through Unicode code points: a reader takes one
// character of the source set and gives its code point, a writer gives the bytes of a code
// point in the destination set. One template per direction makes every converter.
//
// The frame is the other converters': a character without a counterpart becomes "?" and sets
// COM_XLT_BADCHAR; a character whose bytes do not all fit in the destination stops the
// translation and sets COM_XLT_TRUNCATED, so no character is ever cut; consumed and produced
// count the whole characters done (they differ, since lengths change in translation).
//
// Reading UTF-8: a well-formed character is 00-7F, C2-DF 80-BF, E0 A0-BF 80-BF, E1-EC 80-BF
// 80-BF, ED 80-9F 80-BF, EE-EF 80-BF 80-BF, F0 90-BF 80-BF 80-BF, F1-F3 80-BF 80-BF 80-BF or
// F4 80-8F 80-BF 80-BF. Anything else (overlong forms, surrogates, code points above 10FFFF,
// stray continuation bytes, a sequence cut by the end of the source) is ill-formed and gives
// one "?" per maximal subpart: the longest prefix of a well-formed sequence that is there, or
// the single byte when no well-formed sequence starts with it.
//
// Reading the other sets keeps their converters' framing: a character without a counterpart
// gives one "?" per byte (8E and the byte after it, 8F and the two after it, a lead byte and
// its second byte), and a Japanese character cut by the end of the source is left for the
// next call.
#include "jis_codes.h"
#include "unicode_tables.h"
#include "xlate_internal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace comn {
namespace {

// One source character.
struct Ucs {
    enum Kind : uint8_t { Ok, Bad, Cut } kind;
    uint8_t len; // bytes it takes (for Cut: bytes it needs)
    uint32_t cp; // Ok: its code point
};

// ---- UTF-8 ----

// The character at p (p[0] >= 80, left >= 1): a code point, or a maximal ill-formed subpart.
// Two-byte characters and the three-byte ones whose second byte needs no range test come
// first, as the text's usual characters.
[[gnu::always_inline]] inline Ucs utf8_read(const uint8_t *p, int32_t left) {
    const unsigned b0 = p[0];
    if (left >= 3) {
        const unsigned b1 = p[1], b2 = p[2];
        const bool cont1 = (b1 & 0xC0) == 0x80, cont2 = (b2 & 0xC0) == 0x80;
        if (b0 >= 0xC2 && b0 <= 0xDF && cont1) return {Ucs::Ok, 2, (b0 & 0x1F) << 6 | (b1 & 0x3F)};
        if (b0 >= 0xE1 && b0 <= 0xEF && b0 != 0xED && cont1 && cont2)
            return {Ucs::Ok, 3, (b0 & 0x0F) << 12 | (b1 & 0x3F) << 6 | (b2 & 0x3F)};
    }
    if (b0 < 0xC2 || b0 > 0xF4) return {Ucs::Bad, 1, 0};
    if (left < 2) return {Ucs::Bad, 1, 0};
    const unsigned b1 = p[1];
    if (b0 < 0xE0) {
        if ((b1 & 0xC0) != 0x80) return {Ucs::Bad, 1, 0};
        return {Ucs::Ok, 2, (b0 & 0x1F) << 6 | (b1 & 0x3F)};
    }
    // The second byte's range rules out overlong forms (E0, F0), surrogates (ED) and code
    // points above 10FFFF (F4).
    const unsigned lo = b0 == 0xE0 ? 0xA0 : b0 == 0xF0 ? 0x90 : 0x80;
    const unsigned hi = b0 == 0xED ? 0x9F : b0 == 0xF4 ? 0x8F : 0xBF;
    if (b1 < lo || b1 > hi) return {Ucs::Bad, 1, 0};
    if (left < 3 || (p[2] & 0xC0) != 0x80) return {Ucs::Bad, 2, 0};
    const uint32_t cp3 = (b0 & 0x0F) << 12 | (b1 & 0x3F) << 6 | (p[2] & 0x3F);
    if (b0 < 0xF0) return {Ucs::Ok, 3, cp3};
    if (left < 4 || (p[3] & 0xC0) != 0x80) return {Ucs::Bad, 3, 0};
    return {Ucs::Ok, 4, (b0 & 0x07) << 18 | (b1 & 0x3F) << 12 | (p[2] & 0x3F) << 6 | (p[3] & 0x3F)};
}

// The UTF-8 bytes of a code point (at most 10FFFF, no surrogate) into out; their count.
constexpr int utf8_put(uint32_t cp, uint8_t *out) {
    if (cp < 0x80) {
        out[0] = static_cast<uint8_t>(cp);
        return 1;
    }
    if (cp < 0x800) {
        out[0] = static_cast<uint8_t>(0xC0 | cp >> 6);
        out[1] = static_cast<uint8_t>(0x80 | (cp & 0x3F));
        return 2;
    }
    if (cp < 0x10000) {
        out[0] = static_cast<uint8_t>(0xE0 | cp >> 12);
        out[1] = static_cast<uint8_t>(0x80 | (cp >> 6 & 0x3F));
        out[2] = static_cast<uint8_t>(0x80 | (cp & 0x3F));
        return 3;
    }
    out[0] = static_cast<uint8_t>(0xF0 | cp >> 18);
    out[1] = static_cast<uint8_t>(0x80 | (cp >> 12 & 0x3F));
    out[2] = static_cast<uint8_t>(0x80 | (cp >> 6 & 0x3F));
    out[3] = static_cast<uint8_t>(0x80 | (cp & 0x3F));
    return 4;
}

// A character's translation to utf8 packed in a word for the fast loop of a little-endian
// host, which stores the word whole: its UTF-8 bytes in their order (at most three: every
// character of the other sets is in the Basic Multilingual Plane) and their count in bits
// 24-25. 0: no character, which the careful path looks at.
constexpr bool k_packed = std::endian::native == std::endian::little;

constexpr uint32_t pack(uint32_t cp) {
    if (cp == 0 || cp > 0xFFFF) return 0;
    uint8_t b[4]{};
    const int n = utf8_put(cp, b);
    return uint32_t{b[0]} | uint32_t{b[1]} << 8 | uint32_t{b[2]} << 16 |
           static_cast<uint32_t>(n) << 24;
}

// ---- Single-byte sets: Sb_ucs gives bytes 80-FF; the inverse is a two-level table over the
// Basic Multilingual Plane, a page per high byte of the code point (page 0 is empty). ----

enum SbSet { Iso1, Cp850, Cp437, Roman8, Mac, Ascii8 }; // Ascii8 has no byte from 80

constexpr int Sb_pages = 16; // pages per set, the empty one included

struct SbInverse {
    std::array<uint8_t, 256> page_of{}; // by code point >> 8
    std::array<std::array<uint8_t, 256>, Sb_pages> pages{};
};

constexpr SbInverse sb_inverse(int set) {
    SbInverse inv{};
    int used = 1;
    for (unsigned b = 0x80; b < 0x100; ++b) {
        const unsigned cp = Sb_ucs[set][b - 0x80];
        if (cp == 0) continue;
        uint8_t &page = inv.page_of[cp >> 8];
        if (page == 0) {
            if (used == Sb_pages) throw "Sb_pages too small"; // stops the compilation
            page = static_cast<uint8_t>(used++);
        }
        inv.pages[page][cp & 0xFF] = static_cast<uint8_t>(b);
    }
    return inv;
}

constexpr std::array<SbInverse, Sb_sets> Sb_inverse = [] {
    std::array<SbInverse, Sb_sets> all{};
    for (int s = 0; s < Sb_sets; ++s)
        all[static_cast<size_t>(s)] = sb_inverse(s);
    return all;
}();

constexpr auto Sb_packed = [] {
    std::array<std::array<uint32_t, 256>, Sb_sets> all{};
    for (int s = 0; s < Sb_sets; ++s)
        for (unsigned b = 0; b < 256; ++b)
            all[static_cast<size_t>(s)][b] = pack(b < 0x80 ? b : Sb_ucs[s][b - 0x80]);
    return all;
}();

template <SbSet S>
struct Sb {
    static constexpr int pair_len = 1; // bytes of a character that packed() translates
    static uint32_t packed(const uint8_t *p) {
        if constexpr (S == Ascii8)
            return 0;
        else
            return Sb_packed[S][p[0]];
    }
    // Reader: the byte b >= 80.
    static Ucs read(const uint8_t *p, int32_t) {
        if constexpr (S == Ascii8) {
            return {Ucs::Bad, 1, 0};
        } else {
            const uint32_t cp = Sb_ucs[S][p[0] - 0x80];
            return {cp != 0 ? Ucs::Ok : Ucs::Bad, 1, cp};
        }
    }
    // Writer of a code point from 80: its byte, or 0 bytes when the set has none.
    static int put(uint32_t cp, uint8_t *out) {
        if constexpr (S == Ascii8) {
            (void)cp;
            (void)out;
            return 0;
        } else {
            if (cp > 0xFFFF) return 0;
            const SbInverse &inv = Sb_inverse[S];
            const uint8_t b = inv.pages[inv.page_of[cp >> 8]][cp & 0xFF];
            out[0] = b;
            return b != 0;
        }
    }
};

// ---- Japanese sets. The inverse of the JIS tables holds one code per BMP code point:
// 0 none, A1-DF a half-width kana byte, A1A1-FEFE a JIS X 0208 pair as eucjis writes it,
// 2121-7E7E a JIS X 0212 pair with the top bits of its two eucjis bytes cleared. ----

constexpr int jis_index(unsigned c1, unsigned c2) { // bytes A1-FE
    return static_cast<int>((c1 - 0xA1) * 94 + (c2 - 0xA1));
}

constexpr auto Jis_of = [] {
    std::array<uint16_t, 0x10000> inv{};
    for (int i = 0; i < 94 * 94; ++i) // JIS X 0208 takes precedence: written last
        if (const unsigned cp = Jis0212_ucs[static_cast<size_t>(i)]; cp != 0)
            inv[cp] = static_cast<uint16_t>((0x21 + i / 94) << 8 | (0x21 + i % 94));
    for (int i = 0; i < 94 * 94; ++i)
        if (const unsigned cp = Jis0208_ucs[static_cast<size_t>(i)]; cp != 0)
            inv[cp] = static_cast<uint16_t>((0xA1 + i / 94) << 8 | (0xA1 + i % 94));
    for (unsigned b = 0xA1; b <= 0xDF; ++b)
        inv[0xFF61 + b - 0xA1] = static_cast<uint16_t>(b);
    return inv;
}();

constexpr uint32_t kana_ucs(unsigned b) { // b in A1-DF
    return 0xFF61 + b - 0xA1;
}

inline Ucs jis0208(unsigned c1, unsigned c2) { // c1, c2 in A1-FE
    const uint32_t cp = Jis0208_ucs[static_cast<size_t>(jis_index(c1, c2))];
    return {cp != 0 ? Ucs::Ok : Ucs::Bad, 2, cp};
}

constexpr auto Jis0208_packed = [] {
    std::array<uint32_t, 94 * 94> t{};
    for (size_t i = 0; i < t.size(); ++i)
        t[i] = pack(Jis0208_ucs[i]);
    return t;
}();

inline uint32_t packed0208(unsigned c1, unsigned c2) { // c1, c2 in A1-FE
    return Jis0208_packed[static_cast<size_t>(jis_index(c1, c2))];
}

// The code of a code point from 80 in the inverse above.
inline unsigned jis_code(uint32_t cp) {
    return cp <= 0xFFFF ? Jis_of[cp] : 0;
}

struct Euc {
    static constexpr int pair_len = 2;
    static uint32_t packed(const uint8_t *p) {
        return jis::euc_byte(p[0]) && jis::euc_byte(p[1]) ? packed0208(p[0], p[1]) : 0;
    }
    static Ucs read(const uint8_t *p, int32_t left) {
        const unsigned b0 = p[0];
        if (b0 == 0x8E) {
            if (left < 2) return {Ucs::Cut, 2, 0};
            if (jis::in(p[1], 0xA1, 0xDF)) return {Ucs::Ok, 2, kana_ucs(p[1])};
            return {Ucs::Bad, 2, 0};
        }
        if (b0 == 0x8F) {
            if (left < 3) return {Ucs::Cut, 3, 0};
            if (!jis::euc_byte(p[1]) || !jis::euc_byte(p[2])) return {Ucs::Bad, 3, 0};
            const uint32_t cp = Jis0212_ucs[static_cast<size_t>(jis_index(p[1], p[2]))];
            return {cp != 0 ? Ucs::Ok : Ucs::Bad, 3, cp};
        }
        if (!jis::euc_byte(b0)) return {Ucs::Bad, 1, 0};
        if (left < 2) return {Ucs::Cut, 2, 0};
        if (!jis::euc_byte(p[1])) return {Ucs::Bad, 2, 0};
        return jis0208(b0, p[1]);
    }
    static int put(uint32_t cp, uint8_t *out) {
        const unsigned j = jis_code(cp);
        if (j == 0) return 0;
        if (j < 0x100) { // half-width kana
            out[0] = 0x8E;
            out[1] = static_cast<uint8_t>(j);
            return 2;
        }
        if (j < 0x8000) { // JIS X 0212
            out[0] = 0x8F;
            out[1] = static_cast<uint8_t>(j >> 8 | 0x80);
            out[2] = static_cast<uint8_t>(j | 0x80);
            return 3;
        }
        out[0] = static_cast<uint8_t>(j >> 8);
        out[1] = static_cast<uint8_t>(j);
        return 2;
    }
};

// DEC Kanji: the JIS X 0208 pairs of eucjis; no kana, no supplementary plane.
struct DecKanji {
    static constexpr int pair_len = 2;
    static uint32_t packed(const uint8_t *p) { return Euc::packed(p); }
    static Ucs read(const uint8_t *p, int32_t left) {
        if (!jis::euc_byte(p[0])) return {Ucs::Bad, 1, 0};
        if (left < 2) return {Ucs::Cut, 2, 0};
        if (!jis::euc_byte(p[1])) return {Ucs::Bad, 2, 0}; // 21-7E: user-defined characters
        return jis0208(p[0], p[1]);
    }
    static int put(uint32_t cp, uint8_t *out) {
        const unsigned j = jis_code(cp);
        if (j < 0x8000) return 0;
        out[0] = static_cast<uint8_t>(j >> 8);
        out[1] = static_cast<uint8_t>(j);
        return 2;
    }
};

// The packed translations of Shift-JIS pairs by lead byte (row 0 for any other byte) and
// second byte: one lookup per character.
constexpr auto Sjis_rows = jis::table([](unsigned b) {
    return jis::sjis_lead(b) ? (b <= 0x9F ? b - 0x80 : b - 0xE0 + 0x20) : 0; // [0, 47]
});
constexpr auto Sjis_packed = [] {
    std::array<uint32_t, 48 * 256> t{};
    for (unsigned s1 = 0x81; s1 <= 0xEF; ++s1) {
        if (!jis::sjis_lead(s1)) continue;
        for (unsigned s2 = 0x40; s2 <= 0xFC; ++s2) {
            if (!jis::sjis_trail(s2)) continue;
            unsigned c1 = 0, c2 = 0;
            jis::sjis_to_jis(s1, s2, c1, c2);
            t[Sjis_rows[s1] * 256 + s2] = pack(Jis0208_ucs[static_cast<size_t>(jis_index(c1, c2))]);
        }
    }
    return t;
}();

// The Shift-JIS bytes of each BMP code point (first byte high; a half-width kana is one byte,
// 0 none), as the inverse above gives them: one lookup per character. (The tables are built
// by loops over the characters, not the code points, to keep compile-time work small.)
constexpr auto Sjis_of = [] {
    std::array<uint16_t, 0x10000> t{};
    for (int i = 0; i < 94 * 94; ++i) { // in the order Jis_of was written, so the same cell wins
        const unsigned cp = Jis0208_ucs[static_cast<size_t>(i)];
        if (cp < 0x80) continue;
        unsigned c1 = 0xA1 + i / 94, c2 = 0xA1 + i % 94;
        jis::jis_to_sjis(c1, c2);
        t[cp] = static_cast<uint16_t>(c1 << 8 | c2);
    }
    for (unsigned b = 0xA1; b <= 0xDF; ++b)
        t[kana_ucs(b)] = static_cast<uint16_t>(b);
    return t;
}();

struct Sjis {
    static constexpr int pair_len = 2;
    static uint32_t packed(const uint8_t *p) { return Sjis_packed[Sjis_rows[p[0]] * 256U + p[1]]; }
    static Ucs read(const uint8_t *p, int32_t left) {
        const unsigned s1 = p[0];
        if (jis::in(s1, 0xA1, 0xDF)) return {Ucs::Ok, 1, kana_ucs(s1)};
        if (!jis::in(s1, 0x81, 0x9F) && !jis::in(s1, 0xE0, 0xFC)) return {Ucs::Bad, 1, 0};
        if (left < 2) return {Ucs::Cut, 2, 0};
        if (!jis::sjis_lead(s1) || !jis::sjis_trail(p[1])) return {Ucs::Bad, 2, 0};
        unsigned c1 = 0, c2 = 0;
        jis::sjis_to_jis(s1, p[1], c1, c2);
        return jis0208(c1, c2);
    }
    static int put(uint32_t cp, uint8_t *out) {
        const unsigned v = cp <= 0xFFFF ? Sjis_of[cp] : 0;
        if (v < 0x100) { // a half-width kana byte, or none
            out[0] = static_cast<uint8_t>(v);
            return v != 0;
        }
        out[0] = static_cast<uint8_t>(v >> 8);
        out[1] = static_cast<uint8_t>(v);
        return 2;
    }
};

// ---- The two directions ----
//
// Each converter runs a fast loop while the text is far from both ends, then finishes with a
// careful one. The fast loop copies eight bytes at a time and keeps those up to the first
// byte from 80, whose character it then translates straight into the destination; bytes it
// stores beyond what it keeps are overwritten by the characters that follow. While 32 source
// bytes follow the word (8 characters at least, each giving a byte at least) and 24 bytes of
// room remain, that always happens before the translation ends, so the destination beyond
// the bytes produced is never touched, and no character can be cut by either end.

constexpr int32_t k_src_margin = 40, k_dst_margin = 24;

// Bytes of ASCII at the start of the word w read from memory; w holds a byte from 80.
inline int ascii_prefix(uint64_t high_bits) {
    if constexpr (std::endian::native == std::endian::little)
        return std::countr_zero(high_bits) >> 3;
    else
        return std::countl_zero(high_bits) >> 3;
}

// The fast loop of both directions: step(i, o) translates the character at src[i] (a byte
// from 80) into dst[o] and advances both; a run of such characters is stepped through
// without going back to the word loop.
template <class Step>
inline void fast_loop(const uint8_t *src, int32_t n, uint8_t *dst, int32_t m, int32_t &i,
                      int32_t &o, Step step) {
    while (i + k_src_margin <= n && o + k_dst_margin <= m) {
        uint64_t w;
        std::memcpy(&w, src + i, sizeof w);
        std::memcpy(dst + o, &w, sizeof w);
        const uint64_t high = w & 0x8080808080808080ULL;
        if (high == 0) {
            i += 8;
            o += 8;
            continue;
        }
        const int k = ascii_prefix(high);
        i += k;
        o += k;
        do // the characters from 80 that follow, one by one
            step(i, o);
        while (src[i] >= 0x80 && i + k_src_margin <= n && o + k_dst_margin <= m);
    }
}

// The careful loops' ASCII: copies the ASCII bytes at src[i] that the next word holds and
// the room takes, exactly; true when it copied a whole word.
inline bool copy_ascii(const uint8_t *src, int32_t n, uint8_t *dst, int32_t m, int32_t &i,
                       int32_t &o) {
    if (i + 8 > n) return false;
    uint64_t w;
    std::memcpy(&w, src + i, sizeof w);
    const uint64_t high = w & 0x8080808080808080ULL;
    if (high == 0 && o + 8 <= m) {
        std::memcpy(dst + o, &w, sizeof w);
        i += 8;
        o += 8;
        return true;
    }
    const int32_t k = std::min<int32_t>(high == 0 ? 8 : ascii_prefix(high), m - o);
    for (int32_t j = 0; j < k; ++j)
        dst[o + j] = src[i + j];
    i += k;
    o += k;
    return false;
}

// From set From to utf8.
template <class From>
int32_t to_utf8(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen, int32_t *consumed,
                int32_t *produced) {
    const int32_t n = std::max(srclen, 0), m = std::max(dstlen, 0);
    int32_t i = 0, o = 0;
    bool bad = false, full = false;
    // Fast loop: words of ASCII, else four characters in a row, each through its packed
    // translation. The next character's place depends on the source bytes only, never on a
    // table, so the lookups of successive characters overlap.
    while (k_packed && i + k_src_margin <= n && o + k_dst_margin <= m) {
        uint64_t w;
        std::memcpy(&w, src + i, sizeof w);
        std::memcpy(dst + o, &w, sizeof w);
        const uint64_t high = w & 0x8080808080808080ULL;
        if (high == 0) {
            i += 8;
            o += 8;
            continue;
        }
        const int prefix = ascii_prefix(high);
        i += prefix;
        o += prefix;
        for (int k = 0; k < 4; ++k) {
            const unsigned b0 = src[i];
            const unsigned hi = b0 >> 7;
            const uint32_t v = hi ? From::packed(src + i) : (b0 | 1U << 24);
            if (v == 0) { // a character the careful path below must look at
                const Ucs c = From::read(src + i, n - i); // never cut here
                if (c.kind == Ucs::Ok) {
                    o += utf8_put(c.cp, dst + o);
                } else {
                    std::memset(dst + o, '?', c.len);
                    o += c.len;
                    bad = true;
                }
                i += c.len;
                break;
            }
            std::memcpy(dst + o, &v, sizeof v); // its fourth byte is overwritten later
            o += static_cast<int32_t>(v >> 24 & 3);
            i += hi ? From::pair_len : 1;
        }
    }
    while (i < n) {
        if (copy_ascii(src, n, dst, m, i, o)) continue;
        if (src[i] < 0x80) {
            if (o == m) {
                full = true;
                break;
            }
            dst[o++] = src[i++];
            continue;
        }
        // The usual character through its packed translation, written byte by byte.
        if (const uint32_t v = k_packed && n - i >= From::pair_len ? From::packed(src + i) : 0;
            v != 0) {
            const int32_t len = static_cast<int32_t>(v >> 24 & 3);
            if (len > m - o) {
                full = true;
                break;
            }
            dst[o] = static_cast<uint8_t>(v);
            if (len > 1) dst[o + 1] = static_cast<uint8_t>(v >> 8);
            if (len > 2) dst[o + 2] = static_cast<uint8_t>(v >> 16);
            o += len;
            i += From::pair_len;
            continue;
        }
        const Ucs c = From::read(src + i, n - i);
        if (c.kind == Ucs::Cut) break; // left for the next call
        uint8_t out[4];
        int len = c.len; // a character without a counterpart: one "?" per byte
        if (c.kind == Ucs::Ok)
            len = utf8_put(c.cp, out);
        else
            std::memset(out, '?', sizeof out);
        if (len > m - o) {
            full = true;
            break;
        }
        std::memcpy(dst + o, out, static_cast<size_t>(len));
        bad |= c.kind == Ucs::Bad;
        i += c.len;
        o += len;
    }
    *consumed = i;
    *produced = o;
    return (full ? COM_XLT_TRUNCATED : 0) | (bad ? COM_XLT_BADCHAR : 0);
}

// From utf8 to set To.
template <class To>
int32_t from_utf8(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen,
                  int32_t *consumed, int32_t *produced) {
    const int32_t n = std::max(srclen, 0), m = std::max(dstlen, 0);
    int32_t i = 0, o = 0;
    bool bad = false, full = false;
    fast_loop(src, n, dst, m, i, o, [&](int32_t &at, int32_t &to) {
        const Ucs c = utf8_read(src + at, n - at);
        int len = c.kind == Ucs::Ok ? To::put(c.cp, dst + to) : 0;
        if (len == 0) { // one "?" per character or ill-formed subpart
            dst[to] = '?';
            len = 1;
            bad = true;
        }
        at += c.len;
        to += len;
    });
    while (i < n) {
        if (copy_ascii(src, n, dst, m, i, o)) continue;
        if (src[i] < 0x80) {
            if (o == m) {
                full = true;
                break;
            }
            dst[o++] = src[i++];
            continue;
        }
        const Ucs c = utf8_read(src + i, n - i);
        // Writers write exactly the bytes they count, so with room for the longest the
        // character goes straight to the destination.
        uint8_t spare[4];
        uint8_t *out = m - o >= 4 ? dst + o : spare;
        int len = c.kind == Ucs::Ok ? To::put(c.cp, out) : 0;
        const bool none = len == 0;
        if (none) {
            out[0] = '?';
            len = 1;
        }
        if (len > m - o) {
            full = true;
            break;
        }
        if (out == spare)
            for (int k = 0; k < len; ++k)
                dst[o + k] = spare[k];
        bad |= none;
        i += c.len;
        o += len;
    }
    *consumed = i;
    *produced = o;
    return (full ? COM_XLT_TRUNCATED : 0) | (bad ? COM_XLT_BADCHAR : 0);
}

// The reader and writer of each set, by the name its converters carry.
using set_ascii8 = Sb<Ascii8>;
using set_iso1 = Sb<Iso1>;
using set_cp850 = Sb<Cp850>;
using set_cp437 = Sb<Cp437>;
using set_roman8 = Sb<Roman8>;
using set_mac = Sb<Mac>;
using set_eucjis = Euc;
using set_sjis = Sjis;
using set_deckanji = DecKanji;

} // namespace
} // namespace comn

extern "C" {

#define COMN_FROM_UTF8_ENTRY(set)                                                                  \
    COMN_API int32_t com__fou_utf8_to_##set(const uint8_t *src, int32_t srclen, uint8_t *dst,      \
                                            int32_t dstlen, int32_t *consumed,                     \
                                            int32_t *produced) {                                   \
        return comn::from_utf8<comn::set_##set>(src, srclen, dst, dstlen, consumed, produced);     \
    }
COMN_XLT_FROM_UTF8(COMN_FROM_UTF8_ENTRY)
#undef COMN_FROM_UTF8_ENTRY

#define COMN_TO_UTF8_ENTRY(set)                                                                    \
    COMN_API int32_t com__fou_##set##_to_utf8(const uint8_t *src, int32_t srclen, uint8_t *dst,    \
                                              int32_t dstlen, int32_t *consumed,                   \
                                              int32_t *produced) {                                 \
        return comn::to_utf8<comn::set_##set>(src, srclen, dst, dstlen, consumed, produced);       \
    }
COMN_XLT_TO_UTF8(COMN_TO_UTF8_ENTRY)
#undef COMN_TO_UTF8_ENTRY

} // extern "C"
