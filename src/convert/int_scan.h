// The integer text scanner shared by the text-to-integer and text-to-bit conversions: a fast
// scan of plain ASCII text, and the character-by-character scan behind com__chtoi4_mb.
#pragma once

#include <cstdint>

#include "comnlib/convert.h"

namespace comn::intscan {

inline constexpr int32_t kSyntax = -2, kOverflow = -1, kEmpty = 0, kNumber = 4;
inline constexpr int32_t kUndecided = -3;

// Scans blanks, an optional sign, at most ten digits and blanks, all plain ASCII bytes; any
// other byte, or more digits, leaves the text to the full scanner (kUndecided). In every set
// the library knows these bytes are one-byte characters that are their own ASCII equivalent,
// so a decided answer is the one the full scanner would give.
inline int32_t scan_ascii(const uint8_t *p, const uint8_t *end, int32_t *out) {
    while (p < end && *p == ' ')
        ++p;
    if (p == end) {
        *out = 0;
        return kEmpty;
    }
    const bool neg = *p == '-';
    if (neg || *p == '+') ++p;
    const uint8_t *const first = p;
    uint64_t v = 0; // < 10^10 whenever it is used; a longer run wraps harmlessly
    for (uint32_t d; p < end && (d = static_cast<uint8_t>(*p - '0')) < 10; ++p)
        v = v * 10 + d;
    if (p == first || p - first > 10) return kUndecided;
    while (p < end && *p == ' ')
        ++p;
    if (p != end) return kUndecided;
    if (v > 2147483647u + static_cast<uint64_t>(neg)) {
        *out = neg ? INT32_MIN : INT32_MAX;
        return kOverflow;
    }
    *out = static_cast<int32_t>(neg ? 0 - v : v);
    return kNumber;
}

// The narrow destinations of a 32-bit scan (outcome rc, value v): a number that does not fit
// keeps its low 8 or 16 bits and becomes an overflow, on purpose; anything but a number
// leaves 0.
inline int32_t narrow_i2(int32_t rc, int32_t v, int16_t *out) {
    *out = 0;
    if (rc != kNumber) return rc;
    *out = static_cast<int16_t>(static_cast<uint16_t>(v));
    return v >= -32768 && v <= 32767 ? rc : kOverflow;
}
inline int32_t narrow_i1(int32_t rc, int32_t v, uint8_t *out) {
    *out = 0;
    if (rc != kNumber) return rc;
    *out = static_cast<uint8_t>(v);
    return static_cast<uint32_t>(v) <= 255 ? rc : kOverflow;
}

} // namespace comn::intscan
