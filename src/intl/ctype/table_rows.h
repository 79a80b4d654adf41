// Reading the hexadecimal table rows of "charset.loc" and ".srt" files: an entry whose key is
// the hexadecimal index of its first cell and whose values are the cells, each a fixed number
// of hexadecimal digits ("40 = 40400100, 41610151, ..."), at most 16 to a row.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "comnlib/intl.h"

namespace comn {

// Parses exactly digits hexadecimal digits; false on any other text.
inline bool parse_hex(const char *s, int digits, uint32_t *out) {
    if (!s || static_cast<int>(std::strlen(s)) != digits) return false;
    uint32_t v = 0;
    for (int i = 0; i < digits; ++i) {
        const char c = s[i];
        const int d = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : -1;
        if (d < 0) return false;
        v = v << 4 | static_cast<uint32_t>(d);
    }
    *out = v;
    return true;
}

// Parses a small decimal number in [lo, hi].
inline bool parse_dec(const char *s, long lo, long hi, long *out) {
    if (!s || !*s || std::strlen(s) > 9) return false;
    char *end = nullptr;
    const long v = std::strtol(s, &end, 10);
    if (*end || v < lo || v > hi) return false;
    *out = v;
    return true;
}

// Reads the values of the current entry, whose key is a row index (2 to 4 hex digits), into
// cells [key, key + n) of table (count cells of width bytes), each value holding width * 2
// hex digits stored by store(table, index, value). Answers 0 on success, else a negative
// reader status (INTL_E_SYNTAX for a malformed row).
template <class Store>
int32_t read_row(IntlFile *f, const char *key, size_t count, int width, Store store) {
    uint32_t at = 0;
    const size_t klen = std::strlen(key);
    if (klen < 2 || klen > 4 || !parse_hex(key, static_cast<int>(klen), &at)) return INTL_E_SYNTAX;
    int32_t st = 0;
    int n = 0;
    while (char *v = intl_nextvalue(f, &st)) {
        uint32_t cell = 0;
        if (++n > 16 || at >= count || !parse_hex(v, 2 * width, &cell)) return INTL_E_SYNTAX;
        store(at++, cell);
    }
    return st < 0 ? st : 0;
}

} // namespace comn
