// comconv table and comconv types: the context's conversion table as a grid of the 24
// datatypes, and as a list with the number of conversions of each type.
#include <cstdio>

#include "cli.h"
#include "commands.h"
#include "types.h"

namespace comconv {
namespace {

constexpr const char *kTableUsage =
    "usage: comconv table\n"
    "\n"
    "Prints the conversion table: one row per source type, one column per destination type\n"
    "(numbered as the rows). \"x\" marks a conversion of the library, \"u\" a user conversion\n"
    "installed in place of the library's, \".\" a pair that does not convert.\n";

constexpr const char *kTypesUsage =
    "usage: comconv types\n"
    "\n"
    "Lists the datatypes with their ids and how many conversions each has as a source.\n";

// 'x' for the library's routine, 'u' for another routine in the context, '.' for none.
char mark(ComContext &ctx, int32_t s, int32_t d) {
    const ComConvFunc f = com_conv_func(&ctx, s, d);
    if (!f) return '.';
    return f == Com__cnvrt_array[s * COMN_CONV_DIM + d] ? 'x' : 'u';
}

bool only_help(const Words &argv, const char *usage, int &status) {
    Args args;
    if (!parse_args(argv, {{"help", 'h', false}}, args)) {
        status = kUsageError;
        return true;
    }
    if (args.has("help")) {
        out().put(usage);
        status = kOk;
        return true;
    }
    if (!args.words.empty()) {
        complain("unexpected argument '%s'", args.words[0].c_str());
        status = kUsageError;
        return true;
    }
    return false;
}

} // namespace

int cmd_table(ComContext &ctx, const Words &argv) {
    int status = kOk;
    if (only_help(argv, kTableUsage, status)) return status;
    char line[256];
    Output &o = out();
    o.put("from \\ to         ");
    for (int32_t d = 0; d < COMN_CONV_DIM; ++d) {
        std::snprintf(line, sizeof line, "%3d", static_cast<int>(d));
        o.put(line);
    }
    o.put('\n');
    for (int32_t s = 0; s < COMN_CONV_DIM; ++s) {
        std::snprintf(line, sizeof line, "%2d %-15s", static_cast<int>(s), type_name(s));
        o.put(line);
        for (int32_t d = 0; d < COMN_CONV_DIM; ++d) {
            o.put("  ");
            o.put(mark(ctx, s, d));
        }
        o.put('\n');
    }
    o.put("\nx conversion of the library   u user conversion   . none\n");
    return kOk;
}

int cmd_types(ComContext &ctx, const Words &argv) {
    int status = kOk;
    if (only_help(argv, kTypesUsage, status)) return status;
    char line[128];
    for (int32_t s = 0; s < COMN_CONV_DIM; ++s) {
        int count = 0;
        for (int32_t d = 0; d < COMN_CONV_DIM; ++d)
            count += com_conv_func(&ctx, s, d) != nullptr;
        std::snprintf(line, sizeof line, "%2d %-11s %2d conversions\n", static_cast<int>(s),
                      type_name(s), count);
        out().put(line);
    }
    return kOk;
}

} // namespace comconv
