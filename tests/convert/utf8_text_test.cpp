// Dates read and printed with the names of the source locale, UTF-8 or not.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "comnlib.h"
#include "convert/text_input_util.h"

namespace {

// Month names and the order of day and month come from the source format's locale, in its
// own character set (UTF-8 or not), and the date prints with that locale's short names; without
// the locale a French name is no month. Kanji carry no letter class, so Japanese dates are read
// in their numeric forms.
TEST(Utf8Text, DatesUseTheSourceLocale) {
    TextCtx c;
    struct Case {
        const char *locale, *text;
        int year, month, day; // month 0-based
        int32_t style;
        const char *printed;
    };
    const Case cases[] = {
        {"fr_FR.UTF-8", "15 f\xc3\xa9vrier 1999", 1999, 1, 15, 106, "15 f\xc3\xa9vr 1999"},
        {"fr_FR.UTF-8",
         "3 D\xc3\x89"
         "CEMBRE 2001",
         2001, 11, 3, 106,
         "03 d\xc3\xa9"
         "c 2001"},
        {"fr_FR", "15 f\xe9vrier 1999", 1999, 1, 15, 106, "15 f\xe9vr 1999"},
        {"fr_FR", "03/02/1999", 1999, 1, 3, 106, "03 f\xe9vr 1999"},
        {"de_DE.UTF-8", "1 M\xc3\xa4rz 2024", 2024, 2, 1, 106, "01 M\xc3\xa4r 2024"},
        {"de_DE.utf8", "29 Feb 2000", 2000, 1, 29, 106, "29 Feb 2000"},
        {"ja_JP.UTF-8", "2024/03/15", 2024, 2, 15, 106, "15 3\xe6\x9c\x88 2024"},
        {"ja_JP.UTF-8", "99.12.31", 1999, 11, 31, 0, "12\xe6\x9c\x88 31 1999 12:00AM"},
    };
    for (const Case &k : cases) {
        SCOPED_TRACE(k.text);
        LocaleHandle *loc = c.locale(k.locale);
        ASSERT_NE(loc, nullptr);
        const Outcome o = convert(comn_chartodatetime, k.text, {}, c.get(), loc);
        ASSERT_EQ(o.rc, CS_SUCCEED);
        DateTimeValue v = value_in<DateTimeValue>(o);
        DateRec r{};
        com__datecrack(&v, &r);
        EXPECT_EQ((std::vector<int>{r.year, r.month, r.day_of_month}),
                  (std::vector<int>{k.year, k.month, k.day}));
        DataFormat sf{}, df{};
        sf.datatype = CS_DATETIME;
        sf.locale = df.locale = loc;
        df.datatype = CS_CHAR;
        df.maxlength = 64;
        ASSERT_EQ(com_intl_set_dtfmt(c.get(), &df, k.style), 1);
        char out[64];
        int32_t len = 0;
        ASSERT_EQ(comn_datetochar(c.get(), &sf, &v, &df, out, &len), CS_SUCCEED);
        EXPECT_EQ(std::string(out, static_cast<size_t>(len)), k.printed);
    }
    EXPECT_EQ(convert(comn_chartodatetime, cases[2].text, {}, c.get()).rc, CS_CONV_SYNTAX);
}

} // namespace
