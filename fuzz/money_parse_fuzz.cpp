// Fuzz target for the money text parser. The first byte picks the character rules (the
// built-in Latin-1 rules, or a two-byte set whose lead byte 0x81 is followed by a second
// byte); the rest is the text. Any input must give 0, 1 or 2 without reading past its end;
// a value that parses must print with 4 places (with and without separators) and parse back
// to itself.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "comnlib/money.h"

namespace {

struct TwoByteSet {
    uint8_t width[256];
    uint8_t ascii[512];
    uint8_t type[2048];
    CharAttrib attr{};

    TwoByteSet() {
        std::memset(width, 1, sizeof width);
        width[0x81] = 2;
        for (int b = 0; b < 256; ++b)
            ascii[b] = static_cast<uint8_t>(b);
        ascii[0x81] = 1;
        for (int b = 0; b < 256; ++b)
            ascii[256 + b] = static_cast<uint8_t>(b & 0x7F);
        std::memset(type, 0, sizeof type);
        for (int b : {0x09, 0x0A, 0x0D, 0x20})
            type[4 * b + 3] = COM_CT_SPACE;
        type[4 * '$' + 2] = 0x40;
        type[4 * 0x81] = 1;
        type[4 * 0x81 + 3] = COM_CT_LEAD;
        type[1024 + 4 * 0x50 + 2] = 0x40;
        type[1024 + 4 * 0x40 + 3] = COM_CT_SPACE;
        attr.mb_level = 2;
        attr.widthmap = width;
        attr.asciimap = ascii;
        attr.typemap = type;
    }
};

void round_trip(const MoneyValue &m, int32_t flags) {
    char buf[32];
    const char *p = com__mnytochar(&m, buf, sizeof buf, flags);
    if (p == nullptr) std::abort(); // every value fits 32 bytes
    MoneyValue back;
    const int32_t len = static_cast<int32_t>(buf + sizeof buf - p);
    if (com__mnyfromchar_mb(&back, p, len, 0, nullptr) != 0) std::abort();
    if (back.high != m.high || back.low != m.low) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const TwoByteSet two_byte;
    if (size == 0) return 0;
    const CharAttrib *cs = (data[0] & 1) ? &two_byte.attr : nullptr;
    // An exactly sized copy, so that any read past the end is caught.
    const size_t n = size - 1;
    std::unique_ptr<char[]> text(new char[n ? n : 1]);
    std::memcpy(text.get(), data + 1, n);
    MoneyValue m;
    const int32_t code = com__mnyfromchar_mb(&m, text.get(), static_cast<int32_t>(n), 0, cs);
    if (code < 0 || code > 2) std::abort();
    if (code == 0) {
        round_trip(m, 0x0400);
        round_trip(m, 0x0401);
    }
    Money4Value s;
    const int32_t code4 = com__mny4fromchar_mb(&s, text.get(), static_cast<int32_t>(n), 0, cs);
    if (code4 < 0 || code4 > 2) std::abort();
    return 0;
}
