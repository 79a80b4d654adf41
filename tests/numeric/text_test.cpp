// The numeric text parser and printer.
#include <gtest/gtest.h>

#include <string>

#include "num_helpers.h"

using namespace numtest;

namespace {

struct Parsed {
    int rc;
    int precision, scale;
    std::string text; // printed back when rc is 0 or 6
    int length;
    int offset; // start of the value within the 33-byte area
};

Parsed parse(const std::string &text, int precision, int scale, int mode, int area = 0) {
    uint8_t buf[35];
    std::memset(buf, 0xEE, sizeof buf);
    uint8_t *bytes = buf;
    int32_t length = area;
    uint8_t p = static_cast<uint8_t>(precision), s = static_cast<uint8_t>(scale);
    Parsed out{};
    out.rc = com__subchartoexctnume(text.data(), static_cast<int32_t>(text.size()), &bytes, &length,
                                    &p, &s, mode);
    out.precision = p;
    out.scale = s;
    out.length = length;
    out.offset = static_cast<int>(bytes - buf);
    if (out.rc == 0 || out.rc == 6) {
        ExactNumericRef r{length, p, s, bytes};
        char pbuf[400];
        const int start = com__subexctnumetochar(&r, pbuf, sizeof pbuf);
        if (start >= 0) out.text.assign(pbuf + start, pbuf + sizeof pbuf);
    }
    return out;
}

} // namespace

TEST(NumericParse, SyntaxErrors) {
    for (const char *text : {"", "  - ", ".", "+-1", "1-", "1.2.3", "1.2 x", "1e", "1e-", "1ex"})
        EXPECT_EQ(parse(text, 255, 255, 1).rc, 2) << '"' << text << '"';
}

// Precision and scale taken from the text (255, 255), and the rounding corners that
// decimal_oracle.py does not generate (two or more digits past the scale).
TEST(NumericParse, TextFormsAndTheirResults) {
    struct Case {
        const char *text;
        int precision, scale, mode;
        int rc;
        const char *value; // printed back when rc is 0
        int want_p, want_s;
    } cases[] = {
        {"  -  12.5", 255, 255, 1, 0, "-12.5", 3, 1},
        {"1.2\t\n", 255, 255, 1, 0, "1.2", 2, 1},
        {"1e5", 255, 255, 1, 1, nullptr, 0, 0},    // precision 1 from the one mantissa digit
        {"12.5e2", 255, 255, 1, 1, nullptr, 0, 0}, // 1250 needs more than the 3 digits read
        {"0012.5e2", 255, 255, 1, 0, "1250", 5, 0},
        {"1.5e-3", 255, 255, 1, 0, "1.5", 2, 1},    // the exponent is not applied
        {"15e-3", 255, 255, 1, 0, nullptr, 2, 253}, // whole mantissa: the low byte of -3
        {"-0.0", 255, 255, 1, 0, "0.0", 2, 1},
        {"007", 255, 255, 1, 0, "7", 3, 0},
        {"1.0051", 9, 2, 0, 6, nullptr, 0, 0}, // refused at its fourth fraction digit
        {"1.0049", 9, 2, 1, 0, "1.01", 9, 2},  // the later 9 rounds the read 1.004 up first
        {"1.0044", 9, 2, 1, 0, "1.00", 9, 2},
        {"99.995", 4, 2, 1, 1, nullptr, 0, 0}, // rounds up to 100.00
    };
    for (const auto &c : cases) {
        const Parsed r = parse(c.text, c.precision, c.scale, c.mode);
        EXPECT_EQ(r.rc, c.rc) << '"' << c.text << '"';
        if (c.rc == 0 && r.rc == 0) {
            if (c.value) {
                EXPECT_EQ(r.text, c.value) << c.text;
            }
            EXPECT_EQ(r.precision, c.want_p) << c.text;
            EXPECT_EQ(r.scale, c.want_s) << c.text;
        }
    }
}

TEST(NumericParse, PrecisionFromTheTextShrinksTheArea) {
    const Parsed r = parse("-12.5", 255, 255, 1);
    ASSERT_EQ(r.rc, 0);
    EXPECT_EQ(r.length, 3);      // sign and two magnitude bytes for precision 3
    EXPECT_EQ(r.offset, 33 - 3); // right-aligned in the area
    // 78 digits cannot be a precision, whether read or rounded into the area.
    EXPECT_EQ(parse(std::string(78, '1'), 255, 255, 1).rc, 1);
    // Wide values keep a leading zero sign byte and a precision that holds their digits.
    const std::string wide = "0000000000000000000000000000000000000000000000000001.5";
    const Parsed w = parse(wide, 255, 255, 1);
    ASSERT_EQ(w.rc, 0);
    EXPECT_EQ(w.text, "1.5");
    EXPECT_GE(w.precision, 2);
    EXPECT_LE(w.length, comn_num_getlen(52));
    EXPECT_EQ(comn_num_getprec(w.length), w.precision);
    const std::string big(45, '9');
    const Parsed b = parse(big + ".5", 255, 255, 1);
    ASSERT_EQ(b.rc, 0);
    EXPECT_EQ(b.text, big + ".5");
    EXPECT_GE(b.precision, 46);
}

TEST(NumericParse, BadArgumentsAndLongTexts) {
    EXPECT_EQ(parse("1", 0, 0, 1).rc, 1);
    EXPECT_EQ(parse("1", 78, 0, 1).rc, 1);
    EXPECT_EQ(parse("1", 9, 78, 1).rc, 1);
    EXPECT_EQ(parse("1", 1, 0, 1, 1).rc, 1);  // area too short
    EXPECT_EQ(parse("1", 1, 0, 1, 34).rc, 1); // area too long
    // Digits beyond the area's reach are rounded in mode 1 and refused otherwise.
    const std::string digits2000(2000, '7');
    EXPECT_EQ(parse(digits2000, 77, 0, 0).rc, 6);
    EXPECT_EQ(parse(digits2000, 77, 0, 1).rc, 1); // the dropped digits multiply it out of range
    EXPECT_EQ(parse("0." + digits2000, 77, 10, 0).rc, 6);
    const Parsed f = parse("0." + digits2000, 77, 10, 1);
    EXPECT_EQ(f.rc, 0);
    EXPECT_EQ(f.text, "0.7777777778");
    EXPECT_EQ(parse("1e99999999999999999999", 9, 0, 1).rc, 1);
    EXPECT_EQ(parse("1e-99999999999999999999", 9, 0, 1).text, "0");
    EXPECT_EQ(parse(std::string(3000, ' ') + "5", 9, 0, 1).text, "5");
}

TEST(NumericPrint, ZerosSignsAndShortBuffers) {
    struct Case {
        i128 units;
        int precision, scale;
        const char *text;
    } cases[] = {
        {0, 5, 3, "0.000"},
        {0, 5, 0, "0"},
        {-5, 5, 3, "-0.005"},
        {-1, 1, 0, "-1"},
    };
    for (const auto &c : cases) {
        Num n(c.units, c.precision, c.scale);
        char buf[16];
        const int start = com__subexctnumetochar(n.get(), buf, sizeof buf);
        ASSERT_GE(start, 0);
        EXPECT_EQ(std::string(buf + start, buf + sizeof buf), c.text);
        const int len = static_cast<int>(std::strlen(c.text));
        EXPECT_EQ(com__subexctnumetochar(n.get(), buf, len), 0);
        EXPECT_EQ(com__subexctnumetochar(n.get(), buf, len - 1), -1);
    }
    // Negative zero prints without its sign.
    Num nz(0, 3, 1);
    nz.buf[0] = 1;
    char buf[8];
    const int start = com__subexctnumetochar(nz.get(), buf, sizeof buf);
    EXPECT_EQ(std::string(buf + start, buf + sizeof buf), "0.0");
}
