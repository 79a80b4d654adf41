// Seam of the message layer: every message file is opened through msg_open, so that tests can
// feed a file from memory; it defaults to the real thing. Allocations go through the library's
// allocation seam (core/alloc.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "comnlib/intl.h"
#include "comnlib/msg.h"
#include "core/alloc.h"

namespace comn {

using MsgOpenFn = int32_t (*)(ComContext *ctx, const char *language, const char *charset,
                              const char *file, IntlFile **handle);

extern MsgOpenFn msg_open;

// A zeroed record of type T from the allocation seam whose owned string member `field` holds a
// copy of text; null when either allocation fails, with nothing left allocated.
template <typename T>
T *new_named_record(char *T::*field, const char *text) {
    auto *r = static_cast<T *>(mem_malloc(sizeof(T)));
    if (!r) return nullptr;
    std::memset(r, 0, sizeof *r);
    r->*field = mem_strndup(text, std::strlen(text));
    if (!(r->*field)) {
        mem_free(r);
        return nullptr;
    }
    return r;
}

// Unlinks a file record from the cache's file list and frees it, taking its entries out of
// the load-order list first so that the cache stays consistent.
void msg_drop_file(ComMsgCache *cache, ComErrFile *file);

} // namespace comn
