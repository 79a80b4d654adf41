// Lookups shared by the routines that read a character attribute record.
#pragma once

#include "comnlib/intl.h"

namespace comn {

// The built-in "iso_1" record (the same one com_get_charattrib returns).
extern const CharAttrib Iso1_attrib;

inline const CharAttrib *attr_or_builtin(const CharAttrib *a) {
    return a ? a : &Iso1_attrib;
}

// The 4-byte type map entry of the character at p (see comn__type_entry).
inline const uint8_t *type_entry(const CharAttrib *a, const char *p) {
    return comn__type_entry(a->typemap, p);
}

// Byte length of the character that begins with p; never 0, so that walks always advance.
inline int32_t char_len(const CharAttrib *a, const char *p) {
    if (!a->widthmap) return 1;
    const int32_t n = a->widthmap[static_cast<uint8_t>(p[0])] & 0x0F;
    return n ? n : 1;
}

} // namespace comn
