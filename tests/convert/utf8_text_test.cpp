// Text conversions with utf8 formats: numbers and dates are read through the set's ASCII map,
// dates print with the locale's UTF-8 names, text to text translates between utf8 and the
// other sets and shortens utf8 text on whole characters.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "comnlib.h"
#include "convert/text_input_util.h"

namespace {

struct Out {
    int32_t rc;
    int32_t len;
    std::string text;
};

// Text to text: the source in one locale, the destination of maxlength m in another.
Out to_char(TextCtx &c, LocaleHandle *from, LocaleHandle *to, const std::string &text, int32_t m,
            uint32_t flags = 0) {
    DataFormat sf{}, df{};
    sf.datatype = df.datatype = CS_CHAR;
    sf.maxlength = static_cast<int32_t>(text.size());
    sf.locale = from;
    df.maxlength = m;
    df.format = flags;
    df.locale = to;
    std::vector<char> buf(static_cast<size_t>(m) + 1, '#');
    int32_t len = -1;
    const int32_t rc =
        comn_chartochar(c.get(), &sf, const_cast<char *>(text.data()), &df, buf.data(), &len);
    EXPECT_EQ(buf[static_cast<size_t>(m)], '#') << "wrote past maxlength";
    return {rc, len, std::string(buf.data(), static_cast<size_t>(std::max(len, 0)))};
}

TEST(Utf8Text, NumbersReadThroughTheAsciiMap) {
    TextCtx c;
    LocaleHandle *u = c.locale("en_US.UTF-8");
    ASSERT_NE(u, nullptr);
    struct Case {
        const char *text;
        int32_t rc;
        int32_t value;
    };
    const Case cases[] = {
        {" 42 ", CS_SUCCEED, 42},
        {"-17", CS_SUCCEED, -17},
        {"\xc2\xa0"
         "12",
         CS_SUCCEED, 12}, // a no-break space is a space
        {"1\xc3\xa9"
         "5",
         CS_CONV_SYNTAX, 0},              // "1é5" is not a number
        {"1\xc2\xb2", CS_CONV_SYNTAX, 0}, // nor is "1²"
        {"\xe2\x82\xac"
         "5",
         CS_CONV_SYNTAX, 0},
        {"7\xc3", CS_CONV_SYNTAX, 0}, // a lead byte cut by the end of the text
    };
    for (const Case &k : cases) {
        int32_t v = 0, len = -1;
        EXPECT_EQ(convert_text(comn_chartoi4, k.text, &v, &len, c.get(), u), k.rc) << k.text;
        if (k.rc == CS_SUCCEED) {
            EXPECT_EQ(v, k.value) << k.text;
        }
    }
    double d = 0;
    int32_t len = 0;
    EXPECT_EQ(convert_text(comn_chartoflt8, "-1.5e3\xc2\xa0", &d, &len, c.get(), u), CS_SUCCEED);
    EXPECT_EQ(d, -1500.0);
}

TEST(Utf8Text, DatesUseTheLocalesUtf8Names) {
    TextCtx c;
    struct Case {
        const char *locale;
        const char *text;
        int month;          // 0-based
        const char *style0; // the date printed in style 0 with the locale's short names
    };
    const Case cases[] = {
        {"fr_FR.UTF-8", "15 f\xc3\xa9vrier 1999", 1, nullptr},
        {"de_DE.UTF-8", "15 M\xc3\xa4rz 1999", 2, nullptr},
        {"ja_JP.UTF-8", "1999/03/15", 2, "3\xe6\x9c\x88 15 1999 12:00AM"},
    };
    for (const Case &k : cases) {
        LocaleHandle *loc = c.locale(k.locale);
        ASSERT_NE(loc, nullptr) << k.locale;
        DateTimeValue v{};
        int32_t len = 0;
        ASSERT_EQ(convert_text(comn_chartodatetime, k.text, &v, &len, c.get(), loc), CS_SUCCEED)
            << k.locale;
        DateRec r{};
        com__datecrack(&v, &r);
        EXPECT_EQ((std::vector<int>{r.year, r.month, r.day_of_month}),
                  (std::vector<int>{1999, k.month, 15}))
            << k.locale;
        if (!k.style0) continue;
        DataFormat sf{}, df{};
        sf.datatype = CS_DATETIME;
        sf.locale = loc;
        df.datatype = CS_CHAR;
        df.maxlength = 64;
        df.locale = loc;
        ASSERT_EQ(com_intl_set_dtfmt(c.get(), &df, 0), 1);
        char out[64];
        ASSERT_EQ(comn_datetochar(c.get(), &sf, &v, &df, out, &len), CS_SUCCEED);
        EXPECT_EQ(std::string(out, static_cast<size_t>(len)), k.style0);
    }
}

TEST(Utf8Text, TextToTextTranslatesAndKeepsCharactersWhole) {
    TextCtx c;
    LocaleHandle *u = c.locale("fr_FR.UTF-8");
    LocaleHandle *l1 = c.locale("fr_FR");
    LocaleHandle *sj = c.locale("ja_JP.SJIS");
    ASSERT_TRUE(u && l1 && sj);
    const std::string fevrier = "f\xc3\xa9vrier", fevrier1 = "f\xe9vrier";

    Out o = to_char(c, u, l1, fevrier, 20);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.text, fevrier1);
    o = to_char(c, l1, u, fevrier1, 20);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.text, fevrier);
    o = to_char(c, u, sj, "\xe6\x97\xa5\xe6\x9c\xac", 20); // two kanji
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.text, "\x93\xfa\x96\x7b");
    o = to_char(c, sj, u, "\x93\xfa\x96\x7b", 20);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.text, "\xe6\x97\xa5\xe6\x9c\xac");
    o = to_char(c, u, l1, "\xe6\x97\xa5", 20); // no Latin-1 counterpart
    EXPECT_EQ(o.rc, CS_CONV_BADXLT);
    EXPECT_EQ(o.text, "?");

    // Same set: a limit inside a character gives the whole characters before it.
    const std::string e3 = "\xc3\xa9\xc3\xa9\xc3\xa9";
    for (int32_t m = 0; m <= 7; ++m) {
        o = to_char(c, u, u, e3, m);
        const int32_t whole = std::min<int32_t>(m, 6) / 2 * 2;
        EXPECT_EQ(o.len, whole) << m;
        EXPECT_EQ(o.text, e3.substr(0, static_cast<size_t>(whole))) << m;
        EXPECT_EQ(o.rc, m >= 6 ? CS_SUCCEED : CS_CONV_TRUNCATED) << m;
    }
    DataFormat uf{};
    uf.locale = u;
    const CharAttrib *attr = com_intl_charattr(c.get(), &uf);
    for (int32_t limit = 0; limit <= 7; ++limit)
        EXPECT_EQ(comnb_truncate_chars(attr, "\xe6\x97\xa5\xe6\x9c\xac", 6, limit),
                  limit >= 6 ? 6 : limit / 3 * 3)
            << limit;
}

} // namespace
