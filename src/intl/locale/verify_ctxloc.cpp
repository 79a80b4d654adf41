// The diagnostic printed when a context could not load its localisation files: it walks the
// same steps as start-up (home, locales file, locale name, translation, the locale's files)
// and says where the first obstacle lies. Every line goes out through com_perr.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "comnlib/msg.h"
#include "intl/intl_internal.h"

namespace comn {
namespace {

// Formats one line and prints it. com_perr takes its text as a format, so any '%' coming
// from a path or a name is doubled first to print as itself.
void say(const char *format, ...) {
    char line[4 * COM_INTL_PATH_SIZE];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    char safe[2 * sizeof line];
    size_t w = 0;
    for (const char *p = line; *p; ++p) {
        safe[w++] = *p;
        if (*p == '%') safe[w++] = '%';
    }
    safe[w] = '\0';
    com_perr(safe);
}

} // namespace
} // namespace comn

extern "C" {

COMN_API void com_intl_verify_ctxloc(ComContext *ctx) {
    using comn::say;
    say("\n\nThe context allocation routine failed when it tried to load localization files!!\n");
    say("One or more following problems may caused the failure\n\n");

    char home[1024];
    if (intl_home(home, sizeof home) < 0) {
        say("Cannot access the veldar home directory, please check environment variable VELDAR "
            "or ~veldar\n");
        return;
    }
    say("Your veldar home directory is %s. ", home);
    say("Check the environment variable VELDAR if it is not the one you want!\n");

    char locfile[COM_INTL_PATH_SIZE + 1];
    if (com__verify_msgfile(ctx, nullptr, nullptr, "locales.dat", locfile, COM_INTL_PATH_SIZE) !=
        1) {
        say("Cannot access file %s\n", locfile);
        return;
    }

    char name[256];
    const char *var = "LC_ALL";
    int32_t rc = intlgetenv(name, sizeof name, var);
    if (rc == 0) rc = intlgetenv(name, sizeof name, var = "LANG");
    if (rc < 0) {
        say("An intl library error occurs when trying to get locale name from environment "
            "variable %s\n",
            var);
        return;
    }
    if (rc == 0) {
        std::strcpy(name, "default");
        say("Using default locale name: \"%s\"\n", name);
    } else {
        say("Using locale name \"%s\" defined in environment variable %s\n", name, var);
    }

    char language[COM_INTL_NAME_SIZE], charset[COM_INTL_NAME_SIZE], sortorder[COM_INTL_NAME_SIZE];
    rc = com__intl_lookup(ctx, name, static_cast<int32_t>(std::strlen(name)), language,
                          sizeof language, charset, sizeof charset, sortorder);
    if (rc == COM_INTL_ERROR) {
        say("An intl library error occurs when trying to get lang, charset and sortorder from "
            "file: %s, can't continue!\n",
            locfile);
        return;
    }
    if (rc != CS_SUCCEED) {
        say("Locale name \"%s\" doesn't exist in your %s file\n", name, locfile);
        return;
    }

    char path[COM_INTL_PATH_SIZE + 1];
    if (com__verify_msgfile(ctx, language, charset, "common.loc", path, COM_INTL_PATH_SIZE) !=
        CS_SUCCEED)
        say("Cannot access %s file\n", path);
    if (com__verify_msgfile(ctx, language, charset, "cslib.loc", path, COM_INTL_PATH_SIZE) !=
        CS_SUCCEED)
        say("Cannot access %s file\n", path);
    if (com__verify_charfile(ctx, charset, sortorder, "srt", path, COM_INTL_PATH_SIZE) !=
        CS_SUCCEED)
        say("Cannot access %s file\n", path);
    if (com__verify_charfile(ctx, charset, "charset.loc", nullptr, path, COM_INTL_PATH_SIZE) !=
        CS_SUCCEED)
        say("Cannot access %s file\n", path);
}
}
