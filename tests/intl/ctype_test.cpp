// The older global map beside the built-in "iso_1" record, soundex codes, widths without a
// width map, and record building from a bare type map. (Every record's classes and case
// mappings, the built-in one's deliberate departures included, are compared with Python by
// check_charsets.py.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "comnlib.h"

namespace {

TEST(Iso1Attrib, TheGlobalMapAgreesWithTheRecord) {
    char out[2] = {};
    EXPECT_EQ(Com_charmap, Com_Iso1_charmap);
    for (int c = 0; c < 256; ++c) {
        const char ch = static_cast<char>(c);
        // The record's map sets the graphic bit for no byte; the global map for the printable
        // ones, the soft hyphen excepted. Otherwise the two agree.
        EXPECT_EQ(comn_isgraph(nullptr, &ch), 0) << c;
        EXPECT_EQ(com_isgraph(c) != 0, (c > 0x20 && c < 0x7F) || (c > 0xA0 && c != 0xAD)) << c;
        EXPECT_EQ(com_isalpha(c), comn_isalpha(nullptr, &ch)) << c;
        EXPECT_EQ(com_isspace(c), comn_isspace(nullptr, &ch)) << c;
        EXPECT_EQ(com_isxdigit(c), comn_isxdigit(nullptr, &ch)) << c;
        EXPECT_EQ(com_isupper(c), comn_isupper(nullptr, &ch)) << c;
        comn_toupper(nullptr, &ch, out);
        EXPECT_EQ(com_toupper(c), static_cast<uint8_t>(out[0])) << c;
        comn_tolower(nullptr, &ch, out);
        EXPECT_EQ(com_tolower(c), static_cast<uint8_t>(out[0])) << c;
    }
}

TEST(Iso1Attrib, SoundexCodesRecordFieldsAndWidths) {
    const uint8_t *soundex = com_get_charattrib()->second;
    EXPECT_EQ(soundex, com_get_typemap() + 1028);
    const std::string codes = "01230120022455012623010202"; // the classic letter groups
    for (int i = 0; i < 26; ++i) {
        EXPECT_EQ(soundex['A' + i], codes[i]);
        EXPECT_EQ(soundex['a' + i], codes[i]);
    }
    EXPECT_EQ(soundex['1'], 0);
    const CharAttrib *a = com_get_charattrib();
    EXPECT_EQ(std::string(a->name, a->namelen), "iso_1");
    EXPECT_EQ(a->xlate_id, 1);
    EXPECT_EQ(a->mb_level, 1);

    const char text[] = "Ab\xe9 1";
    EXPECT_EQ(comn_inc_char(nullptr, text), text + 1);
    EXPECT_EQ(comn_get_widthmap(nullptr), nullptr);
    // Without an ASCII map the type map's lower-case byte stands for the character.
    char out[8];
    int32_t n = -1;
    EXPECT_EQ(comn_str_to_ascii(text, 5, out, &n, nullptr), CS_SUCCEED);
    EXPECT_EQ(std::string(out, n), "ab\xe9 1");
    int32_t chars, whole, cut, over;
    EXPECT_EQ(comn_whole_char(nullptr, text, text + 5, &chars, &whole, &cut, &over), 5);
    EXPECT_EQ(chars, 5);
}

TEST(CharAttribBuild, SingleByteMapAndBadArguments) {
    CharAttrib a;
    std::vector<uint8_t> map(com_get_typemap(), com_get_typemap() + 1024 + 4 + 256);
    ASSERT_EQ(com_build_char_attrib(COM_CHARATTR_TYPEMAP, 7, "mine", map.data(), &a), 1);
    EXPECT_EQ(a.typemap, map.data());
    EXPECT_EQ(a.second, map.data() + 1028);
    EXPECT_EQ(a.widthmap, nullptr);
    EXPECT_EQ(a.xlate_id, 7);
    EXPECT_EQ(std::string(a.name, a.namelen), "mine");
    EXPECT_NE(comn_isupper(&a, "\xdf"), 0);
    EXPECT_EQ(com_build_char_attrib(1003, 0, "x", map.data(), &a), 0);
    EXPECT_EQ(com_build_char_attrib(COM_CHARATTR_TYPEMAP, 0, "x", nullptr, &a), 0);
    EXPECT_EQ(com_build_char_attrib(COM_CHARATTR_TYPEMAP, 0, "x", map.data(), nullptr), 0);
}

} // namespace
