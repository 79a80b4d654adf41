// Short values between iso_1 and utf8, up to 32 bytes, translated in registers straight into
// the caller's destination ahead of the converter's frame. Part of xlate_utf8.cpp, included
// where its block tables, value loads and stores and translate_text are defined.
//
// A value is read in place with loads that stay within it, into one 256-bit register, and
// each 16-byte half is translated by byte shuffles, its translation packed at the front of a
// 128-bit register. The translation, of up to 32 bytes, is then written by two 16-byte stores,
// its first 16 bytes and its last 16, which overlap rather than reach past its end; one of
// fewer than 16 bytes is stored exactly by narrower stores. No branch depends on which bytes
// are ASCII, since mixed text makes such a branch hard to predict. A value the registers do
// not take (a character without counterpart, ill-formed or cut UTF-8, a translation over 32
// bytes) goes to translate_text with the destination untouched.
//
// x86 with AVX2, chosen at run time by the caller.
#pragma once

#ifdef COMN_XLT_SHUFFLE

constexpr int32_t k_iso1_value = 32; // longest value taken

// The vector constants, 32 bytes each: all one byte but the last, which adds 8 to the first 8
// bytes of each half and 80 to the others. Read through unseen.
enum Iso1Const { c_bf, c_c0, c_c2, c_c3, c_fe, c_40, c_7f, c_second8, c_count };
alignas(32) constexpr auto Iso1_consts = [] {
    constexpr uint8_t fill[] = {0xBF, 0xC0, 0xC2, 0xC3, 0xFE, 0x40, 0x7F};
    std::array<std::array<uint8_t, 32>, c_count> t{};
    for (size_t k = 0; k < t.size(); ++k)
        for (size_t j = 0; j < 32; ++j)
            t[k][j] = k < std::size(fill) ? fill[k] : (j & 8) != 0 ? 0x80 : 0x08;
    return t;
}();

// The first 16 bytes of the k bytes at the front of a followed by the bytes of b (a's bytes
// after its k are 00, k in [0, 16]).
[[COMN_XLT_AVX2]] inline __m128i front16(__m128i a, int32_t k, __m128i b) {
    return _mm_or_si128(a, shift_up(b, k));
}

// The last 16 bytes of the ka bytes at the front of a followed by the kb bytes at the front of
// b (the bytes after them 00, ka and kb in [0, 16], ka + kb >= 16).
[[COMN_XLT_AVX2]] inline __m128i back16(__m128i a, int32_t ka, __m128i b, int32_t kb) {
    return _mm_or_si128(shift_down(a, ka + kb - 16), shift_up(b, 16 - kb));
}

// Writes o bytes, o in [16, 32], whose first 16 are front and last 16 back: two stores that
// overlap.
[[COMN_XLT_AVX2]] inline void store_ends(uint8_t *dst, int32_t o, __m128i front, __m128i back) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst), front);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + o - 16), back);
}

// The o bytes at the front of v, o in [0, 16), stored exactly: the last few from a register,
// since a buffer in memory (as store_value has) would make these routines realign the stack.
[[COMN_XLT_AVX2]] inline void store_front(uint8_t *dst, int32_t o, __m128i v) {
    if (o >= 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i *>(dst), v);
        _mm_storel_epi64(reinterpret_cast<__m128i *>(dst + o - 8), shift_down(v, o - 8));
        return;
    }
    const auto w = static_cast<uint64_t>(_mm_cvtsi128_si64(v));
    store_upto8(dst, o, [&]<class W>(W) {
        return std::pair{static_cast<W>(w), static_cast<W>(w >> 8 * (o - sizeof(W)))};
    });
}

// The 16 bytes at lo, then the 16 at hi.
[[COMN_XLT_AVX2]] inline __m256i load2x16(const uint8_t *lo, const uint8_t *hi) {
    return _mm256_set_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i *>(hi)),
                            _mm_loadu_si128(reinterpret_cast<const __m128i *>(lo)));
}

// The 8 bytes at lo, 00s, the 8 bytes at hi, 00s.
[[COMN_XLT_AVX2]] inline __m256i load2x8(const uint8_t *lo, const uint8_t *hi) {
    return _mm256_set_m128i(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(hi)),
                            _mm_loadl_epi64(reinterpret_cast<const __m128i *>(lo)));
}

// iso_1 to utf8, a value of n bytes, n in [1, 32]: true with the bytes produced set, or
// false when the translation is over 32 bytes. The first 16 bytes of the translation come
// from the value's first 16 bytes (its head), the last 16 from its last 16 (its tail), since
// each byte gives one or two; a value of under 16 bytes is its own head, with 00s after it,
// and its own tail, with 00s before it (a byte each).
[[COMN_XLT_AVX2]] inline bool iso1_value_to_utf8(const uint8_t *src, int32_t n, uint8_t *dst,
                                                 int32_t *produced) {
    __m128i head, tail;
    if (n >= 16) {
        head = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src));
        tail = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + n - 16));
    } else {
        load_value(src, n, head, tail);
        tail = shift_up(head, 16 - n);
    }
    const __m256i v = _mm256_set_m128i(tail, head);
    const uint64_t high = mask32(v);
    // The head's bytes from 80, and the tail's past the head (the last n - 16 of it).
    const int32_t o = n + std::popcount(high & 0xFFFF) + std::popcount(high >> (48 - n));
    if (o > 2 * k_block) return false;
    *produced = o;
    // A byte from 80 gives C2 or C3 (C3 from C0), then itself less its bit 40.
    const uint8_t *c = unseen(Iso1_consts[0].data());
    const __m256i above_bf = _mm256_cmpgt_epi8(v, row32(c, c_bf)); // signed: C0-FF, ASCII
    const __m256i lead = _mm256_sub_epi8(row32(c, c_c2), above_bf);
    const __m256i first = _mm256_blendv_epi8(v, lead, v);
    const __m256i second = _mm256_and_si256(v, row32(c, c_bf));
    // Each group of 8 bytes spread to 8 to 16: its bytes from 80 followed by their second.
    const __m256i g0 = _mm256_shuffle_epi8(
        _mm256_unpacklo_epi64(first, second),
        load2x16(Spread8[high & 0xFF].data(), Spread8[high >> 16 & 0xFF].data()));
    const __m256i g1 =
        _mm256_shuffle_epi8(_mm256_unpackhi_epi64(first, second),
                            load2x16(Spread8[high >> 8 & 0xFF].data(), Spread8[high >> 24].data()));
    const int32_t k_head = 8 + std::popcount(high & 0xFF),
                  k_tail = 8 + std::popcount(high >> 16 & 0xFF);
    const __m128i front = front16(_mm256_castsi256_si128(g0), k_head, _mm256_castsi256_si128(g1));
    if (o < 16)
        store_front(dst, o, front);
    else
        store_ends(dst, o, front,
                   back16(_mm256_extracti128_si256(g0, 1), k_tail, _mm256_extracti128_si256(g1, 1),
                          8 + std::popcount(high >> 24)));
    return true;
}

// utf8 to iso_1, a value of n bytes, n in [1, 32]: true with the bytes produced set, or false
// when the value is not ASCII and whole characters C2/C3 80-BF. The value, with bytes 00 after
// it, is one 256-bit register: each continuation byte becomes its character's iso_1 byte (plus
// 40 after C3), and each half's bytes but the leads are gathered to its front by one shuffle.
[[COMN_XLT_AVX2]] inline bool iso1_value_from_utf8(const uint8_t *src, int32_t n, uint8_t *dst,
                                                   int32_t *produced) {
    __m128i lo, hi;
    load_value(src, n, lo, hi);
    const __m256i v = _mm256_set_m128i(hi, lo);
    const uint8_t *c = unseen(Iso1_consts[0].data());
    const uint64_t high = mask32(v);
    const uint64_t cont = mask32(_mm256_cmpgt_epi8(row32(c, c_c0), v)); // signed: 80-BF
    const uint64_t lead =
        mask32(_mm256_cmpeq_epi8(_mm256_and_si256(v, row32(c, c_fe)), row32(c, c_c2)));
    // Every byte from 80 a lead followed by its continuation (a lead at the value's end has
    // a byte 00 after it).
    if (cont != lead << 1 || high != (lead | cont)) return false;
    const __m256i before = _mm256_alignr_epi8(v, _mm256_permute2x128_si256(v, v, 0x08), 15);
    const __m256i after_c3 = _mm256_cmpeq_epi8(before, row32(c, c_c3));
    const __m256i val = _mm256_or_si256(v, _mm256_and_si256(after_c3, row32(c, c_40)));

    // The shuffle of each half: the indexes of its kept bytes among the first 8 (the fillers,
    // 80, made 00 and covered by what follows), then those among the other 8 after them, 80 (a
    // byte 00) after all.
    const auto keep = static_cast<uint32_t>(~lead);
    const __m256i firsts = _mm256_and_si256(
        load2x8(Gather8[keep & 0xFF].data(), Gather8[keep >> 16 & 0xFF].data()), row32(c, c_7f));
    const __m256i seconds = _mm256_add_epi8(
        load2x8(Gather8[keep >> 8 & 0xFF].data(), Gather8[keep >> 24].data()), row32(c, c_second8));
    const uint8_t *up = Shift_window.data() + 16; // moves by the bytes kept of the first 8
    const __m256i ctrl = _mm256_or_si256(
        firsts, _mm256_shuffle_epi8(seconds, load2x16(up - std::popcount(keep & 0xFF),
                                                      up - std::popcount(keep >> 16 & 0xFF))));
    const __m256i packed = _mm256_shuffle_epi8(val, ctrl);
    const __m128i a = _mm256_castsi256_si128(packed), b = _mm256_extracti128_si256(packed, 1);
    // The first half's bytes kept (the 00s after a value of under 16 bytes among them), and
    // the bytes produced.
    const int32_t ka = 16 - std::popcount(lead & 0xFFFF), o = n - std::popcount(lead);
    *produced = o;
    const __m128i front = front16(a, ka, b);
    if (o < 16)
        store_front(dst, o, front);
    else
        store_ends(dst, o, front, back16(a, ka, b, o - ka));
    return true;
}

// The converter between iso_1 and utf8 for a value of n bytes, n in [1, k_iso1_value], whose
// longest translation fits the room; a value the registers do not take goes on to the general
// path as a tail call.
template <class Dir>
[[gnu::target("avx2,bmi,bmi2,popcnt")]] int32_t iso1_value(const uint8_t *src, int32_t n,
                                                           uint8_t *dst, int32_t dstlen,
                                                           int32_t *consumed, int32_t *produced) {
    if (!(iso1_block<Dir> == iso1_to_utf8_block ? iso1_value_to_utf8(src, n, dst, produced)
                                                : iso1_value_from_utf8(src, n, dst, produced)))
        return translate_text<Dir>(src, n, dst, dstlen, consumed, produced);
    *consumed = n;
    return 0;
}

#endif
