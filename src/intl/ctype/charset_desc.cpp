// The context's list of character set descriptions: one per (character set, sort order) pair,
// each holding the set's image and attribute record and the sort order's weight table. Locale
// records with the same pair share one description; the list owns them and frees them all
// with the context.
#include <cstdlib>
#include <cstring>

#include "intl/ctype/charset_internal.h"
#include "intl/intl_internal.h"

namespace comn {
namespace {

char *dup(const char *s) {
    const size_t n = std::strlen(s) + 1;
    auto *d = static_cast<char *>(std::malloc(n));
    if (d) std::memcpy(d, s, n);
    return d;
}

void drop(ComCharsetDesc *d) {
    std::free(d->charset);
    std::free(d->sortorder);
    com_free_char_attrib(d->attr);
    std::free(d->image);
    std::free(d->sort_table);
    std::free(d);
}

// Opens one file of the set, reads it with reader, closes it; maps the statuses.
template <class Read>
int32_t load_file(ComContext *ctx, const char *charset, const char *file, const char *ext,
                  Read reader) {
    IntlFile *f = nullptr;
    int32_t rc = com__open_charfile(ctx, charset, file, ext, &f);
    if (rc != 1) return rc;
    int32_t st = 0;
    rc = reader(f, &st);
    const int32_t cl = intl_close(f);
    if (rc == COM_INTL_ERROR) return intl_fail(ctx, st);
    if (rc == 1 && cl < 0) return intl_fail(ctx, cl);
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
            return 1;
        }
    auto *d = static_cast<ComCharsetDesc *>(std::calloc(1, sizeof(ComCharsetDesc)));
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
    if (rc == 1)
        rc = comn::load_file(ctx, charset, sortorder, "srt", [&](IntlFile *f, int32_t *st) {
            return comn::read_sortorder(f, st, &d->sort_table, &d->sort_size);
        });
    if (rc != 1) {
        comn::drop(d);
        return rc;
    }
    d->next = ctx->charset_descs;
    ctx->charset_descs = d;
    *desc_out = d;
    return 1;
}

COMN_API int32_t com__charset_load(ComContext *ctx, LocaleRecord *rec) {
    if (!rec) return 0;
    ComCharsetDesc *d = nullptr;
    const int32_t rc = com__charset_desc_get(ctx, rec->charset, rec->sortorder, &d);
    if (rc == 1) rec->charset_desc = d;
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
