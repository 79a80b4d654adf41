// Shared internals of the localisation files: status hand-off and bounded name matching.
#pragma once

#include <cstddef>
#include <cstring>

#include "comnlib/intl.h"

namespace comn {

// Keeps the platform reader's status in the context and answers COM_INTL_ERROR, or
// CS_MEM_ERROR when the reader ran out of memory (the file itself is then not at fault).
inline int32_t intl_fail(ComContext *ctx, int32_t status) {
    if (ctx) ctx->intl_status = status;
    return status == INTL_E_NOMEM ? CS_MEM_ERROR : COM_INTL_ERROR;
}

// True when a file value equals want over exactly n bytes, as com_unsignstrncmp compares
// them, but with the value seen as NUL-padded past its terminator so that nothing beyond the
// reader's string is read.
inline bool counted_equal(const char *value, const char *want, int32_t n) {
    const size_t vlen = std::strlen(value);
    for (int32_t i = 0; i < n; ++i) {
        const unsigned char v = static_cast<size_t>(i) <= vlen ? value[i] : 0;
        if (v != static_cast<unsigned char>(want[i])) return false;
    }
    return true;
}

// Opens "locales.dat" and positions the reader on its section "linux". Answers 1 with the
// reader open, 0 (no such section; reader closed), or a path/open failure (reader closed).
int32_t open_locales_linux(ComContext *ctx, IntlFile **f);

} // namespace comn
