// Long UTF-8 text read 64 bytes at a time, for the converters from utf8 whose set gives any
// BMP code point at most two bytes, found in one table of words by code point (first byte low;
// ASCII and other one-byte characters at most FF; 0 when the set has no character). Mixed
// text, with a lone ASCII byte among every few kanji, is the case this is for: a loop that takes
// one character and learns where the next one starts from its length mispredicts at each change
// between ASCII and the rest.
//
// Here 16-byte compares find the continuation bytes (80-BF) of the whole window. When the window
// is well-formed in the simplest way (every continuation byte where a lead C2-DF or E1-EF before
// it expects one, and none of the bytes that need a closer look: C0, C1, E0, F0-FF), the code
// point of every character is worked out at the position of its last byte for all 16 bytes of a
// vector at once, with the bytes before each position masked by whether they belong to its
// character. The characters that end inside the window are then taken by one branch-free loop
// over the mask of the last bytes (a byte followed by a start), ASCII or not, each iteration
// waiting on the one before only for the output position. A window that is not that simple, or
// has a character without counterpart (NUL and surrogates included: the table has no word for
// them), is left to the caller's character-at-a-time loop, its translation dropped by not
// advancing the output position.
//
// x86 with SSE2 only; elsewhere the caller's loop does all the work.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#ifdef __SSE2__
#include <emmintrin.h>
#define COMN_XLT_UTF8_WINDOWS 1
#endif

namespace comn {

#ifdef COMN_XLT_UTF8_WINDOWS

constexpr int32_t k_window = 64; // bytes read at a time

// Sixteen bytes b.
inline __m128i bytes(int b) {
    return _mm_set1_epi8(static_cast<char>(b));
}

// One window's masks, bit j for byte j.
struct Window {
    uint64_t cont = 0;  // 80-BF
    uint64_t lead = 0;  // C0-FF
    uint64_t lead3 = 0; // E0-FF
    uint64_t high = 0;  // 80-FF
    bool odd = false;   // any of C0, C1, E0, F0-FF
};

template <int At>
[[gnu::always_inline]] inline __m128i window_load(const uint8_t *w) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(w + At));
}

// The masks of the 16 bytes At from the window's start w.
template <int At>
[[gnu::always_inline]] inline void window_group_masks(const uint8_t *w, Window &win, __m128i &odd) {
    const __m128i v = window_load<At>(w);
    const auto mask = [](__m128i x) {
        return static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(x))) << At;
    };
    win.high |= mask(v);
    win.cont |= mask(_mm_cmplt_epi8(v, bytes(0xC0))); // signed: 80-BF are the lowest
    win.lead3 |= mask(_mm_slli_epi16(v, 2));          // bit 5 of every byte
    odd = _mm_or_si128(odd, _mm_cmpeq_epi8(_mm_and_si128(v, bytes(0xFE)), bytes(0xC0)));
    odd = _mm_or_si128(odd, _mm_cmpeq_epi8(v, bytes(0xE0)));
    odd = _mm_or_si128(odd, _mm_cmpeq_epi8(_mm_max_epu8(v, bytes(0xF0)), v));
}

// The masks of the window at w.
[[gnu::always_inline]] inline Window window_masks(const uint8_t *w) {
    Window win;
    __m128i odd = _mm_setzero_si128();
    [&]<int... G>(std::integer_sequence<int, G...>) {
        (window_group_masks<G * 16>(w, win, odd), ...);
    }
    (std::make_integer_sequence<int, k_window / 16>{});
    win.lead = win.high & ~win.cont;
    win.lead3 &= win.lead;
    win.odd = _mm_movemask_epi8(odd) != 0;
    return win;
}

// At each of the 16 bytes At from the window's start w, the code point of the character whose
// last byte it would be. It takes the two bytes before; at the window's start they are not read
// but taken as 00 (never part of a character there).
template <int At>
[[gnu::always_inline]] inline void window_group_codes(const uint8_t *w, uint16_t *code) {
    const __m128i v = window_load<At>(w);
    const __m128i v1 = At == 0 ? _mm_slli_si128(v, 1) : window_load<At - 1>(w);
    const __m128i v2 = At == 0 ? _mm_slli_si128(v, 2) : window_load<At - 2>(w);
    const __m128i cont = _mm_cmplt_epi8(v, bytes(0xC0));
    const __m128i cont1 = _mm_cmplt_epi8(v1, bytes(0xC0));
    // The payloads of a character's last byte (6 or 7 bits: ASCII and continuation bytes have
    // bit 6 clear), of the byte before when the last is a continuation (6 bits: a two-byte lead
    // has bit 5 clear) and of the byte before that when both are (4 bits of a three-byte lead).
    const __m128i lo = _mm_and_si128(v, bytes(0x7F));
    const __m128i mid = _mm_and_si128(_mm_and_si128(v1, bytes(0x3F)), cont);
    const __m128i hi = _mm_and_si128(_mm_and_si128(v2, bytes(0x0F)), _mm_and_si128(cont, cont1));
    // Code point bytes: lo | mid << 6 below, mid >> 2 | hi << 4 above (no shift carries a bit
    // across a byte once masked).
    const __m128i below = _mm_or_si128(lo, _mm_slli_epi16(_mm_and_si128(mid, bytes(0x03)), 6));
    const __m128i above =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi16(mid, 2), bytes(0x0F)), _mm_slli_epi16(hi, 4));
    _mm_store_si128(reinterpret_cast<__m128i *>(code + At), _mm_unpacklo_epi8(below, above));
    _mm_store_si128(reinterpret_cast<__m128i *>(code + At + 8), _mm_unpackhi_epi8(below, above));
}

[[gnu::always_inline]] inline void window_codes(const uint8_t *w, uint16_t *code) {
    [&]<int... G>(std::integer_sequence<int, G...>) {
        (window_group_codes<G * 16>(w, code), ...);
    }
    (std::make_integer_sequence<int, k_window / 16>{});
}

// Whether the masks are of the simplest well-formed text: each lead's continuation bytes, and
// no others (so the bytes start on a character), and no byte that needs a closer look.
[[gnu::always_inline]] inline bool window_simple(const Window &win) {
    return !win.odd && win.cont == (win.lead << 1 | win.lead3 << 2);
}

// Translates the characters whose last bytes are set in ends (not 0) through words into q,
// storing a byte beyond their output; the end of their output. none gets the sign bit when a
// character has no word.
[[gnu::always_inline]] inline uint8_t *window_take(const uint16_t *code, uint64_t ends, uint8_t *q,
                                                   const uint16_t *words, int32_t &none) {
    do {
        const uint32_t v = words[code[static_cast<unsigned>(std::countr_zero(ends))]];
        std::memcpy(q, &v, 2);
        q += (v + 0x1FF00) >> 16; // 1, or 2 from 100
        none |= static_cast<int32_t>(v) - 1;
        ends &= ends - 1;
    } while (ends != 0);
    return q;
}

// The loop over windows, of utf8 here and of other sets elsewhere: from src[at] while at < stop
// and to < o_lim, up to the first window not taken whole. kind.simple(p) tells whether the
// window at p is one the kind takes, keeping its masks, and kind.high() its bytes from 80 (none:
// ASCII alone, the same in every set, copied here); kind.take(p, q) then translates it into q,
// advancing q, and gives the bytes it took, or 0 when it gives the window up (having stored what
// it likes, q unchanged: the caller's loop then writes over it).
template <class Kind>
[[gnu::always_inline]] inline void window_loop(const uint8_t *src, int32_t stop, uint8_t *dst,
                                               int32_t o_lim, int32_t &at, int32_t &to,
                                               Kind &kind) {
    // Locals: stores to dst could otherwise alias at and to.
    const uint8_t *p = src + at, *const p_end = src + stop;
    uint8_t *q = dst + to, *const q_lim = dst + o_lim;
    while (p < p_end && q < q_lim) {
        if (!kind.simple(p)) break;
        if (kind.high() == 0) {
            std::memcpy(q, p, k_window);
            p += k_window;
            q += k_window;
            continue;
        }
        const int32_t took = kind.take(p, q);
        if (took == 0) break;
        p += took;
    }
    at = static_cast<int32_t>(p - src);
    to = static_cast<int32_t>(q - dst);
}

// Translates windows from src[at] while at < stop and to < o_lim, up to the first window that
// is not taken whole, through words, the table of words by code point. Reads k_window bytes
// from each window's start; stores a byte beyond the output of the characters it takes, and
// up to k_window bytes beyond o_lim. A window given up has stored exactly as many bytes as its
// characters take when translated one at a time (one for a character without a word, its
// "?"), and one more: what the caller's loop translates next writes over them.
[[gnu::always_inline]] inline void utf8_windows(const uint8_t *src, int32_t stop, uint8_t *dst,
                                                int32_t o_lim, int32_t &at, int32_t &to,
                                                const uint16_t *words) {
    alignas(16) uint16_t code[k_window];
    struct {
        const uint16_t *words;
        Window win;
        uint16_t *code; // k_window of them, aligned on 16 bytes
        [[gnu::always_inline]] bool simple(const uint8_t *p) {
            win = window_masks(p);
            return window_simple(win);
        }
        uint64_t high() const { return win.high; }
        [[gnu::always_inline]] int32_t take(const uint8_t *p, uint8_t *&q) {
            window_codes(p, code);
            // The last bytes of the characters that end in the window (followed there by a
            // start); a window holds a whole character.
            const uint64_t ends = ~win.cont >> 1;
            const int32_t took = k_window - std::countl_zero(ends);
            int32_t none = 0; // sign bit: a character without a word
            uint8_t *end = window_take(code, ends, q, words, none);
            if (none < 0) return 0;
            q = end;
            return took;
        }
    } kind{words, {}, code};
    window_loop(src, stop, dst, o_lim, at, to, kind);
}

#endif

} // namespace comn
