// Locale names: the name of a category from the environment, and the translations between a
// locale name and its language, character set and sort order through the section "linux" of
// "locales.dat".
//
// Both translations walk only the entries keyed "locale"; the first entry with another key
// ends the search (entries after it are never seen). Names are compared over the caller's
// length only, so a short name matches the first entry that begins with it.
#include <cstring>
#include <optional>

#include "intl/intl_internal.h"

namespace comn {
namespace {

// The environment variable of each category 1..7; "LC_MESSAGE" is spelt without the S.
constexpr const char *Category_vars[] = {nullptr,       "LC_COLLATE", "LC_CTYPE", "LC_MESSAGE",
                                         "LC_MONETARY", "LC_NUMERIC", "LC_TIME",  "LC_ALL"};

// Copies value into out when it fits in size bytes with its terminator.
bool copy_name(char *out, int32_t size, const char *value) {
    const size_t n = std::strlen(value);
    if (n >= static_cast<size_t>(size)) return false;
    std::memcpy(out, value, n + 1);
    return true;
}

// Closes the reader and folds its close status and a walk status into the result.
int32_t finish(ComContext *ctx, IntlFile *f, int32_t walk_status, int32_t result) {
    int32_t cl = intl_close(f);
    if (walk_status < 0) return intl_fail(ctx, walk_status);
    if (cl < 0) return intl_fail(ctx, cl);
    return result;
}

// Walks the entries keyed "locale" of the locales file's section "linux". decide reads an
// entry's values (through the reader and its walk status) and answers the result once that
// entry settles the search, or nothing to go on; a walk that ends undecided answers 0.
template <typename Decide>
int32_t walk_locales(ComContext *ctx, Decide decide) {
    IntlFile *f = nullptr;
    const int32_t rc = open_locales_linux(ctx, &f);
    if (rc != CS_SUCCEED) return rc;
    int32_t st = 0;
    while (char *key = intl_nextentry(f, &st)) {
        if (com_unsignstrcmp(key, "locale") != 0) break;
        if (const std::optional<int32_t> result = decide(f, &st))
            return finish(ctx, f, st, *result);
    }
    return finish(ctx, f, st, 0);
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t com_intl_envloc(ComContext *ctx, int32_t category, char *buf, int32_t size) {
    const char *var = category >= 1 && category <= 7 ? comn::Category_vars[category] : nullptr;
    int32_t rc = intlgetenv(buf, size, var);
    if (rc == 0) rc = intlgetenv(buf, size, "LANG");
    if (rc < 0) return comn::intl_fail(ctx, rc);
    if (rc == 0) {
        if (!buf || size < static_cast<int32_t>(sizeof "default"))
            return comn::intl_fail(ctx, INTL_E_TOOLONG);
        std::memcpy(buf, "default", sizeof "default");
    }
    return CS_SUCCEED;
}

COMN_API int32_t com__intl_lookup(ComContext *ctx, const char *locale, int32_t locale_length,
                                  char *language_out, int32_t language_size, char *charset_out,
                                  int32_t charset_size, char *sortorder_out) {
    if (!locale || !language_out || !charset_out || !sortorder_out || locale_length < 0) return 0;
    return comn::walk_locales(ctx, [&](IntlFile *f, int32_t *st) -> std::optional<int32_t> {
        char *name = intl_nextvalue(f, st);
        if (!name || !comn::counted_equal(name, locale, locale_length)) return std::nullopt;
        // The first matching entry decides; the copies are bounded by the callers' sizes (the
        // sort order's by COM_INTL_NAME_SIZE), a value too long counting as not found.
        char *language = intl_nextvalue(f, st);
        char *charset = language ? intl_nextvalue(f, st) : nullptr;
        char *sortorder = charset ? intl_nextvalue(f, st) : nullptr;
        const bool found =
            language && charset && comn::copy_name(language_out, language_size, language) &&
            comn::copy_name(charset_out, charset_size, charset) &&
            comn::copy_name(sortorder_out, COM_INTL_NAME_SIZE, sortorder ? sortorder : "binary");
        return found ? 1 : 0;
    });
}

COMN_API int32_t com_intl_locname(ComContext *ctx, const char *language, int32_t language_length,
                                  const char *charset, int32_t charset_length,
                                  const char *sortorder, int32_t sortorder_length, char *name_out,
                                  int32_t name_size, int32_t *name_length_out) {
    if (!language || language_length <= 0) language = "us_english", language_length = 10;
    if (!charset || charset_length <= 0) charset = "iso_1", charset_length = 5;
    if (!sortorder || sortorder_length <= 0) sortorder = "binary", sortorder_length = 6;
    return comn::walk_locales(ctx, [&](IntlFile *f, int32_t *st) -> std::optional<int32_t> {
        char *name = intl_nextvalue(f, st);
        char *lang = name ? intl_nextvalue(f, st) : nullptr;
        char *cs = lang ? intl_nextvalue(f, st) : nullptr;
        if (!cs) return std::nullopt;
        char *so = intl_nextvalue(f, st);
        if (!comn::counted_equal(lang, language, language_length) ||
            !comn::counted_equal(cs, charset, charset_length) ||
            !comn::counted_equal(so ? so : "binary", sortorder, sortorder_length))
            return std::nullopt;
        const int32_t len = static_cast<int32_t>(std::strlen(name));
        const int32_t copied = name_size < len ? (name_size > 0 ? name_size : 0) : len;
        if (name_out && copied) std::memcpy(name_out, name, copied);
        if (name_length_out) *name_length_out = copied;
        return len > copied ? CS_CONV_OVERFLOW : 1;
    });
}
}
