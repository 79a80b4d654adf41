// The library's identification: a text of seven "/"-separated fields and a version number.
#include "comnlib/msg.h"

namespace {
constexpr char kVersion[] = "Veldar Common-Library/10.0.4/P/Linux Intel/Linux 2.0.36 i586/1/"
                            "Thu Sep 10 13:33:38 CEST 1998";
constexpr int32_t kMajor = 112;
constexpr int32_t kMinor = 0;
} // namespace

extern "C" COMN_API const char *com_version(int32_t *major, int32_t *minor) {
    if (major) *major = kMajor;
    if (minor) *minor = kMinor;
    return kVersion;
}
