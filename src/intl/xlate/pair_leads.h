// Where the characters of a short value of a double-byte set start, found for all of its bytes
// at once rather than one character after the other, so that a loop over them can take each
// character from a mask (as utf8_windows.h does for UTF-8) instead of learning where the next
// one starts from the length of this one, which mispredicts in mixed ASCII and kanji.
//
// In eucjis every byte from A1 is one of a pair; in Shift-JIS a byte 81-9F or E0-FC starts a
// pair whose second byte may be of any kind. Either way, take the bytes that can start a pair
// ("may lead"): in a run of them the first one does lead (the byte before it is not a lead, so
// it is not a second byte), the next one is its second byte, the one after that leads again,
// and so on; a run's last lead takes the byte after the run. So the leads are the bytes of each
// run at an even distance from its start, worked out with a prefix parity and one addition.
//
// x86 with SSE2 only, for values of 8 to 32 bytes.
#pragma once

#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#define COMN_XLT_PAIR_LEADS 1
#endif

namespace comn {

#ifdef COMN_XLT_PAIR_LEADS

constexpr int32_t k_pair_min = 8, k_pair_value = 32; // shortest and longest value taken

// The leads among the bytes whose bit is set in may_lead, as above.
constexpr uint32_t pair_leads(uint32_t may_lead) {
    const uint32_t h = may_lead;
    uint32_t par = h; // bit p: parity of the bits of h at p and below
    par ^= par << 1;
    par ^= par << 2;
    par ^= par << 4;
    par ^= par << 8;
    par ^= par << 16;
    const uint32_t starts = h & ~(h << 1);
    // The runs whose start has parity 1, whole: adding its start bit to a run clears it.
    const uint32_t odd_runs = ((h + (starts & par)) ^ h) & h;
    // A byte leads when its parity is its run start's.
    return h & ~(par ^ odd_runs);
}

static_assert(pair_leads(0b0111'1110) == 0b0010'1010); // one run of six
static_assert(pair_leads(0b1101'1100) == 0b0101'0100); // runs of three and two
static_assert(pair_leads(0xFFFF'FFFF) == 0x5555'5555);

[[gnu::always_inline]] inline __m128i pair_bytes(int b) {
    return _mm_set1_epi8(static_cast<char>(b));
}

// Bytes of v in [lo, hi], as 00 or FF.
[[gnu::always_inline]] inline __m128i pair_in(__m128i v, int lo, int hi) {
    return _mm_and_si128(_mm_cmpeq_epi8(_mm_max_epu8(v, pair_bytes(lo)), v),
                         _mm_cmpeq_epi8(_mm_min_epu8(v, pair_bytes(hi)), v));
}

// The mask of the n bytes at p, n in [k_pair_min, k_pair_value], that cls (a function of a
// vector to bytes 00/FF) selects: from two loads that overlap rather than reach past either end
// (and read the caller's bytes in place: a wide load of bytes just stored in pieces would wait).
template <class Class>
[[gnu::always_inline]] inline uint32_t pair_mask(const uint8_t *p, int32_t n, Class cls) {
    const auto bits = [&](__m128i v) { return static_cast<uint32_t>(_mm_movemask_epi8(cls(v))); };
    if (n >= 16)
        return bits(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p))) |
               bits(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p + n - 16))) << (n - 16);
    return (bits(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p))) & 0xFF) |
           (bits(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p + n - 8))) & 0xFF) << (n - 8);
}

// The bytes that may lead: eucjis, every byte from 80 (8E and 8F, whose characters are not
// pairs, lead nothing that the caller's table knows, which sends the value elsewhere).
[[gnu::always_inline]] inline uint32_t euc_may_lead(const uint8_t *p, int32_t n) {
    return pair_mask(p, n, [](__m128i v) { return v; });
}

// Shift-JIS: 81-9F and E0-FC.
[[gnu::always_inline]] inline uint32_t sjis_may_lead(const uint8_t *p, int32_t n) {
    return pair_mask(p, n, [](__m128i v) {
        return _mm_or_si128(pair_in(v, 0x81, 0x9F), pair_in(v, 0xE0, 0xFC));
    });
}

#endif

} // namespace comn
