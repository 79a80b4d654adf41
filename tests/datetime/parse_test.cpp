// The date parser beside the Python oracle (which writes random datetimes in the accepted
// forms): blank text, rejected forms with their codes (hostile bytes among them), the token
// limit, time-only and small-datetime reads, and classification through a character
// attribute record.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "comnlib.h"

namespace {

struct Parsed {
    int32_t rc;
    DateRec r;
};

Parsed parse(const std::string &text, int32_t style = 0, int32_t order = 1,
             const CharAttrib *attr = nullptr) {
    DateTimeValue dt{123, 456};
    Parsed p{};
    p.rc = com__datefromchar_mb(&dt, text.data(), static_cast<int32_t>(text.size()), style, order,
                                com__get_months(), com__get_shortmonths(), attr);
    com__datecrack(&dt, &p.r);
    com__timecrack(&dt, &p.r);
    return p;
}

// The Python oracle writes random datetimes in the accepted forms; nothing but blanks is
// midnight of 1 January 1900.
TEST(DateParse, BlanksAloneAreTheFirstDay) {
    for (const char *blank : {"", "    "}) {
        const Parsed p = parse(blank);
        EXPECT_EQ(p.rc, 0);
        EXPECT_EQ((std::vector{p.r.year, p.r.month, p.r.day_of_month, p.r.hour, p.r.minute}),
                  (std::vector{1900, 0, 1, 0, 0}));
    }
}

// Rejected forms and their codes. Reads past the end of arbitrary bytes are the date parser
// fuzz target's concern (it replays exactly sized inputs under the sanitizers).
TEST(DateParse, RejectedFormsAndTheirCodes) {
    struct {
        std::string text;
        int32_t style, order, rc;
    } cases[] = {
        {"15.01.99", 103, 1, -1}, // style 103 wants a four-digit year
        {"15.01.1999", 3, 1, -1}, // style 3 takes its year from the two-digit numbers
        {"12/31/123", 0, 1, 1},   // three-digit year
        {"9901150", 0, 1, -1},    // seven digits
        {"12345", 0, 1, -1},      // five digits
        {"Jan 1 1999 0:30 PM", 0, 1, 9},
        {"13:00 AM", 0, 1, 9},
        {"24:00", 0, 1, 1},
        {"10:60", 0, 1, 1},
        {"10:30:60", 0, 1, 1},
        {"10:30:15:1000", 0, 1, -1}, // four digits are a year, not a number
        {"2/30/1999", 0, 1, 3},
        {"13/01/1999", 0, 1, 2},
        {"0/01/1999", 0, 1, 2},
        {"Jan 15 1752", 0, 1, 1},
        {"Jan Feb 1999", 0, 1, -2},
        {"10:30 10:31", 0, 1, -2},
        {"1/15", 0, 1, -1},         // one separator only
        {"1/15/", 0, 1, -1},        // a number missing
        {"Janu 15 1999", 0, 1, -1}, // no prefix matching
        {"Jan 15", 0, 1, -1},       // no year
        {"Jan 15 1999 10:", 0, 1, -1},
        {":30", 0, 1, -2}, // a colon at the start is left over
        {"10:30.", 0, 1, -1},
        {"PM", 0, 1, -2},
        {"Jan\t15 1999", 0, 1, -1},
        {"Jan 15 1999", 6, 1, -1}, // unknown style
        {"Jan 15 1999", 106, 1, -1},
        {"Jan 15 1999", -1, 1, -1},
        {"01/15/1999 x", 0, 1, -1},
        {"15 Jan 1999 1999", 0, 1, -2},
        // Embedded NUL, high bytes and control bytes.
        {std::string("Jan\0 15 1999", 12), 0, 1, -1},
        {"\xC9t\xE9", 0, 1, -1},
        {"Jan 15 1999\x7F", 0, 1, -1},
        {"1999\x01", 0, 1, -1},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parse(c.text, c.style, c.order).rc, c.rc) << '"' << c.text << '"';
    // The length, not a terminator, ends the text; no text or a negative length is empty.
    DateTimeValue dt;
    EXPECT_EQ(com__datefromchar_mb(&dt, "Jan 15 1999garbage", 11, 0, 1, com__get_months(),
                                   com__get_shortmonths(), nullptr),
              0);
    EXPECT_EQ(com__datefromchar_mb(&dt, nullptr, 0, 0, 1, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(com__datefromchar_mb(&dt, "x", -5, 0, 1, nullptr, nullptr, nullptr), 0);
}

TEST(DateParse, TokenLimitIsTwentyWithTheEnd) {
    std::string nineteen, twenty;
    for (int i = 0; i < 19; ++i)
        nineteen += ",";
    twenty = nineteen + ",";
    EXPECT_EQ(parse(nineteen).rc, -2); // fits, but nothing takes the commas
    EXPECT_EQ(parse(twenty).rc, -1);
    EXPECT_EQ(parse(std::string(10000, '7')).rc, -1);
}

TEST(DateParse, NothingBeyondTheEndTokenIsRead) {
    // A parse that leaves colons and numbers in the token slots, then texts with fewer
    // tokens: the slots after their end token must not be taken for theirs.
    const std::string cases[] = {"", "1999", "PM", "10"};
    for (const std::string &s : cases) {
        EXPECT_EQ(parse("1:2:3:4:5:6:7:8:9").rc, -2);
        const int32_t want = s == "PM" || s == "10" ? -2 : 0;
        EXPECT_EQ(parse(s).rc, want) << '"' << s << '"';
        EXPECT_EQ(parse(s, 101).rc, want) << '"' << s << '"';
    }
}

TEST(DateParse, TimeOnlyAndSmallDatetime) {
    DateTimeValue dt{5, 5};
    EXPECT_EQ(com__timefromchar_mb(&dt, "10:30:15.5 PM", 13, 0, nullptr), 0);
    EXPECT_EQ(dt.days, 0);
    EXPECT_EQ(dt.ticks, 22u * 1080000 + 30 * 18000 + 15 * 300 + 150);
    EXPECT_EQ(com__timefromchar_mb(&dt, "10:30 Jan", 9, 0, nullptr), -1); // no month names
    EXPECT_EQ(com__timefromchar_mb(&dt, "10:30 1999", 10, 0, nullptr), -2);

    DateTime4Value d4;
    const char *t = "Jun 6 2079 23:59:29";
    EXPECT_EQ(com__date4fromchar_mb(&d4, t, static_cast<int32_t>(strlen(t)), 0, 1,
                                    com__get_months(), com__get_shortmonths(), nullptr),
              0);
    EXPECT_EQ(d4.days, 65535);
    EXPECT_EQ(d4.minutes, 1439);
    t = "Jun 6 2079 23:59:30";
    EXPECT_EQ(com__date4fromchar_mb(&d4, t, static_cast<int32_t>(strlen(t)), 0, 1,
                                    com__get_months(), com__get_shortmonths(), nullptr),
              1);
    t = "Dec 31 1899";
    EXPECT_EQ(com__date4fromchar_mb(&d4, t, static_cast<int32_t>(strlen(t)), 0, 1,
                                    com__get_months(), com__get_shortmonths(), nullptr),
              1);
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
