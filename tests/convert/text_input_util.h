// Text input helpers: a context with bundled locales, a source format carrying one, and the
// full-width forms of ASCII number text in the shipped Japanese sets.
#pragma once

#include <cstring>
#include <string>

#include "comnlib.h"
#include "convert/output_model.h"
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

// ASCII digits, signs, point and blanks written as full-width characters of the set: the
// lead and trail byte as one number, Shift-JIS then EUC.
inline std::string full_width(const std::string &ascii, bool sjis) {
    static const struct {
        char c;
        unsigned sjis, euc;
    } kSymbols[] = {
        {'+', 0x817B, 0xA1DC}, {'-', 0x817C, 0xA1DD}, {'.', 0x8144, 0xA1A5}, {' ', 0x8140, 0xA1A1}};
    std::string out;
    for (char c : ascii) {
        unsigned code = c >= '0' && c <= '9' ? (sjis ? 0x824F : 0xA3B0) + (c - '0') : 0;
        for (const auto &s : kSymbols)
            if (c == s.c) code = sjis ? s.sjis : s.euc;
        if (code == 0) {
            out += c;
        } else {
            out += static_cast<char>(code >> 8);
            out += static_cast<char>(code & 0xFF);
        }
    }
    return out;
}
