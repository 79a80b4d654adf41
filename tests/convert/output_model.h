// Helpers for text and binary destinations: a buffer with a guard after its maxlength bytes,
// and a model of what the destination flags do to a produced text, written from the rules.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>

#include "comnlib.h"

// Bytes not written by a conversion keep this value.
constexpr char kUntouched = '~';

// A destination of maxlength bytes and a guard after them that must stay untouched.
struct Dest {
    std::unique_ptr<char[]> buf;
    int32_t size;
    explicit Dest(int32_t m) : buf(new char[std::max(m, 0) + 8]), size(std::max(m, 0)) {
        std::fill_n(buf.get(), size + 8, kUntouched);
    }
    std::string str() const { return std::string(buf.get(), static_cast<size_t>(size)); }
    bool guard_intact() const {
        return std::string(buf.get() + size, 8) == std::string(8, kUntouched);
    }
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

// What a text of n bytes becomes when it does not fit m bytes (with its terminator): a lone
// "*" (numbers), the first m bytes with overflow (exact numerics, money) or with truncation
// (text copies), or whole hexadecimal pairs (binary as text).
enum class Short { Star, Cut, Truncate, HexPairs };

// A produced text in a text destination of maxlength m with the given flags.
inline Outcome model_text(const std::string &text, int32_t m, uint32_t flags, Short rule) {
    const auto n = static_cast<int32_t>(text.size());
    const int32_t room = std::max(m, 0);
    std::string out(static_cast<size_t>(room), kUntouched);
    int32_t len = std::min(n, room);
    if (m > n || (m == n && !(flags & CS_FMT_NULLTERM))) {
        out.replace(0, text.size(), text);
        const int32_t rc = model_pad(out, n, m, flags, len);
        return {rc, out, len};
    }
    switch (rule) {
    case Short::Star:
        if (m >= 2) {
            out[0] = '*';
            model_pad(out, 1, m, flags, len);
        }
        return {CS_CONV_OVERFLOW, out, len};
    case Short::HexPairs:
        if (room < n) {
            out.replace(0, static_cast<size_t>(m / 2 * 2), text, 0, static_cast<size_t>(m / 2 * 2));
            return {CS_CONV_TRUNCATED, out, len};
        }
        [[fallthrough]]; // exactly m bytes: no room for the terminator
    default:
        out.replace(0, static_cast<size_t>(len), text, 0, static_cast<size_t>(len));
        if ((flags & CS_FMT_NULLTERM) && len >= 1) out[static_cast<size_t>(len - 1)] = '\0';
        return {rule == Short::Truncate ? CS_CONV_TRUNCATED : CS_CONV_OVERFLOW, out, len};
    }
}

// A varchar or varbinary destination holding payload (cut to 256 bytes): the length word,
// the bytes, the rest untouched.
inline Outcome framed(const std::string &payload, int32_t rc) {
    const auto n = static_cast<int16_t>(std::min<size_t>(payload.size(), 256));
    std::string out(258, kUntouched);
    std::memcpy(out.data(), &n, 2);
    out.replace(2, static_cast<size_t>(n), payload, 0, static_cast<size_t>(n));
    return {rc, out, 258};
}

// Bytes as lower-case hexadecimal pairs.
template <typename Bytes>
std::string to_hex(const Bytes &bytes) {
    std::string s;
    for (const auto b : bytes) {
        const auto u = static_cast<uint8_t>(b);
        s += "0123456789abcdef"[u >> 4];
        s += "0123456789abcdef"[u & 15];
    }
    return s;
}

// A varchar or varbinary source: the length word, then the bytes (at most 256), then filler.
inline std::string length_record(const std::string &bytes, int16_t word) {
    std::string v(258, '\xEE');
    std::memcpy(v.data(), &word, 2);
    v.replace(2, std::min<size_t>(bytes.size(), 256), bytes, 0, 256);
    return v;
}

// Runs a conversion into a fresh destination of maxlength m (and the given precision).
inline Outcome run_conv(ComConvFunc f, ComContext *ctx, DataFormat &sf, const void *src,
                        int32_t desttype, int32_t m, uint32_t flags, int32_t precision = 0) {
    Dest d(m);
    DataFormat df = text_format(desttype, m, flags);
    df.precision = precision;
    int32_t len = -7;
    const int32_t rc = f(ctx, &sf, const_cast<void *>(src), &df, d.buf.get(), &len);
    EXPECT_TRUE(d.guard_intact()) << "written past maxlength " << m;
    return {rc, d.str(), len};
}

// Runs a conversion from text, a char source in the given locale (if any), into a destination
// of 300 bytes filled with fill; the outcome holds the whole destination.
inline Outcome convert(ComConvFunc f, const std::string &text, DataFormat df = {},
                       ComContext *ctx = nullptr, LocaleHandle *loc = nullptr,
                       char fill = kUntouched) {
    DataFormat sf{};
    sf.maxlength = static_cast<int32_t>(text.size());
    sf.locale = loc;
    Outcome o{0, std::string(300, fill), -7};
    o.rc = f(ctx, &sf, const_cast<char *>(text.data()), &df, o.bytes.data(), &o.len);
    return o;
}

// The bytes a conversion produced: its destination up to the result length.
inline std::string produced(const Outcome &o) {
    return o.bytes.substr(0, static_cast<size_t>(std::clamp(o.len, 0, 300)));
}

// The value a conversion left at the start of its destination.
template <typename T>
T value_in(const Outcome &o) {
    T v;
    std::memcpy(&v, o.bytes.data(), sizeof v);
    return v;
}
