// Integer text scanners: com__chtoi4_mb reads blanks, an optional "+" or "-", decimal digits
// and blanks, a character at a time through the set's attributes, so that full-width digits,
// signs and the ideographic space count as their ASCII twins. White space is what the set's
// type map calls space (a plain blank always counts). No blank may stand between the sign and
// the digits. A text of blanks only (or none) is 0, not an error; a character cut by the end of
// the text is a syntax error.
//
// Outcomes: -2 syntax, -1 overflow (the nearest extreme of 32 bits stored), 0 no digits (0
// stored), 4 a number. The platform long ("i8") is 32 bits, so com__chtoi8_mb is the same scan.
// The tinyint and smallint scanners keep the low 8 or 16 bits of a 32-bit value that does not
// fit them, on purpose (unlike the clamping of the numeric conversions), and store 0 when the
// 32-bit scan itself fails or finds no digits.
#include <cstring>

#include "comnlib/intl.h"
#include "convert/int_scan.h"
#include "convert/text_chars.h"

namespace {

using namespace comn::intscan;

int32_t scan_chars(const uint8_t *p, const uint8_t *end, int32_t *out, const CharAttrib *attr) {
    enum { Lead, Sign, Digits, Trail } state = Lead;
    bool neg = false;
    uint64_t v = 0; // saturates just above 2^31
    constexpr uint64_t kCap = uint64_t{1} << 32;
    while (p < end) {
        const int32_t len = comn::text::char_len(attr, *p);
        if (len > end - p) return kSyntax;
        uint8_t c = comn::text::ascii_of(attr, p, len);
        if (c == 0 && len == 1) c = *p;
        const bool space = c == ' ' || comn::text::is_space(attr, p, len);
        p += len;
        if (c >= '0' && c <= '9' && !space) {
            if (state == Trail) return kSyntax;
            state = Digits;
            v = v * 10 + (c - '0');
            if (v > kCap) v = kCap;
        } else if (space) {
            if (state == Sign) return kSyntax;
            if (state == Digits) state = Trail;
        } else if ((c == '+' || c == '-') && state == Lead) {
            neg = c == '-';
            state = Sign;
        } else {
            return kSyntax;
        }
    }
    if (state == Lead) {
        *out = 0;
        return kEmpty;
    }
    if (state == Sign) return kSyntax;
    if (v > 2147483647u + static_cast<uint64_t>(neg)) {
        *out = neg ? INT32_MIN : INT32_MAX;
        return kOverflow;
    }
    *out = static_cast<int32_t>(neg ? 0 - v : v);
    return kNumber;
}

template <typename T>
void store(T *out, T v) {
    std::memcpy(out, &v, sizeof v);
}

} // namespace

// A 32-bit scan narrowed to a tinyint or smallint; the narrowed value is always stored.
template <auto Narrow, typename T>
int32_t scan_narrow(const char *text, int32_t len, T *out, const CharAttrib *attr) {
    int32_t v = 0;
    T n;
    const int32_t rc = Narrow(com__chtoi4_mb(text, len, &v, attr), v, &n);
    store(out, n);
    return rc;
}

extern "C" {

COMN_API int32_t com__chtoi4_mb(const char *text, int32_t len, int32_t *out,
                                const CharAttrib *attr) {
    const auto *p = reinterpret_cast<const uint8_t *>(text);
    const uint8_t *end = p + (text != nullptr && len > 0 ? len : 0);
    int32_t v = 0;
    int32_t rc = scan_ascii(p, end, &v);
    if (rc == kUndecided) rc = scan_chars(p, end, &v, attr);
    if (rc != kSyntax) store(out, v);
    return rc;
}

COMN_API int32_t com__chtoi8_mb(const char *text, int32_t len, int32_t *out,
                                const CharAttrib *attr) {
    return com__chtoi4_mb(text, len, out, attr);
}

COMN_API int32_t com__chtoi2_mb(const char *text, int32_t len, int16_t *out,
                                const CharAttrib *attr) {
    return scan_narrow<narrow_i2>(text, len, out, attr);
}

COMN_API int32_t com__chtoi1_mb(const char *text, int32_t len, uint8_t *out,
                                const CharAttrib *attr) {
    return scan_narrow<narrow_i1>(text, len, out, attr);
}
}
