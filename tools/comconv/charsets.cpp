// Character sets by name: each is reached through a locale of the installation home, loaded
// with com_intl_load_lcs and put in every category of a handle of its own.
#include "charsets.h"

#include <algorithm>
#include <dirent.h>

#include "cli.h"

namespace comconv {

namespace {

// The locale record of a language and character set with the binary sort order: through the
// locales file's name for it when it has one and all its files are there, else built from
// its parts, which needs only the set's own files and the language's names.
LocaleRecord *load(ComContext &ctx, const std::string &lang, const std::string &charset) {
    LocaleRecord *rec = nullptr;
    if (com_intl_load_lcs(&ctx, lang.c_str(), charset.c_str(), "binary", nullptr, 0, nullptr,
                          &rec) == 1)
        return rec;
    const std::string name = lang + "." + charset + ".binary";
    if ((rec = com__scan_lcache_name(&ctx, name.c_str(), static_cast<int32_t>(name.size()))))
        return rec;
    if (com__intl_load_new(&ctx, name.c_str(), static_cast<int32_t>(name.size()), lang.c_str(),
                           charset.c_str(), "binary", &rec) == 1)
        return rec;
    return nullptr;
}

} // namespace

LocaleHandle *charset_handle(ComContext &ctx, const std::string &charset,
                             const std::string &language) {
    std::string lang = language;
    const LocaleHandle *def = ctx.conv.default_locale;
    if (lang.empty() && def && def->time && def->time->language) lang = def->time->language;
    LocaleRecord *rec = load(ctx, lang, charset);
    if (!rec && lang != "us_english") rec = load(ctx, "us_english", charset);
    LocaleHandle *h = nullptr;
    if (!rec || comn_loc_alloc(&ctx, &h) != CS_SUCCEED) {
        complain("unknown character set '%s' (comconv xlate -l lists them)", charset.c_str());
        return nullptr;
    }
    h->collate = h->ctype = h->message = h->monetary = h->numeric = h->time = rec;
    return h;
}

std::vector<std::string> known_charsets(ComContext &ctx) {
    std::vector<std::string> names;
    char home[COM_INTL_PATH_SIZE];
    if (intl_home(home, sizeof home - 1) < 0) return names;
    DIR *d = opendir((std::string(home) + "/charsets").c_str());
    if (!d) return names;
    while (const dirent *e = readdir(d)) {
        if (e->d_name[0] == '.') continue;
        if (load(ctx, "us_english", e->d_name)) names.emplace_back(e->d_name);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace comconv
