// How the text input conversions read one character of a character set: its byte length from
// the width map and its plain ASCII equivalent from the ASCII map (or, for a set without one,
// from the lower-case byte of its type map entry). A null attribute record means a single-byte
// set in which every byte is its own equivalent.
#pragma once

#include <cstdint>

#include "comnlib/intl.h"

namespace comn::text {

// Bytes of the character that starts with byte b: [1, 15].
inline int32_t char_len(const CharAttrib *a, uint8_t b) {
    if (a == nullptr || a->widthmap == nullptr) return 1;
    const int32_t n = a->widthmap[b] & 0x0F;
    return n != 0 ? n : 1;
}

// The ASCII equivalent of the character of len bytes at p (all len bytes readable), 0 when
// it has none. In a single-byte set the ASCII map's entry for the byte is the equivalent.
inline uint8_t ascii_of(const CharAttrib *a, const uint8_t *p, int32_t len) {
    if (a == nullptr) return p[0];
    if (a->asciimap != nullptr) {
        if (len == 1) return a->asciimap[p[0]];
        const uint32_t page = a->asciimap[p[0]];
        return page != 0 ? a->asciimap[256 * page + p[1]] : 0;
    }
    if (a->typemap != nullptr) return a->typemap[4 * p[0] + 1];
    return len == 1 ? p[0] : 0; // without tables a longer character is kept whole
}

// Whether the character of len bytes at p is white space in the set. A lead byte's entry is
// looked up in its page only when the second byte is there.
inline bool is_space(const CharAttrib *a, const uint8_t *p, int32_t len) {
    const uint8_t *map = a != nullptr && a->typemap != nullptr ? a->typemap : com_get_typemap();
    const uint8_t *e = map + 4 * p[0];
    if (e[3] & COM_CT_LEAD) {
        if (len < 2) return false;
        e = map + 1024 * static_cast<uint32_t>(e[0]) + 4 * p[1];
    }
    return (e[3] & COM_CT_SPACE) != 0;
}

} // namespace comn::text
