// The context's list of character set descriptions: one per (character set, sort order) pair,
// each holding the set's image and attribute record and the sort order's weight table. Locale
// records with the same pair share one description; the list owns them and frees them all
// with the context.
#include <cstdlib>
#include <cstring>

#include "intl/ctype/charset_internal.h"
#include "intl/intl_internal.h"
#include "core/alloc.h"

namespace comn {
namespace {

char *dup(const char *s) {
    const size_t n = std::strlen(s) + 1;
    auto *d = static_cast<char *>(comn::mem_malloc(n));
    if (d) std::memcpy(d, s, n);
    return d;
}

void drop(ComCharsetDesc *d) {
    comn::mem_free(d->charset);
    comn::mem_free(d->sortorder);
    com_free_char_attrib(d->attr);
    comn::mem_free(d->image);
    comn::mem_free(d->sort_table);
    comn::mem_free(d);
}

// Opens one file of the set, reads it with reader, closes it; maps the statuses.
template <class Read>
int32_t load_file(ComContext *ctx, const char *charset, const char *file, const char *ext,
                  Read reader) {
    IntlFile *f = nullptr;
    int32_t rc = com__open_charfile(ctx, charset, file, ext, &f);
    if (rc != CS_SUCCEED) return rc;
    int32_t st = 0;
    rc = reader(f, &st);
    const int32_t cl = intl_close(f);
    if (rc == COM_INTL_ERROR) return intl_fail(ctx, st);
    if (rc == CS_SUCCEED && cl < 0) return intl_fail(ctx, cl);
    return rc;
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t com__charset_desc_get(ComContext *ctx, const char *charset, const char *sortorder,
                                       ComCharsetDesc **desc_out) {
    if (!ctx || !charset || !sortorder || !desc_out) return 0;
    for (ComCharsetDesc *d = ctx->charset_descs; d; d = d->next)
        if (std::strcmp(d->charset, charset) == 0 && std::strcmp(d->sortorder, sortorder) == 0) {
            *desc_out = d;
            return CS_SUCCEED;
        }
    auto *d = static_cast<ComCharsetDesc *>(comn::mem_calloc(1, sizeof(ComCharsetDesc)));
    if (!d) return CS_MEM_ERROR;
    d->charset = comn::dup(charset);
    d->sortorder = comn::dup(sortorder);
    if (!d->charset || !d->sortorder) {
        comn::drop(d);
        return CS_MEM_ERROR;
    }
    int32_t rc =
        comn::load_file(ctx, charset, "charset.loc", nullptr, [&](IntlFile *f, int32_t *st) {
            return comn::read_charset(f, charset, st, &d->image, &d->attr);
        });
    if (rc == CS_SUCCEED)
        rc = comn::load_file(ctx, charset, sortorder, "srt", [&](IntlFile *f, int32_t *st) {
            return comn::read_sortorder(f, st, &d->sort_table, &d->sort_size);
        });
    if (rc != CS_SUCCEED) {
        comn::drop(d);
        return rc;
    }
    d->next = ctx->charset_descs;
    ctx->charset_descs = d;
    *desc_out = d;
    return CS_SUCCEED;
}

COMN_API int32_t com__charset_load(ComContext *ctx, LocaleRecord *rec) {
    if (!rec) return 0;
    ComCharsetDesc *d = nullptr;
    const int32_t rc = com__charset_desc_get(ctx, rec->charset, rec->sortorder, &d);
    if (rc == CS_SUCCEED) rec->charset_desc = d;
    return rc;
}

COMN_API void com__charset_drop_all(ComContext *ctx) {
    if (!ctx) return;
    for (ComCharsetDesc *d = ctx->charset_descs; d;) {
        ComCharsetDesc *next = d->next;
        comn::drop(d);
        d = next;
    }
    ctx->charset_descs = nullptr;
}
}
