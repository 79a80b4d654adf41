// Short values of eucjis and sjis to utf8 without a branch per character. Part of
// xlate_utf8.cpp, included where its value loads and stores, spreads and set readers are
// defined.
//
// A value of up to 32 bytes is read in place into one 256-bit vector. The bytes that may start
// a pair (any byte from 80 in eucjis, 81-9F and E0-FC in sjis) come from compares; where they
// stand together, the first of each run starts a pair, and every other one after it, which mask
// arithmetic finds for the whole value at once (pair_firsts, jis_windows.h). Every other
// character is a byte of its own. The output is staged two bytes per position: each position's
// first output byte, and a pair's second one beside its first byte's. The value's bytes are
// stored there first, then each pair's packed translation whole at its first byte, so that its
// third byte falls on its second byte's place. The pairs' table indexes come from vector
// arithmetic, and the loop over the pairs runs a fixed count (two per four bytes of the value),
// the stores past the last pair landing beyond the 32 positions, so that its exit does not
// depend on the characters. Each 8 positions are then spread to their output by one shuffle, a
// pair's first byte taking two places, and the four pieces joined by shifts and written
// exactly.
//
// Only the usual value goes this way: ASCII and pairs whose characters take three bytes of
// utf8. A half-width kana, an eucjis 8E or 8F character, a pair without a character (or with
// one of fewer bytes, Greek and Latin symbols), a lead cut by the value's end, any other byte
// from 80 standing alone or a translation over 32 bytes sends the whole value to the general
// path, with nothing written.
//
// x86 with AVX2, BMI1 and BMI2, chosen at run time by the caller.
#pragma once

#if defined(COMN_XLT_SHUFFLE) && defined(COMN_XLT_UTF8_WINDOWS)

#define COMN_XLT_PAIRS gnu::target("avx2,bmi,bmi2,popcnt")

// What the routine below needs of a set: the bytes that may start a pair (framing), as a vector
// with bytes FF there; whether a value does not fit this path (misfit: not 0 when a byte from
// 80 stands outside a pair, a pair's first or second byte is not one of the table's, or the
// last pair is cut by the value's end); and the word index in the table of the pair at each
// position (used where a pair starts), from its first byte f and second byte s, as words of two
// bytes for positions 0-7 and 16-23 (lo), 8-15 and 24-31 (hi), as the byte unpacks give them.
template <class From>
struct PairSet;

// The bytes of v in [lo, hi]: moved to [-128, -128 + hi - lo] by one addition, then compared.
[[COMN_XLT_PAIRS, gnu::always_inline]] inline __m256i in_range(__m256i v, int lo, int hi) {
    return _mm256_cmpgt_epi8(bytes32(hi - lo + 1 - 0x80), _mm256_add_epi8(v, bytes32(0x80 - lo)));
}

template <>
struct PairSet<Euc> {
    static constexpr const uint32_t *table = Euc_words.data();
    [[COMN_XLT_PAIRS]] static __m256i may_lead(__m256i v) { return v; }
    // Every byte from 80 may start a pair, so each is in one; the pairs' bytes must be A1-FE,
    // which the bytes 00 after the value are not.
    [[COMN_XLT_PAIRS]] static uint64_t misfit(__m256i v, uint64_t, uint64_t leads, int32_t) {
        return (leads | leads << 1) & ~mask32(in_range(v, 0xA1, 0xFE));
    }
    // k_euc_ascii + (f - A1) * 94 + s - A1: multiplied and added with 94 | 1 << 8.
    [[COMN_XLT_PAIRS, gnu::always_inline]] static void index(__m256i f, __m256i s, __m256i &lo,
                                                             __m256i &hi) {
        const __m256i row = _mm256_subs_epu8(f, bytes32(0xA1)),
                      weights = _mm256_set1_epi16(94 | 1 << 8),
                      base = _mm256_set1_epi16(k_euc_ascii - 0xA1);
        lo = _mm256_add_epi16(_mm256_maddubs_epi16(_mm256_unpacklo_epi8(row, s), weights), base);
        hi = _mm256_add_epi16(_mm256_maddubs_epi16(_mm256_unpackhi_epi8(row, s), weights), base);
    }
};

template <>
struct PairSet<Sjis> {
    static constexpr const uint32_t *table = Sjis_packed.data();
    [[COMN_XLT_PAIRS]] static __m256i may_lead(__m256i v) {
        return _mm256_or_si256(in_range(v, 0x81, 0x9F), in_range(v, 0xE0, 0xFC));
    }
    // Second bytes of every kind follow a lead: the table has no character for the others, nor
    // for a lead and the byte 00 after the value, which a lead cut by its end meets.
    [[COMN_XLT_PAIRS]] static uint64_t misfit(__m256i v, uint64_t high, uint64_t leads, int32_t) {
        const __m256i lead = _mm256_or_si256(in_range(v, 0x81, 0x9F), in_range(v, 0xE0, 0xEF));
        return (high & ~(leads | leads << 1)) | (leads & ~mask32(lead));
    }
    // Row * 256 + s, the words s | row << 8: the row is f - 80 up to 9F, f - C0 from E0.
    [[COMN_XLT_PAIRS, gnu::always_inline]] static void index(__m256i f, __m256i s, __m256i &lo,
                                                             __m256i &hi) {
        __m256i row = _mm256_subs_epu8(f, bytes32(0x80));
        row = _mm256_sub_epi8(
            row, _mm256_and_si256(_mm256_cmpgt_epi8(row, bytes32(0x5F)), bytes32(0x40)));
        lo = _mm256_unpacklo_epi8(s, row);
        hi = _mm256_unpackhi_epi8(s, row);
    }
};

// Sets whose short values go this way.
template <class From>
constexpr bool k_pairs_short = requires {
    PairSet<From>::table;
};

constexpr int32_t k_pairs_value = 32; // longest value taken, and longest translation

// The bytes of v one place down (00 last).
[[COMN_XLT_PAIRS, gnu::always_inline]] inline __m256i down1(__m256i v) {
    return _mm256_alignr_epi8(_mm256_permute2x128_si256(v, v, 0x81), v, 1);
}

// Two groups of 8 positions (c: in each lane, 8 bytes of output, then the second output bytes
// of those whose bit is set in two), spread to their 8 to 16 output bytes, in each lane.
[[COMN_XLT_PAIRS, gnu::always_inline]] inline __m256i spread_pairs(__m256i c, uint64_t two) {
    const auto *t = reinterpret_cast<const __m128i *>(Spread8.data());
    const __m128i first = _mm_loadu_si128(t + (two & 0xFF));
    return _mm256_shuffle_epi8(c,
                               _mm256_inserti128_si256(_mm256_castsi128_si256(first),
                                                       _mm_loadu_si128(t + (two >> 8 & 0xFF)), 1));
}

// 16 bytes: a then b placed k bytes on (k in [0, 16]), as the first 16 bytes in lo and the rest
// of b at the front of hi.
[[COMN_XLT_PAIRS, gnu::always_inline]] inline void join(__m128i a, __m128i b, int32_t k,
                                                        __m128i &lo, __m128i &hi) {
    const auto *w = reinterpret_cast<const __m128i *>(Shift_window.data() + k_block - k);
    lo = _mm_or_si128(a, _mm_shuffle_epi8(b, _mm_loadu_si128(w))); // shift_up(b, k)
    hi = _mm_shuffle_epi8(b, _mm_loadu_si128(w + 1));              // shift_down(b, 16 - k)
}

// The converter of set From to utf8 for a value src of n bytes, n in [1, k_pairs_value],
// whose longest translation fits the room: a value of ASCII and usual pairs here, translated
// and written exactly; any other, having written nothing, by the general path (a tail call, so
// that the entry saves nothing for it).
template <class From>
[[COMN_XLT_PAIRS]] int32_t pairs_short_to_utf8(const uint8_t *src, int32_t n, uint8_t *dst,
                                               int32_t dstlen, int32_t *consumed,
                                               int32_t *produced) {
    using P = PairSet<From>;
    __m128i half0, half1;
    load_value(src, n, half0, half1); // bytes 00 after the value
    const __m256i v = _mm256_set_m128i(half1, half0);
    const uint64_t high = mask32(v);
    if (high == 0) { // ASCII alone: the same in every set
        store_value(dst, n, half0, half1);
        *consumed = *produced = n;
        return 0;
    }
    const uint64_t leads = pair_firsts(mask32(P::may_lead(v)));
    const int32_t o = n + std::popcount(leads);
    if (P::misfit(v, high, leads, n) != 0 || o > k_pairs_value)
        return translate_text<ToUtf8<From>>(src, n, dst, dstlen, consumed, produced);

    // The table index of the pair at each position, and for the look-ups past the last pair
    // the first pair's (a value with a byte from 80 that fits has a pair).
    uint16_t at[k_pairs_value + 1];
    {
        __m256i lo, hi;
        P::index(v, down1(v), lo, hi);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(at),
                            _mm256_permute2x128_si256(lo, hi, 0x20));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(at + 16),
                            _mm256_permute2x128_si256(lo, hi, 0x31));
        at[k_pairs_value] = at[std::countr_zero(leads)];
    }
    // The output of position j at 2j, and a pair's second output byte at 2j + 1: the value's
    // bytes, then each pair's word stored whole at its first byte (its last byte, the count,
    // falls on a place that is not read). The stores past the last pair go to 64.
    uint8_t stage[2 * k_pairs_value + 4];
    {
        const __m256i by_half = _mm256_permute4x64_epi64(v, 0xD8); // 0-7, 16-23, 8-15, 24-31
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(stage),
                            _mm256_unpacklo_epi8(by_half, by_half));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(stage + 32),
                            _mm256_unpackhi_epi8(by_half, by_half));
    }
    // Two pairs at most in each 4 bytes. The AND of the words read must say three bytes.
    auto l = static_cast<uint32_t>(leads);
    uint32_t all = ~0U;
    for (auto k = (static_cast<uint32_t>(n) + 3) / 4; k > 0; --k)
        for (int twice = 0; twice < 2; ++twice) {
            const auto i = static_cast<size_t>(std::countr_zero(l)); // 32 when none is left
            const uint32_t w = P::table[at[i]];
            std::memcpy(stage + 2 * i, &w, sizeof w);
            all &= w;
            l &= l - 1;
        }
    if ((all >> 24 & 3) != 3)
        return translate_text<ToUtf8<From>>(src, n, dst, dstlen, consumed, produced);
    // In order: 8 positions' first bytes then second bytes, four times.
    const __m256i apart = _mm256_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15, //
                                           0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    const __m256i c0 =
        _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(stage)), apart);
    const __m256i c1 = _mm256_shuffle_epi8(
        _mm256_loadu_si256(reinterpret_cast<const __m256i *>(stage + 32)), apart);

    // Each 8 positions spread to their 8 to 16 output bytes, then joined.
    const __m256i s01 = spread_pairs(c0, leads), s23 = spread_pairs(c1, leads >> 16);
    __m128i out0, out1, p23, beyond;
    join(_mm256_castsi256_si128(s01), _mm256_extracti128_si256(s01, 1),
         8 + std::popcount(leads & 0xFF), out0, out1);
    join(_mm256_castsi256_si128(s23), _mm256_extracti128_si256(s23, 1),
         8 + std::popcount(leads >> 16 & 0xFF), p23, beyond); // beyond: past 32 bytes, none
    out1 = _mm_or_si128(out1, shift_up(p23, std::popcount(leads & 0xFFFF)));
    store_value(dst, o, out0, out1);
    *consumed = n;
    *produced = o;
    return 0;
}

#undef COMN_XLT_PAIRS

#endif
