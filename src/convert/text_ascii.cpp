// Two byte-level helpers of the text input conversions:
//  - com__conv2ascii reduces text of any character set to ASCII a character at a time, so
//    that numbers typed in full-width characters parse like their ASCII twins. A character
//    without an ASCII equivalent is copied whole; a character cut by the end of the source is
//    copied as far as it goes. Only whole characters are written, never past the capacity.
//  - comn__hex2binbytes turns hexadecimal text into bytes, high nibble first, with an implied
//    leading zero nibble for an odd digit count. Digits are decoded through a 256-entry table;
//    pairs are converted while there is room, and the rest of the text is still checked, so a
//    bad character anywhere is a syntax error rather than a silent truncation.
#include <algorithm>
#include <array>
#include <cstring>

#include "comnlib/convert.h"
#include "comnlib/intl.h"
#include "convert/text_chars.h"

namespace {

constexpr uint8_t kNotHex = 0xFF;

constexpr std::array<uint8_t, 256> make_hex_table() {
    std::array<uint8_t, 256> t{};
    for (auto &v : t)
        v = kNotHex;
    for (int c = 0; c < 10; ++c)
        t['0' + c] = static_cast<uint8_t>(c);
    for (int c = 0; c < 6; ++c) {
        t['a' + c] = static_cast<uint8_t>(10 + c);
        t['A' + c] = static_cast<uint8_t>(10 + c);
    }
    return t;
}
constexpr auto kHex = make_hex_table();

bool all_hex(const uint8_t *p, const uint8_t *end) {
    uint8_t acc = 0;
    for (; p < end; ++p)
        acc |= kHex[*p] & 0xF0; // a digit's entry has no high bits
    return acc == 0;
}

} // namespace

extern "C" {

COMN_API int32_t com__conv2ascii(const char *src, int32_t srclen, char *dest, int32_t destcap,
                                 const CharAttrib *attr) {
    if (src == nullptr || dest == nullptr || srclen <= 0 || destcap <= 0) return 0;
    const auto *p = reinterpret_cast<const uint8_t *>(src);
    const uint8_t *const end = p + srclen;
    auto *out = reinterpret_cast<uint8_t *>(dest);
    if (attr == nullptr || attr->widthmap == nullptr) {
        // A single-byte set: one table lookup per byte, a byte without an equivalent kept.
        const int32_t n = std::min(srclen, destcap);
        const uint8_t *map = attr == nullptr             ? nullptr
                             : attr->asciimap != nullptr ? attr->asciimap
                             : attr->typemap != nullptr  ? attr->typemap + 1
                                                         : nullptr;
        const size_t stride = attr != nullptr && attr->asciimap == nullptr ? 4 : 1;
        if (map == nullptr) {
            std::memcpy(out, p, static_cast<size_t>(n));
            return n;
        }
        for (int32_t i = 0; i < n; ++i) {
            const uint8_t e = map[stride * p[i]];
            out[i] = e != 0 ? e : p[i];
        }
        return n;
    }
    int32_t n = 0;
    while (p < end && n < destcap) {
        const int32_t avail = static_cast<int32_t>(end - p);
        int32_t len = comn::text::char_len(attr, p[0]);
        const bool whole = len <= avail;
        if (!whole) len = avail;
        const uint8_t eq = whole ? comn::text::ascii_of(attr, p, len) : 0;
        if (eq != 0) {
            out[n++] = eq;
        } else {
            if (len > destcap - n) break;
            std::memcpy(out + n, p, static_cast<size_t>(len));
            n += len;
        }
        p += len;
    }
    return n;
}

COMN_API int32_t comn__hex2binbytes(const char *text, int32_t len, uint8_t *out, int32_t outmax,
                                    int32_t *outlen) {
    *outlen = 0;
    const auto *p = reinterpret_cast<const uint8_t *>(text);
    const uint8_t *end = p + (text != nullptr && len > 0 ? len : 0);
    while (p < end && com_isspace(*p))
        ++p;
    while (end > p && com_isspace(end[-1]))
        --end;
    if (end - p >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) p += 2;

    const int64_t digits = end - p;
    const int64_t need = (digits + 1) / 2;
    const int32_t room = outmax > 0 ? outmax : 0;
    int32_t n = 0;
    if ((digits & 1) != 0) {
        if (room == 0) return all_hex(p, end) ? CS_CONV_OVERFLOW : CS_CONV_SYNTAX;
        const uint8_t d = kHex[*p++];
        if (d == kNotHex) return CS_CONV_SYNTAX;
        out[n++] = d;
    }
    // [n, room): whole pairs while both the text and the destination last.
    const int32_t pairs = static_cast<int32_t>(std::min<int64_t>(need - n, room - n));
    for (int32_t i = 0; i < pairs; ++i, p += 2) {
        const uint8_t hi = kHex[p[0]], lo = kHex[p[1]];
        if (((hi | lo) & 0xF0) != 0) return CS_CONV_SYNTAX;
        out[n++] = static_cast<uint8_t>(hi << 4 | lo);
    }
    if (p < end) {
        if (!all_hex(p, end)) return CS_CONV_SYNTAX;
        *outlen = n;
        return CS_CONV_TRUNCATED;
    }
    *outlen = n;
    return CS_SUCCEED;
}
}
