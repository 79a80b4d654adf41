// Test helpers for text and binary destinations: a destination buffer of exactly maxlength
// bytes on the heap (so the sanitizer catches a write past it), and a plain model of what
// the destination flags do to n produced bytes, written from the rules rather than the code.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

#include "comnlib.h"

// Bytes not written by a conversion keep this value.
constexpr char kUntouched = '~';

struct Dest {
    std::unique_ptr<char[]> buf;
    int32_t size;
    explicit Dest(int32_t m) : buf(new char[std::max(m, 1)]), size(std::max(m, 0)) {
        std::fill_n(buf.get(), std::max(m, 1), kUntouched);
    }
    std::string str() const { return std::string(buf.get(), static_cast<size_t>(size)); }
};

struct Outcome {
    int32_t rc;
    std::string bytes; // the whole destination
    int32_t len;
    bool operator==(const Outcome &) const = default;
};

inline void PrintTo(const Outcome &o, std::ostream *os) {
    *os << "{rc " << o.rc << ", len " << o.len << ", \"";
    for (char c : o.bytes)
        if (c >= 0x20 && c < 0x7f)
            *os << c;
        else
            *os << "\\x" << std::hex << (static_cast<unsigned>(c) & 0xff) << std::dec;
    *os << "\"}";
}

inline DataFormat text_format(int32_t type, int32_t maxlength, uint32_t flags = 0) {
    DataFormat f{};
    f.datatype = type;
    f.maxlength = maxlength;
    f.format = flags;
    return f;
}

// The text flags applied to n bytes already in out (of size m), the result length being n.
inline int32_t model_pad(std::string &out, int32_t n, int32_t m, uint32_t flags, int32_t &len) {
    const bool term = flags & CS_FMT_NULLTERM;
    len = n;
    if (m < n || (term && m == n)) {
        if (term && m >= 1) out[static_cast<size_t>(m - 1)] = '\0';
        return CS_CONV_OVERFLOW;
    }
    if (flags & CS_FMT_PADNULL) {
        if (flags & CS_FMT_PADBLANK) return CS_CONV_FORMAT;
        out.replace(static_cast<size_t>(n), static_cast<size_t>(m - n), static_cast<size_t>(m - n),
                    '\0');
        len = m;
    } else if (flags & CS_FMT_PADBLANK) {
        out.replace(static_cast<size_t>(n), static_cast<size_t>(m - n), static_cast<size_t>(m - n),
                    ' ');
        if (term) out[static_cast<size_t>(m - 1)] = '\0';
        len = m;
    } else if (term) {
        out[static_cast<size_t>(n)] = '\0';
        len = n + 1;
    }
    return CS_SUCCEED;
}

// Runs a conversion into a fresh destination of maxlength m.
inline Outcome run_conv(ComConvFunc f, ComContext *ctx, DataFormat &sf, const void *src,
                        int32_t desttype, int32_t m, uint32_t flags) {
    Dest d(m);
    DataFormat df = text_format(desttype, m, flags);
    int32_t len = -7;
    const int32_t rc = f(ctx, &sf, const_cast<void *>(src), &df, d.buf.get(), &len);
    return {rc, d.str(), len};
}
