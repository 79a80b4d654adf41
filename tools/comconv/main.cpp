// comconv: the library's command-line tool. It translates files between character sets,
// converts values and whole columns between datatypes through the conversion table, prints
// the table, shows what a locale gives, and parses and prints dates. It runs on the
// installation home named by VELDAR (the home bundled with the sources when unset).
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "cli.h"
#include "commands.h"

namespace {

using comconv::out;

constexpr const char *kUsage =
    "usage: comconv <command> [arguments]\n"
    "\n"
    "  xlate -f SET -t SET [FILE...]   translate files between character sets (-l lists them)\n"
    "  convert FROM TO [VALUE...]      convert values, or each line or field of standard\n"
    "                                  input, between datatypes\n"
    "  table                           the conversion table as a grid of the 24 datatypes\n"
    "  types                           the datatypes and how many conversions each has\n"
    "  locale [NAME]                   what a locale resolves to and the date names it gives\n"
    "  date TEXT [STYLE]               parse a date or time and print it in a style\n"
    "  styles TEXT                     print a date in every style\n"
    "  version                         the library's version\n"
    "\n"
    "  --help, -h                      this text (comconv COMMAND --help for a command's own)\n"
    "  --version                       the tool's and the library's version\n"
    "\n"
    "Exit status: 0 success; 1 some value failed to convert or some character had no\n"
    "counterpart; 2 usage error; 3 a file could not be read or the output written.\n"
    "The installation home is VELDAR's directory; see comconv(1) and docs/comconv.md.\n";

struct Command {
    const char *name;
    int (*run)(ComContext &, const comconv::Words &);
};

int version(ComContext &, const comconv::Words &args) {
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        out().put("usage: comconv version\n\nPrints the library's version text and number.\n");
        return comconv::kOk;
    }
    if (!args.empty()) {
        comconv::complain("version takes no arguments");
        return comconv::kUsageError;
    }
    int32_t major = 0, minor = 0;
    const char *text = com_version(&major, &minor);
    char line[64];
    std::snprintf(line, sizeof line, "%d.%d\n", static_cast<int>(major), static_cast<int>(minor));
    out().put(text);
    out().put('\n');
    out().put(line);
    return comconv::kOk;
}

constexpr Command kCommands[] = {
    {"xlate", comconv::cmd_xlate},   {"convert", comconv::cmd_convert},
    {"table", comconv::cmd_table},   {"types", comconv::cmd_types},
    {"locale", comconv::cmd_locale}, {"date", comconv::cmd_date},
    {"styles", comconv::cmd_styles}, {"version", version},
};

// A context on the locale the environment names; when that locale cannot be loaded, says
// why and falls back to "default".
bool setup(ComContext &ctx) {
    int32_t rc = comn_ctx_setup(&ctx);
    if (rc == CS_FAIL || rc == COM_INTL_ERROR) {
        com_intl_verify_ctxloc(&ctx);
        setenv("LC_ALL", "default", 1);
        rc = comn_ctx_setup(&ctx);
    }
    if (rc != CS_SUCCEED) {
        comconv::complain("cannot set up a context (status %d)", static_cast<int>(rc));
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    // A closed output pipe shows up as EPIPE from write, which ends the tool quietly.
    std::signal(SIGPIPE, SIG_IGN);
    const std::string cmd = argc > 1 ? argv[1] : "";
    if (cmd.empty()) {
        std::fputs(kUsage, stderr);
        return comconv::kUsageError;
    }
    if (cmd == "--help" || cmd == "-h" || cmd == "help") {
        out().put(kUsage);
        out().flush();
        return comconv::kOk;
    }
    if (cmd == "--version") {
        int32_t major = 0, minor = 0;
        const char *text = com_version(&major, &minor);
        char line[64];
        std::snprintf(line, sizeof line, "comconv %d.%d\n", static_cast<int>(major),
                      static_cast<int>(minor));
        out().put(line);
        out().put(text);
        out().put('\n');
        out().flush();
        return comconv::kOk;
    }
    const Command *command = nullptr;
    for (const Command &c : kCommands)
        if (cmd == c.name) command = &c;
    if (!command) {
        comconv::complain("unknown command '%s' (comconv --help lists them)", cmd.c_str());
        return comconv::kUsageError;
    }
    if (!std::getenv("VELDAR")) setenv("VELDAR", COMN_BUNDLED_HOME, 1);
    ComContext ctx{};
    if (!setup(ctx)) return comconv::kFileError;
    const int status = command->run(ctx, comconv::Words(argv + 2, argv + argc));
    out().flush();
    comn_ctx_teardown(&ctx);
    return status;
}
