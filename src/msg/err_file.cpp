// Loading message files into a locale record's message cache: com_err_init reads a file once
// per file name, learning the caller's sections and loading the messages it asks to preload;
// com__err_getcache finds a message and, when it is not cached, reads just that message
// from the file again. Files are found through the locale record's language and charset.
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "intl/intl_internal.h"
#include "msg/msg_internal.h"

namespace comn {
namespace {

// A key that is a whole decimal number (optionally signed); other keys match no message.
bool parse_key(const char *key, int32_t *number) {
    const char *end = key + std::strlen(key);
    const char *p = key + (*key == '+' ? 1 : 0);
    auto r = std::from_chars(p, end, *number, 10);
    return r.ec == std::errc() && r.ptr == end && p != end;
}

ComMsgCache *cache_of(const ComErrCtx *errctx) {
    return errctx && errctx->locale ? errctx->locale->msgcache : nullptr;
}

ComErrFile *find_file(ComMsgCache *cache, const char *name) {
    for (ComErrFile *f = cache ? cache->files : nullptr; f; f = f->next)
        if (com_unsignstrcmp(f->name, name) == 0) return f;
    return nullptr;
}

ComErrSect *find_section(ComErrFile *file, int32_t id) {
    for (ComErrSect *s = file ? file->sections : nullptr; s; s = s->next)
        if (s->id == id) return s;
    return nullptr;
}

int32_t open_file(ComContext *ctx, const ComErrCtx *errctx, IntlFile **h) {
    const LocaleRecord *loc = errctx->locale;
    return msg_open(ctx, loc->language, loc->charset, errctx->file, h);
}

// Closes the reader; a failed close turns a success into COM_INTL_ERROR.
int32_t close_file(ComContext *ctx, IntlFile *h, int32_t rc) {
    const int32_t cl = intl_close(h);
    if (cl < 0 && rc == CS_SUCCEED) return intl_fail(ctx, cl);
    return rc;
}

bool valid(const ComErrCtx *errctx) {
    return errctx && errctx->locale && errctx->file;
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t com__err_load_errors(ComContext *ctx, IntlFile *handle, ComMsgCache *cache,
                                      ComErrSect *section, const ComErrKey *preloads,
                                      int32_t preload_count) {
    int32_t wanted = 0;
    for (int32_t i = 0; i < preload_count; ++i)
        wanted += preloads[i].section == section->id;
    if (wanted == 0) return CS_SUCCEED;

    int32_t matched = 0;
    int32_t st = 0;
    while (char *key = intl_nextentry(handle, &st)) {
        int32_t number;
        if (!comn::parse_key(key, &number)) continue;
        bool listed = false;
        for (int32_t i = 0; i < preload_count && !listed; ++i)
            listed = preloads[i].section == section->id && preloads[i].number == number;
        if (!listed) continue;
        ++matched;
        if (!com__scan_cache(section, number)) {
            const char *state = intl_nextvalue(handle, &st);
            const char *text = state ? intl_nextvalue(handle, &st) : nullptr;
            if (!text) return st < 0 ? comn::intl_fail(ctx, st) : CS_FAIL;
            const int32_t rc = com__update_cache(cache, section, number, state, text);
            if (rc != CS_SUCCEED) return rc;
        }
        if (matched >= wanted) return CS_SUCCEED;
    }
    return st < 0 ? comn::intl_fail(ctx, st) : CS_SUCCEED;
}

COMN_API int32_t com__err_load_sections(ComContext *ctx, IntlFile *handle, ComMsgCache *cache,
                                        ComErrFile *file, const ComErrSection *sections,
                                        int32_t section_count, const ComErrKey *preloads,
                                        int32_t preload_count) {
    int32_t found = 0;
    int32_t st = 0;
    while (found < section_count) {
        const char *name = intl_nextsection(handle, &st);
        if (!name) break;
        const ComErrSection *row = nullptr;
        for (int32_t i = 0; i < section_count && !row; ++i)
            if (sections[i].name && com_unsignstrcmp(sections[i].name, name) == 0)
                row = &sections[i];
        if (!row) continue;
        ComErrSect *sec = comn::find_section(file, row->id);
        if (!sec) {
            sec = comn::new_named_record(&ComErrSect::name, name);
            if (!sec) return CS_MEM_ERROR;
            sec->id = row->id;
            sec->next = file->sections;
            file->sections = sec;
            ++found;
        }
        if (preloads && preload_count > 0) {
            const int32_t rc =
                com__err_load_errors(ctx, handle, cache, sec, preloads, preload_count);
            if (rc != CS_SUCCEED) return rc;
        }
    }
    if (st < 0) return comn::intl_fail(ctx, st);
    return found == section_count ? CS_SUCCEED : CS_FAIL;
}

COMN_API int32_t com_err_init(ComContext *ctx, ComErrCtx *errctx, const ComErrSection *sections,
                              int32_t section_count, const ComErrKey *preloads,
                              int32_t preload_count) {
    if (!comn::valid(errctx) || (section_count > 0 && !sections) || section_count < 0)
        return CS_FAIL;
    LocaleRecord *loc = errctx->locale;
    if (!loc->msgcache) {
        auto *cache = static_cast<ComMsgCache *>(comn::mem_malloc(sizeof(ComMsgCache)));
        if (!cache) return CS_MEM_ERROR;
        std::memset(cache, 0, sizeof *cache);
        loc->msgcache = cache;
    }
    ComMsgCache *cache = loc->msgcache;
    if (comn::find_file(cache, errctx->file)) return CS_SUCCEED;

    ComErrFile *file = comn::new_named_record(&ComErrFile::name, errctx->file);
    if (!file) return CS_MEM_ERROR;
    IntlFile *h = nullptr;
    int32_t rc = comn::open_file(ctx, errctx, &h);
    if (rc == CS_SUCCEED) {
        rc = com__err_load_sections(ctx, h, cache, file, sections, section_count,
                                    preload_count > 0 ? preloads : nullptr, preload_count);
        rc = comn::close_file(ctx, h, rc);
    }
    if (rc != CS_SUCCEED) {
        comn::msg_drop_file(cache, file);
        return rc;
    }
    ComErrFile **tail = &cache->files;
    while (*tail)
        tail = &(*tail)->next;
    *tail = file;
    return CS_SUCCEED;
}

COMN_API int32_t com__err_getcache(ComContext *ctx, ComErrCtx *errctx, int32_t number,
                                   int32_t section, ComErrEntry **entry) {
    if (!entry) return CS_FAIL;
    *entry = nullptr;
    if (!comn::valid(errctx)) return CS_FAIL;
    ComMsgCache *cache = comn::cache_of(errctx);
    ComErrSect *sec = comn::find_section(comn::find_file(cache, errctx->file), section);
    if (!sec) return CS_FAIL;
    if ((*entry = com__scan_cache(sec, number))) return CS_SUCCEED;

    // Not cached: read the file again up to the section of that name and load the one
    // message as a preload list of one.
    IntlFile *h = nullptr;
    int32_t rc = comn::open_file(ctx, errctx, &h);
    if (rc != CS_SUCCEED) return rc;
    int32_t st = 0;
    const char *name;
    while ((name = intl_nextsection(h, &st)) && com_unsignstrcmp(name, sec->name) != 0) {
    }
    const ComErrKey key{section, number};
    if (name)
        rc = com__err_load_errors(ctx, h, cache, sec, &key, 1);
    else
        rc = st < 0 ? comn::intl_fail(ctx, st) : CS_FAIL;
    rc = comn::close_file(ctx, h, rc);
    if (rc != CS_SUCCEED) return rc;
    *entry = com__scan_cache(sec, number);
    return *entry ? CS_SUCCEED : CS_FAIL;
}

COMN_API int32_t com_err_msg(ComContext *ctx, ComErrCtx *errctx, const ComErrKey *key,
                             const char **text) {
    if (!key || !text) return CS_FAIL;
    *text = nullptr;
    ComErrEntry *e;
    const int32_t rc = com__err_getcache(ctx, errctx, key->number, key->section, &e);
    if (rc == CS_SUCCEED) *text = e->text;
    return rc;
}

COMN_API int32_t com_err_sqlstate(ComContext *ctx, ComErrCtx *errctx, int32_t number,
                                  int32_t section, char *buf, int32_t buflen, int32_t *outlen) {
    if (!buf || !outlen || buflen < 0) return CS_FAIL;
    ComErrEntry *e;
    const int32_t rc = com__err_getcache(ctx, errctx, number, section, &e);
    if (rc != CS_SUCCEED) return rc;
    const int32_t len = static_cast<int32_t>(std::strlen(e->sqlstate));
    *outlen = len;
    if (len > buflen) return CS_FAIL;
    std::memcpy(buf, e->sqlstate, static_cast<size_t>(len));
    if (len < buflen) buf[len] = '\0';
    return CS_SUCCEED;
}

} // extern "C"
