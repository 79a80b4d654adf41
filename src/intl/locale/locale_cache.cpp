// The context's cache of locale records: the three scans (by name, by language and character
// set, by sort order and character set), and dropping records.
//
// A record owns its four names, its common information and its message cache; its character
// set description belongs to the context's description list and is only pointed at.
#include <cstdlib>
#include <cstring>

#include "comnlib/msg.h"
#include "intl/locale/locale_internal.h"

namespace comn {

LocaleRecord *category_record(const LocaleHandle *h, int32_t category) {
    if (!h) return nullptr;
    switch (category) {
    case COM_LC_COLLATE:
        return h->collate;
    case COM_LC_CTYPE:
        return h->ctype;
    case COM_LC_MESSAGE:
        return h->message;
    case COM_LC_MONETARY:
        return h->monetary;
    case COM_LC_NUMERIC:
        return h->numeric;
    case COM_LC_TIME:
        return h->time;
    default:
        return nullptr;
    }
}

namespace {

// The first cached record for which match answers true.
template <class Match>
LocaleRecord *scan(ComContext *ctx, Match match) {
    for (LocaleRecord *r = ctx ? ctx->loc_cache : nullptr; r; r = r->next)
        if (match(*r)) return r;
    return nullptr;
}

bool same(const char *a, const char *b) {
    return a && b && std::strcmp(a, b) == 0;
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API LocaleRecord *com__scan_lcache_name(ComContext *ctx, const char *name, int32_t namelen) {
    if (!name) return nullptr;
    const size_t n = namelen < 0 ? std::strlen(name) : static_cast<size_t>(namelen);
    return scan(ctx, [&](const LocaleRecord &r) {
        return r.name && std::strlen(r.name) == n && std::memcmp(r.name, name, n) == 0;
    });
}

COMN_API LocaleRecord *com__scan_lcache_lang(ComContext *ctx, const char *language,
                                             const char *charset) {
    return scan(ctx, [&](const LocaleRecord &r) {
        return same(r.language, language) && same(r.charset, charset);
    });
}

COMN_API LocaleRecord *com__scan_lcache_sort(ComContext *ctx, const char *sortorder,
                                             const char *charset) {
    return scan(ctx, [&](const LocaleRecord &r) {
        return same(r.sortorder, sortorder) && same(r.charset, charset);
    });
}

COMN_API void com__lcache_drop(LocaleRecord *rec) {
    if (!rec) return;
    com__msgcache_drop(rec->msgcache);
    comn::mem_free(rec->name);
    comn::mem_free(rec->language);
    comn::mem_free(rec->charset);
    comn::mem_free(rec->sortorder);
    drop_common(rec->common);
    comn::mem_free(rec);
}

COMN_API void com_intl_loccache_drop(ComContext *ctx) {
    if (!ctx) return;
    for (LocaleRecord *r = ctx->loc_cache; r;) {
        LocaleRecord *next = r->next;
        com__lcache_drop(r);
        r = next;
    }
    ctx->loc_cache = nullptr;
}

COMN_API const char *com_intl_get_locname(const LocaleRecord *rec) {
    return rec ? rec->name : nullptr;
}
}
