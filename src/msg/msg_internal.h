// Seams of the message layer: every allocation of the message cache and of error assembly
// goes through msg_malloc, and every message file is opened through msg_open, so that tests
// can fail the n-th allocation or feed a file from memory. Both default to the real thing.
#pragma once

#include <cstddef>
#include <cstdint>

#include "comnlib/intl.h"
#include "comnlib/msg.h"

namespace comn {

using MsgMallocFn = void *(*)(size_t);
using MsgOpenFn = int32_t (*)(ComContext *ctx, const char *language, const char *charset,
                              const char *file, IntlFile **handle);

extern MsgMallocFn msg_malloc;
extern MsgOpenFn msg_open;

// A malloc'ed copy of len bytes of s plus a terminator, or null.
char *msg_strndup(const char *s, size_t len);

// Unlinks a file record from the cache's file list and frees it, taking its entries out of
// the load-order list first so that the cache stays consistent.
void msg_drop_file(ComMsgCache *cache, ComErrFile *file);

} // namespace comn
