// Character classification, case mapping, widths and ASCII equivalents through a character
// attribute record (null means the built-in "iso_1" record). Characters of a multibyte set
// are reached through the width map (byte length) and the two-level type map.
#include <cstring>

#include "intl/ctype/charattr_internal.h"
#include "intl/ctype/ctype_tests.h"

namespace comn {
namespace {

// The ASCII equivalent of the character at p, 0 when it has none.
int32_t to_ascii(const CharAttrib *a, const char *p) {
    const uint8_t c = static_cast<uint8_t>(p[0]);
    if (a->asciimap) {
        if (comn_char_width(a, p) != 1) {
            const uint8_t page = a->asciimap[c];
            return page ? a->asciimap[256 * static_cast<size_t>(page) + static_cast<uint8_t>(p[1])]
                        : 0;
        }
        return a->asciimap[c];
    }
    if (a->typemap) return a->typemap[4 * c + 1];
    return c;
}

// Shared body of comn_toupper and comn_tolower; slot 0 is the upper-case byte, 1 the lower.
int32_t map_case(const CharAttrib *a, const char *src, char *dest, int slot) {
    a = attr_or_builtin(a);
    const uint8_t *e = a->typemap + 4 * static_cast<uint8_t>(src[0]);
    if (e[3] & COM_CT_LEAD) {
        const uint8_t *pe =
            a->typemap + 1024 * static_cast<size_t>(e[0]) + 4 * static_cast<uint8_t>(src[1]);
        dest[0] = src[0];
        dest[1] = static_cast<char>(pe[slot]);
        return 2;
    }
    if (e[slot]) {
        dest[0] = static_cast<char>(e[slot]);
        return 1;
    }
    const int32_t n = char_len(a, src);
    std::memmove(dest, src, n);
    return n;
}

} // namespace
} // namespace comn

extern "C" {

#define COMN_DEFINE_TEST_(name, bits)                                                              \
    COMN_API int32_t comn_##name(const CharAttrib *attr, const char *c) {                          \
        return comn::type_entry(comn::attr_or_builtin(attr), c)[3] & (bits);                       \
    }
COMN_CTYPE_TESTS(COMN_DEFINE_TEST_)
COMN_DEFINE_TEST_(ispunct, COM_CT_PUNCT)
#undef COMN_DEFINE_TEST_

COMN_API int32_t comn_get_lex(const CharAttrib *attr, const char *c) {
    return comn::type_entry(comn::attr_or_builtin(attr), c)[2];
}

COMN_API int32_t comn_char_width(const CharAttrib *attr, const char *c) {
    attr = comn::attr_or_builtin(attr);
    return attr->widthmap ? attr->widthmap[static_cast<uint8_t>(c[0])] & 0x0F : 1;
}

COMN_API int32_t comn_disp_width(const CharAttrib *attr, const char *c) {
    attr = comn::attr_or_builtin(attr);
    return attr->widthmap ? attr->widthmap[static_cast<uint8_t>(c[0])] >> 4 : 1;
}

COMN_API const char *comn_inc_char(const CharAttrib *attr, const char *c) {
    return c + comn::char_len(comn::attr_or_builtin(attr), c);
}

COMN_API const uint8_t *comn_get_widthmap(const CharAttrib *attr) {
    return comn::attr_or_builtin(attr)->widthmap;
}

COMN_API int32_t comn_toupper(const CharAttrib *attr, const char *src, char *dest) {
    return comn::map_case(attr, src, dest, 0);
}

COMN_API int32_t comn_tolower(const CharAttrib *attr, const char *src, char *dest) {
    return comn::map_case(attr, src, dest, 1);
}

COMN_API int32_t comn_whole_char(const CharAttrib *attr, const char *start, const char *end,
                                 int32_t *chars, int32_t *whole_bytes, int32_t *cut_bytes,
                                 int32_t *overrun) {
    attr = comn::attr_or_builtin(attr);
    const char *p = start;
    int32_t count = 0, last = 0;
    while (p < end) {
        last = comn::char_len(attr, p);
        p += last;
        ++count;
    }
    if (p > end) { // the last character runs past the end of the range
        const int32_t over = static_cast<int32_t>(p - end);
        *chars = count - 1;
        *whole_bytes = static_cast<int32_t>(p - last - start);
        *cut_bytes = last - over;
        *overrun = over;
        return over;
    }
    *chars = count;
    *whole_bytes = static_cast<int32_t>(end - start);
    *cut_bytes = 0;
    *overrun = 0;
    return *whole_bytes;
}

COMN_API int32_t comn_to_ascii(const CharAttrib *attr, const char *c) {
    return comn::to_ascii(comn::attr_or_builtin(attr), c);
}

COMN_API int32_t comn_str_to_ascii(const char *src, int32_t length, char *dest, int32_t *count,
                                   const CharAttrib *attr) {
    attr = comn::attr_or_builtin(attr);
    int32_t w = 0;
    for (int32_t i = 0; i < length;) {
        int32_t n = comn::char_len(attr, src + i);
        if (n > length - i) n = length - i; // a cut character at the end is copied as it is
        const int32_t ascii =
            n == comn::char_len(attr, src + i) ? comn::to_ascii(attr, src + i) : 0;
        if (ascii) {
            dest[w++] = static_cast<char>(ascii);
        } else {
            std::memmove(dest + w, src + i, n);
            w += n;
        }
        i += n;
    }
    if (count) *count = w;
    return CS_SUCCEED;
}
}
