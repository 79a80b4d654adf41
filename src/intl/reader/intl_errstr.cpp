// Texts of the platform reader's failure statuses, for messages whose origin is the
// internationalisation library. The texts are static and never localized: they are what
// remains when the localized files themselves could not be read.
#include "comnlib/intl.h"

namespace comn {
namespace {

struct StatusText {
    int32_t status;
    const char *text;
};

constexpr StatusText kTexts[] = {
    {INTL_E_NOMEM, "memory ran out while reading a localisation file"},
    {INTL_E_OPEN, "a localisation file could not be opened or read"},
    {INTL_E_SYNTAX, "a localisation file holds a malformed line"},
    {INTL_E_TOOBIG, "a localisation file is larger than 16 MiB"},
    {INTL_E_BINARY, "a localisation file holds a NUL byte"},
    {INTL_E_NOHOME, "the installation home is unknown: set VELDAR or create the user veldar"},
    {INTL_E_TOOLONG, "a value from the environment or a file does not fit its buffer"},
    {INTL_E_ARG, "the internationalisation library was called without a handle, path or buffer"},
};

} // namespace
} // namespace comn

extern "C" COMN_API const char *intl_errstr(int32_t status) {
    for (const auto &t : comn::kTexts)
        if (t.status == status) return t.text;
    return "unknown error of the internationalisation library";
}
