// Text conversions with utf8 formats: numbers and dates are read through the set's ASCII map,
// dates print with the locale's UTF-8 names; dates follow the source locale in other sets too.
// (Text to text with utf8 is checked with the other shipped sets in text_text_test.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "comnlib.h"
#include "convert/text_input_util.h"

namespace {

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
        const Outcome o = convert(comn_chartoi4, k.text, {}, c.get(), u);
        EXPECT_EQ(o.rc, k.rc) << k.text;
        if (k.rc == CS_SUCCEED) {
            EXPECT_EQ(value_in<int32_t>(o), k.value) << k.text;
        }
    }
    const Outcome o = convert(comn_chartoflt8, "-1.5e3\xc2\xa0", {}, c.get(), u);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(value_in<double>(o), -1500.0);
}

// Month names and the order of day and month come from the source format's locale, in its
// own character set (UTF-8 or not); without the locale a French name is no month.
TEST(Utf8Text, DatesUseTheSourceLocale) {
    TextCtx c;
    struct Case {
        const char *locale;
        const char *text;
        int month, day;     // month 0-based
        const char *style0; // the date printed in style 0 with the locale's short names
    };
    const Case cases[] = {
        {"fr_FR.UTF-8", "15 f\xc3\xa9vrier 1999", 1, 15, nullptr},
        {"fr_FR", "15 f\xe9vrier 1999", 1, 15, nullptr},
        {"fr_FR", "03/02/1999", 1, 3, nullptr},
        {"de_DE.UTF-8", "15 M\xc3\xa4rz 1999", 2, 15, nullptr},
        {"ja_JP.UTF-8", "1999/03/15", 2, 15, "3\xe6\x9c\x88 15 1999 12:00AM"},
    };
    for (const Case &k : cases) {
        LocaleHandle *loc = c.locale(k.locale);
        ASSERT_NE(loc, nullptr) << k.locale;
        const Outcome o = convert(comn_chartodatetime, k.text, {}, c.get(), loc);
        ASSERT_EQ(o.rc, CS_SUCCEED) << k.locale;
        DateTimeValue v = value_in<DateTimeValue>(o);
        DateRec r{};
        com__datecrack(&v, &r);
        EXPECT_EQ((std::vector<int>{r.year, r.month, r.day_of_month}),
                  (std::vector<int>{1999, k.month, k.day}))
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
        int32_t len = 0;
        ASSERT_EQ(comn_datetochar(c.get(), &sf, &v, &df, out, &len), CS_SUCCEED);
        EXPECT_EQ(std::string(out, static_cast<size_t>(len)), k.style0);
    }
    EXPECT_EQ(convert(comn_chartodatetime, cases[1].text, {}, c.get()).rc, CS_CONV_SYNTAX);
}

} // namespace
