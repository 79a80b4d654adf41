// Text sources into binary, exact numerics, money and dates: hexadecimal input and its
// padding, truncation and length words; the -2562 markers and the deliberate differences of
// the varchar twin; the parsers' outcomes as result codes; degenerate sources of every kind;
// and the reduction of text to ASCII through each kind of character table.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "output_model.h"
#include "text_input_util.h"

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
        {" 0xABC ", 4, 0, CS_SUCCEED, "0abc"},
        {"\t0X00ff\n", 8, 0, CS_SUCCEED, "00ff"},
        {"0x1G", 4, 0, CS_CONV_SYNTAX, ""},
        {"0x 12", 4, 0, CS_CONV_SYNTAX, ""},
        {"112233", 2, 0, CS_CONV_TRUNCATED, "1122"},
        {"11223G", 2, 0, CS_CONV_SYNTAX, ""}, // a bad digit past the end still counts
        {"abc", 1, 0, CS_CONV_TRUNCATED, "0a"},
        {"abc", 0, 0, CS_CONV_OVERFLOW, ""},
        {"ab", 0, 0, CS_CONV_TRUNCATED, ""},
        {"abc", -4, 0, CS_CONV_OVERFLOW, ""},
        {"", 4, CS_FMT_PADNULL, CS_SUCCEED, "00000000"},
        {"0x", 4, 0, CS_SUCCEED, ""},
        {"   ", 4, 0, CS_SUCCEED, ""},
        {"x12", 4, 0, CS_CONV_SYNTAX, ""},
        {"0123456789abcdefABCDEF", 11, 0, CS_SUCCEED, "0123456789abcdefabcdef"},
    };
    for (const auto &c : cases) {
        const Outcome r =
            convert(comn_chartobin, c.text, text_format(CS_BINARY, c.maxlength, c.flags));
        EXPECT_EQ(r.rc, c.rc) << c.text;
        EXPECT_EQ(to_hex(produced(r)), c.out) << c.text;
    }
}

TEST(TextToBinary, VarbinaryLengthWord) {
    const DataFormat df = text_format(CS_VARBINARY, 258);
    Outcome r = convert(comn_chartovarbin, "0xABC", df);
    EXPECT_EQ(r.rc, CS_SUCCEED);
    ASSERT_EQ(r.len, 258);
    EXPECT_EQ(to_hex(r.bytes.substr(0, 4)), "02000abc");
    r = convert(comn_chartovarbin, "zz", df);
    EXPECT_EQ(r.rc, CS_CONV_SYNTAX);
    EXPECT_EQ(r.len, 0);
    r = convert(comn_chartovarbin, std::string(600, '7'), df);
    EXPECT_EQ(r.rc, CS_CONV_TRUNCATED);
    EXPECT_EQ(to_hex(r.bytes.substr(0, 2)), "0001"); // 256
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

TEST(TextToNumeric, PrecisionScaleAndMarkers) {
    // Markers: precision and scale from the text, the value moved up to the scale byte, and
    // the caller's format unchanged.
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
    // The varchar twin takes no marker precision.
    std::string v = length_record(t, static_cast<int16_t>(t.size()));
    EXPECT_EQ(comn_varchartonum(nullptr, &sf, v.data(), &df, out, &len), CS_CONV_PRECISION);
    EXPECT_EQ(len, 35);

    struct {
        ComConvFunc f;
        const char *text;
        int32_t precision, scale, rc, len;
    } cases[] = {
        {comn_chartonum, "1", 0, 0, CS_CONV_PRECISION, 35},
        {comn_chartonum, "1", 78, 0, CS_CONV_PRECISION, 35},
        {comn_chartonum, "1", -1, 0, CS_CONV_PRECISION, 35},
        {comn_chartonum, "1", 10, 78, CS_CONV_SCALE, 35},
        {comn_chartonum, "abc", 10, 2, CS_CONV_SYNTAX, 0},
        {comn_chartonum, "", 10, 2, CS_CONV_SYNTAX, 0},
        {comn_chartonum, "1.234", 10, 2, CS_CONV_TRUNCATED, 35},
        {comn_chartonum, "123456", 5, 0, CS_CONV_OVERFLOW, 35},
        {comn_chartonum, "99999", 5, 0, CS_SUCCEED, 35},
        {comn_varchartonum, "abc", 10, 2, CS_CONV_OVERFLOW, 35},
        {comn_varchartonum, "1.234", 10, 2, CS_CONV_OVERFLOW, 35},
        {comn_varchartonum, "123456", 5, 0, CS_CONV_OVERFLOW, 35},
        {comn_varchartonum, "12.5", 5, 1, CS_SUCCEED, 35},
        {comn_varchartonum, "12.5", 5, CS_SRC_VALUE, CS_CONV_OVERFLOW, 35},
    };
    for (const auto &c : cases) {
        DataFormat s{}, d{};
        d.precision = c.precision;
        d.scale = c.scale;
        std::string text = c.text;
        std::string src = length_record(text, static_cast<int16_t>(text.size()));
        char *p = text.data();
        if (c.f == comn_varchartonum)
            p = src.data();
        else
            s.maxlength = static_cast<int32_t>(text.size());
        EXPECT_EQ(c.f(nullptr, &s, p, &d, out, &len), c.rc) << c.text << " " << c.precision;
        EXPECT_EQ(len, c.len) << c.text;
    }
}

TEST(TextToNumeric, NullTerminatedSourceStopsAtTheZeroByte) {
    const std::string t("12\0 99", 6);
    DataFormat sf{}, df{};
    sf.maxlength = 6;
    df.precision = 10;
    uint8_t out[35];
    int32_t len = 0;
    EXPECT_EQ(comn_chartonum(nullptr, &sf, const_cast<char *>(t.data()), &df, out, &len),
              CS_CONV_SYNTAX);
    sf.format = CS_FMT_NULLTERM;
    EXPECT_EQ(comn_chartonum(nullptr, &sf, const_cast<char *>(t.data()), &df, out, &len),
              CS_SUCCEED);
    EXPECT_EQ(out[2 + comn_num_getlen(10) - 1], 12);
}

// What the money and date parsers report becomes a result code; a syntax error leaves no
// value (length 0), a value out of range a full-length result. (Values round-trip in
// binary_test.)
TEST(TextInput, ParserOutcomesBecomeResultCodes) {
    struct {
        ComConvFunc f;
        const char *text;
        int32_t rc, len;
    } cases[] = {
        {comn_chartomoney, "12x", CS_CONV_SYNTAX, 0},
        {comn_chartomoney, "99999999999999999999", CS_CONV_OVERFLOW, 8},
        {comn_chartomny4, "300000", CS_CONV_OVERFLOW, 4},
        {comn_chartomny4, "-1.25", CS_SUCCEED, 4},
        {comn_chartodatetime, "Jan 15 1999 10:30:15.500PM", CS_SUCCEED, 8},
        {comn_chartodatetime, "2/30/1999", CS_CONV_OVERFLOW, 8},
        {comn_chartodatetime, "Jan Feb 1999", CS_CONV_SYNTAX, 0},
        {comn_chartodate4, "Jan 1 2100", CS_CONV_OVERFLOW, 4},
        {comn_chartodate4, "Jan 1 2000", CS_SUCCEED, 4},
    };
    for (const auto &c : cases) {
        const Outcome r = convert(c.f, c.text, text_format(0, 8));
        EXPECT_EQ(r.rc, c.rc) << c.text;
        EXPECT_EQ(r.len, c.len) << c.text;
    }
}

TEST(TextInput, EmptyAndNegativeLengthSources) {
    // An empty text (also a negative or zero maxlength): integers, floats and dates give
    // zero, binary gives nothing, exact numerics need a digit.
    struct {
        ComConvFunc f;
        int32_t rc;
        int32_t len;
    } cases[] = {
        {comn_chartoi1, CS_SUCCEED, 1},       {comn_chartoi2, CS_SUCCEED, 2},
        {comn_chartoi4, CS_SUCCEED, 4},       {comn_chartoi8, CS_SUCCEED, 4},
        {comn_chartobit, CS_SUCCEED, 1},      {comn_chartoflt4, CS_SUCCEED, 4},
        {comn_chartoflt8, CS_SUCCEED, 8},     {comn_chartodatetime, CS_SUCCEED, 8},
        {comn_chartodate4, CS_SUCCEED, 4},    {comn_chartobin, CS_SUCCEED, 0},
        {comn_chartovarbin, CS_SUCCEED, 258}, {comn_chartonum, CS_CONV_SYNTAX, 0},
    };
    for (int32_t maxlength : {0, -1, -100000}) {
        for (const auto &c : cases) {
            DataFormat sf{}, df{};
            sf.maxlength = maxlength;
            df.maxlength = 258;
            df.precision = 10;
            char src[4] = {'9', '9', '9', '9'};
            uint8_t out[300];
            std::memset(out, 0xEE, sizeof out);
            int32_t len = -1;
            EXPECT_EQ(c.f(nullptr, &sf, src, &df, out, &len), c.rc) << maxlength;
            EXPECT_EQ(len, c.len) << maxlength;
            if (c.len == 1 || c.len == 2 || c.len == 4 || c.len == 8) {
                EXPECT_EQ(std::count(out, out + c.len, 0), c.len) << maxlength;
            }
        }
    }
}

} // namespace

namespace {

// A hand-made attribute record: 0x81 leads a two-byte character; the ASCII map (when given)
// knows 0x81 0x60 as 'Q' and maps 'a' to 'A'; the type map's lower-case byte of 0x81 is 'q'.
struct FakeSet {
    uint8_t width[256], ascii[512] = {}, types[1024] = {};
    CharAttrib attr{};
    FakeSet(bool with_width, bool with_ascii, bool with_types) {
        std::memset(width, 0x11, sizeof width);
        width[0x81] = 0x22;
        ascii['a'] = 'A';
        ascii[0x81] = 1;
        ascii[256 + 0x60] = 'Q';
        types[4 * 0x81 + 1] = 'q';
        types[4 * 'b' + 1] = 'B';
        attr.widthmap = with_width ? width : nullptr;
        attr.asciimap = with_ascii ? ascii : nullptr;
        attr.typemap = with_types ? types : nullptr;
    }
};

TEST(ConvToAscii, ReadsEachKindOfTable) {
    const std::string text = "ab\x81\x60z\x81\x61";
    struct {
        bool width, ascii, types;
        int32_t capacity;
        std::string want;
    } cases[] = {
        {true, true, true, 64,
         "Ab"
         "Q"
         "z\x81\x61"}, // ASCII map; 81 61 has no equivalent
        {true, false, true, 64,
         "aB"
         "q"
         "zq"},                         // type map's lower-case byte
        {true, false, false, 64, text}, // no table: bytes as they are
        {false, true, true, 64,
         "Ab\x01`z\x01"
         "A"}, // single-byte: the entry is the byte
        {false, false, true, 64, "aBq`zqa"},
        {true, true, true, 3, "AbQ"},
        {true, true, true, 5, "AbQz"}, // the last character needs two bytes: left out
    };
    for (const auto &c : cases) {
        FakeSet set(c.width, c.ascii, c.types);
        char out[64];
        const int32_t n = com__conv2ascii(text.data(), static_cast<int32_t>(text.size()), out,
                                          c.capacity, &set.attr);
        EXPECT_EQ(std::string(out, static_cast<size_t>(n)), c.want)
            << c.width << c.ascii << c.types << " " << c.capacity;
    }
    // A lead byte at the end of the source is copied as it is, and nothing past it is read.
    FakeSet set(true, true, true);
    char out[8];
    EXPECT_EQ(com__conv2ascii("1\x81", 2, out, 8, &set.attr), 2);
    EXPECT_EQ(std::string(out, 2), "1\x81");
    EXPECT_EQ(com__conv2ascii("12", -1, out, 8, &set.attr), 0);
    EXPECT_EQ(com__conv2ascii("12", 2, out, 0, &set.attr), 0);
}

} // namespace
