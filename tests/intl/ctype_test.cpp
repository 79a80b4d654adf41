// Character attributes: the built-in "iso_1" tables checked byte by byte against their
// defining ranges, the older global map, record building and multibyte characters.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "comnlib.h"

namespace {

// "41-5A DF" -> membership of each of the 256 bytes.
std::vector<bool> bytes_of(const std::string &ranges) {
    std::vector<bool> in(256);
    std::istringstream s(ranges);
    std::string r;
    while (s >> r) {
        const auto dash = r.find('-');
        int lo = std::stoi(r.substr(0, dash), nullptr, 16);
        int hi = dash == std::string::npos ? lo : std::stoi(r.substr(dash + 1), nullptr, 16);
        for (int c = lo; c <= hi; ++c)
            in[c] = true;
    }
    return in;
}

using ClassTest = int32_t (*)(const CharAttrib *, const char *);

TEST(Iso1Attrib, TypeBitsByteByByte) {
    struct Row {
        ClassTest test;
        const char *ranges;
    } rows[] = {
        {comn_isupper, "41-5A C0-D6 D8-DF"},
        {comn_islower, "61-7A E0-F6 F8-FF"},
        {comn_isalpha, "41-5A C0-D6 D8-DF 61-7A E0-F6 F8-FF"},
        {comn_isdigit, "30-39"},
        {comn_isspace, "09-0F 20 8E-8F A0 AD"},
        {comn_isxdigit, "30-39 41-46 61-66"},
        {comn_ispunct, "21-2F 3A-40 5B-60 7B-7E A1-AC AE-BF D7 F7"},
        {comn_isgraph, ""},
    };
    for (const auto &row : rows) {
        const auto want = bytes_of(row.ranges);
        for (int c = 0; c < 256; ++c) {
            const char ch = static_cast<char>(c);
            EXPECT_EQ(row.test(nullptr, &ch) != 0, want[c]) << row.ranges << " byte " << c;
            EXPECT_EQ(row.test(com_get_charattrib(), &ch), row.test(nullptr, &ch));
        }
    }
}

TEST(Iso1Attrib, LexicalClassesCaseAndSoundex) {
    struct Row {
        int lex;
        const char *ranges;
    } rows[] = {
        {1, "23 40-5A 5F 61-7A 80-A2 A6-FF"},        {2, "30-39"},    {8, "00-20"}, {16, "22 27"},
        {32, "21 25-26 28-2F 3A-3F 5B-5E 60 7B-7F"}, {64, "24 A3-A5"}};
    std::vector<int> lex(256, -1);
    for (const auto &row : rows) {
        const auto in = bytes_of(row.ranges);
        for (int c = 0; c < 256; ++c)
            if (in[c]) lex[c] = row.lex;
    }
    const auto upper = bytes_of("41-5A C0-D6 D8-DE"), lower = bytes_of("61-7A E0-F6 F8-FE");
    for (int c = 0; c < 256; ++c) {
        const char ch = static_cast<char>(c);
        EXPECT_EQ(comn_get_lex(nullptr, &ch), lex[c]) << c;
        char out[2] = {};
        EXPECT_EQ(comn_toupper(nullptr, &ch, out), 1);
        EXPECT_EQ(static_cast<uint8_t>(out[0]), lower[c] ? c - 0x20 : c) << c;
        EXPECT_EQ(comn_tolower(nullptr, &ch, out), 1);
        EXPECT_EQ(static_cast<uint8_t>(out[0]), upper[c] ? c + 0x20 : c) << c;
        EXPECT_EQ(com_toupper(c), lower[c] ? c - 0x20 : c);
        EXPECT_EQ(com_tolower(c), upper[c] ? c + 0x20 : c);
    }
    const uint8_t *soundex = com_get_charattrib()->second;
    EXPECT_EQ(soundex, com_get_typemap() + 1028);
    const std::string codes = "01230120022455012623010202";
    for (int i = 0; i < 26; ++i) {
        EXPECT_EQ(soundex['A' + i], codes[i]);
        EXPECT_EQ(soundex['a' + i], codes[i]);
    }
    EXPECT_EQ(soundex[0x31] /* '1' */, 0);
    const CharAttrib *a = com_get_charattrib();
    EXPECT_EQ(std::string(a->name, a->namelen), "iso_1");
    EXPECT_EQ(a->xlate_id, 1);
    EXPECT_EQ(a->mb_level, 1);
    const uint8_t flags[5] = {1, 1, 0, 1, 1};
    EXPECT_EQ(std::memcmp(a->flags, flags, 5), 0);
}

TEST(Iso1Attrib, GlobalMapMarksPrintablesGraphic) {
    const auto graphic = bytes_of("21-7E A1-AC AE-FF");
    for (int c = 0; c < 256; ++c) {
        EXPECT_EQ(com_isgraph(c) != 0, graphic[c]) << c;
        const char ch = static_cast<char>(c);
        EXPECT_EQ(com_isalpha(c), comn_isalpha(nullptr, &ch));
        EXPECT_EQ(com_isspace(c), comn_isspace(nullptr, &ch));
        EXPECT_EQ(com_isxdigit(c), comn_isxdigit(nullptr, &ch));
        EXPECT_EQ(com_isdigit(c) | com_isupper(c) | com_islower(c), comn_isdigit(nullptr, &ch) |
                                                                        comn_isupper(nullptr, &ch) |
                                                                        comn_islower(nullptr, &ch));
    }
    EXPECT_EQ(Com_charmap, Com_Iso1_charmap);
    // A null record: É is upper case, ÿ has no upper case and stays as it is.
    EXPECT_NE(comn_isupper(nullptr, "\xc9"), 0);
    char out[2] = {};
    comn_toupper(nullptr, "\xff", out);
    EXPECT_EQ(out[0], '\xff');
}

TEST(Iso1Attrib, WidthsAndAscii) {
    const char text[] = "Ab\xe9 1";
    EXPECT_EQ(comn_char_width(nullptr, text), 1);
    EXPECT_EQ(comn_disp_width(nullptr, text), 1);
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

// A small double-byte set: 0x81 leads two-byte characters whose types are on page 1; the ASCII
// map reduces 0x81 0x41..0x43 to "ABC" through its page 1 and 0x81 0x61 to 'a'.
struct Image {
    std::vector<uint8_t> bytes;
    Image() {
        const uint32_t wm = 44, am = wm + 256, tm = am + 512, sz = 2048;
        bytes.assign(tm + sz, 0);
        bytes[0] = 0x34, bytes[1] = 0x12; // image id, host order on a little-endian host
        bytes[2] = 2;
        for (int i = 0; i < 5; ++i)
            bytes[3 + i] = static_cast<uint8_t>(10 + i);
        auto put = [&](int at, uint32_t v) {
            for (int i = 0; i < 4; ++i)
                bytes[at + i] = static_cast<uint8_t>(v >> (24 - 8 * i));
        };
        put(12, wm), put(16, 256), put(20, am), put(24, 512), put(28, tm), put(32, sz);
        put(36, 0), put(40, 0);
        for (int c = 0; c < 256; ++c) {
            bytes[wm + c] = 0x11;
            bytes[am + c] = c < 0x80 ? c : 0;
            uint8_t *e = &bytes[tm + 4 * c];
            e[0] = e[1] = static_cast<uint8_t>(c);
            uint8_t *p = &bytes[tm + 1024 + 4 * c]; // page 1
            p[0] = p[1] = static_cast<uint8_t>(c);
        }
        bytes[wm + 0x81] = 0x22;
        bytes[wm + 0x82] = 0x23; // a three-byte character
        bytes[am + 0x81] = 1;
        for (int c = 0x41; c <= 0x43; ++c)
            bytes[am + 256 + c] = static_cast<uint8_t>(c);
        bytes[am + 256 + 0x61] = 'a';
        uint8_t *lead = &bytes[tm + 4 * 0x81];
        lead[0] = 1, lead[3] = COM_CT_LEAD;
        uint8_t *big_a = &bytes[tm + 1024 + 4 * 0x41], *small_a = &bytes[tm + 1024 + 4 * 0x61];
        big_a[1] = 0x61, big_a[2] = 1, big_a[3] = COM_CT_UPPER;
        small_a[0] = 0x41, small_a[3] = COM_CT_LOWER;
        bytes[tm + 4 * 0x82] = bytes[tm + 4 * 0x82 + 1] = 0; // no case: copied whole
    }
};

TEST(CharAttribBuild, ImageHeaderAndMultibyteCharacters) {
    Image img;
    CharAttrib *a = com_alloc_char_attrib();
    ASSERT_NE(a, nullptr);
    ASSERT_EQ(com_build_char_attrib(COM_CHARATTR_IMAGE, 140, "a_rather_long_character_set_name_x",
                                    img.bytes.data(), a),
              1);
    EXPECT_EQ(a->image_id, 0x1234);
    EXPECT_EQ(a->mb_level, 2);
    EXPECT_EQ(a->xlate_id, 140);
    EXPECT_EQ(a->namelen, 30);
    const uint8_t flags[5] = {10, 11, 13, 12, 14};
    EXPECT_EQ(std::memcmp(a->flags, flags, 5), 0);
    EXPECT_EQ(a->widthmap, img.bytes.data() + 44);
    EXPECT_EQ(a->second, nullptr);
    uint32_t word;
    std::memcpy(&word, img.bytes.data() + 12, 4);
    EXPECT_EQ(word, 44u); // converted to host order in place

    EXPECT_NE(comn_isupper(a, "\x81\x41"), 0);
    EXPECT_EQ(comn_islower(a, "\x81\x41"), 0);
    EXPECT_EQ(comn_get_lex(a, "\x81\x41"), 1);
    EXPECT_EQ(comn_char_width(a, "\x81\x41"), 2);
    EXPECT_EQ(comn_disp_width(a, "\x81\x41"), 2);
    char out[4] = {};
    EXPECT_EQ(comn_tolower(a, "\x81\x41", out), 2);
    EXPECT_EQ(std::string(out, 2), "\x81\x61");
    EXPECT_EQ(comn_toupper(a, "\x82xy", out), 3); // mapped byte 0: the whole character is copied
    EXPECT_EQ(std::string(out, 3), "\x82xy");
    EXPECT_EQ(comn_to_ascii(a, "\x81\x42"), 'B');
    EXPECT_EQ(comn_to_ascii(a, "\x81\x7f"), 0);

    const char s[] = "x\x81\x41\x81\x7f\x81\x61z";
    char dst[16];
    int32_t n = 0;
    comn_str_to_ascii(s, 8, dst, &n, a);
    EXPECT_EQ(std::string(dst, n), "xA\x81\x7f"
                                   "az");
    // A range ending inside a two-byte character: that character is cut with one byte inside.
    int32_t chars, whole, cut, over;
    EXPECT_EQ(comn_whole_char(a, s, s + 4, &chars, &whole, &cut, &over), 1);
    EXPECT_EQ(chars, 2);
    EXPECT_EQ(whole, 3);
    EXPECT_EQ(cut, 1);
    EXPECT_EQ(over, 1);
    EXPECT_EQ(comn_inc_char(a, s + 1), s + 3);
    com_free_char_attrib(a);
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

// The ASCII half of every multibyte set case-maps as ASCII, loaded from the bundled home.
TEST(MultibyteAttrib, AsciiLettersHaveTheirCasePartners) {
    const char *home = std::getenv("VELDAR");
    ASSERT_NE(home, nullptr);
    for (const char *set : {"eucjis", "sjis", "deckanji", "utf8"}) {
        SCOPED_TRACE(set);
        ComContext ctx{};
        ComCharsetDesc *d = nullptr;
        ASSERT_EQ(com__charset_desc_get(&ctx, set, "binary", &d), 1);
        for (int c = 0; c < 0x80; ++c) {
            const char in[2] = {static_cast<char>(c), 0};
            char up[4] = {}, low[4] = {};
            comn_toupper(d->attr, in, up);
            comn_tolower(d->attr, in, low);
            EXPECT_EQ(up[0], c >= 'a' && c <= 'z' ? c - 32 : c) << c;
            EXPECT_EQ(low[0], c >= 'A' && c <= 'Z' ? c + 32 : c) << c;
        }
        com__charset_drop_all(&ctx);
    }
}
