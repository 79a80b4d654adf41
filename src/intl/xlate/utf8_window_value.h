// A short utf8 value, of up to 32 bytes, translated as one window of the long-text path
// (utf8_windows.h) held in a 256-bit register: the masks and the code point at each byte come
// from a few instructions over the whole value. The characters then go in rounds of eight, with
// no branch on their count: eight steps each insert one character's word into a vector (steps
// past the characters insert a word of one byte that counts for nothing), one shuffle by the
// mask of two-byte words packs their bytes, and an exact store writes them out, so nothing
// lands beyond the bytes produced. A value of 20 bytes of Japanese text holds 6 to 8
// characters: one round. (A loop of one step per character mispredicts its exit about once a
// value, as the count changes; gathering the words of all 32 bytes and packing the bytes of
// the characters' ends took about as many instructions and more time.)
//
// Included by the converters from utf8 (xlate_utf8.cpp) after the short stores; x86 with AVX2,
// BMI1, BMI2 and POPCNT, chosen at run time by the caller.
#pragma once

#if defined(COMN_XLT_SHUFFLE) && defined(COMN_XLT_UTF8_WINDOWS)

constexpr int32_t k_window_value = 32; // bytes of a short value

// The vector constants, 16-bit words repeated (bytes 03 to FE; the code of 'A', and 100), in
// one table, which utf8_window_value reads through unseen.
struct alignas(32) WindowConstants {
    enum Id { x03, x0F, x3F, x7F, xC0, xE0, xF0, xFE, code_A, w100, count };
    uint16_t w[count][16];
};
constexpr WindowConstants k_window_constants = [] {
    constexpr uint16_t value[] = {0x0303, 0x0F0F, 0x3F3F, 0x7F7F, 0xC0C0,
                                  0xE0E0, 0xF0F0, 0xFEFE, 'A',    0x100};
    WindowConstants t{};
    for (int c = 0; c < WindowConstants::count; ++c)
        for (uint16_t &x : t.w[c])
            x = value[c];
    return t;
}();

constexpr int k_round = 8; // characters a round

// For each mask of which of eight words are two bytes, the shuffle that packs their bytes (the
// first of each word, and the second of those set) at the front, 80s (zeros) after them.
struct alignas(16) Shuffle16 {
    uint8_t b[16];
};
constexpr auto Pack_words = [] {
    std::array<Shuffle16, 256> t{};
    for (unsigned m = 0; m < 256; ++m) {
        unsigned at = 0;
        for (unsigned i = 0; i < 8; ++i) {
            t[m].b[at++] = static_cast<uint8_t>(2 * i);
            if (m >> i & 1) t[m].b[at++] = static_cast<uint8_t>(2 * i + 1);
        }
        while (at < 16)
            t[m].b[at++] = 0x80;
    }
    return t;
}();

// A value of n bytes, n in [1, k_window_value], in v with bytes 00 after it (ASCII: they end
// its last character, and a character cut by the value's end lacks a continuation byte there),
// translated through words, the table of words by code point, straight into dst, which has
// room for n bytes; the bytes produced, or -1 when the value is not taken whole (not of the
// simplest well-formed text, or a character without a word). A value given up in a later round
// leaves the translation of its first rounds stored, which the caller's translation of the
// value writes over.
template <bool Pext>
[[COMN_XLT_AVX2]] inline int32_t utf8_window_value(__m256i v, int32_t n, uint8_t *dst,
                                                   const uint16_t *words) {
    // The masks of a window, 64 bits wide so that a lead in the last byte expects its
    // continuation past them.
    const auto *k = unseen(&k_window_constants)->w; // rows by WindowConstants::Id
    using enum WindowConstants::Id;
    const __m256i is_cont = _mm256_cmpgt_epi8(row32(k, xC0), v); // signed: 80-BF are the lowest
    const uint64_t cont = mask32(is_cont);
    const uint64_t lead = mask32(v) & ~cont;
    const uint64_t lead3 = mask32(_mm256_slli_epi16(v, 2)) & lead; // bit 5 of every byte
    __m256i odd = _mm256_cmpeq_epi8(_mm256_and_si256(v, row32(k, xFE)), row32(k, xC0));
    odd = _mm256_or_si256(odd, _mm256_cmpeq_epi8(v, row32(k, xE0)));
    odd = _mm256_or_si256(odd, _mm256_cmpeq_epi8(_mm256_max_epu8(v, row32(k, xF0)), v));
    if (!_mm256_testz_si256(odd, odd) || cont != (lead << 1 | lead3 << 2)) return -1;

    // The code point at each byte, as window_group_codes works it out, from the bytes one and
    // two places before (00 before the value).
    const __m256i up = _mm256_permute2x128_si256(v, v, 0x08); // 00s, then the first 16 bytes
    const __m256i v1 = _mm256_alignr_epi8(v, up, 15), v2 = _mm256_alignr_epi8(v, up, 14);
    const __m256i lo = _mm256_and_si256(v, row32(k, x7F));
    const __m256i mid = _mm256_and_si256(_mm256_and_si256(v1, row32(k, x3F)), is_cont);
    const __m256i hi =
        _mm256_and_si256(_mm256_and_si256(v2, row32(k, x0F)),
                         _mm256_and_si256(is_cont, _mm256_cmpgt_epi8(row32(k, xC0), v1)));
    const __m256i below =
        _mm256_or_si256(lo, _mm256_slli_epi16(_mm256_and_si256(mid, row32(k, x03)), 6));
    const __m256i above = _mm256_or_si256(
        _mm256_and_si256(_mm256_srli_epi16(mid, 2), row32(k, x0F)), _mm256_slli_epi16(hi, 4));
    // The in-lane unpacks give the codes of bytes 0-7 and 16-23, and of 8-15 and 24-31: each
    // 16-byte half stored in its place.
    const __m256i first = _mm256_unpacklo_epi8(below, above);
    const __m256i second = _mm256_unpackhi_epi8(below, above);
    alignas(32) uint16_t code[k_window_value + k_round];
    _mm_store_si128(reinterpret_cast<__m128i *>(code), _mm256_castsi256_si128(first));
    _mm_store_si128(reinterpret_cast<__m128i *>(code + 8), _mm256_castsi256_si128(second));
    _mm_store_si128(reinterpret_cast<__m128i *>(code + 16), _mm256_extracti128_si256(first, 1));
    _mm_store_si128(reinterpret_cast<__m128i *>(code + 24), _mm256_extracti128_si256(second, 1));

    // The last bytes of the characters, then bits set above them: a step past the characters
    // reads a code after the value's 32, 'A', whose word is one byte and not counted.
    _mm_store_si128(reinterpret_cast<__m128i *>(code + k_window_value), row16(k, code_A));
    uint64_t ends = _bzhi_u64(~cont >> 1, static_cast<uint32_t>(n)) | ~uint64_t{0}
                                                                          << k_window_value;
    int32_t left = std::popcount(static_cast<uint32_t>(ends)); // characters
    // Where PEXT is quick, which characters, in their order, give two bytes: in the sets of the
    // windows those of more than one byte of utf8, but half-width kana, which the check against
    // the words' lengths below sends to the general path. Known from the masks, this lets the
    // packing and the count of bytes made start before the words arrive, which shortens the
    // value's longest chain of dependent steps by about a sixth. Otherwise the words tell.
    uint32_t twos = Pext ? _pext_u32(static_cast<uint32_t>(cont), static_cast<uint32_t>(ends)) : 0;
    uint8_t *q = dst;
    do {
        // Eight words (each load folded into its insert), their first bytes low, in two chains
        // of inserts joined at the end.
        __m128i w0 = _mm_setzero_si128(), w1 = _mm_setzero_si128();
        [&]<int... I>(std::integer_sequence<int, I...>) {
            ((I % 2 == 0 ? (w0 = _mm_insert_epi16(w0, words[code[__builtin_ctzll(ends)]], I))
                         : (w1 = _mm_insert_epi16(w1, words[code[__builtin_ctzll(ends)]], I)),
              ends &= ends - 1),
             ...);
        }
        (std::make_integer_sequence<int, k_round>{});
        const __m128i w = _mm_or_si128(w0, w1);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(w, _mm_setzero_si128())) != 0)
            return -1; // a character without a word
        const __m128i wide = _mm_cmpeq_epi16(_mm_max_epu16(w, row16(k, w100)), w);
        const auto words_two =
            static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(wide, wide))) & 0xFF;
        uint32_t two = words_two;
        if constexpr (Pext) {
            // The mask from the positions, through a barrier, so that the compiler, knowing it
            // equal to the words' after the check, does not put the later one in its place.
            two = twos & 0xFF;
            twos >>= k_round;
            const uint32_t expected = two;
            asm("" : "+r"(two));
            if (words_two != expected) return -1; // a half-width kana
        }
        const __m128i out = _mm_shuffle_epi8(
            w, _mm_load_si128(reinterpret_cast<const __m128i *>(Pack_words[two].b)));
        const int32_t made = std::min(left, k_round) + std::popcount(two);
        if (made >= 8) { // the usual case, [8, 16]: two stores that overlap
            _mm_storel_epi64(reinterpret_cast<__m128i *>(q), out);
            _mm_storel_epi64(reinterpret_cast<__m128i *>(q + made - 8), shift_down(out, made - 8));
        } else {
            store_value(q, made, out, _mm_setzero_si128());
        }
        q += made;
        left -= k_round;
    } while (left > 0);
    return static_cast<int32_t>(q - dst);
}

#endif
