// comconv date and comconv styles: a date or time parsed with the names and date order of the
// locale, printed in one date style or in all of them.
#include <cstdlib>

#include "cli.h"
#include "commands.h"

namespace comconv {
namespace {

constexpr const char *kDateUsage =
    "usage: comconv date TEXT [STYLE]\n"
    "\n"
    "Parses a date or time in any accepted form, with the month names and date order of the\n"
    "locale, and prints it in a date style (0 by default).\n";

constexpr const char *kStylesUsage =
    "usage: comconv styles TEXT\n"
    "\n"
    "Parses a date or time as comconv date does and prints it in every date style.\n";

constexpr int32_t kStyles[] = {0,   1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,
                               100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112};

bool parse_date(ComContext &ctx, const std::string &text, DateTimeValue &dt) {
    const int32_t rc =
        com__datefromchar_mb(&dt, text.data(), static_cast<int32_t>(text.size()), 0,
                             com_intl_dateorder_id(&ctx, nullptr), com_intl_months(&ctx, nullptr),
                             com_intl_shortmonths(&ctx, nullptr), com_intl_charattr(&ctx, nullptr));
    if (rc != 0) {
        complain("'%s' is %s", text.c_str(), rc < 0 ? "not a date" : "out of the datetime range");
        return false;
    }
    return true;
}

bool print_date(ComContext &ctx, const DateTimeValue &dt, int32_t style) {
    char buf[128];
    const int32_t n =
        com__datetochar(&dt, buf, sizeof buf, style, com_intl_shortmonths(&ctx, nullptr));
    if (n <= 0) {
        complain("no date style %d", static_cast<int>(style));
        return false;
    }
    out().put(buf, static_cast<size_t>(n));
    out().put('\n');
    return true;
}

bool words(const Words &argv, const char *usage, size_t lo, size_t hi, Args &args, int &status) {
    if (!parse_args(argv, {{"help", 'h', false}}, args)) {
        status = kUsageError;
        return false;
    }
    if (args.has("help")) {
        out().put(usage);
        status = kOk;
        return false;
    }
    if (args.words.size() < lo || args.words.size() > hi) {
        out().flush();
        std::fputs(usage, stderr);
        status = kUsageError;
        return false;
    }
    return true;
}

} // namespace

int cmd_date(ComContext &ctx, const Words &argv) {
    Args args;
    int status = kOk;
    if (!words(argv, kDateUsage, 1, 2, args, status)) return status;
    long style = 0;
    if (args.words.size() == 2) {
        char *end = nullptr;
        style = std::strtol(args.words[1].c_str(), &end, 10);
        if (*end != '\0' || args.words[1].empty()) {
            complain("a date style is a number (comconv styles shows them)");
            return kUsageError;
        }
    }
    DateTimeValue dt{};
    if (!parse_date(ctx, args.words[0], dt)) return kFailed;
    return print_date(ctx, dt, static_cast<int32_t>(style)) ? kOk : kUsageError;
}

int cmd_styles(ComContext &ctx, const Words &argv) {
    Args args;
    int status = kOk;
    if (!words(argv, kStylesUsage, 1, 1, args, status)) return status;
    DateTimeValue dt{};
    if (!parse_date(ctx, args.words[0], dt)) return kFailed;
    char label[8];
    for (int32_t style : kStyles) {
        std::snprintf(label, sizeof label, "%3d  ", static_cast<int>(style));
        out().put(label);
        print_date(ctx, dt, style);
    }
    return kOk;
}

} // namespace comconv
