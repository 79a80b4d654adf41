// Short values of eucjis and sjis to utf8 without a branch per character. Part of
// xlate_utf8.cpp, included where its value loads and stores, spreads and set readers are
// defined.
//
// A value of up to 32 bytes is read in place into two vectors. The bytes that may start a pair
// (any byte from 80 in eucjis, 81-9F and E0-FC in sjis) come from compares; where they stand
// together, the first of each run starts a pair, and every other one after it, which mask
// arithmetic finds for the whole value at once (pair_firsts, jis_windows.h). Every other character
// is then a byte of its own, so the output position of each byte is its own position plus one for
// each pair before it: the ASCII is spread to those positions 8 bytes at a time with one shuffle,
// and a loop over the pairs alone looks up each pair's packed translation and stores it, its
// position coming from the mask and a count rather than from the character before. Mixed ASCII
// and kanji thus cost no branch at each change.
//
// Only the usual value goes this way: ASCII and pairs whose characters take three bytes of
// utf8. A half-width kana, an eucjis 8E or 8F character, a pair without a character (or with
// one of fewer bytes, Greek and Latin symbols), a lead cut by the value's end or any other
// byte from 80 standing alone sends the whole value to the general path.
#pragma once

#ifdef COMN_XLT_SHUFFLE

// What the routine below needs of a set, bytes FF in a vector where a test holds: the bytes
// that may start a pair (framing: any byte from 80 in eucjis, 81-9F and E0-FC in sjis), the
// leads and second bytes of the pairs its table holds, and each pair's index in that table as
// the first 8 bytes b of a vector and the bytes c after them (the index is a word of
// two bytes, so it need take only one of the bytes of the words it makes).
template <class From>
struct PairSet;

// The bytes of v in [lo, hi]: moved to [-128, -128 + hi - lo] by one addition, then compared.
[[gnu::always_inline]] inline __m128i in_range(__m128i v, int lo, int hi) {
    return _mm_cmplt_epi8(_mm_add_epi8(v, bytes(0x80 - lo)), bytes(hi - lo + 1 - 0x80));
}

template <>
struct PairSet<Euc> {
    static constexpr const uint32_t *table = Euc_words.data() + k_euc_ascii; // the grid
    static __m128i may_lead(__m128i v) { return _mm_cmplt_epi8(v, _mm_setzero_si128()); }
    static __m128i lead(__m128i v) { return in_range(v, 0xA1, 0xFE); }
    static __m128i trail(__m128i v) { return lead(v); }
    // (b - A1) * 94 + (c - A1) from the words b | c << 8, multiplied and added with 94 | 1 << 8.
    [[gnu::target("ssse3"), gnu::always_inline]] static __m128i index(__m128i b, __m128i c) {
        return _mm_sub_epi16(
            _mm_maddubs_epi16(_mm_unpacklo_epi8(b, c), _mm_set1_epi16(94 | 1 << 8)),
            _mm_set1_epi16(0xA1 * 94 + 0xA1));
    }
};

template <>
struct PairSet<Sjis> {
    static constexpr const uint32_t *table = Sjis_packed.data();
    static __m128i may_lead(__m128i v) {
        return _mm_or_si128(in_range(v, 0x81, 0x9F), in_range(v, 0xE0, 0xFC));
    }
    static __m128i lead(__m128i v) {
        return _mm_or_si128(in_range(v, 0x81, 0x9F), in_range(v, 0xE0, 0xEF));
    }
    static __m128i trail(__m128i) { return _mm_set1_epi8(-1); } // the table says 0 for others
    // Sjis_rows[b] * 256 + c, the words c | row << 8: the row is b - 80 up to 9F, b - C0 from E0.
    static __m128i index(__m128i b, __m128i c) {
        const __m128i from_e0 = _mm_and_si128(_mm_cmpgt_epi8(b, bytes(0xDF)), bytes(0x40));
        return _mm_unpacklo_epi8(c, _mm_sub_epi8(_mm_add_epi8(b, bytes(0x80)), from_e0));
    }
};

// Sets whose short values go this way.
template <class From>
constexpr bool k_pairs_short = requires {
    PairSet<From>::table;
};

constexpr int32_t k_pairs_value = 32; // longest value taken

// Bit j for byte j of the two halves of a value.
[[gnu::always_inline]] inline uint32_t value_mask(__m128i lo, __m128i hi) {
    return static_cast<uint32_t>(_mm_movemask_epi8(lo)) |
           static_cast<uint32_t>(_mm_movemask_epi8(hi)) << 16;
}

// The table indexes of the pairs at 16 bytes v, c the bytes after each.
template <class P>
[[gnu::target("ssse3"), gnu::always_inline]] inline void store_index(uint16_t *at, __m128i v,
                                                                     __m128i c) {
    _mm_store_si128(reinterpret_cast<__m128i *>(at), P::index(v, c));
    _mm_store_si128(reinterpret_cast<__m128i *>(at + 8),
                    P::index(_mm_unpackhi_epi64(v, v), _mm_unpackhi_epi64(c, c)));
}

// The 8 bytes at the front of v, each byte whose bit is set in two taking two places (the
// second a copy).
[[gnu::target("ssse3"), gnu::always_inline]] inline __m128i spread8(__m128i v, uint64_t two) {
    return _mm_shuffle_epi8(
        v, _mm_loadu_si128(reinterpret_cast<const __m128i *>(Spread8[two].data())));
}
// The same over the 16 bytes v: their 16 to 32 bytes, the first 16 in lo and the rest at the
// front of hi.
[[gnu::target("ssse3,popcnt"), gnu::always_inline]] inline void spread16(__m128i v, uint64_t two,
                                                                         __m128i &lo, __m128i &hi) {
    const __m128i first = spread8(_mm_unpacklo_epi64(v, v), two & 0xFF);
    const __m128i second = spread8(_mm_unpackhi_epi64(v, v), two >> 8 & 0xFF);
    const int32_t k = 8 + std::popcount(two & 0xFF);
    lo = _mm_or_si128(first, shift_up(second, k));
    hi = shift_down(second, k_block - k);
}

// The converter of set From to utf8 for a value src of n bytes, n in [1, k_pairs_value],
// whose longest translation fits the room: a value of ASCII and usual pairs here, translated
// and written exactly; any other, with the destination as it was, by the general path (a
// tail call, so that the entry saves nothing for it).
template <class From>
[[gnu::target("ssse3,popcnt")]] int32_t pairs_short_to_utf8(const uint8_t *src, int32_t n,
                                                            uint8_t *dst, int32_t dstlen,
                                                            int32_t *consumed, int32_t *produced) {
    using P = PairSet<From>;
    __m128i lo, hi;
    load_value(src, n, lo, hi); // bytes 00 after the value
    const uint32_t high = value_mask(lo, hi);
    if (high == 0) { // ASCII alone: the same in every set
        store_value(dst, n, lo, hi);
        *consumed = *produced = n;
        return 0;
    }
    const uint64_t leads = pair_firsts(value_mask(P::may_lead(lo), P::may_lead(hi)));
    // Each pair's second byte within the value, every byte from 80 part of a pair, and the
    // pairs' bytes of the kinds the table holds.
    const uint64_t trails = leads << 1;
    if ((trails >> n) != 0 || (high & ~(leads | trails)) != 0 ||
        (leads & ~value_mask(P::lead(lo), P::lead(hi))) != 0 ||
        (trails & ~value_mask(P::trail(lo), P::trail(hi))) != 0)
        return translate_text<ToUtf8<From>>(src, n, dst, dstlen, consumed, produced);

    // The table index of the pair at each byte (used where a pair starts).
    alignas(16) uint16_t at[k_pairs_value];
    store_index<P>(at, lo, _mm_alignr_epi8(hi, lo, 1));
    store_index<P>(at + k_block, hi, _mm_srli_si128(hi, 1));

    // The ASCII at its output positions, a lead taking two bytes and its second byte one
    // (their bytes are written over below), written exactly. What the destination held is
    // kept, to be put back if a pair's translation is not the usual one.
    const int32_t o = n + std::popcount(leads);
    if (o > 2 * k_block)
        return translate_text<ToUtf8<From>>(src, n, dst, dstlen, consumed, produced);
    __m128i kept_lo, kept_hi, lo0, hi0, lo1, beyond;
    load_value(dst, o, kept_lo, kept_hi);
    spread16(lo, leads & 0xFFFF, lo0, hi0);
    spread16(hi, leads >> 16 & 0xFFFF, lo1, beyond); // beyond: past 32 bytes, none
    store_value(dst, o, lo0, _mm_or_si128(hi0, shift_up(lo1, std::popcount(leads & 0xFFFF))));

    // Each pair's three bytes at its position plus the count of pairs before it.
    uint32_t all = ~0U; // the AND of the packed translations: their lengths must all be 3
    uint8_t *q = dst;   // dst plus the pairs so far
    for (uint64_t l = leads; l != 0; l &= l - 1, ++q) {
        const auto i = static_cast<size_t>(std::countr_zero(l));
        const uint32_t v = P::table[at[i]];
        all &= v;
        const auto first2 = static_cast<uint16_t>(v);
        std::memcpy(q + i, &first2, sizeof first2);
        q[i + 2] = static_cast<uint8_t>(v >> 16);
    }
    if ((all >> 24 & 3) != 3) {
        store_value(dst, o, kept_lo, kept_hi);
        return translate_text<ToUtf8<From>>(src, n, dst, dstlen, consumed, produced);
    }
    *consumed = n;
    *produced = o;
    return 0;
}

#endif
