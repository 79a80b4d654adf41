// A short utf8 value, of up to 32 bytes, translated as one window of the long-text path
// (utf8_windows.h) held in a 256-bit register: the masks and the code point at each byte come
// from a few instructions over the whole value, and the output goes straight to the caller's
// destination, with nothing stored beyond the bytes produced.
//
// x86 with AVX2, BMI1 and BMI2, chosen at run time by the caller.
#pragma once

#include "utf8_windows.h"

#ifdef COMN_XLT_UTF8_WINDOWS
#include <immintrin.h>

namespace comn {

constexpr int32_t k_window_value = 32; // bytes of a short value

#define COMN_XLT_AVX2 gnu::target("avx2,bmi,bmi2"), gnu::always_inline

// 32 bytes b.
[[COMN_XLT_AVX2]] inline __m256i bytes32(int b) {
    return _mm256_set1_epi8(static_cast<char>(b));
}

// The bits 0x80 of the 32 bytes x, 64 bits wide.
[[COMN_XLT_AVX2]] inline uint64_t mask32(__m256i x) {
    return uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(x))};
}

// A value of n bytes, n in [1, k_window_value], in v with bytes 00 after it (ASCII: they end
// its last character, and a character cut by the value's end lacks a continuation byte there),
// translated through words like a window straight into dst, which has room for n bytes; the
// bytes produced, or -1 when the value is not taken whole. Each character's two-byte store is
// written over by the next one's, and the last character is stored exactly. A value whose
// characters are all taken but one without a word is given up after storing as many bytes as
// its translation one character at a time takes ("?" for that character), which the caller's
// translation of the value then writes over.
[[COMN_XLT_AVX2]] inline int32_t utf8_window_value(__m256i v, int32_t n, uint8_t *dst,
                                                   const uint16_t *words) {
    // The masks of a window, 64 bits wide so that a lead in the last byte expects its
    // continuation past them.
    const __m256i is_cont = _mm256_cmpgt_epi8(bytes32(0xC0), v); // signed: 80-BF are the lowest
    const uint64_t cont = mask32(is_cont);
    const uint64_t lead = mask32(v) & ~cont;
    const uint64_t lead3 = mask32(_mm256_slli_epi16(v, 2)) & lead; // bit 5 of every byte
    __m256i odd = _mm256_cmpeq_epi8(_mm256_and_si256(v, bytes32(0xFE)), bytes32(0xC0));
    odd = _mm256_or_si256(odd, _mm256_cmpeq_epi8(v, bytes32(0xE0)));
    odd = _mm256_or_si256(odd, _mm256_cmpeq_epi8(_mm256_max_epu8(v, bytes32(0xF0)), v));
    if (!_mm256_testz_si256(odd, odd) || cont != (lead << 1 | lead3 << 2)) return -1;

    // The code point at each byte, as window_group_codes works it out, from the bytes one and
    // two places before (00 before the value).
    const __m256i up = _mm256_permute2x128_si256(v, v, 0x08); // 00s, then the first 16 bytes
    const __m256i v1 = _mm256_alignr_epi8(v, up, 15), v2 = _mm256_alignr_epi8(v, up, 14);
    const __m256i lo = _mm256_and_si256(v, bytes32(0x7F));
    const __m256i mid = _mm256_and_si256(_mm256_and_si256(v1, bytes32(0x3F)), is_cont);
    const __m256i hi =
        _mm256_and_si256(_mm256_and_si256(v2, bytes32(0x0F)),
                         _mm256_and_si256(is_cont, _mm256_cmpgt_epi8(bytes32(0xC0), v1)));
    __m256i below = _mm256_or_si256(lo, _mm256_slli_epi16(_mm256_and_si256(mid, bytes32(0x03)), 6));
    __m256i above = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(mid, 2), bytes32(0x0F)),
                                    _mm256_slli_epi16(hi, 4));
    // Eight bytes from each half in each lane, so that the in-lane unpacks give the codes in
    // their order.
    below = _mm256_permute4x64_epi64(below, 0xD8);
    above = _mm256_permute4x64_epi64(above, 0xD8);
    alignas(32) uint16_t code[k_window_value];
    _mm256_store_si256(reinterpret_cast<__m256i *>(code), _mm256_unpacklo_epi8(below, above));
    _mm256_store_si256(reinterpret_cast<__m256i *>(code + 16), _mm256_unpackhi_epi8(below, above));

    // The characters before the last (whose last byte is n - 1), then the last one: its first
    // byte, then its second or its first again.
    const uint64_t before = ~cont >> 1 & ((uint64_t{1} << (n - 1)) - 1);
    int32_t none = 0; // sign bit: a character without a word
    uint8_t *q = before != 0 ? window_take(code, before, dst, words, none) : dst;
    const uint32_t last = words[code[n - 1]];
    none |= static_cast<int32_t>(last) - 1;
    const uint32_t two = last > 0xFF;
    q[0] = static_cast<uint8_t>(last);
    q[two] = static_cast<uint8_t>(last >> 8 * two);
    return none < 0 ? -1 : static_cast<int32_t>(q + 1 + two - dst);
}

} // namespace comn

#undef COMN_XLT_AVX2

#endif
