// What the AVX2 short-value routines share (iso1_value.h, jis_short.h, utf8_window_value.h):
// their target attribute, 32-byte constants, tables of them and masks, and the pointer barrier
// that keeps vector constants in memory. Part of xlate_utf8.cpp, included after its intrinsics
// headers; x86 with AVX2, BMI1, BMI2 and POPCNT, chosen at run time by the callers.
#pragma once

#ifdef COMN_XLT_SHUFFLE

#define COMN_XLT_AVX2 gnu::target("avx2,bmi,bmi2,popcnt"), gnu::always_inline

// 32 bytes b.
[[COMN_XLT_AVX2]] inline __m256i bytes32(int b) {
    return _mm256_set1_epi8(static_cast<char>(b));
}

// The bits 0x80 of the 32 bytes x, 64 bits wide.
[[COMN_XLT_AVX2]] inline uint64_t mask32(__m256i x) {
    return uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(x))};
}

// Row r of a table of 32-byte rows of vector constants, whole or its first 16 bytes.
[[COMN_XLT_AVX2]] inline __m256i row32(const void *table, int r) {
    return _mm256_loadu_si256(static_cast<const __m256i *>(table) + r);
}
[[COMN_XLT_AVX2]] inline __m128i row16(const void *table, int r) {
    return _mm_loadu_si128(static_cast<const __m128i *>(table) + 2 * r);
}

// p, through a barrier the compiler does not see through. In target-attributed AVX code GCC
// builds a vector constant it can see from immediates and general registers, two or three
// instructions each; a table of constants read through this pointer costs one load each, most
// folded into the instruction that uses it.
template <class T>
[[gnu::always_inline]] inline const T *unseen(const T *p) {
    asm("" : "+r"(p));
    return p;
}

#endif
