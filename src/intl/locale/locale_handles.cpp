// Locale handles: the small records of six locale record pointers (one per category) that
// the context hands out, linked newest first in the context's handle list. Handles never own
// records. The list is the one part of the locale area that may be shared between threads,
// so every walk or change of it runs between the context's lock and unlock callbacks, when
// the context has them.
#include <cstdlib>
#include <cstring>

#include "intl/locale/locale_internal.h"

namespace comn {
namespace {

// Runs body between the context's lock and unlock callbacks. A lock status other than 1 is
// returned without running body; an unlock status other than 1 replaces body's result.
template <class Body>
int32_t locked(ComContext *ctx, Body body) {
    if (ctx->lock) {
        const int32_t rc = ctx->lock(ctx);
        if (rc != CS_SUCCEED) return rc;
    }
    const int32_t result = body();
    if (ctx->unlock) {
        const int32_t rc = ctx->unlock(ctx);
        if (rc != CS_SUCCEED) return rc;
    }
    return result;
}

void copy_records(LocaleHandle *dest, const LocaleHandle *src) {
    dest->collate = src->collate;
    dest->ctype = src->ctype;
    dest->message = src->message;
    dest->monetary = src->monetary;
    dest->numeric = src->numeric;
    dest->time = src->time;
}

void free_handle(LocaleHandle *h) {
    std::memset(h, 0, sizeof *h);
    comn::mem_free(h);
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t comn_loc_alloc(ComContext *ctx, LocaleHandle **out) {
    if (!ctx || !out) return CS_FAIL;
    return locked(ctx, [&]() -> int32_t {
        auto *h = static_cast<LocaleHandle *>(comn::mem_calloc(1, sizeof(LocaleHandle)));
        if (!h) return CS_MEM_ERROR;
        if (ctx->conv.default_locale) copy_records(h, ctx->conv.default_locale);
        h->next = ctx->loc_handles;
        ctx->loc_handles = h;
        *out = h;
        return CS_SUCCEED;
    });
}

COMN_API int32_t comn_loc_drop(ComContext *ctx, LocaleHandle *h) {
    if (!ctx || !h) return CS_FAIL;
    return locked(ctx, [&]() -> int32_t {
        for (LocaleHandle **p = &ctx->loc_handles; *p; p = &(*p)->next)
            if (*p == h) {
                *p = h->next;
                break;
            }
        if (ctx->current_locale == h) ctx->current_locale = nullptr;
        free_handle(h);
        return CS_SUCCEED;
    });
}

COMN_API int32_t comn_loc_drop_all(ComContext *ctx) {
    if (!ctx) return CS_FAIL;
    return locked(ctx, [&]() -> int32_t {
        for (LocaleHandle *h = ctx->loc_handles; h;) {
            LocaleHandle *next = h->next;
            free_handle(h);
            h = next;
        }
        ctx->loc_handles = nullptr;
        ctx->current_locale = nullptr;
        std::free(ctx->loc_buffer); // the caller's malloc'ed scratch, not the seam's
        ctx->loc_buffer = nullptr;
        return CS_SUCCEED;
    });
}

COMN_API int32_t comn_loc_validate(ComContext *ctx, const LocaleHandle *h) {
    if (!ctx || !h) return 0;
    const int32_t rc = locked(ctx, [&]() -> int32_t {
        for (const LocaleHandle *p = ctx->loc_handles; p; p = p->next)
            if (p == h) return CS_SUCCEED;
        return 0;
    });
    return rc == CS_SUCCEED ? CS_SUCCEED : 0;
}

COMN_API int32_t comn_loc_copy(LocaleHandle *dest, const LocaleHandle *src) {
    if (!dest || !src) return CS_FAIL;
    copy_records(dest, src);
    return CS_SUCCEED;
}
}
