// The date parser beside the Python oracle (which writes random datetimes in the accepted
// forms and checks a list of rejected ones): the length of the text, and classification
// through a character attribute record.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "comnlib.h"

namespace {

// The length, not a terminator, ends the text (a NUL inside it is a rejected byte); no text
// or a negative length is empty. Codes of rejected forms are in the Python oracle's list.
TEST(DateParse, TheLengthEndsTheText) {
    DateTimeValue dt;
    const char *const *months = com__get_months(), *const *shorts = com__get_shortmonths();
    EXPECT_EQ(com__datefromchar_mb(&dt, "Jan 15 1999garbage", 11, 0, 1, months, shorts, nullptr),
              0);
    EXPECT_EQ(com__datefromchar_mb(&dt, "Jan\0 15 1999", 12, 0, 1, months, shorts, nullptr), -1);
    EXPECT_EQ(com__datefromchar_mb(&dt, nullptr, 0, 0, 1, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(com__datefromchar_mb(&dt, "x", -5, 0, 1, nullptr, nullptr, nullptr), 0);
}

// A small character set: bytes 0x80..0x9F lead two-byte characters whose second byte is a
// letter (second bytes 0x40..0x7E, case pairs folded through their page); 0xE0..0xFE are
// single-byte letters folding to 0xC0..0xDE; everything else is ASCII.
struct TwoByteSet {
    uint8_t width[256];
    uint8_t types[2 * 1024];
    CharAttrib attr{};
    TwoByteSet() {
        std::memset(types, 0, sizeof types);
        for (int c = 0; c < 256; ++c) {
            width[c] = c >= 0x80 && c <= 0x9F ? 0x22 : 0x11;
            uint8_t *e = types + 4 * c;
            if (c >= '0' && c <= '9') e[3] = COM_CT_DIGIT;
            if (c >= 'A' && c <= 'Z') e[3] = COM_CT_UPPER;
            if (c >= 'a' && c <= 'z') e[0] = static_cast<uint8_t>(c - 32), e[3] = COM_CT_LOWER;
            if (c >= 0xC0 && c <= 0xDE) e[3] = COM_CT_UPPER;
            if (c >= 0xE0 && c <= 0xFE) e[0] = static_cast<uint8_t>(c - 32), e[3] = COM_CT_LOWER;
            if (c >= 0x80 && c <= 0x9F) e[0] = 1, e[3] = COM_CT_LEAD; // page 1
            uint8_t *pe = types + 1024 + 4 * c;
            if (c >= 0x40 && c <= 0x5F) pe[3] = COM_CT_UPPER;
            if (c >= 0x60 && c <= 0x7E) pe[0] = static_cast<uint8_t>(c - 32), pe[3] = COM_CT_LOWER;
        }
        attr.mb_level = 2;
        attr.widthmap = width;
        attr.typemap = types;
    }
};

TEST(DateParse, CharacterAttributesDecideClassesAndFolding) {
    TwoByteSet set;
    // Month names of this set: "\x81\x41\x81\x42" (two two-byte letters) for January and
    // "\xC1\xC2" for February; short names are absent.
    const char *months[12] = {
        "\x81\x41\x81\x42", "\xC1\xC2\xC3", "x", "x", "x", "x", "x", "x", "x", "x", "x", "x"};
    DateTimeValue dt;
    auto run = [&](const std::string &s) {
        const std::vector<char> exact(s.begin(), s.end()); // ASan sees any read past the end
        return com__datefromchar_mb(&dt, exact.data(), static_cast<int32_t>(exact.size()), 0, 1,
                                    months, nullptr, &set.attr);
    };
    EXPECT_EQ(run("\x81\x61\x81\x62 15 1999"), 0); // lower-case second bytes fold
    EXPECT_EQ(dt.days, 36173);
    EXPECT_EQ(run("\xE1\xE2\xE3 1 1999"), 0); // single-byte letters fold through the map
    EXPECT_EQ(dt.days, 36190);
    EXPECT_EQ(run("1 1999 \xE1\xE2\xE3"), 0); // a word that ends the text
    EXPECT_EQ(dt.days, 36190);
    EXPECT_EQ(run("\xE1\xE2 1 1999"), -1); // two letters: not AM/PM, not a month
    EXPECT_EQ(run("1999 \x81"), -1);       // a lead byte cut by the end of the text
    EXPECT_EQ(run("\x81\x30 1999"), -1);   // a two-byte character that is not a letter
    // Without the record the same bytes are no letters at all.
    EXPECT_EQ(com__datefromchar_mb(&dt, "\xE1\xE2\xE3 1 1999", 10, 0, 1, months, nullptr, nullptr),
              -1);
}

} // namespace
