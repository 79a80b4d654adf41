// Padding of text and binary destinations, and the copy of fixed-length values into binary
// destinations. The destination format's flags decide: 1 null-terminates, 2 pads with zero
// bytes, 4 pads with blanks; 2 and 4 together are a format error.
#include <algorithm>
#include <cstring>

#include "comnlib/convert.h"
#include "convert/buffers.h"

extern "C" {

COMN_API int32_t comn__padchar(int32_t n, DataFormat *destfmt, void *dest, int32_t *destlen) {
    auto *out = static_cast<char *>(dest);
    const int32_t m = destfmt->maxlength;
    const uint32_t flags = destfmt->format;
    const bool nullterm = flags & CS_FMT_NULLTERM;

    // Too long, or no room left for the terminator: terminate what is there and report it.
    if (m < n || (nullterm && m == n)) {
        if (nullterm && m >= 1) out[m - 1] = '\0';
        return CS_CONV_OVERFLOW;
    }
    int32_t r = *destlen;
    if (flags & CS_FMT_PADNULL) {
        if (flags & CS_FMT_PADBLANK) return CS_CONV_FORMAT;
        if (r < m) {
            std::memset(out + r, 0, static_cast<size_t>(m - r));
            *destlen = m;
        }
        return CS_SUCCEED;
    }
    if (flags & CS_FMT_PADBLANK) {
        if (r < m) {
            std::memset(out + std::max(r, 0), ' ', static_cast<size_t>(m - std::max(r, 0)));
            if (nullterm) out[m - 1] = '\0';
        }
        *destlen = m;
        return CS_SUCCEED;
    }
    if (nullterm && r >= 0 && r < m) {
        out[r] = '\0';
        *destlen = r + 1;
    }
    return CS_SUCCEED;
}

COMN_API int32_t comn__padbin(int32_t n, DataFormat *destfmt, void *dest, int32_t *destlen) {
    const int32_t m = destfmt->maxlength;
    if ((destfmt->format & CS_FMT_PADNULL) && m > n && n >= 0) {
        std::memset(static_cast<char *>(dest) + n, 0, static_cast<size_t>(m - n));
        *destlen = m;
    }
    return CS_SUCCEED;
}

COMN_API int32_t comn_fixedtobin(const void *src, int32_t size, DataFormat *destfmt, void *dest,
                                 int32_t *destlen) {
    const int32_t m = std::max(destfmt->maxlength, 0);
    const int32_t n = std::min(m, size);
    std::memcpy(dest, src, static_cast<size_t>(n));
    *destlen = n;
    if (m < size) return CS_CONV_TRUNCATED;
    return comn__padbin(size, destfmt, dest, destlen);
}

// A varbinary destination: a 16-bit length word followed by up to 256 data bytes.
COMN_API int32_t comn_fixedtovarbin(const void *src, int32_t size, DataFormat *, void *dest,
                                    int32_t *destlen) {
    const int32_t count = std::clamp(size, 0, comn::kVarRoom);
    comn::put_length_word(dest, count);
    std::memcpy(static_cast<uint8_t *>(dest) + sizeof(int16_t), src, static_cast<size_t>(count));
    *destlen = comn::kVarFrame;
    return count < size ? CS_CONV_OVERFLOW : CS_SUCCEED;
}
}
