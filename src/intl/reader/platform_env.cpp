// The platform layer's view of the process: the installation home (VELDAR, else the home
// directory of the user veldar) and environment variables copied into callers' buffers.
#include <pwd.h>

#include <cstdlib>
#include <cstring>

#include "comnlib/intl.h"

namespace {

int32_t copy_out(char *buf, int32_t size, const char *text) {
    const size_t len = std::strlen(text);
    if (len >= static_cast<size_t>(size) || len > INT32_MAX - 1) return INTL_E_TOOLONG;
    std::memcpy(buf, text, len + 1);
    return static_cast<int32_t>(len);
}

} // namespace

extern "C" {

COMN_API int32_t intl_home(char *buf, int32_t size) {
    if (!buf || size <= 0) return INTL_E_ARG;
    const char *home = std::getenv("VELDAR");
    if (home && *home) return copy_out(buf, size, home);
    // The user's entry is looked up with the re-entrant call, so no static storage is shared.
    struct passwd pw, *found = nullptr;
    char scratch[4096];
    if (getpwnam_r("veldar", &pw, scratch, sizeof scratch, &found) != 0 || !found ||
        !found->pw_dir || !*found->pw_dir)
        return INTL_E_NOHOME;
    return copy_out(buf, size, found->pw_dir);
}

COMN_API int32_t intlgetenv(char *buf, int32_t size, const char *name) {
    if (!name) return 0;
    if (!buf || size <= 0) return INTL_E_ARG;
    const char *value = std::getenv(name);
    if (!value || !*value) return 0;
    return copy_out(buf, size, value);
}
}
