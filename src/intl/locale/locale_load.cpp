// Loading a locale into the context's cache: by name (com_intl_load, through the locales
// file), by its three parts (com_intl_load_lcs, through the reverse translation), and the
// building of a new record (com__intl_load_new), which shares what it can with the records
// already cached: the common information of a record with the same language and character
// set is copied, the character set description of one with the same character set and sort
// order is pointed at.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "intl/locale/locale_internal.h"

namespace comn {
namespace {

// Fills rec's four names; false when an allocation fails.
bool set_names(LocaleRecord *rec, const char *name, size_t namelen, const char *language,
               const char *charset, const char *sortorder) {
    rec->name = comn::mem_strndup(name, namelen);
    rec->language = comn::mem_strndup(language, std::strlen(language));
    rec->charset = comn::mem_strndup(charset, std::strlen(charset));
    rec->sortorder = comn::mem_strndup(sortorder, std::strlen(sortorder));
    return rec->name && rec->language && rec->charset && rec->sortorder;
}

const char *or_default(const char *part, const char *fallback) {
    return part && *part ? part : fallback;
}

// The locale name of three parts through the reverse translation, else the parts joined by
// points. Answers 1 with a malloc'ed name (not terminated) and its length, CS_MEM_ERROR, a
// second truncation (CS_CONV_OVERFLOW) or the reader's failure.
int32_t name_of(ComContext *ctx, const char *lang, const char *cs, const char *so, char **name,
                int32_t *namelen) {
    const size_t ll = std::strlen(lang), cl = std::strlen(cs), sl = std::strlen(so);
    int32_t size = static_cast<int32_t>(std::max<size_t>(ll + cl + sl + 2, COM_INTL_NAME_SIZE));
    for (int attempt = 0;; ++attempt) {
        auto *buf = static_cast<char *>(comn::mem_calloc(1, size));
        if (!buf) return CS_MEM_ERROR;
        int32_t len = 0;
        const int32_t rc =
            com_intl_locname(ctx, lang, static_cast<int32_t>(ll), cs, static_cast<int32_t>(cl), so,
                             static_cast<int32_t>(sl), buf, size, &len);
        if (rc == CS_SUCCEED) {
            *name = buf, *namelen = len;
            return CS_SUCCEED;
        }
        if (rc == 0) {
            // No entry names these parts: the name is made up from them.
            char *p = buf;
            std::memcpy(p, lang, ll);
            p += ll;
            *p++ = '.';
            std::memcpy(p, cs, cl);
            p += cl;
            *p++ = '.';
            std::memcpy(p, so, sl);
            *name = buf, *namelen = static_cast<int32_t>(ll + cl + sl + 2);
            return CS_SUCCEED;
        }
        comn::mem_free(buf);
        // The reverse translation reports only what it copied, not the name's full length,
        // so the one retry grows the buffer well beyond any sensible locale name.
        if (rc != CS_CONV_OVERFLOW || attempt == 1) return rc;
        size *= 16;
    }
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t com__intl_load_new(ComContext *ctx, const char *name, int32_t namelen,
                                    const char *language, const char *charset,
                                    const char *sortorder, LocaleRecord **out) {
    if (!ctx || !name || !language || !charset || !sortorder || !out) return 0;
    const size_t n = namelen < 0 ? std::strlen(name) : static_cast<size_t>(namelen);
    LocaleRecord *same_lang = com__scan_lcache_lang(ctx, language, charset);
    LocaleRecord *same_sort = com__scan_lcache_sort(ctx, sortorder, charset);

    auto *rec = static_cast<LocaleRecord *>(comn::mem_calloc(1, sizeof(LocaleRecord)));
    if (!rec) return CS_MEM_ERROR;
    int32_t rc = set_names(rec, name, n, language, charset, sortorder) ? CS_SUCCEED : CS_MEM_ERROR;
    if (rc == CS_SUCCEED) {
        if (same_sort && same_sort->charset_desc)
            rec->charset_desc = same_sort->charset_desc;
        else
            rc = com__charset_load(ctx, rec);
    }
    if (rc == CS_SUCCEED)
        rc = same_lang ? com__copy_common_info(same_lang, rec) : com__read_common(ctx, rec);
    if (rc != CS_SUCCEED) {
        com__lcache_drop(rec);
        return rc;
    }
    rec->next = ctx->loc_cache;
    ctx->loc_cache = rec;
    *out = rec;
    return CS_SUCCEED;
}

COMN_API int32_t com_intl_load(ComContext *ctx, const char *name, int32_t namelen,
                               LocaleRecord **out) {
    if (!ctx || !name || !out) return 0;
    if (namelen < 0) namelen = static_cast<int32_t>(std::strlen(name));
    if (LocaleRecord *hit = com__scan_lcache_name(ctx, name, namelen)) {
        *out = hit;
        return CS_SUCCEED;
    }
    char language[COM_INTL_NAME_SIZE], charset[COM_INTL_NAME_SIZE], sortorder[COM_INTL_NAME_SIZE];
    const int32_t rc = com__intl_lookup(ctx, name, namelen, language, sizeof language, charset,
                                        sizeof charset, sortorder);
    if (rc != CS_SUCCEED) return rc;
    return com__intl_load_new(ctx, name, namelen, language, charset, sortorder, out);
}

COMN_API int32_t com_intl_load_lcs(ComContext *ctx, const char *language, const char *charset,
                                   const char *sortorder, char *path_out, int32_t path_size,
                                   int32_t *path_length_out, LocaleRecord **out) {
    if (!ctx || !out) return 0;
    const char *lang = or_default(language, "us_english");
    const char *cs = or_default(charset, "iso_1");
    const char *so = or_default(sortorder, "binary");
    char *name = nullptr;
    int32_t namelen = 0;
    int32_t rc = name_of(ctx, lang, cs, so, &name, &namelen);
    if (rc != CS_SUCCEED) return rc;
    if (LocaleRecord *hit = com__scan_lcache_name(ctx, name, namelen)) {
        comn::mem_free(name);
        *out = hit;
        return CS_SUCCEED;
    }
    char local[COM_INTL_PATH_SIZE];
    if (!path_out) path_out = local, path_size = sizeof local - 1;
    rc = com_intl_verify_locfiles(ctx, lang, cs, so, path_out, path_size);
    if (rc == CS_SUCCEED)
        rc = com__intl_load_new(ctx, name, namelen, lang, cs, so, out);
    else if (rc == 0 && path_length_out)
        *path_length_out = static_cast<int32_t>(std::strlen(path_out));
    comn::mem_free(name);
    return rc;
}
}
