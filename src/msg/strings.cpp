// Guarded string copies and the environment lookup. A violated guard is a programming error
// in the caller and ends the process through the assertion path.
#include <cstdlib>
#include <cstring>

#include "comnlib/msg.h"
#include "core/alloc.h"

extern "C" {

COMN_API void com_copstr(char *dest, const char *src, int32_t size) {
    COM_ASSERT(dest != nullptr);
    COM_ASSERT(src != nullptr);
    COM_ASSERT(size >= 1);
    const size_t len = std::strlen(src);
    COM_ASSERT(len < static_cast<size_t>(size));
    std::memcpy(dest, src, len + 1);
}

COMN_API void com_catstr(char *dest, const char *src, int32_t size) {
    COM_ASSERT(dest != nullptr);
    COM_ASSERT(src != nullptr);
    COM_ASSERT(size >= 1);
    const size_t have = strnlen(dest, static_cast<size_t>(size));
    const size_t add = std::strlen(src);
    COM_ASSERT(have + add < static_cast<size_t>(size));
    std::memcpy(dest + have, src, add + 1);
}

COMN_API char *com_getenv(const char *name) {
    if (!name) return nullptr;
    const char *value = std::getenv(name);
    if (!value) return nullptr;
    return comn::mem_strndup(value, std::strlen(value));
}
}
