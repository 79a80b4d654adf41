// Fuzz target for the money, numeric and cross conversions: arbitrary numeric and money images
// (any precision, scale, sign and magnitude bytes) and arbitrary destination formats (any
// maxlength including 0 and negative ones, any flags, any precision and scale including the
// source-value marker) through every routine of the family.
//
// Input: a routine selector byte, two maxlength bytes (signed), a flags byte, a precision and
// a scale byte (a few values stand for the marker and out-of-range numbers), then the source
// image. Checked: the status is one the family can return; nothing is written past the
// destination's maxlength (text and binary), the varchar frame (258 bytes) or the fixed size;
// the result length stays within what was written; a numeric text that succeeded parses back
// to the same value.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "comnlib.h"

namespace {

enum class Dest { Text, Var, Fixed };

struct Routine {
    ComConvFunc f;
    Dest dest;
    int32_t size; // fixed destinations
};

#define COMN_FUZZ_INTO_NUM_(a) {comn_##a##tonum, Dest::Fixed, 35},
const Routine kRoutines[] = {
    {comn_numtobit, Dest::Fixed, 1},
    {comn_numtoi1, Dest::Fixed, 1},
    {comn_numtoi2, Dest::Fixed, 2},
    {comn_numtoi4, Dest::Fixed, 4},
    {comn_numtoi8, Dest::Fixed, 4},
    {comn_numtoflt4, Dest::Fixed, 4},
    {comn_numtoflt8, Dest::Fixed, 8},
    COMN_INTO_NUMERIC_SOURCES(COMN_FUZZ_INTO_NUM_){comn_numtochar, Dest::Text, 0},
    {comn_numtobin, Dest::Text, 0},
    {comn_numtovarchar, Dest::Var, 0},
    {comn_numtovarbin, Dest::Var, 0},
    {comn_moneytochar, Dest::Text, 0},
    {comn_moneytobin, Dest::Text, 0},
    {comn_moneytovarchar, Dest::Var, 0},
    {comn_moneytovarbin, Dest::Var, 0},
    {comn_mny4tochar, Dest::Text, 0},
    {comn_mny4tobin, Dest::Text, 0},
    {comn_mny4tovarchar, Dest::Var, 0},
    {comn_mny4tovarbin, Dest::Var, 0},
};

int32_t scale_or_precision(uint8_t b) {
    switch (b) {
    case 0xFF:
        return CS_SRC_VALUE;
    case 0xFE:
        return -1;
    case 0xFD:
        return 1000;
    default:
        return b;
    }
}

bool known(int32_t rc) {
    switch (rc) {
    case CS_SUCCEED:
    case CS_CONV_OVERFLOW:
    case CS_CONV_PRECISION:
    case CS_CONV_SCALE:
    case CS_CONV_FORMAT:
    case CS_CONV_DOMAIN:
    case CS_CONV_TRUNCATED:
        return true;
    default:
        return false;
    }
}

constexpr unsigned char kCanary = 0xA5;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 6) return 0;
    const Routine &r = kRoutines[data[0] % (sizeof kRoutines / sizeof kRoutines[0])];
    DataFormat sf{}, df{};
    df.maxlength = static_cast<int16_t>(data[1] | data[2] << 8) % 300;
    df.format = data[3] & 7;
    df.precision = scale_or_precision(data[4]);
    df.scale = scale_or_precision(data[5]);
    const DataFormat before = df;
    unsigned char src[35] = {};
    std::memcpy(src, data + 6, std::min<size_t>(size - 6, sizeof src));
    sf.maxlength = sizeof src;

    unsigned char out[300 + 16];
    std::memset(out, kCanary, sizeof out);
    int32_t len = -7;
    const int32_t rc = r.f(nullptr, &sf, src, &df, out, &len);
    if (!known(rc)) std::abort();

    int32_t room = r.dest == Dest::Text  ? std::max(before.maxlength, 0)
                   : r.dest == Dest::Var ? 258
                                         : r.size;
    for (size_t i = static_cast<size_t>(room); i < sizeof out; ++i)
        if (out[i] != kCanary) std::abort();
    if (len != -7 && (len < 0 || len > room)) std::abort();
    // Only the money text routines may change the caller's format, and only a negative
    // precision, to 0.
    if (df.maxlength != before.maxlength || df.scale != before.scale ||
        (df.precision != before.precision && !(before.precision < 0 && df.precision == 0)))
        std::abort();

    if (r.f == comn_numtochar && rc == CS_SUCCEED && !(df.format & 6)) {
        NumericValue v{}, back{};
        std::memcpy(&v, src, sizeof v);
        const int32_t n = len - ((df.format & 1) ? 1 : 0);
        back.precision = v.precision;
        back.scale = v.scale;
        uint8_t *bytes = back.array;
        int32_t area = comn_num_getlen(v.precision);
        uint8_t p = back.precision, s = back.scale;
        // A proper value parses back to itself; an image whose magnitude exceeds its
        // precision does not parse at that precision, which is fine.
        if (com__subchartoexctnume(reinterpret_cast<char *>(out), n, &bytes, &area, &p, &s, 0) ==
                0 &&
            comn_numcmp(&v, &back) != 0)
            std::abort();
    }
    return 0;
}
