// The conversion routines' view of their buffers: loads and stores at addresses of any
// alignment (source and destination buffers promise none, so every access goes through
// memcpy, one move once compiled), and the varchar/varbinary frame of a 2-byte length word
// followed by up to 256 bytes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "comnlib/convert.h"
#include "comnlib/types.h"

namespace comn {

template <typename T>
inline T load(const void *p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename T>
inline void store(void *p, const T &v) {
    std::memcpy(p, &v, sizeof v);
}

// Stores the integer v into a destination of type R::type when it lies in [R::lo, R::hi];
// otherwise stores the nearer end of that range and answers CS_CONV_OVERFLOW.
template <typename R>
inline int32_t store_clamped(void *dest, int64_t v) {
    using T = typename R::type;
    if (v < R::lo) {
        store<T>(dest, static_cast<T>(R::lo));
        return CS_CONV_OVERFLOW;
    }
    if (v > R::hi) {
        store<T>(dest, static_cast<T>(R::hi));
        return CS_CONV_OVERFLOW;
    }
    store<T>(dest, static_cast<T>(v));
    return CS_SUCCEED;
}

constexpr int32_t kVarRoom = 256;  // bytes a CS_VARCHAR or CS_VARBINARY holds
constexpr int32_t kVarFrame = 258; // its length word and bytes

// Bytes of a source value.
struct Span {
    const uint8_t *p;
    int32_t len;
};

// The bytes of a varchar or varbinary source: its length word, clamped to 0..256.
[[gnu::always_inline]] inline Span var_source(const DataFormat *, const void *src) {
    return {static_cast<const uint8_t *>(src) + sizeof(int16_t),
            std::clamp<int32_t>(load<int16_t>(src), 0, kVarRoom)};
}

// Writes the length word of a varchar or varbinary destination (len <= 256).
inline void put_length_word(void *dest, int32_t len) {
    store(dest, static_cast<int16_t>(len));
}

// Finishes a text of n bytes that fits its CS_CHAR destination (n < maxlength, or n equal to
// it with no terminator asked for): with no padding or terminator flag there is nothing left
// to do, which is the usual case and worth skipping the call for.
inline int32_t finish_fitting_text(int32_t n, DataFormat *destfmt, void *dest, int32_t *destlen) {
    if ((destfmt->format & (CS_FMT_NULLTERM | CS_FMT_PADNULL | CS_FMT_PADBLANK)) == 0)
        return CS_SUCCEED;
    return comn__padchar(n, destfmt, dest, destlen);
}

} // namespace comn
