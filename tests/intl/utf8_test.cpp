// The utf8 attribute record's answers that the text conversions rely on. (Its tables and the
// translation are checked against Python by check_charsets.py and check_xlate.py.)
#include <cstring>

#include "intl_test_util.h"

namespace {

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
