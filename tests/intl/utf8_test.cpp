// The utf8 set in use: dates read and printed with the names of the UTF-8 locales, and the
// attribute record's answers that the text conversions rely on. Translation and the record's
// tables are checked exhaustively against Python by check_xlate.py and check_charsets.py,
// translation through the locales in xlate_dispatch_test.cpp.
#include <cstring>

#include "intl_test_util.h"

namespace {

struct DateCase {
    const char *locale, *text;
    int32_t year, month, day; // month from 0
    int32_t style;
    const char *printed;
};

TEST(Utf8Locale, DatesReadAndPrintWithTheLocaleNames) {
    const DateCase cases[] = {
        {"fr_FR.UTF-8", "15 février 1999", 1999, 1, 15, 106, "15 févr 1999"},
        {"fr_FR.UTF-8", "3 DÉCEMBRE 2001", 2001, 11, 3, 106, "03 déc 2001"},
        {"de_DE.UTF-8", "1 März 2024", 2024, 2, 1, 106, "01 Mär 2024"},
        {"de_DE.utf8", "29 Feb 2000", 2000, 1, 29, 106, "29 Feb 2000"},
        // Kanji carry no letter class in any Japanese set, so Japanese dates are read in
        // their numeric forms (year first) and printed with the locale's month names.
        {"ja_JP.UTF-8", "2024/03/15", 2024, 2, 15, 106, "15 3月 2024"},
        {"ja_JP.UTF-8", "99.12.31", 1999, 11, 31, 0, "12月 31 1999 12:00AM"},
    };
    for (const DateCase &t : cases) {
        SCOPED_TRACE(t.text);
        LocCtx c;
        LocaleRecord *r = c.load(t.locale);
        ASSERT_NE(r, nullptr);
        ASSERT_STREQ(r->charset, "utf8");
        DateTimeValue v{};
        const CharAttrib *attr = r->charset_desc->attr;
        ASSERT_EQ(com__datefromchar_mb(&v, t.text, static_cast<int32_t>(std::strlen(t.text)), 0,
                                       r->dateorder_id, r->common->months, r->common->shortmonths,
                                       attr),
                  0);
        DateRec rec{};
        com__datecrack(&v, &rec);
        EXPECT_EQ(rec.year, t.year);
        EXPECT_EQ(rec.month, t.month);
        EXPECT_EQ(rec.day_of_month, t.day);
        char out[64];
        const int32_t n = com__datetochar(&v, out, sizeof out, t.style, r->common->shortmonths);
        ASSERT_GT(n, 0);
        EXPECT_EQ(std::string(out, static_cast<size_t>(n)), t.printed);
    }
}

// What the text conversions rely on: whole characters are kept (never cut), and only ASCII
// reduces to ASCII, so "1é5" or full-width digits never read as a number.
TEST(Utf8Locale, AttributesKeepCharactersWhole) {
    LocCtx c;
    const CharAttrib *a = c.desc("utf8")->attr;
    EXPECT_EQ(a->xlate_id, COM_XLT_UTF8);
    struct Cut {
        const char *text;
        int32_t chars, whole, inside, over;
    } cuts[] = {
        {"ab", 2, 2, 0, 0},           {"a\xc3\xa9", 2, 3, 0, 0}, {"a\xe6\x97", 1, 1, 2, 1},
        {"\xf0\x9f\x98", 0, 0, 3, 1}, {"\x80\xbf", 2, 2, 0, 0},  {"", 0, 0, 0, 0},
    };
    for (const Cut &t : cuts) {
        SCOPED_TRACE(t.text);
        const int32_t len = static_cast<int32_t>(std::strlen(t.text));
        int32_t chars = -1, whole = -1, inside = -1, over = -1;
        comn_whole_char(a, t.text, t.text + len, &chars, &whole, &inside, &over);
        EXPECT_EQ(chars, t.chars);
        EXPECT_EQ(whole, t.whole);
        EXPECT_EQ(inside, t.inside);
        EXPECT_EQ(over, t.over);
    }
    // Only the no-break space reduces (to a space); é, the full-width 1 and the superscript two
    // are kept as they are.
    const std::string text = "1\xc3\xa9\xef\xbc\x91\xc2\xa0\xc2\xb2";
    char out[32];
    int32_t n = -1;
    comn_str_to_ascii(text.data(), static_cast<int32_t>(text.size()), out, &n, a);
    EXPECT_EQ(std::string(out, static_cast<size_t>(n)), "1\xc3\xa9\xef\xbc\x91 \xc2\xb2");
}

} // namespace
