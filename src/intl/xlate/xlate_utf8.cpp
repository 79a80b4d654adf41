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
#include "jis_windows.h"
#include "unicode_tables.h"
#include "utf8_windows.h"
#include "xlate_internal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <type_traits>
#include <utility>
#ifdef __SSE2__
#include <emmintrin.h>
#endif
#if defined(__SSE2__) && defined(__GNUC__) // byte shuffles, when the processor has them
#define COMN_XLT_SHUFFLE 1
#include <cpuid.h>
#include <immintrin.h> // and AVX2, chosen at run time
#include <tmmintrin.h>
#endif

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
inline Ucs utf8_read(const uint8_t *p, int32_t left) {
    const unsigned b0 = p[0];
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

// A character is usually of two or three bytes: read here from a little-endian word of the
// next four bytes with one mask test for the lead and continuation bits, and the code point's
// range for overlong forms and surrogates. 0 for anything else, which utf8_read sorts out.
// The fast loop lets surrogates through (Lax) to a lookup in a writer's table, which has no
// character for them, so it sees no counterpart and leaves the bytes to utf8_read; and it tests
// first for the length (First) that the text of the destination set mostly has.
template <bool Lax = false, int First = 2>
constexpr int utf8_usual(uint32_t u, uint32_t &cp) {
    auto two = [&] {
        cp = (u & 0x1F) << 6 | (u >> 8 & 0x3F);
        return (u & 0xC0E0) == 0x80C0 && cp >= 0x80 ? 2 : 0;
    };
    auto three = [&] {
        cp = (u & 0x0F) << 12 | (u >> 2 & 0xFC0) | (u >> 16 & 0x3F);
        return (u & 0xC0C0F0) == 0x8080E0 && cp >= 0x800 && (Lax || (cp & 0xF800) != 0xD800) ? 3
                                                                                             : 0;
    };
    if constexpr (First == 3) {
        if (const int len = three(); len != 0) return len;
        return two();
    } else {
        if (const int len = two(); len != 0) return len;
        return three();
    }
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

// The character at p (p[0] >= 80, left >= 1), the usual ones through a word of the bytes that
// are there (a word read from memory where four are).
[[gnu::always_inline]] inline Ucs utf8_char(const uint8_t *p, int32_t left) {
    uint32_t u = 0, cp = 0;
    if (k_packed && left >= 4)
        std::memcpy(&u, p, sizeof u);
    else
        for (int32_t k = 0; k < std::min(left, 4); ++k)
            u |= uint32_t{p[k]} << 8 * k;
    if (const int len = utf8_usual(u, cp); len != 0)
        return {Ucs::Ok, static_cast<uint8_t>(len), cp};
    return utf8_read(p, left);
}

constexpr uint32_t pack(uint32_t cp) {
    if (cp == 0 || cp > 0xFFFF) return 0;
    uint8_t b[4]{};
    const int n = utf8_put(cp, b);
    return uint32_t{b[0]} | uint32_t{b[1]} << 8 | uint32_t{b[2]} << 16 |
           static_cast<uint32_t>(n) << 24;
}

// ---- Single-byte sets: Sb_ucs gives bytes 80-FF; the inverse is a two-level table over the
// Basic Multilingual Plane, a page per high byte of the code point (page 0 is empty). ----

// Every set by the name its converters carry; the single-byte ones first, in the order of
// Sb_ucs (ascii8 has no byte from 80).
namespace sets {
enum Id { iso1, cp850, cp437, roman8, mac, ascii8, eucjis, sjis, deckanji };
}

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

// The byte of each code point below 800 (the two-byte characters of utf8), one lookup.
constexpr auto Sb_low = [] {
    std::array<std::array<uint8_t, 0x800>, Sb_sets> all{};
    for (size_t s = 0; s < all.size(); ++s)
        for (unsigned cp = 0; cp < 0x800; ++cp)
            all[s][cp] = Sb_inverse[s].pages[Sb_inverse[s].page_of[cp >> 8]][cp & 0xFF];
    return all;
}();

constexpr auto Sb_packed = [] {
    std::array<std::array<uint32_t, 256>, Sb_sets> all{};
    for (int s = 0; s < Sb_sets; ++s)
        for (unsigned b = 0; b < 256; ++b)
            all[static_cast<size_t>(s)][b] = pack(b < 0x80 ? b : Sb_ucs[s][b - 0x80]);
    return all;
}();

template <sets::Id S>
struct Sb {
    static constexpr int pair_len = 1; // bytes of a character that packed() translates
    // Longest translation of n bytes, in half bytes per byte: a byte gives up to three bytes
    // of utf8, a character of utf8 a byte.
    static constexpr int to_utf8_x2 = 6, from_utf8_x2 = 2;
    static uint32_t packed(const uint8_t *p) {
        if constexpr (S == sets::ascii8)
            return 0;
        else
            return Sb_packed[S][p[0]];
    }
    // Reader: the byte b >= 80.
    static Ucs read(const uint8_t *p, int32_t) {
        if constexpr (S == sets::ascii8) {
            return {Ucs::Bad, 1, 0};
        } else {
            const uint32_t cp = Sb_ucs[S][p[0] - 0x80];
            return {cp != 0 ? Ucs::Ok : Ucs::Bad, 1, cp};
        }
    }
    // Writer of a code point from 80: its byte, or 0 bytes when the set has none.
    static int put(uint32_t cp, uint8_t *out) {
        if constexpr (S == sets::ascii8) {
            (void)cp;
            (void)out;
            return 0;
        } else {
            if (cp > 0xFFFF) return 0;
            const SbInverse &inv = Sb_inverse[S];
            const uint8_t b =
                cp < 0x800 ? Sb_low[S][cp] : inv.pages[inv.page_of[cp >> 8]][cp & 0xFF];
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

// The packed translations of the ASCII bytes (NUL too: a byte like any other here), then of
// the JIS X 0208 grid by row and cell, as the eucjis windows read them.
constexpr auto Euc_words = [] {
    std::array<uint32_t, k_euc_words> t{};
    for (unsigned b = 0; b < k_euc_ascii; ++b)
        t[b] = b | 1U << 24;
    for (size_t i = 0; i < 94 * 94; ++i)
        t[k_euc_ascii + i] = pack(Jis0208_ucs[i]);
    return t;
}();

// A byte's part of a JIS X 0208 index as the first and as the second byte of an eucjis pair:
// for A1-FE its row times 94 and its cell, for any other byte a value that takes the sum of
// the two beyond the grid. So a pair is checked and indexed with one comparison.
constexpr uint32_t k_off_grid = 0x8000;
constexpr auto Euc_rows = [] {
    std::array<uint16_t, 256> t{};
    for (unsigned b = 0; b < 256; ++b)
        t[b] = static_cast<uint16_t>(jis::euc_byte(b) ? (b - 0xA1) * 94 : k_off_grid);
    return t;
}();
constexpr auto Euc_cells = [] {
    std::array<uint16_t, 256> t{};
    for (unsigned b = 0; b < 256; ++b)
        t[b] = static_cast<uint16_t>(jis::euc_byte(b) ? b - 0xA1 : k_off_grid);
    return t;
}();

// The code of a code point from 80 in the inverse above.
inline unsigned jis_code(uint32_t cp) {
    return cp <= 0xFFFF ? Jis_of[cp] : 0;
}

struct Euc {
    static constexpr int pair_len = 2;
    // A pair gives three bytes of utf8; a two-byte utf8 character may give a JIS X 0212 triple.
    static constexpr int to_utf8_x2 = 3, from_utf8_x2 = 3;
    static uint32_t packed(const uint8_t *p) {
        const uint32_t at = uint32_t{Euc_rows[p[0]]} + Euc_cells[p[1]];
        return at < 94 * 94 ? Euc_words[k_euc_ascii + at] : 0;
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
    static constexpr int to_utf8_x2 = 3, from_utf8_x2 = 2;
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

// The Shift-JIS bytes of each BMP code point in their order, first byte low (ASCII and a
// half-width kana are one byte, 0 none, NUL included), as the inverse above gives them: one
// lookup per character. (The tables are built by loops over the characters, not the code
// points, to keep compile-time work small.)
constexpr auto Sjis_of = [] {
    std::array<uint16_t, 0x10000> t{};
    for (unsigned cp = 1; cp < 0x80; ++cp)
        t[cp] = static_cast<uint16_t>(cp);
    for (int i = 0; i < 94 * 94; ++i) { // in the order Jis_of was written, so the same cell wins
        const unsigned cp = Jis0208_ucs[static_cast<size_t>(i)];
        if (cp < 0x80) continue;
        unsigned c1 = 0xA1 + i / 94, c2 = 0xA1 + i % 94;
        jis::jis_to_sjis(c1, c2);
        t[cp] = static_cast<uint16_t>(c2 << 8 | c1);
    }
    for (unsigned b = 0xA1; b <= 0xDF; ++b)
        t[kana_ucs(b)] = static_cast<uint16_t>(b);
    return t;
}();

struct Sjis {
    static constexpr int pair_len = 2;
    // A half-width kana byte gives three bytes of utf8.
    static constexpr int to_utf8_x2 = 6, from_utf8_x2 = 2;
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
        out[0] = static_cast<uint8_t>(v);
        if (v > 0xFF) out[1] = static_cast<uint8_t>(v >> 8);
        return (v != 0) + (v > 0xFF); // a pair, a half-width kana byte, or none
    }
    // The same storing both bytes whatever it counts (the fast loop, little-endian hosts).
    static int put_over(uint32_t cp, uint8_t *out) { // cp in [80, FFFF]
        const uint16_t v = Sjis_of[cp];
        std::memcpy(out, &v, sizeof v);
        return v > 0xFF ? 2 : v != 0;
    }
};

// ---- The two directions ----
//
// Each converter has a fast loop for the bulk of the text and a careful loop that finishes
// exactly at both ends. The fast loop copies ASCII a word at a time and translates any other
// character straight into the destination, storing a few bytes beyond those it keeps; iso_1
// takes 16 bytes at a time with byte shuffles first. Stores beyond the bytes kept are
// overwritten by what follows, so the fast loop runs only where that is certain: far from both
// ends of a long text (the careful loop then writes over them), or over a short value copied
// into a local buffer whose translation is copied out exactly.

constexpr int32_t k_block = 16; // an iso_1 block
// A long text: the fast loop starts while this many source bytes follow and this much room
// remains. It reads less than 32 bytes ahead of where it stands and stores at most 16 bytes
// beyond the bytes produced. The careful loop that follows takes at least 120 bytes, so at
// least 30 characters giving a byte each but the last, or fills the room to within 3 bytes:
// either way it writes over every byte the fast loop stored beyond its own. The windows read
// up to 65 bytes ahead and store up to 99 bytes beyond o_lim (so at least 29 short of the
// room's end); a window given up stores no further than the translation of its characters
// one at a time, which follows it, reaches.
constexpr int32_t k_src_margin = 128, k_dst_margin = 128;
// A short value is translated in local buffers when the room takes its longest translation:
// the source copy is followed by bytes FF, which no set reads as a character or as part of
// one, so no character is ever taken past the value's end.
constexpr int32_t k_short = 128, k_pad = 48;

// Bytes of ASCII at the start of a word read from memory, by its bits 0x80.
inline int ascii_prefix(uint64_t high_bits) {
    if constexpr (std::endian::native == std::endian::little)
        return std::countr_zero(high_bits) >> 3;
    else
        return std::countl_zero(high_bits) >> 3;
}

// The same for a word whose first byte is ASCII, [1, 8], without a test for a word all ASCII:
// a bit past the other bytes stands for a byte from 80 after them.
inline int ascii_run(uint64_t high_bits) {
    if constexpr (std::endian::native == std::endian::little)
        return 1 + (std::countr_zero(high_bits >> 8 | uint64_t{1} << 63) >> 3);
    else
        return 1 + (std::countl_zero(high_bits << 8 | 1) >> 3);
}

// The fast loop of both directions, from src[i] while i < stop and o < o_lim. ASCII goes a word
// at a time, stored whole and kept up to the first byte from 80 (so a run may end up to 7
// bytes past stop). Any other character goes first to usual(p, q, i, o), which translates
// the usual characters from p = src + i to q = dst + o with one lookup, advancing i and o,
// and gives false for the others; those go to step(at, to), which translates the character
// at src[at] into dst[to], advances to, and gives the source bytes it took, or 0 for a
// character cut by the end of the source, which ends the loop.
template <class Usual, class Step>
[[gnu::always_inline]] inline void blocks(const uint8_t *src, int32_t stop, uint8_t *dst,
                                          int32_t o_lim, int32_t &at, int32_t &to, Usual usual,
                                          Step step) {
    // Locals, since stores to dst could otherwise alias them, and as wide as a pointer, so
    // that no index is widened at each character.
    ptrdiff_t i = at, o = to;
    while (i < stop && o < o_lim) {
        if (src[i] < 0x80) {
            uint64_t w;
            std::memcpy(&w, src + i, sizeof w);
            std::memcpy(dst + o, &w, sizeof w);
            const int k = ascii_run(w & 0x8080808080808080ULL);
            i += k;
            o += k;
            continue;
        }
        if (usual(src + i, dst + o, i, o)) continue;
        auto o32 = static_cast<int32_t>(o);
        const int32_t len = step(static_cast<int32_t>(i), o32);
        if (len == 0) break;
        i += len;
        o = o32;
    }
    at = static_cast<int32_t>(i);
    to = static_cast<int32_t>(o);
}

// Stores k bytes, k in [0, 8], as two stores of one width that may overlap, so that nothing
// lands past them: ends(W) gives the words of type W of their first and of their last bytes.
template <class Ends>
[[gnu::always_inline]] inline void store_upto8(uint8_t *to, int32_t k, Ends ends) {
    auto two = [&]<class W>(W) {
        const auto [first, last] = ends(W{});
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + k - sizeof last, &last, sizeof last);
    };
    if (k >= 4)
        two(uint32_t{});
    else if (k >= 2)
        two(uint16_t{});
    else if (k == 1)
        two(uint8_t{});
}

// Copies k bytes, k in [0, 8], with at most two stores of each width: the ASCII ahead of a
// character, which must not spill past the bytes produced.
[[gnu::always_inline]] inline void copy_upto8(const uint8_t *from, uint8_t *to, int32_t k) {
    store_upto8(to, k, [&]<class W>(W) {
        W first, last;
        std::memcpy(&first, from, sizeof first);
        std::memcpy(&last, from + k - sizeof last, sizeof last);
        return std::pair{first, last};
    });
}

// Where a translation stands: source and destination positions and result bits so far.
struct At {
    int32_t i = 0, o = 0;
    bool bad = false, full = false;
};

// ---- iso_1 blocks: an iso_1 byte is its code point, so translation between iso_1 and utf8
// is arithmetic, done 16 bytes at a time with byte shuffles where the processor has them. ----

#ifdef COMN_XLT_SHUFFLE

// Entry k gathers to the front the bytes of an 8-byte group whose bits are set in k.
constexpr auto Gather8 = [] {
    std::array<std::array<uint8_t, 8>, 256> t{};
    for (unsigned k = 0; k < 256; ++k) {
        unsigned n = 0;
        for (unsigned j = 0; j < 8; ++j)
            if (k >> j & 1) t[k][n++] = static_cast<uint8_t>(j);
        for (; n < 8; ++n)
            t[k][n] = 0x80; // a zero byte, stored but not kept
    }
    return t;
}();

// Entry h takes, for each byte j of an 8-byte group, byte j of the first half of a vector,
// then byte 8 + j when bit j of h is set.
constexpr auto Spread8 = [] {
    std::array<std::array<uint8_t, 16>, 256> t{};
    for (unsigned h = 0; h < 256; ++h) {
        unsigned n = 0;
        for (unsigned j = 0; j < 8; ++j) {
            t[h][n++] = static_cast<uint8_t>(j);
            if (h >> j & 1) t[h][n++] = static_cast<uint8_t>(8 + j);
        }
        for (; n < 16; ++n)
            t[h][n] = 0x80;
    }
    return t;
}();

// The processor's extensions, settled when the library is loaded so that a short value pays no
// test of a guard; anything that translates before that reads false and takes the other paths.
const bool k_shuffle =
    (__builtin_cpu_init(), __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("popcnt"));
const bool k_avx2 =
    (__builtin_cpu_init(), __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                               __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt"));

// Whether PEXT takes a few cycles, as everywhere but on AMD (and Hygon) processors before
// family 19h, which run it as microcode, tens to hundreds of cycles.
const bool k_fast_pext = [] {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (__get_cpuid(0, &a, &b, &c, &d) == 0) return false;
    if (b != 0x68747541 && b != 0x6F677948) return true; // "Auth"enticAMD, "Hygo"nGenuine
    __get_cpuid(1, &a, &b, &c, &d);
    const unsigned base = a >> 8 & 0xF;
    return base + (base == 0xF ? (a >> 20 & 0xFF) : 0) >= 0x19;
}();

inline bool has_shuffle() {
    return k_shuffle;
}

// Byte shifts of a vector by a count known at run time, through a window into this table:
// the bytes moved in are 00.
constexpr auto Shift_window = [] {
    std::array<uint8_t, 48> t{};
    for (unsigned j = 0; j < t.size(); ++j)
        t[j] = j >= 16 && j < 32 ? static_cast<uint8_t>(j - 16) : 0x80;
    return t;
}();

// v's bytes moved k places up (towards higher addresses), k in [0, 16].
[[gnu::target("ssse3"), gnu::always_inline]] inline __m128i shift_up(__m128i v, int32_t k) {
    return _mm_shuffle_epi8(
        v, _mm_loadu_si128(reinterpret_cast<const __m128i *>(Shift_window.data() + 16 - k)));
}

// v's bytes moved k places down, k in [0, 16].
[[gnu::target("ssse3"), gnu::always_inline]] inline __m128i shift_down(__m128i v, int32_t k) {
    return _mm_shuffle_epi8(
        v, _mm_loadu_si128(reinterpret_cast<const __m128i *>(Shift_window.data() + 16 + k)));
}

// utf8 to iso_1 over the 16 bytes v when they hold ASCII and whole characters C2/C3 80-BF
// (a lead in the last byte is left for the next block): their translation packed at the
// front of out, width bytes taken, made bytes given; false for any other block. A block of
// ASCII alone is taken apart first.
[[gnu::target("ssse3,popcnt"), gnu::always_inline]] inline bool
iso1_from_utf8_v(__m128i v, __m128i &out, uint32_t &width, uint32_t &made) {
    const auto high = static_cast<uint32_t>(_mm_movemask_epi8(v));
    if (high == 0) {
        out = v;
        width = made = k_block;
        return true;
    }
    const __m128i is_lead = _mm_cmpeq_epi8(_mm_and_si128(v, bytes(0xFE)), bytes(0xC2));
    const auto leads = static_cast<uint32_t>(_mm_movemask_epi8(is_lead));
    const auto conts = static_cast<uint32_t>(
        _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_and_si128(v, bytes(0xC0)), bytes(0x80))));
    width = k_block - (leads >> 15); // bytes taken
    const uint32_t lead = leads & 0x7FFF, in = (1U << width) - 1;
    if (conts != lead << 1 || (high & in) != (lead | conts)) return false;
    // A lead's byte: its second byte, plus 40 after C3.
    const __m128i second = _mm_srli_si128(v, 1);
    const __m128i latin = _mm_add_epi8(second, _mm_slli_epi16(_mm_and_si128(v, bytes(1)), 6));
    const __m128i val = _mm_or_si128(_mm_and_si128(is_lead, latin), _mm_andnot_si128(is_lead, v));
    // The kept bytes of each half gathered to its front, the second half's right after the
    // first's, 00 after them: one shuffle over the whole block.
    const uint32_t keep = ~conts & in;
    const int n_lo = std::popcount(keep & 0xFF);
    const __m128i lo = _mm_and_si128(
        _mm_loadl_epi64(reinterpret_cast<const __m128i *>(Gather8[keep & 0xFF].data())),
        bytes(0x7F));
    const __m128i hi = _mm_add_epi8(
        _mm_loadl_epi64(reinterpret_cast<const __m128i *>(Gather8[keep >> 8].data())),
        _mm_set_epi64x(static_cast<int64_t>(0x8080808080808080ULL), 0x0808080808080808));
    out = _mm_shuffle_epi8(val, _mm_or_si128(lo, shift_up(hi, n_lo)));
    made = static_cast<uint32_t>(std::popcount(keep));
    return true;
}

// The same over the 16 bytes at p, advancing i and o. Stores up to 16 bytes at out.
[[gnu::target("ssse3,popcnt"), gnu::always_inline]] inline bool
iso1_from_utf8_block(const uint8_t *p, uint8_t *out, int32_t &i, int32_t &o) {
    __m128i v;
    uint32_t width, made;
    if (!iso1_from_utf8_v(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p)), v, width, made))
        return false;
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), v);
    i += static_cast<int32_t>(width);
    o += static_cast<int32_t>(made);
    return true;
}

// iso_1 to utf8 over the 16 bytes v: the translation of their first 8 in lo, of the other 8
// in hi, each packed at the front (8 bytes and one more per byte from 80); high tells the
// bytes from 80.
[[gnu::target("ssse3,popcnt"), gnu::always_inline]] inline void
iso1_to_utf8_v(__m128i v, uint32_t high, __m128i &lo, __m128i &hi) {
    // Each byte's first byte (ASCII, or C2/C3) in one half, its second in the other.
    const __m128i is_high = _mm_cmplt_epi8(v, _mm_setzero_si128());
    const __m128i lead =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi16(v, 6), bytes(0x03)), bytes(0xC0));
    const __m128i first = _mm_or_si128(_mm_and_si128(is_high, lead), _mm_andnot_si128(is_high, v));
    const __m128i second = _mm_and_si128(v, bytes(0xBF));
    lo = _mm_shuffle_epi8(
        _mm_unpacklo_epi64(first, second),
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(Spread8[high & 0xFF].data())));
    hi = _mm_shuffle_epi8(
        _mm_unpackhi_epi64(first, second),
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(Spread8[high >> 8].data())));
}

// The same over the 16 bytes at p, advancing i and o. Stores up to 32 bytes at out.
[[gnu::target("ssse3,popcnt"), gnu::always_inline]] inline bool
iso1_to_utf8_block(const uint8_t *p, uint8_t *out, int32_t &i, int32_t &o) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
    const auto high = static_cast<uint32_t>(_mm_movemask_epi8(v));
    if (high == 0) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), v);
    } else {
        __m128i lo, hi;
        iso1_to_utf8_v(v, high, lo, hi);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), lo);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 8 + std::popcount(high & 0xFF)), hi);
    }
    i += k_block;
    o += k_block + std::popcount(high);
    return true;
}

// The blocks above while whole blocks remain before stop and o < o_lim, up to the first
// block they do not take.
template <auto Block>
[[gnu::target("ssse3,popcnt")]] void iso1_blocks(const uint8_t *src, int32_t stop, uint8_t *dst,
                                                 int32_t o_lim, int32_t &at, int32_t &to) {
    int32_t i = at, o = to; // locals: stores to dst could otherwise alias them
    while (i + k_block <= stop && o < o_lim)
        if (!Block(src + i, dst + o, i, o)) break;
    at = i;
    to = o;
}

// A value of n bytes, n in [1, 32], read in place into lo (its first 16 bytes) and hi (the
// rest), bytes 00 after its end: loads that overlap rather than reach past either end.
[[gnu::target("ssse3"), gnu::always_inline]] inline void load_value(const uint8_t *p, int32_t n,
                                                                    __m128i &lo, __m128i &hi) {
    hi = _mm_setzero_si128();
    if (n >= 16) {
        lo = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        hi = shift_down(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p + n - 16)), 32 - n);
    } else if (n >= 8) {
        const __m128i head = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p));
        const __m128i tail = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p + n - 8));
        lo = _mm_or_si128(head, shift_up(tail, n - 8));
    } else {
        uint64_t w = 0;
        if (n >= 4) {
            uint32_t head, tail;
            std::memcpy(&head, p, sizeof head);
            std::memcpy(&tail, p + n - 4, sizeof tail);
            w = head | uint64_t{tail} << 8 * (n - 4);
        } else {
            w = p[0] | uint64_t{p[n / 2]} << 8 * (n / 2) | uint64_t{p[n - 1]} << 8 * (n - 1);
        }
        lo = _mm_cvtsi64_si128(static_cast<int64_t>(w));
    }
}

// Stores the first k bytes of lo then hi, k in [0, 32], and no byte beyond them.
[[gnu::target("ssse3"), gnu::always_inline]] inline void store_value(uint8_t *p, int32_t k,
                                                                     __m128i lo, __m128i hi) {
    if (k >= 16) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p), lo);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p + k - 16),
                         _mm_or_si128(shift_down(lo, k - 16), shift_up(hi, 32 - k)));
    } else if (k >= 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i *>(p), lo);
        _mm_storel_epi64(reinterpret_cast<__m128i *>(p + k - 8), shift_down(lo, k - 8));
    } else {
        uint8_t w[8]; // read back whole from the one store that wrote it
        _mm_storel_epi64(reinterpret_cast<__m128i *>(w), lo);
        copy_upto8(w, p, k);
    }
}

#endif

// From set From to utf8.
template <class From_>
struct ToUtf8 {
    using From = From_;
    // The fast loop's usual character (see blocks()): its packed translation, the word
    // stored whole. A pair's second byte may be read past the source, where bytes that no set
    // reads as part of a character follow it.
    [[gnu::always_inline]] static bool usual(const uint8_t *p, uint8_t *q, ptrdiff_t &i,
                                             ptrdiff_t &o) {
        const uint32_t v = From::packed(p);
        if (v == 0) return false;
        std::memcpy(q, &v, sizeof v);
        i += From::pair_len;
        o += v >> 24;
        return true;
    }

    // The step over the character at src[i] (a byte from 80); see careful() and fast().
    template <bool Exact>
    [[gnu::always_inline]] static int32_t step(const uint8_t *src, int32_t n, int32_t i,
                                               uint8_t *dst, int32_t m, int32_t &o, At &a) {
        // The careful loop takes the usual character through its packed translation too,
        // byte by byte (the fast loop has tried it before the step).
        if (const uint32_t v = Exact && n - i >= From::pair_len ? From::packed(src + i) : 0;
            v != 0) {
            const auto len = static_cast<int32_t>(v >> 24);
            if (len > m - o) {
                a.full = true;
                return 0;
            }
            dst[o] = static_cast<uint8_t>(v);
            if (len > 1) dst[o + 1] = static_cast<uint8_t>(v >> 8);
            if (len > 2) dst[o + 2] = static_cast<uint8_t>(v >> 16);
            o += len;
            return From::pair_len;
        }
        const Ucs c = From::read(src + i, n - i);
        if (c.kind == Ucs::Cut) return 0; // left for the next call
        uint8_t out[4];
        int len = c.len; // a character without a counterpart: one "?" per byte
        if (c.kind == Ucs::Ok)
            len = utf8_put(c.cp, out);
        else
            std::memset(out, '?', sizeof out);
        if (Exact && len > m - o) {
            a.full = true;
            return 0;
        }
        std::memcpy(dst + o, out, static_cast<size_t>(len));
        a.bad |= c.kind == Ucs::Bad;
        o += len;
        return c.len;
    }
};

// No set has a character for a surrogate code point, so the fast loop's lookups see none
// for the bytes of one (ill-formed UTF-8) and leave them to the step.
static_assert([] {
    for (unsigned cp = 0xD800; cp <= 0xDFFF; ++cp)
        if (Jis_of[cp] != 0 || Sjis_of[cp] != 0) return false;
    for (const SbInverse &inv : Sb_inverse)
        for (unsigned page = 0xD8; page <= 0xDF; ++page)
            if (inv.page_of[page] != 0) return false;
    return true;
}());

// From utf8 to set To.
template <class To>
struct FromUtf8 {
    // The fast loop's usual character (see blocks()): two or three bytes read from one word
    // (the loop has at least four bytes there) and a counterpart from one lookup, which may
    // store a few bytes beyond those it counts.
    [[gnu::always_inline]] static bool usual(const uint8_t *p, uint8_t *q, ptrdiff_t &i,
                                             ptrdiff_t &o) {
        uint32_t u = 0, cp = 0;
        std::memcpy(&u, p, sizeof u);
        // A set of pairs has its characters mostly among utf8's three-byte ones (kana, kanji).
        constexpr int first = To::pair_len == 2 ? 3 : 2;
        const int len = utf8_usual<true, first>(u, cp);
        if (len == 0) return false;
        int put = 0;
        if constexpr (requires { To::put_over(cp, q); })
            put = To::put_over(cp, q);
        else
            put = To::put(cp, q);
        if (put == 0) return false;
        i += len;
        o += put;
        return true;
    }

    // Like ToUtf8's, the step reading one character of utf8.
    template <bool Exact>
    [[gnu::always_inline]] static int32_t step(const uint8_t *src, int32_t n, int32_t i,
                                               uint8_t *dst, int32_t m, int32_t &o, At &a) {
        const Ucs c = utf8_char(src + i, n - i);
        // Writers write exactly the bytes they count, so with room for the longest the
        // character goes straight to the destination.
        uint8_t spare[4];
        uint8_t *out = !Exact || m - o >= 4 ? dst + o : spare;
        int len = c.kind == Ucs::Ok ? To::put(c.cp, out) : 0;
        const bool none = len == 0;
        if (none) { // one "?" per character or ill-formed subpart
            out[0] = '?';
            len = 1;
        }
        if (Exact && len > m - o) {
            a.full = true;
            return 0;
        }
        if (out == spare)
            for (int k = 0; k < len; ++k)
                dst[o + k] = spare[k];
        a.bad |= none;
        o += len;
        return c.len;
    }
};

// The fast loop of a converter over src[0..n), characters starting before stop (see blocks()).
template <class Dir>
void fast(const uint8_t *src, int32_t n, int32_t stop, uint8_t *dst, int32_t o_lim, At &a) {
    blocks(src, stop, dst, o_lim, a.i, a.o, Dir::usual, [&](int32_t at, int32_t &to) {
        return Dir::template step<false>(src, n, at, dst, 0, to, a);
    });
}

// Longest translation of a direction, in half bytes per byte.
template <class Dir>
constexpr int growth_x2 = 0;
template <class From>
constexpr int growth_x2<ToUtf8<From>> = From::to_utf8_x2;
template <class To>
constexpr int growth_x2<FromUtf8<To>> = To::from_utf8_x2;

#ifdef COMN_XLT_SHUFFLE
// The iso_1 blocks of a direction, where it has them.
template <class Dir>
constexpr auto iso1_block = nullptr;
template <>
constexpr auto iso1_block<ToUtf8<Sb<sets::iso1>>> = iso1_to_utf8_block;
template <>
constexpr auto iso1_block<FromUtf8<Sb<sets::iso1>>> = iso1_from_utf8_block;
#endif

#ifdef COMN_XLT_UTF8_WINDOWS
// The table of words of the windows of a direction from utf8, where it has them.
template <class Dir>
constexpr const uint16_t *window_words = nullptr;
template <>
constexpr const uint16_t *window_words<FromUtf8<Sjis>> = Sjis_of.data();

// The same for the windows of a direction into utf8 (jis_windows.h).
template <class Dir>
constexpr const uint32_t *euc_window_words = nullptr;
template <>
constexpr const uint32_t *euc_window_words<ToUtf8<Euc>> = Euc_words.data();
template <>
constexpr const uint32_t *euc_window_words<ToUtf8<DecKanji>> = Euc_words.data();

// windows(i, o) while it takes windows, the fast loop over the window it leaves, and more after
// each window given up at once, so that text the windows rarely take (with accented Latin, or
// kana of eucjis, say) pays little for them.
template <class Dir, class Windows>
void windows_then_fast(const uint8_t *src, int32_t n, int32_t stop, uint8_t *dst, int32_t o_lim,
                       At &a, Windows windows) {
    int32_t span = k_window;
    for (;;) {
        const int32_t from = a.i;
        windows(a.i, a.o);
        if (a.i >= stop || a.o >= o_lim) break;
        span = a.i == from ? std::min(span * 2, k_window * 64) : k_window;
        fast<Dir>(src, n, stop - a.i > span ? a.i + span : stop, dst, o_lim, a);
    }
}
#endif

// The fast part of a converter: the iso_1 blocks or the windows above while they apply, then
// the fast loop.
template <class Dir>
void run_fast(const uint8_t *src, int32_t n, int32_t stop, uint8_t *dst, int32_t o_lim, At &a) {
#ifdef COMN_XLT_UTF8_WINDOWS
    if constexpr (window_words<Dir> != nullptr)
        windows_then_fast<Dir>(src, n, stop, dst, o_lim, a, [&](int32_t &i, int32_t &o) {
            utf8_windows(src, stop, dst, o_lim, i, o, window_words<Dir>);
        });
    if constexpr (euc_window_words<Dir> != nullptr) {
        alignas(16) uint16_t code[k_window];
        EucWindows kind{euc_window_words<Dir>, code};
        windows_then_fast<Dir>(src, n, stop, dst, o_lim, a, [&](int32_t &i, int32_t &o) {
            window_loop(src, stop, dst, o_lim, i, o, kind);
        });
    }
#endif
#ifdef COMN_XLT_SHUFFLE
    if constexpr (iso1_block<Dir> != nullptr) {
        if (has_shuffle())
            for (;;) {
                iso1_blocks<iso1_block<Dir>>(src, stop, dst, o_lim, a.i, a.o);
                if (a.i + k_block > stop || a.o >= o_lim) break;
                fast<Dir>(src, n, a.i + k_block, dst, o_lim, a); // the block they left
            }
    }
#endif
    fast<Dir>(src, n, stop, dst, o_lim, a);
}

// The careful loop of both directions: exact at both ends, it reads only the source's bytes
// and writes only the bytes it produces. ASCII goes a word at a time where the word and its
// room are there; Dir::step translates any other character, advancing o, and gives the
// source bytes it took, or 0 when the character stops the translation (no room, or cut by
// the end of the source).
template <class Dir>
void careful(const uint8_t *src, int32_t n, uint8_t *dst, int32_t m, At &a) {
    At t = a; // a copy the compiler keeps in registers: stores to dst could alias a
    int32_t &i = t.i, &o = t.o;
    while (i < n) {
        if (src[i] >= 0x80) {
            const int32_t took = Dir::template step<true>(src, n, i, dst, m, o, t);
            if (took == 0) break;
            i += took;
            continue;
        }
        if (n - i >= 8 && m - o >= 8) {
            uint64_t w;
            std::memcpy(&w, src + i, sizeof w);
            const uint64_t high = w & 0x8080808080808080ULL;
            const int32_t k = high == 0 ? 8 : ascii_prefix(high); // [1, 8]
            copy_upto8(src + i, dst + o, k);
            i += k;
            o += k;
            continue;
        }
        if (o == m) {
            t.full = true;
            break;
        }
        dst[o++] = src[i++];
    }
    a = t;
}

// Copies k bytes, k in [0, k_short * 3], with loads and stores that stay within both ranges
// (16 bytes at a time, the last ones ending at the k-th byte, so they may overlap), and gives
// the OR of the bytes copied: its bits 0x80 tell whether a byte from 80 was among them. A
// value of 8 to 32 bytes takes no loop and no call.
[[gnu::always_inline]] inline uint64_t copy_short(const uint8_t *from, uint8_t *to, int32_t k) {
    using Word2 = uint64_t __attribute__((vector_size(16)));
    if (k < 16) {
        uint64_t lo = 0, hi = 0;
        if (k < 8) {
            copy_upto8(from, to, k);
            for (int32_t j = 0; j < k; ++j)
                lo |= from[j];
            return lo;
        }
        std::memcpy(&lo, from, sizeof lo);
        std::memcpy(&hi, from + k - 8, sizeof hi);
        std::memcpy(to, &lo, sizeof lo);
        std::memcpy(to + k - 8, &hi, sizeof hi);
        return lo | hi;
    }
    Word2 any{}, v;
    auto copy16 = [&](int32_t at) {
        std::memcpy(&v, from + at, sizeof v);
        std::memcpy(to + at, &v, sizeof v);
        any |= v;
    };
    if (k > 32)
        for (int32_t j = 16; j < k - 16; j += 16)
            copy16(j);
    copy16(0);
    copy16(k - 16);
    return any[0] | any[1];
}

// Sixteen bytes b at p, without a library call.
[[gnu::always_inline]] inline void fill16(uint8_t *p, uint8_t b) {
    const uint64_t w = b * 0x0101010101010101ULL;
    std::memcpy(p, &w, sizeof w);
    std::memcpy(p + 8, &w, sizeof w);
}

// A short value whose longest translation fits the room (n in [1, k_short]), in local
// buffers (a value between iso_1 and utf8 of up to 32 bytes has tried registers first, in
// iso1_value): a value of ASCII alone is the same in every set and is copied once; between
// iso_1 and utf8 the blocks run over the value and bytes 00 after it (ASCII, so they come
// last and give a byte each, and no character reaches into them: a lead byte before them is
// a cut character, which the blocks leave), and the bytes of the 00s are taken back; the
// fast loop, over the value followed by bytes FF, does the rest. The translation is then
// copied out exactly.
template <class Dir>
[[gnu::always_inline]] inline void short_value(const uint8_t *src, int32_t n, uint8_t *dst, At &a) {
    uint8_t in[k_short + k_pad], out[k_short * 3 + k_pad];
    if ((copy_short(src, in, n) & 0x8080808080808080ULL) == 0) {
        copy_short(in, dst, n);
        a.i = a.o = n;
        return;
    }
    At t;
#ifdef COMN_XLT_SHUFFLE
    if constexpr (iso1_block<Dir> != nullptr) {
        if (has_shuffle()) {
            fill16(in + n, 0);
            iso1_blocks<iso1_block<Dir>>(in, n + k_block - 1, out, INT32_MAX, t.i, t.o);
            if (t.i >= n) {
                t.o -= t.i - n;
                t.i = n;
            }
        }
    }
#endif
    if (t.i < n) {
        fill16(in + n, 0xFF); // the fast loop reads at most 8 bytes past the end
        fast<Dir>(in, n, n, out, INT32_MAX, t);
    }
    copy_short(out, dst, t.o);
    a = t;
}

// Whether a value of n bytes is short (up to limit) and the room of m bytes takes its longest
// translation, which the short-value paths need.
template <class Dir>
constexpr bool short_fits(int32_t n, int32_t m, int32_t limit) {
    return n > 0 && n <= limit && int64_t{m} * 2 >= int64_t{n} * growth_x2<Dir>;
}

// A converter: a short value through local buffers when the room takes its longest
// translation, else the fast loop while far from both ends, then the careful loop.
template <class Dir>
[[gnu::noinline]] int32_t translate_text(const uint8_t *src, int32_t srclen, uint8_t *dst,
                                         int32_t dstlen, int32_t *consumed, int32_t *produced) {
    const int32_t n = std::max(srclen, 0), m = std::max(dstlen, 0);
    At a;
    if (k_packed && short_fits<Dir>(n, m, k_short)) {
        short_value<Dir>(src, n, dst, a);
    } else {
        if (k_packed && n > k_src_margin && m > k_dst_margin)
            run_fast<Dir>(src, n, n - k_src_margin, dst, m - k_dst_margin, a);
        careful<Dir>(src, n, dst, m, a);
    }
    *consumed = a.i;
    *produced = a.o;
    return (a.full ? COM_XLT_TRUNCATED : 0) | (a.bad ? COM_XLT_BADCHAR : 0);
}

#include "avx2_value.h"
#include "iso1_value.h"
#include "jis_short.h"
#include "utf8_window_value.h"

#if defined(COMN_XLT_SHUFFLE) && defined(COMN_XLT_UTF8_WINDOWS)
// A utf8 value of n bytes, n in [1, k_window_value], into a set of the windows whose longest
// translation fits the room, in registers: read in place, stored back as it is when ASCII
// alone, else translated as one window straight into dst; a value the window does not take
// goes to translate_text, which writes over what the window stored. Pext: whether the
// processor's PEXT is quick (see utf8_window_value).
template <class Dir, bool Pext>
[[gnu::target("avx2,bmi,bmi2,popcnt")]] int32_t window_value(const uint8_t *src, int32_t n,
                                                             uint8_t *dst, int32_t m,
                                                             int32_t *consumed, int32_t *produced) {
    __m128i lo, hi;
    load_value(src, n, lo, hi);
    int32_t o = n;
    if (const __m256i v = _mm256_set_m128i(hi, lo); _mm256_movemask_epi8(v) == 0)
        store_value(dst, n, lo, hi);
    else if (o = utf8_window_value<Pext>(v, n, dst, window_words<Dir>); o < 0)
        return translate_text<Dir>(src, n, dst, m, consumed, produced);
    *consumed = n;
    *produced = o;
    return 0;
}
#endif

// A converter. Where the processor has AVX2, a utf8 value of up to 32 bytes into a set of the
// windows goes to window_value, an eucjis or sjis value of up to 32 bytes into utf8 to
// pairs_short_to_utf8 and a value of up to 32 bytes between iso_1 and utf8 to iso1_value,
// ahead of the frame of translate_text (its local buffers), which costs about as much as
// translating such a value.
template <class Dir>
int32_t translate(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen,
                  int32_t *consumed, int32_t *produced) {
#if defined(COMN_XLT_SHUFFLE) && defined(COMN_XLT_UTF8_WINDOWS)
    if constexpr (window_words<Dir> != nullptr)
        if (short_fits<Dir>(srclen, dstlen, k_window_value) && k_avx2)
            return k_fast_pext
                       ? window_value<Dir, true>(src, srclen, dst, dstlen, consumed, produced)
                       : window_value<Dir, false>(src, srclen, dst, dstlen, consumed, produced);
    if constexpr (requires { requires k_pairs_short<typename Dir::From>; })
        if (k_packed && short_fits<Dir>(srclen, dstlen, k_pairs_value) && k_avx2)
            return pairs_short_to_utf8<typename Dir::From>(src, srclen, dst, dstlen, consumed,
                                                           produced);
#endif
#ifdef COMN_XLT_SHUFFLE
    if constexpr (iso1_block<Dir> != nullptr)
        if (short_fits<Dir>(srclen, dstlen, k_iso1_value) && k_avx2)
            return iso1_value<Dir>(src, srclen, dst, dstlen, consumed, produced);
#endif
    return translate_text<Dir>(src, srclen, dst, dstlen, consumed, produced);
}

// The reader and writer of each set, by the name its converters carry.
template <sets::Id S>
using Set = std::conditional_t<
    S == sets::eucjis, Euc,
    std::conditional_t<S == sets::sjis, Sjis,
                       std::conditional_t<S == sets::deckanji, DecKanji, Sb<S>>>>;

} // namespace
} // namespace comn

extern "C" {

#define COMN_FROM_UTF8_ENTRY(set)                                                                  \
    COMN_API int32_t com__fou_utf8_to_##set(const uint8_t *src, int32_t srclen, uint8_t *dst,      \
                                            int32_t dstlen, int32_t *consumed,                     \
                                            int32_t *produced) {                                   \
        return comn::translate<comn::FromUtf8<comn::Set<comn::sets::set>>>(                        \
            src, srclen, dst, dstlen, consumed, produced);                                         \
    }
COMN_XLT_FROM_UTF8(COMN_FROM_UTF8_ENTRY)
#undef COMN_FROM_UTF8_ENTRY

#define COMN_TO_UTF8_ENTRY(set)                                                                    \
    COMN_API int32_t com__fou_##set##_to_utf8(const uint8_t *src, int32_t srclen, uint8_t *dst,    \
                                              int32_t dstlen, int32_t *consumed,                   \
                                              int32_t *produced) {                                 \
        return comn::translate<comn::ToUtf8<comn::Set<comn::sets::set>>>(src, srclen, dst, dstlen, \
                                                                         consumed, produced);      \
    }
COMN_XLT_TO_UTF8(COMN_TO_UTF8_ENTRY)
#undef COMN_TO_UTF8_ENTRY

} // extern "C"
