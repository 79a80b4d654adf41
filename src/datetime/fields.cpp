// Small text writers used by the date formatter and by date names: a decimal number with an
// overflow star, a number in a fixed-width field, and a bounded text copy. None of them
// writes a terminator unless asked to.
#include <cstdio>
#include <cstring>

#include "comnlib/datetime.h"

extern "C" {

// The value in decimal; a text longer than a positive max is replaced by a single "*".
COMN_API int32_t com__itochar(long value, char *out, int32_t max) {
    char buf[24];
    const int n = std::snprintf(buf, sizeof buf, "%ld", value);
    if (max >= 1 && n > max) {
        out[0] = '*';
        return 1;
    }
    std::memcpy(out, buf, static_cast<size_t>(n));
    return n;
}

// Right-aligned in |width| bytes: zero-padded for a negative width, blank-padded for a
// positive one. Digits that do not fit are dropped from the high end, which is how a
// two-digit year is cut from a four-digit one. A negative value is written by its magnitude.
COMN_API int32_t com__cpint(char *out, int32_t value, int32_t terminator, int32_t width) {
    const char pad = width < 0 ? '0' : ' ';
    const int32_t w = width < 0 ? -width : width;
    uint32_t v = value < 0 ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
    int32_t i = w - 1;
    if (i >= 0) {
        do {
            out[i--] = static_cast<char>('0' + v % 10);
            v /= 10;
        } while (v != 0 && i >= 0);
        while (i >= 0)
            out[i--] = pad;
    }
    if (terminator == 0) return w;
    out[w] = static_cast<char>(terminator);
    return w + 1;
}

// Copies text up to its end or max bytes, then the terminator if it is not 0.
COMN_API int32_t com__cpchar(char *out, const char *text, int32_t terminator, int32_t max) {
    int32_t n = 0;
    while (n < max && text[n] != '\0') {
        out[n] = text[n];
        ++n;
    }
    if (terminator != 0) out[n++] = static_cast<char>(terminator);
    return n;
}
}
