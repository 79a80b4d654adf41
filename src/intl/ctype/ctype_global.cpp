// The older single-byte classification family: one byte in, read through the global map
// Com_charmap (entries: upper-case byte, lower-case byte, unused, type bits).
#include "comnlib/intl.h"
#include "intl/ctype/ctype_tests.h"

extern "C" {

#define COMN_DEFINE_GLOBAL_TEST_(name, bits)                                                       \
    COMN_API int32_t com_##name(int32_t c) {                                                       \
        return Com_charmap[4 * (c & 0xFF) + 3] & (bits);                                           \
    }
COMN_CTYPE_TESTS(COMN_DEFINE_GLOBAL_TEST_)
#undef COMN_DEFINE_GLOBAL_TEST_

COMN_API int32_t com_toupper(int32_t c) {
    return Com_charmap[4 * (c & 0xFF)];
}
COMN_API int32_t com_tolower(int32_t c) {
    return Com_charmap[4 * (c & 0xFF) + 1];
}
}
