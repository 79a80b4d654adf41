// Money text beyond the well-formed values money_oracle.py prints and parses: the printer's
// wrappers, the parser's grammar errors and corners (long ones included), and reading
// through a multibyte attribute record. Arbitrary bytes are the money parser fuzz target's.
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "comnlib/money.h"
#include "money/money_internal.h"

namespace {

using comn::kMoneyMin;
using comn::mny_get;
using comn::mny_make;

std::string text(const char *p, const char *end) {
    return p ? std::string(p, static_cast<size_t>(end - p)) : "<null>";
}

// Short buffers and the places word are compared with Python by money_oracle.py.
TEST(MoneyPrint, Wrappers) {
    const MoneyValue m = mny_make(12345678912);
    char buf[32];
    char *const end = buf + sizeof buf;
    EXPECT_EQ(text(com_cvtmnytochar(&m, buf, sizeof buf, 1), end), "1,234,567.89");
    EXPECT_EQ(text(com_precmnytochar(&m, buf, sizeof buf, 0, 3), end), "1234567.891");
    const Money4Value s{INT32_MIN};
    EXPECT_EQ(text(com_cvtmny4tochar(&s, buf, sizeof buf, 0x0400), end), "-214748.3648");
}

int32_t parse(const std::string &s, MoneyValue *m, const CharAttrib *cs = nullptr) {
    // Copy into an exactly sized heap block so that an overread is caught by the sanitizer.
    std::unique_ptr<char[]> text(new char[s.size() ? s.size() : 1]);
    std::memcpy(text.get(), s.data(), s.size());
    return com__mnyfromchar_mb(m, text.get(), static_cast<int32_t>(s.size()), 0, cs);
}

TEST(MoneyParse, GrammarCorners) {
    struct {
        std::string text;
        int32_t code;
        int64_t value; // checked only when code is 0
    } const cases[] = {
        {"", 0, 0},
        {" - $ ", 0, 0},
        {"1234,567", 2, 0},       // the comma after four digits ends the number
        {"1,2345", 0, 123450000}, // digits after the last comma are not counted
        {",5", 0, 50000},
        {"1,234,56", 0, 1234560000},
        {"+-1", 2, 0},
        {"--1", 2, 0},
        {"1-", 2, 0},
        {"$$1", 2, 0},
        {"1$", 2, 0},
        {"1.2.3", 2, 0},
        {"1 2", 2, 0},
        {".", 0, 0},
        {"\xA3 7", 0, 70000}, // pound sign is a currency symbol
        {"7\xA0", 0, 70000},  // no-break space is white space
        {"7\xAD", 0, 70000},  // and so, in this set, is the soft hyphen
        {"7\xE9", 2, 0},
        {"\t7", 2, 0}, // only the blank is skipped before the number
        {"-922337203685477.58080", 0, kMoneyMin},
        {"-922337203685477.58081", 1, 0},     // any further digit past the smallest value
        {"-9,223,372,036,854,775,808", 1, 0}, // the smallest value's digits, then scaled
        {"922337203685478", 1, 0},
        {std::string(10000, ' '), 0, 0},
        {"1." + std::string(9990, '9'), 0, 20000}, // only the fifth decimal rounds
        {std::string(10000, '9'), 1, 0},
        {"5" + std::string(9999, '\t'), 0, 50000},
    };
    for (const auto &c : cases) {
        MoneyValue m = mny_make(99);
        const int32_t code = parse(c.text, &m);
        EXPECT_EQ(code, c.code) << '"' << c.text << '"';
        if (c.code == 0 && code == 0) {
            EXPECT_EQ(mny_get(m), c.value) << '"' << c.text << '"';
        }
    }
    Money4Value m4{5};
    EXPECT_EQ(com__mny4fromchar_mb(&m4, "-214748.3648", 12, 0, nullptr), 0);
    EXPECT_EQ(m4.mny4, INT32_MIN);
    EXPECT_EQ(com__mny4fromchar_mb(&m4, "214748.3648", 11, 0, nullptr), 1);
    EXPECT_EQ(com__mny4fromchar_mb(&m4, "1x", 2, 0, nullptr), 2);
    MoneyValue m;
    EXPECT_EQ(com__mnyfromchar_mb(&m, nullptr, 5, 0, nullptr), 0);
    EXPECT_EQ(com__mnyfromchar_mb(&m, "1", -1, 0, nullptr), 2);
}

// A small two-byte character set: lead byte 0x81 starts a two-byte character. Its ASCII map
// reduces 0x81 0x30..0x39 to digits, 0x81 0x40 to a blank; its type map marks 0x81 0x50 as a
// currency symbol and 0x81 0x40 as white space.
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
        ascii[0x81] = 1; // page 1
        std::memset(ascii + 256, 0, 256);
        for (int d = 0; d < 10; ++d)
            ascii[256 + 0x30 + d] = static_cast<uint8_t>('0' + d);
        ascii[256 + 0x40] = ' ';
        std::memset(type, 0, sizeof type);
        type[4 * 0x20 + 3] = COM_CT_SPACE;
        type[4 * '$' + 2] = 0x40;
        type[4 * 0x81 + 0] = 1; // page 1
        type[4 * 0x81 + 3] = COM_CT_LEAD;
        type[1024 + 4 * 0x50 + 2] = 0x40;
        type[1024 + 4 * 0x40 + 3] = COM_CT_SPACE;
        attr.mb_level = 2;
        attr.widthmap = width;
        attr.asciimap = ascii;
        attr.typemap = type;
    }
};

TEST(MoneyParse, ReadsThroughAMultibyteRecord) {
    TwoByteSet set;
    MoneyValue m;
    const std::string wide_one_two = "\x81\x31\x81\x32";
    EXPECT_EQ(parse("\x81\x40\x81\x50-" + wide_one_two + ".5\x81\x40", &m, &set.attr), 0);
    EXPECT_EQ(mny_get(m), -125000);
    EXPECT_EQ(parse("\x81\x50$1", &m, &set.attr), 2); // two currency symbols
    EXPECT_EQ(parse("1\x81", &m, &set.attr), 2);      // a character cut by the end
    EXPECT_EQ(parse("1\x81\x41", &m, &set.attr), 2);  // reduces to 0: not white space

    CharAttrib untyped = set.attr;
    untyped.typemap = nullptr; // nothing can be classified: refuse what needs it
    EXPECT_EQ(parse("-  ", &m, &untyped), 0);
    EXPECT_EQ(parse("1", &m, &untyped), 2);
}

} // namespace
