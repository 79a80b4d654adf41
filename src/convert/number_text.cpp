// Numbers to text and to varchar: tinyint, smallint, int, real, float and bit sources. One
// formatter per source kind, one placement per destination kind, and the entry points of
// COMN_NUMBER_OUTPUT_SOURCES generated from them.
//
// Integers print in decimal, a sign only when negative, no padding (as "%ld"). Floats (real and
// float alike, a real from its exact double value) print with 17 significant digits in the shortest
// of fixed and exponent notation ("%.17g"): every digit is kept on purpose, so 0.1 as a real prints
// as .10000000149011612. Then a leading "0." loses its 0 (.25), and a text with neither a point nor
// an exponent gains ".0" (3.0; 1e+20 stays). A zero of either sign prints as 0.0. NaN and the
// infinities follow the same rules (nan.0, -inf.0).
//
// std::to_chars with the general format and an explicit precision gives exactly the text of
// "%.17g" (it rounds the exact binary value correctly, as the C library does), without the
// locale and format-string work of printf; the tests hold it against snprintf.
//
// A text that does not fit the destination (or leaves no room for the terminator that flag 1
// asks for) is replaced by "*" and gives CS_CONV_OVERFLOW; with fewer than 2 bytes of room
// not even that is written.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "convert/buffers.h"
#include "convert/entry.h"
#include "convert/scalar.h"

namespace comn {
namespace {

constexpr int kTextMax = 48; // "-2.2250738585072014e-308" is the longest text, 24 bytes

// "00" to "99": the decimal digits of an integer are written two at a time.
constexpr std::array<char, 200> make_digit_pairs() {
    std::array<char, 200> t{};
    for (int i = 0; i < 100; ++i) {
        t[2 * i] = static_cast<char>('0' + i / 10);
        t[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return t;
}
constexpr auto kDigitPairs = make_digit_pairs();

// "%ld": the sign when negative, then the digits. (The library writes integers itself
// rather than through std::to_chars, whose inline digit table would be exported from the
// shared library as a unique symbol.)
int32_t int_text(int32_t v, char *out) {
    uint32_t u = v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
    int32_t digits = 1;
    for (uint32_t t = u; t >= 10; t /= 10)
        ++digits;
    const int32_t n = digits + (v < 0);
    char *p = out + n; // digits are written from the last one back
    while (u >= 100) {
        p -= 2;
        std::memcpy(p, &kDigitPairs[2 * (u % 100)], 2);
        u /= 100;
    }
    if (u >= 10) {
        p -= 2;
        std::memcpy(p, &kDigitPairs[2 * u], 2);
    } else {
        *--p = static_cast<char>('0' + u);
    }
    if (v < 0) *--p = '-';
    return n;
}

// Writes the text at buf + 1 or buf + 2 and points *text at it. Whether the text will hold a
// point or an exponent follows from the value, without a scan: "%.17g" prints a value in
// fixed notation, without a point once trailing zeros go, exactly when it is an integer
// below 1e17 in magnitude (a double that is not an integer lies farther from every integer
// than 17 significant digits can hide); NaN and the infinities have neither either.
int32_t float_text(double v, char *buf, const char **text) {
    if (v == 0) v = 0.0; // -0.0 prints as 0.0
    char *out = buf + 1;
    char *end = std::to_chars(out, buf + kTextMax - 2, v, std::chars_format::general, 17).ptr;
    if (end - out > 1 && out[0] == '0' && out[1] == '.') ++out; // .25, not 0.25
    if (!std::isfinite(v) || (std::fabs(v) < 1e17 && v == std::trunc(v))) {
        *end++ = '.';
        *end++ = '0';
    }
    *text = out;
    return static_cast<int32_t>(end - out);
}

// Writes the text of a value of scalar type S (convert/scalar.h) somewhere in buf (kTextMax
// bytes), points *text at it and returns its length, or CS_CONV_DOMAIN for a bit other than
// 0 or 1.
template <typename S>
int32_t text_of(const void *src, char *buf, const char **text) {
    using T = typename S::type;
    if constexpr (S::kind == Kind::Float) {
        return float_text(load<T>(src), buf, text);
    } else {
        *text = buf;
        if constexpr (S::kind == Kind::Int) return int_text(load<T>(src), buf);
        const uint8_t b = load<uint8_t>(src);
        if (b > 1) return CS_CONV_DOMAIN;
        buf[0] = static_cast<char>('0' + b);
        return 1;
    }
}

// Places a number's text of len bytes into a text destination of M bytes.
int32_t place_in_char(const char *text, int32_t len, DataFormat *destfmt, void *dest,
                      int32_t *destlen) {
    auto *out = static_cast<char *>(dest);
    const int32_t m = destfmt->maxlength;
    *destlen = std::max(std::min(m, len), 0);
    const bool nullterm = destfmt->format & CS_FMT_NULLTERM;
    if (m > len || (m == len && !nullterm)) {
        std::memcpy(out, text, static_cast<size_t>(len));
        return finish_fitting_text(len, destfmt, dest, destlen);
    }
    if (m < 2) return CS_CONV_OVERFLOW;
    out[0] = '*';
    *destlen = 1;
    comn__padchar(1, destfmt, dest, destlen);
    return CS_CONV_OVERFLOW;
}

// A bit always writes its digit where there is room and lets the padding decide; the result
// length counts only what the destination can hold.
int32_t place_bit_in_char(const char *text, DataFormat *destfmt, void *dest, int32_t *destlen) {
    const bool room = destfmt->maxlength > 0;
    if (room) static_cast<char *>(dest)[0] = text[0];
    *destlen = room ? 1 : 0;
    return comn__padchar(1, destfmt, dest, destlen);
}

int32_t place_in_varchar(const char *text, int32_t len, void *dest, int32_t *destlen) {
    auto *out = static_cast<char *>(dest);
    *destlen = kVarFrame;
    int32_t rc = CS_SUCCEED;
    if (len > kVarRoom) {
        text = "*";
        len = 1;
        rc = CS_CONV_OVERFLOW;
    }
    put_length_word(out, len);
    std::memcpy(out + sizeof(int16_t), text, static_cast<size_t>(len));
    return rc;
}

template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    char buf[kTextMax];
    const char *text;
    const int32_t len = text_of<S>(src, buf, &text);
    if (len < 0) return len;
    if constexpr (std::is_same_v<D, T_varchar>)
        return place_in_varchar(text, len, dest, destlen);
    else if constexpr (S::kind == Kind::Bit)
        return place_bit_in_char(text, destfmt, dest, destlen);
    else
        return place_in_char(text, len, destfmt, dest, destlen);
}

} // namespace
} // namespace comn

#define COMN_NUMBER_TEXT_(s) COMN_CONV_PAIR(s, char) COMN_CONV_PAIR(s, varchar)
COMN_NUMBER_OUTPUT_SOURCES(COMN_NUMBER_TEXT_)
