// Context start-up and tear-down in one call each, for applications and the command-line
// tool. Start-up fills a zero-filled context in this order: conversion table, null values,
// the default locale named by the environment (LC_ALL, else LANG, else "default") loaded into
// the locale cache and wrapped in the context's default handle, then this library's message
// file "cslib.loc" of that locale when the locale ships one. Tear-down runs the other way; the
// message cache goes with the locale record that holds it.
#include <cstdlib>

#include "comnlib/context.h"
#include "comnlib/convert.h"
#include "comnlib/intl.h"
#include "comnlib/msg.h"
#include "intl/locale/locale_internal.h"

namespace comn {
namespace {

// Loads the locale the environment names and installs it as the default handle, every
// category pointing at it. The handle belongs to the context, not to its handle list.
int32_t load_default_locale(ComContext *ctx) {
    char name[COM_INTL_NAME_SIZE];
    int32_t rc = com_intl_envloc(ctx, COM_LC_TIME + 1, name, sizeof name); // LC_ALL
    if (rc != CS_SUCCEED) return rc;
    LocaleRecord *rec = nullptr;
    rc = com_intl_load(ctx, name, -1, &rec);
    if (rc != CS_SUCCEED) return rc;
    auto *h = static_cast<LocaleHandle *>(comn::mem_calloc(1, sizeof(LocaleHandle)));
    if (!h) return CS_MEM_ERROR;
    h->collate = h->ctype = h->message = h->monetary = h->numeric = h->time = rec;
    ctx->conv.default_locale = h;
    return CS_SUCCEED;
}

// Loads "cslib.loc" into the message cache of the default locale's message record. A locale
// without the file is no failure: its messages are then simply not available.
int32_t load_messages(ComContext *ctx) {
    LocaleRecord *rec = ctx->conv.default_locale->message;
    char path[COM_INTL_PATH_SIZE];
    if (com__verify_msgfile(ctx, rec->language, rec->charset, "cslib.loc", path, sizeof path - 1) !=
        1)
        return CS_SUCCEED;
    ComErrCtx errctx{rec, "cslib.loc"};
    return com_err_init(ctx, &errctx, Com_msg_sections, COM_MSG_SECTION_COUNT, nullptr, 0);
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t comn_ctx_setup(ComContext *ctx) {
    if (!ctx) return CS_FAIL;
    int32_t rc = com_conv_init(ctx);
    if (rc == CS_SUCCEED) rc = com_null_init(ctx);
    if (rc == CS_SUCCEED) rc = comn::load_default_locale(ctx);
    if (rc == CS_SUCCEED) rc = comn::load_messages(ctx);
    if (rc != CS_SUCCEED) comn_ctx_teardown(ctx);
    return rc;
}

COMN_API void comn_ctx_teardown(ComContext *ctx) {
    if (!ctx) return;
    comn_loc_drop_all(ctx);
    comn::mem_free(ctx->conv.default_locale);
    ctx->conv.default_locale = nullptr;
    com_intl_loccache_drop(ctx);
    com__charset_drop_all(ctx);
    com_null_free(ctx);
    com_conv_free(ctx);
}
}
