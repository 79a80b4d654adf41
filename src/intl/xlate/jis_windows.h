// Long eucjis text (and DEC Kanji, whose pairs are the same) into utf8, read 64 bytes at a
// time. Mixed text, a lone ASCII byte or two among kanji, is the case this is for: a loop that
// takes one character and learns where the next one starts from its first byte mispredicts at
// each change between ASCII and pairs.
//
// A window is simple when every byte from 80 in it is A1-FE (no kana lead 8E, no
// supplementary lead 8F, no 80-A0 or FF, all of which the character-at-a-time loop sorts out)
// and each run of such bytes is a sequence of whole pairs: the window starts on a character,
// so the pairs' first bytes are every other byte of a run from its first, and mask arithmetic
// finds them for the whole window at once. A run still open at the window's end leaves its
// last pair to the next window when that pair's second byte lies beyond. The characters are
// then taken by one branch-free loop over the mask of character starts, ASCII byte or pair:
// one lookup in a table of packed translations (ASCII first, then the JIS X 0208 grid), one
// four-byte store, the output advancing by 1 or 3. A window that is not simple, or holds a
// pair without counterpart (its word is 0), is left to the caller's character-at-a-time loop,
// its translation dropped by not advancing the output position.
//
// x86 with SSE2 only (as the utf8 windows); elsewhere the caller's loop does all the work.
#pragma once

#include "utf8_windows.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace comn {

// The words of the table the windows read: k_euc_ascii words for the ASCII bytes, then one
// per cell of the grid, row by row (94 by 94). Each holds a character's UTF-8 bytes in their
// order, first byte low, and their count in bits 24-25; 0 for a cell without character.
constexpr int32_t k_euc_ascii = 128;
constexpr int32_t k_euc_words = k_euc_ascii + 94 * 94;

// The first bytes of the pairs in a mask of bytes that may start one (bit j for byte j; bit 0
// starts a run, the byte before it having ended a character): in each run of such bytes, its
// first byte and every other one after it. Adding a run's first bit clears the run (the carry
// stops at the byte after it), which finds the runs that start at an odd position.
constexpr uint64_t pair_firsts(uint64_t may) {
    constexpr uint64_t even = 0x5555555555555555ULL;
    const uint64_t starts = may & ~(may << 1);
    const uint64_t odd_runs = may & ~(may + (starts & ~even));
    return may & (even ^ odd_runs);
}
// The same as reading the bytes one at a time, for every mask of 12 bytes and its last
// byte's neighbours.
static_assert([] {
    for (uint64_t may = 0; may < 1U << 12; ++may) {
        uint64_t firsts = 0;
        for (int j = 0; j < 12; ++j)
            if (may >> j & 1) firsts |= uint64_t{1} << j++; // the byte after a first is its own
        if (pair_firsts(may) != firsts || pair_firsts(may << 20) != firsts << 20 ||
            pair_firsts(may << 52) != firsts << 52)
            return false;
    }
    return true;
}());

#ifdef COMN_XLT_UTF8_WINDOWS

// Bytes A1-FE of a window (high), and any byte from 80 that is not (bad), 16 bytes At on.
template <int At>
[[gnu::always_inline]] inline void euc_group_masks(const uint8_t *w, uint64_t &high, __m128i &bad) {
    const __m128i v = window_load<At>(w);
    high |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(v))) << At;
    // Signed: 80-A0 are below A1, and FF is the one byte from 80 above FE.
    bad = _mm_or_si128(bad, _mm_cmplt_epi8(v, bytes(0xA1)));
    bad = _mm_or_si128(bad, _mm_cmpeq_epi8(v, bytes(0xFF)));
}

// Whether the 64 bytes at w hold only ASCII and bytes A1-FE; high gets the mask of the latter.
[[gnu::always_inline]] inline bool euc_window_bytes(const uint8_t *w, uint64_t &high) {
    __m128i bad = _mm_setzero_si128();
    high = 0;
    [&]<int... G>(std::integer_sequence<int, G...>) {
        (euc_group_masks<G * 16>(w, high, bad), ...);
    }
    (std::make_integer_sequence<int, k_window / 16>{});
    return _mm_movemask_epi8(bad) == 0;
}

// The bits set in x, without a library call where the processor's count is not assumed.
constexpr int euc_bit_count(uint64_t x) {
    x -= x >> 1 & 0x5555555555555555ULL;
    x = (x & 0x3333333333333333ULL) + (x >> 2 & 0x3333333333333333ULL);
    x = (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0FULL;
    return static_cast<int>(x * 0x0101010101010101ULL >> 56);
}

// At each of the 16 bytes At from the window's start w, the index into the table of words of
// the character that would start there: the byte itself for ASCII, else k_euc_ascii plus the
// grid cell of the pair it begins with the byte after it (w[At + 16] is read, at most the
// byte after the window).
template <int At>
[[gnu::always_inline]] inline void euc_group_codes(const uint8_t *w, uint16_t *code) {
    const __m128i v = window_load<At>(w), next = window_load<At + 1>(w);
    const __m128i zero = _mm_setzero_si128();
    constexpr int base = k_euc_ascii - (0xA1 * 94 + 0xA1); // fits 16 bits with the product
    const auto half = [&](__m128i b0, __m128i b1, uint16_t *out) {
        const __m128i pair = _mm_add_epi16(_mm_mullo_epi16(b0, _mm_set1_epi16(94)),
                                           _mm_add_epi16(b1, _mm_set1_epi16(base)));
        const __m128i is_pair = _mm_cmpgt_epi16(b0, _mm_set1_epi16(0x7F));
        _mm_store_si128(reinterpret_cast<__m128i *>(out),
                        _mm_or_si128(_mm_and_si128(is_pair, pair), _mm_andnot_si128(is_pair, b0)));
    };
    half(_mm_unpacklo_epi8(v, zero), _mm_unpacklo_epi8(next, zero), code + At);
    half(_mm_unpackhi_epi8(v, zero), _mm_unpackhi_epi8(next, zero), code + At + 8);
}

[[gnu::always_inline]] inline void euc_window_codes(const uint8_t *w, uint16_t *code) {
    static_assert(k_window == 64);
    euc_group_codes<0>(w, code);
    euc_group_codes<16>(w, code);
    euc_group_codes<32>(w, code);
    euc_group_codes<48>(w, code);
}

// Translates the characters that start at the bits of starts (not 0) through words into q,
// storing up to 3 bytes beyond their output; the end of their output. A character without a
// word takes no bytes, which the caller sees from the length.
[[gnu::always_inline]] inline uint8_t *euc_window_take(const uint16_t *code, uint64_t starts,
                                                       uint8_t *q, const uint32_t *words) {
    do {
        const uint32_t v = words[code[static_cast<unsigned>(std::countr_zero(starts))]];
        std::memcpy(q, &v, sizeof v);
        q += v >> 24;
        starts &= starts - 1;
    } while (starts != 0);
    return q;
}

// The eucjis kind of window_loop (utf8_windows.h), through words (k_euc_words of them, laid out
// as above). Reads k_window + 1 bytes from each window's start and stores up to 3 bytes beyond
// the output of the characters it takes (so up to 99 beyond o_lim). A window given up has
// stored no further than its characters' translation one at a time reaches (a pair without
// counterpart takes no bytes here and two "?" there), and 3 bytes more: what the caller's loop
// translates next writes over them.
struct EucWindows {
    const uint32_t *words;
    uint16_t *code; // k_window of them, aligned on 16 bytes
    uint64_t bytes = 0, firsts = 0, seconds = 0;

    [[gnu::always_inline]] bool simple(const uint8_t *p) {
        if (!euc_window_bytes(p, bytes)) return false;
        firsts = pair_firsts(bytes);
        seconds = bytes & ~firsts;
        return seconds == firsts << 1; // no run of odd length ends inside
    }
    uint64_t high() const { return bytes; }
    [[gnu::always_inline]] int32_t take(const uint8_t *p, uint8_t *&q) {
        euc_window_codes(p, code);
        // A pair whose second byte is in the next window is left to it.
        const uint64_t open = firsts >> 63 << 63;
        const int32_t took = k_window - static_cast<int32_t>(open >> 63);
        uint8_t *end = euc_window_take(code, ~seconds & ~open, q, words);
        // A byte each for the bytes taken, and one more for each pair.
        if (end - q != took + euc_bit_count(firsts & ~open)) return 0;
        q = end;
        return took;
    }
};

#endif

} // namespace comn
