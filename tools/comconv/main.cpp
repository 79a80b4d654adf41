// comconv: converts values between the library's datatypes, parses and prints dates, and
// shows what the conversion table holds. It runs on the installation home named by VELDAR.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "comnlib.h"
#include "values.h"

namespace {

constexpr const char *kUsage =
    "usage: comconv <command> [arguments]\n"
    "\n"
    "  convert <from> <to> <value>   convert a value through the conversion table\n"
    "  date <text> [style]           parse a date or time and print it in a style (default 0)\n"
    "  styles <text>                 print a date in every style\n"
    "  types                         list the datatypes and how many conversions each has\n"
    "  version                       print the library's version\n"
    "  --help                        this text\n"
    "\n"
    "types: tinyint smallint int real float bit money money4 numeric decimal datetime\n"
    "       datetime4 char varchar binary varbinary void\n";

const char *code_name(int32_t rc) {
    struct Row {
        int32_t code;
        const char *name;
    };
#define COMCONV_ROW_(name, value) {value, #name},
    static const Row rows[] = {COMN_STATUS_CODES(COMCONV_ROW_) COMN_CONV_CODES(COMCONV_ROW_)};
#undef COMCONV_ROW_
    for (const Row &r : rows)
        if (r.code == rc) return r.name;
    return "unknown status";
}

int convert(ComContext &ctx, const std::string &from, const std::string &to,
            const std::string &text) {
    const int32_t src = comconv::type_by_name(from), dst = comconv::type_by_name(to);
    if (src < 0 || dst < 0) {
        std::fprintf(stderr, "comconv: unknown type '%s'\n", src < 0 ? from.c_str() : to.c_str());
        return 2;
    }
    comconv::Value in, out;
    std::string why;
    if (!comconv::parse(src, text, in, why)) {
        std::fprintf(stderr, "comconv: '%s' as %s: %s\n", text.c_str(), from.c_str(), why.c_str());
        return 1;
    }
    ComConvFunc f = com_conv_func(&ctx, src, dst);
    if (!f) {
        std::fprintf(stderr, "comconv: no conversion from %s to %s in this library\n", from.c_str(),
                     to.c_str());
        return 1;
    }
    out.fmt.datatype = dst;
    out.fmt.maxlength = comn_typelen(dst, 256);
    if (dst == CS_NUMERIC || dst == CS_DECIMAL) {
        // A numeric source keeps its own precision and scale; others get room for 38 digits
        // with the places their type can carry.
        const bool numeric_src = src == CS_NUMERIC || src == CS_DECIMAL;
        out.fmt.precision = numeric_src ? CS_SRC_VALUE : 38;
        out.fmt.scale = numeric_src                             ? CS_SRC_VALUE
                        : (src == CS_MONEY || src == CS_MONEY4) ? 4
                        : (src == CS_REAL || src == CS_FLOAT)   ? 10
                                                                : 0;
    }
    int32_t len = 0;
    const int32_t rc = f(&ctx, &in.fmt, in.bytes, &out.fmt, out.bytes, &len);
    if (dst == CS_NUMERIC || dst == CS_DECIMAL) {
        out.fmt.precision = out.bytes[0];
        out.fmt.scale = out.bytes[1];
    }
    std::printf("%s\n", comconv::format(out, len).c_str());
    if (rc != CS_SUCCEED) {
        std::fprintf(stderr, "comconv: %s (%d)\n", code_name(rc), static_cast<int>(rc));
        return 1;
    }
    return 0;
}

// Dates are read and written with the names and date order of the context's locale.
bool parse_date(ComContext &ctx, const std::string &text, DateTimeValue &dt) {
    const int32_t rc =
        com__datefromchar_mb(&dt, text.data(), static_cast<int32_t>(text.size()), 0,
                             com_intl_dateorder_id(&ctx, nullptr), com_intl_months(&ctx, nullptr),
                             com_intl_shortmonths(&ctx, nullptr), com_intl_charattr(&ctx, nullptr));
    if (rc != 0) {
        std::fprintf(stderr, "comconv: '%s' is %s\n", text.c_str(),
                     rc < 0 ? "not a date" : "out of the datetime range");
        return false;
    }
    return true;
}

int print_date(ComContext &ctx, const DateTimeValue &dt, int32_t style) {
    char buf[128];
    const int32_t n =
        com__datetochar(&dt, buf, sizeof buf, style, com_intl_shortmonths(&ctx, nullptr));
    if (n <= 0) {
        std::fprintf(stderr, "comconv: no date style %d\n", static_cast<int>(style));
        return 1;
    }
    std::printf("%.*s\n", static_cast<int>(n), buf);
    return 0;
}

int types(ComContext &ctx) {
    for (int32_t s = 0; s < COMN_CONV_DIM; ++s) {
        int count = 0;
        for (int32_t d = 0; d < COMN_CONV_DIM; ++d)
            count += com_conv_func(&ctx, s, d) != nullptr;
        std::printf("%2d %-10s %2d conversions\n", static_cast<int>(s), comconv::type_name(s),
                    count);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::fputs(kUsage, args.empty() ? stderr : stdout);
        return args.empty() ? 2 : 0;
    }
    if (!std::getenv("VELDAR")) setenv("VELDAR", COMN_BUNDLED_HOME, 1);
    ComContext ctx{};
    int32_t setup = comn_ctx_setup(&ctx);
    if (setup == CS_FAIL || setup == COM_INTL_ERROR) {
        // The locale the environment names cannot be loaded: say why, then run on "default".
        com_intl_verify_ctxloc(&ctx);
        setenv("LC_ALL", "default", 1);
        setup = comn_ctx_setup(&ctx);
    }
    if (setup != CS_SUCCEED) {
        std::fprintf(stderr, "comconv: cannot set up a context (status %d)\n",
                     static_cast<int>(setup));
        return 1;
    }
    int rc = 2;
    const std::string &cmd = args[0];
    if (cmd == "convert" && args.size() == 4) {
        rc = convert(ctx, args[1], args[2], args[3]);
    } else if (cmd == "date" && (args.size() == 2 || args.size() == 3)) {
        DateTimeValue dt{};
        rc = parse_date(ctx, args[1], dt)
                 ? print_date(ctx, dt, args.size() == 3 ? std::atoi(args[2].c_str()) : 0)
                 : 1;
    } else if (cmd == "styles" && args.size() == 2) {
        DateTimeValue dt{};
        rc = 1;
        if (parse_date(ctx, args[1], dt)) {
            for (int32_t style :
                 {0,   1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,
                  100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112}) {
                std::printf("%3d  ", static_cast<int>(style));
                print_date(ctx, dt, style);
            }
            rc = 0;
        }
    } else if (cmd == "types" && args.size() == 1) {
        rc = types(ctx);
    } else if (cmd == "version" && args.size() == 1) {
        int32_t major = 0, minor = 0;
        const char *text = com_version(&major, &minor);
        std::printf("%s\n%d.%d\n", text, static_cast<int>(major), static_cast<int>(minor));
        rc = 0;
    } else {
        std::fputs(kUsage, stderr);
    }
    comn_ctx_teardown(&ctx);
    return rc;
}
