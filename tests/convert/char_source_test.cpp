// Text sources: hexadecimal input into binary, varchar twins reading their length word, and
// the precision and scale markers of exact numerics.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "output_model.h"

namespace {

TEST(TextToBinary, HexadecimalText) {
    struct {
        const char *text;
        int32_t maxlength;
        uint32_t flags;
        int32_t rc;
        const char *out; // the bytes written, in hexadecimal
    } cases[] = {
        {" 0xABC ", 4, CS_FMT_PADNULL, CS_SUCCEED, "0abc0000"},
        {"\t0X00ff\n", 8, 0, CS_SUCCEED, "00ff"},
        {"0x1G", 4, 0, CS_CONV_SYNTAX, ""},
        {"112233", 2, 0, CS_CONV_TRUNCATED, "1122"},
        {"11223G", 2, 0, CS_CONV_SYNTAX, ""}, // a bad digit past the end still counts
        {"abc", 1, 0, CS_CONV_TRUNCATED, "0a"},
        {"abc", 0, 0, CS_CONV_OVERFLOW, ""},
        {"ab", 0, 0, CS_CONV_TRUNCATED, ""},
        {"abx", 0, 0, CS_CONV_SYNTAX, ""},
        {"0123456789abcdefABCDEF", 11, 0, CS_SUCCEED, "0123456789abcdefabcdef"},
    };
    for (const auto &c : cases) {
        const Outcome r =
            convert(comn_chartobin, c.text, text_format(CS_BINARY, c.maxlength, c.flags));
        EXPECT_EQ(r.rc, c.rc) << c.text;
        EXPECT_EQ(to_hex(produced(r)), c.out) << c.text;
    }
}

// A varchar source reads as the char source of its first length-word bytes (clamped to
// 0..256), for every destination but the exact numerics, whose twin differs on purpose
// (checked below).
TEST(TextInput, VarcharTwinsReadTheLengthWord) {
    const struct {
        ComConvFunc chr, var;
    } twins[] = {
#define COMN_TEST_TWIN_(d) {comn_charto##d, comn_varcharto##d},
        COMN_TEXT_INPUT_DESTS(COMN_TEST_TWIN_)
#undef COMN_TEST_TWIN_
    };
    const std::string texts[] = {"12345678", "2.25junk", "0xabcdef", "Jan 15 1999 10:30",
                                 std::string(256, '7')};
    for (const auto &t : twins) {
        if (t.chr == comn_chartonum) continue;
        for (const std::string &text : texts)
            for (const int16_t word : {-7, 0, 2, 4, 8, 11, 300}) {
                std::string v = length_record(text, word);
                const std::string prefix(v.data() + 2,
                                         static_cast<size_t>(std::clamp<int16_t>(word, 0, 256)));
                DataFormat sf{}, df = text_format(0, 258);
                Outcome got{0, std::string(300, kUntouched), -7};
                got.rc = t.var(nullptr, &sf, v.data(), &df, got.bytes.data(), &got.len);
                ASSERT_EQ(got, convert(t.chr, prefix, df)) << text << " " << word;
            }
    }
}

// The markers take precision and scale from the text, move the value up to the scale byte and
// leave the caller's format as it was; the varchar twin takes no marker.
TEST(TextToNumeric, MarkersBoundsAndTerminator) {
    DataFormat sf{}, df{};
    std::string t = "-123.45";
    sf.maxlength = static_cast<int32_t>(t.size());
    df.precision = df.scale = CS_SRC_VALUE;
    uint8_t out[35];
    std::memset(out, 0xEE, sizeof out);
    int32_t len = 0;
    ASSERT_EQ(comn_chartonum(nullptr, &sf, t.data(), &df, out, &len), CS_SUCCEED);
    EXPECT_EQ(df.precision, CS_SRC_VALUE);
    EXPECT_EQ(df.scale, CS_SRC_VALUE);
    const auto n5 = static_cast<size_t>(comn_num_getlen(5));
    EXPECT_EQ(to_hex(std::string(out, out + 2 + n5)),
              "050201" + std::string(2 * n5 - 6, '0') + "3039");
    std::string v = length_record(t, static_cast<int16_t>(t.size()));
    EXPECT_EQ(comn_varchartonum(nullptr, &sf, v.data(), &df, out, &len), CS_CONV_PRECISION);

    const struct {
        int32_t precision, scale, rc;
    } bounds[] = {{0, 0, CS_CONV_PRECISION}, {78, 0, CS_CONV_PRECISION}, {10, 78, CS_CONV_SCALE}};
    sf.maxlength = 1;
    for (const auto &c : bounds) {
        df.precision = c.precision;
        df.scale = c.scale;
        EXPECT_EQ(comn_chartonum(nullptr, &sf, t.data(), &df, out, &len), c.rc) << c.precision;
        EXPECT_EQ(len, 35);
    }
    // A null-terminated source stops at its zero byte.
    t.assign("12\0 99", 6);
    sf.maxlength = 6;
    df.precision = 10;
    df.scale = 0;
    EXPECT_EQ(comn_chartonum(nullptr, &sf, t.data(), &df, out, &len), CS_CONV_SYNTAX);
    sf.format = CS_FMT_NULLTERM;
    EXPECT_EQ(comn_chartonum(nullptr, &sf, t.data(), &df, out, &len), CS_SUCCEED);
    EXPECT_EQ(out[2 + comn_num_getlen(10) - 1], 12);
}

} // namespace
