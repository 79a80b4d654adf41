// Helpers of the text input tests: a context with locales loaded from the bundled home, a
// source format carrying one of them, and the full-width forms of ASCII number text in the
// shipped Japanese sets.
#pragma once

#include <cstring>
#include <string>

#include "comnlib.h"
#include "intl/intl_test_util.h"

// A context whose locales stay loaded until scope end; locale("ja_JP.SJIS") hands out a
// handle with every category on that locale.
struct TextCtx : LocCtx {
    LocaleHandle handles[8]{};
    int used = 0;
    LocaleHandle *locale(const char *name) {
        LocaleRecord *r = nullptr;
        if (com_intl_load(get(), name, -1, &r) != 1 || used == 8) return nullptr;
        LocaleHandle &h = handles[used++];
        h.collate = h.ctype = h.message = h.monetary = h.numeric = h.time = r;
        return &h;
    }
};

// The Japanese sets of the bundled home, by a locale name that selects each.
struct JapaneseSet {
    const char *locale;
    bool sjis; // Shift-JIS byte values; else the two-byte EUC values (also DEC Kanji's)
};
inline constexpr JapaneseSet kJapaneseSets[] = {
    {"ja_JP.eucJP", false}, {"ja_JP.SJIS", true}, {"ja_JP.deckanji", false}};

// ASCII digits, signs, point and blanks written as full-width characters of the set.
inline std::string full_width(const std::string &ascii, bool sjis) {
    std::string out;
    for (char c : ascii) {
        unsigned hi, lo;
        if (c >= '0' && c <= '9') {
            hi = sjis ? 0x82 : 0xA3;
            lo = (sjis ? 0x4F : 0xB0) + static_cast<unsigned>(c - '0');
        } else if (c == '+') {
            hi = sjis ? 0x81 : 0xA1, lo = sjis ? 0x7B : 0xDC;
        } else if (c == '-') {
            hi = sjis ? 0x81 : 0xA1, lo = sjis ? 0x7C : 0xDD;
        } else if (c == '.') {
            hi = sjis ? 0x81 : 0xA1, lo = sjis ? 0x44 : 0xA5;
        } else if (c == ' ') {
            hi = sjis ? 0x81 : 0xA1, lo = sjis ? 0x40 : 0xA1;
        } else {
            out += c;
            continue;
        }
        out += static_cast<char>(hi);
        out += static_cast<char>(lo);
    }
    return out;
}

// Runs a conversion from a char source with the given locale (may be null).
template <typename D>
int32_t convert_text(ComConvFunc f, const std::string &text, D *dest, int32_t *len,
                     ComContext *ctx = nullptr, LocaleHandle *loc = nullptr) {
    DataFormat sf{}, df{};
    sf.maxlength = static_cast<int32_t>(text.size());
    sf.locale = loc;
    df.maxlength = sizeof(D);
    return f(ctx, &sf, const_cast<char *>(text.data()), &df, dest, len);
}
