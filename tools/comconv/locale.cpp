// comconv locale: what a locale name resolves to (language, character set, sort order) and
// the date conventions it carries, with a sample date in its default style.
#include <cstdio>
#include <string>

#include "cli.h"
#include "commands.h"

namespace comconv {
namespace {

constexpr const char *kUsage =
    "usage: comconv locale [NAME]\n"
    "\n"
    "Shows what the locale NAME (by default the one LC_ALL, else LANG, names) resolves to in\n"
    "the installation home's locales file, and the month and day names, date order, first day\n"
    "of the week, 12-hour flag and default date style it gives. Names are printed in the\n"
    "locale's own character set.\n"
    "\n"
    "Exit status: 0 shown; 2 unknown locale or usage error.\n";

void row(const char *label, const std::string &value) {
    char head[32];
    std::snprintf(head, sizeof head, "%-13s", label);
    out().put(head);
    out().put(value);
    out().put('\n');
}

std::string joined(const char *const *names, int n) {
    std::string s;
    for (int i = 0; i < n; ++i) {
        if (i) s += ' ';
        s += names[i];
    }
    return s;
}

} // namespace

int cmd_locale(ComContext &ctx, const Words &argv) {
    Args args;
    if (!parse_args(argv, {{"help", 'h', false}}, args)) return kUsageError;
    if (args.has("help")) {
        out().put(kUsage);
        return kOk;
    }
    if (args.words.size() > 1) {
        complain("locale takes one name at most");
        return kUsageError;
    }
    LocaleRecord *rec = nullptr;
    std::string name;
    if (args.words.empty()) {
        rec = ctx.conv.default_locale ? ctx.conv.default_locale->time : nullptr;
        name = rec && rec->name ? rec->name : "default";
    } else {
        name = args.words[0];
        if (com_intl_load(&ctx, name.c_str(), -1, &rec) != 1) rec = nullptr;
    }
    LocaleHandle *h = nullptr;
    if (!rec || comn_loc_alloc(&ctx, &h) != CS_SUCCEED) {
        complain("unknown locale '%s' (names are in locales/locales.dat of the home)",
                 name.c_str());
        return kUsageError;
    }
    h->collate = h->ctype = h->message = h->monetary = h->numeric = h->time = rec;
    DataFormat fmt{};
    fmt.locale = h;
    static constexpr const char *kDays[] = {"",         "Monday", "Tuesday",  "Wednesday",
                                            "Thursday", "Friday", "Saturday", "Sunday"};
    const int32_t first = com_intl_firstday(&ctx, &fmt);
    const int32_t style = com_intl_get_dtfmt(&ctx, &fmt);
    row("locale", name);
    row("language", rec->language ? rec->language : "?");
    row("charset", rec->charset ? rec->charset : "?");
    row("sort order", rec->sortorder ? rec->sortorder : "?");
    row("months", joined(com_intl_months(&ctx, &fmt), 12));
    row("short months", joined(com_intl_shortmonths(&ctx, &fmt), 12));
    row("days", joined(com_intl_days(&ctx, &fmt), 7));
    row("date order", com_intl_dateorder(&ctx, &fmt));
    row("first day",
        std::to_string(first) +
            (first >= 1 && first <= 7 ? std::string(" (") + kDays[first] + ")" : std::string()));
    row("12-hour", com_intl_is12hour(&ctx, &fmt) ? "yes" : "no");
    // A fixed date and time (15 January 1999, 22:30) shows the default style at work.
    const DateTimeValue sample{36173, 22 * 60 * 60 * 300 + 30 * 60 * 300};
    char text[128];
    const int32_t n =
        com__datetochar(&sample, text, sizeof text, style, com_intl_shortmonths(&ctx, &fmt));
    row("date style", std::to_string(style) +
                          (n > 0 ? "  (" + std::string(text, static_cast<size_t>(n)) + ")" : ""));
    return kOk;
}

} // namespace comconv
