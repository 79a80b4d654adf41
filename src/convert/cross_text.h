// How the money and exact-numeric sources hand a finished text to a text or varchar
// destination. The text has been formatted into a small area of the caller's; these routines
// only copy it and apply the destination's flags, and never write past the destination's
// maxlength or the varchar frame.
#pragma once

#include <algorithm>
#include <cstring>

#include "comnlib/convert.h"

namespace comn::cross {

// Bytes of a varchar value after its 16-bit length word.
constexpr int32_t kVarcharData = 256;
constexpr int32_t kVarcharSize = 2 + kVarcharData;

// Text destination: min(maxlength, n) bytes are copied (none for a maxlength of 0 or below)
// and the flags decide the status; a text that does not fit comes back as CS_CONV_OVERFLOW
// with its first bytes in place, terminated at the last byte when flag 1 asks for it.
inline int32_t put_text(const char *text, int32_t n, DataFormat *destfmt, void *dest,
                        int32_t *destlen) {
    const int32_t copied = std::clamp(destfmt->maxlength, 0, n);
    std::memcpy(dest, text, static_cast<size_t>(copied));
    *destlen = copied;
    return comn__padchar(n, destfmt, dest, destlen);
}

// Varchar destination: the text after the length word. Callers format into areas of at most
// kVarcharData bytes (they static_assert it), so the text always fits whole.
inline int32_t put_vartext(const char *text, int32_t n, void *dest, int32_t *destlen) {
    auto *out = static_cast<char *>(dest);
    const auto count = static_cast<int16_t>(std::clamp(n, 0, kVarcharData));
    std::memcpy(out, &count, sizeof count);
    std::memcpy(out + sizeof count, text, static_cast<size_t>(count));
    *destlen = kVarcharSize;
    return CS_SUCCEED;
}

// Varchar destination when the value could not be formatted: an empty value and the code.
inline int32_t put_vartext_error(int32_t code, void *dest, int32_t *destlen) {
    const int16_t zero = 0;
    std::memcpy(dest, &zero, sizeof zero);
    *destlen = kVarcharSize;
    return code;
}

} // namespace comn::cross
