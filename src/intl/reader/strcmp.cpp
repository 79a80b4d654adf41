// Unsigned byte comparisons used for every name and keyword match of the localisation files.
// The counted form compares exactly n bytes and deliberately does not stop at a terminator.
#include "comnlib/intl.h"

extern "C" {

COMN_API int32_t com_unsignstrcmp(const char *a, const char *b) {
    auto *x = reinterpret_cast<const unsigned char *>(a);
    auto *y = reinterpret_cast<const unsigned char *>(b);
    while (*x && *x == *y)
        ++x, ++y;
    return static_cast<int32_t>(*x) - static_cast<int32_t>(*y);
}

COMN_API int32_t com_unsignstrncmp(const char *a, const char *b, int32_t n) {
    auto *x = reinterpret_cast<const unsigned char *>(a);
    auto *y = reinterpret_cast<const unsigned char *>(b);
    for (int32_t i = 0; i < n; ++i)
        if (x[i] != y[i]) return static_cast<int32_t>(x[i]) - static_cast<int32_t>(y[i]);
    return 0;
}
}
