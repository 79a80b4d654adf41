// The message cache of a locale record: file records hold section records, section records
// hold cache entries, and every entry is also on the owner's load-order list, newest first.
// The cache holds at most COM_ERR_CACHE_MAX entries; adding one to a full cache first frees
// the oldest loaded entry. Lookups never reorder, so "oldest" means first loaded, not least
// recently used. Escape resolution of message texts lives here too.
#include <cstdlib>
#include <cstring>

#include "msg/msg_internal.h"

namespace comn {

MsgOpenFn msg_open = com__open_locfile;

namespace {

void unlink_from_section(ComErrEntry *e) {
    for (ComErrEntry **pp = &e->section->entries; *pp; pp = &(*pp)->next)
        if (*pp == e) {
            *pp = e->next;
            return;
        }
}

void free_sections(ComErrSect *s) {
    while (s) {
        ComErrSect *next = s->next;
        for (ComErrEntry *e = s->entries; e;) {
            ComErrEntry *en = e->next;
            comn::mem_free(e->text);
            comn::mem_free(e);
            e = en;
        }
        comn::mem_free(s->name);
        comn::mem_free(s);
        s = next;
    }
}

} // namespace

void msg_drop_file(ComMsgCache *cache, ComErrFile *file) {
    for (ComErrFile **pp = &cache->files; *pp; pp = &(*pp)->next)
        if (*pp == file) {
            *pp = file->next;
            break;
        }
    for (ComErrEntry **pp = &cache->loaded; *pp;) {
        ComErrEntry *e = *pp;
        bool mine = false;
        for (ComErrSect *s = file->sections; s && !mine; s = s->next)
            mine = e->section == s;
        if (mine) {
            *pp = e->next_loaded;
            --cache->count;
        } else {
            pp = &e->next_loaded;
        }
    }
    file->next = nullptr;
    com__errfile_cache_drop(file);
}

} // namespace comn

extern "C" {

COMN_API ComErrEntry *com__scan_cache(const ComErrSect *section, int32_t number) {
    for (ComErrEntry *e = section ? section->entries : nullptr; e; e = e->next)
        if (e->number == number) return e;
    return nullptr;
}

COMN_API int32_t com__update_cache(ComMsgCache *cache, ComErrSect *section, int32_t number,
                                   const char *sqlstate, const char *text) {
    if (!cache || !section || !sqlstate || !text) return CS_FAIL;
    // Make the new entry first: a failed allocation then leaves the cache as it was.
    ComErrEntry *e = comn::new_named_record(&ComErrEntry::text, text);
    if (!e) return CS_MEM_ERROR;
    com__err_filterescape(e->text);
    std::strncpy(e->sqlstate, sqlstate, COM_ERR_SQLSTATE_SIZE - 1);
    e->number = number;
    e->section = section;

    if (cache->count >= COM_ERR_CACHE_MAX) {
        ComErrEntry **pp = &cache->loaded;
        while ((*pp)->next_loaded)
            pp = &(*pp)->next_loaded;
        ComErrEntry *oldest = *pp;
        *pp = nullptr;
        comn::unlink_from_section(oldest);
        comn::mem_free(oldest->text);
        comn::mem_free(oldest);
        --cache->count;
    }
    e->next = section->entries;
    section->entries = e;
    e->next_loaded = cache->loaded;
    cache->loaded = e;
    ++cache->count;
    return CS_SUCCEED;
}

// In place: \" \b \f \n \r \t become their characters; a backslash before anything else
// stands for itself and swallows that character (so "\\" is one backslash and "\q" is one
// backslash); a backslash that ends the text is kept. The text never grows, so no work copy
// is needed.
COMN_API int32_t com__err_filterescape(char *text) {
    if (!text) return CS_FAIL;
    static constexpr char kFrom[] = "\"bfnrt";
    static constexpr char kTo[] = "\"\b\f\n\r\t";
    char *out = text;
    for (const char *p = text; *p; ++p) {
        if (*p != '\\' || p[1] == '\0') {
            *out++ = *p;
            continue;
        }
        const char *hit = std::strchr(kFrom, p[1]);
        *out++ = hit ? kTo[hit - kFrom] : '\\';
        ++p;
    }
    *out = '\0';
    return CS_SUCCEED;
}

COMN_API void com__errfile_cache_drop(ComErrFile *files) {
    while (files) {
        ComErrFile *next = files->next;
        comn::free_sections(files->sections);
        comn::mem_free(files->name);
        comn::mem_free(files);
        files = next;
    }
}

COMN_API void com__msgcache_drop(ComMsgCache *cache) {
    if (!cache) return;
    com__errfile_cache_drop(cache->files);
    comn::mem_free(cache);
}

} // extern "C"
