// Context start-up and tear-down in one call each, for applications and the command-line
// tool. Start-up fills a zero-filled context in this order: conversion table, null values,
// the default locale named by the environment (LC_ALL, else LANG, else "default") loaded into
// the locale cache and wrapped in the context's default handle. Tear-down runs the other way.
//
// The message files of the context are not loaded here yet: the message-file layer has no
// loading routine to call so far.
#include <cstdlib>

#include "comnlib/convert.h"
#include "comnlib/intl.h"
#include "intl/locale_internal.h"

namespace comn {
namespace {

// Loads the locale the environment names and installs it as the default handle, every
// category pointing at it. The handle belongs to the context, not to its handle list.
int32_t load_default_locale(ComContext *ctx) {
    char name[COM_INTL_NAME_SIZE];
    int32_t rc = com_intl_envloc(ctx, COM_LC_TIME + 1, name, sizeof name); // LC_ALL
    if (rc != 1) return rc;
    LocaleRecord *rec = nullptr;
    rc = com_intl_load(ctx, name, -1, &rec);
    if (rc != 1) return rc;
    auto *h = static_cast<LocaleHandle *>(loc_alloc(sizeof(LocaleHandle)));
    if (!h) return CS_MEM_ERROR;
    h->collate = h->ctype = h->message = h->monetary = h->numeric = h->time = rec;
    ctx->conv.default_locale = h;
    return CS_SUCCEED;
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t comn_ctx_setup(ComContext *ctx) {
    if (!ctx) return CS_FAIL;
    int32_t rc = com_conv_init(ctx);
    if (rc == CS_SUCCEED) rc = com_null_init(ctx);
    if (rc == CS_SUCCEED) rc = comn::load_default_locale(ctx);
    if (rc != CS_SUCCEED) comn_ctx_teardown(ctx);
    return rc;
}

COMN_API void comn_ctx_teardown(ComContext *ctx) {
    if (!ctx) return;
    comn_loc_drop_all(ctx);
    std::free(ctx->conv.default_locale);
    ctx->conv.default_locale = nullptr;
    com_intl_loccache_drop(ctx);
    com__charset_drop_all(ctx);
    com_null_free(ctx);
    com_conv_free(ctx);
}
}
