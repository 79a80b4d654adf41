// Fuzzes the date parser. The first byte picks the style, the date order and the character
// rules (plain ASCII, or a two-byte character set given by an attribute record); the rest is
// the text. Whatever parses as ASCII is printed in style 109 (millisecond precision, every
// field) and must parse back to the same value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "comnlib/datetime.h"

namespace {
constexpr int32_t kStyles[] = {0, 1, 2, 3, 4, 5, 10, 11, 101, 102, 103, 104, 105, 110, 111, 42};

// Bytes 0x80..0x9F lead two-byte characters (letters for second bytes 0x40..0x7E, folded
// through page 1); 0xE0..0xFE are letters folding to 0xC0..0xDE; a few bytes claim to be
// digits without being ASCII digits.
struct TwoByteSet {
    uint8_t width[256];
    uint8_t types[2 * 1024] = {};
    CharAttrib attr{};
    TwoByteSet() {
        for (int c = 0; c < 256; ++c) {
            width[c] = c >= 0x80 && c <= 0x9F ? 0x22 : 0x11;
            uint8_t *e = types + 4 * c;
            if (c >= '0' && c <= '9') e[3] = COM_CT_DIGIT;
            if (c == 0xB2 || c == 0xB3) e[3] = COM_CT_DIGIT;
            if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE)) e[3] = COM_CT_UPPER;
            if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE)) {
                e[0] = static_cast<uint8_t>(c - 32);
                e[3] = COM_CT_LOWER;
            }
            if (c >= 0x80 && c <= 0x9F) e[0] = 1, e[3] = COM_CT_LEAD;
            uint8_t *pe = types + 1024 + 4 * c;
            if (c >= 0x40 && c <= 0x5F) pe[3] = COM_CT_UPPER;
            if (c >= 0x60 && c <= 0x7E) pe[0] = static_cast<uint8_t>(c - 32), pe[3] = COM_CT_LOWER;
        }
        attr.widthmap = width;
        attr.typemap = types;
    }
};
const TwoByteSet kTwoByte;
const char *const kTwoByteMonths[12] = {"\x81\x41\x81\x42",
                                        "\xC1\xC2\xC3",
                                        "MAR",
                                        "APR",
                                        "MAY",
                                        "JUN",
                                        "JUL",
                                        "AUG",
                                        "SEP",
                                        "OCT",
                                        "NOV",
                                        "DEC"};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0 || size > 4096) return 0;
    const int32_t style = kStyles[data[0] & 15];
    const int32_t order = (data[0] >> 4) % 7;
    const bool mb = data[0] >= 0xD0;
    // An exact-size copy, so that any read past the length is caught.
    std::vector<char> text(data + 1, data + size);
    const auto len = static_cast<int32_t>(text.size());
    const char *const *months = mb ? kTwoByteMonths : com__get_months();
    const char *const *shorts = mb ? nullptr : com__get_shortmonths();
    const CharAttrib *attr = mb ? &kTwoByte.attr : nullptr;

    DateTimeValue dt;
    const int32_t rc =
        com__datefromchar_mb(&dt, text.data(), len, style, order, months, shorts, attr);
    const bool known = rc == 0 || rc == -1 || rc == -2 || rc == 1 || rc == 2 || rc == 3 || rc == 9;
    if (!known) std::abort();
    DateTimeValue t;
    const int32_t trc = com__timefromchar_mb(&t, text.data(), len, style, attr);
    if (trc == 0 && t.days != 0) std::abort();
    DateTime4Value d4;
    com__date4fromchar_mb(&d4, text.data(), len, style, order, months, shorts, attr);
    if (rc != 0 || mb) return 0;

    char out[64];
    const int32_t n = com__datetochar(&dt, out, sizeof out, 109, com__get_shortmonths());
    if (n <= 0) std::abort();
    DateTimeValue back;
    if (com__datefromchar_mb(&back, out, n, 0, 1, com__get_months(), com__get_shortmonths(),
                             nullptr) != 0)
        std::abort();
    if (back.days != dt.days || back.ticks != dt.ticks) std::abort();
    return 0;
}
