// The utf8 set in use: dates read and printed with the names of the UTF-8 locales, the
// translation driver between a utf8 locale and others (lengths change), and the attribute
// record's answers that the text conversions rely on. Translation itself and the record's
// tables are checked exhaustively against Python by check_utf8.py.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "intl_test_util.h"
#include "locale_test_util.h"

namespace {

LocaleRecord *load(LocCtx &c, const char *name) {
    LocaleRecord *r = nullptr;
    EXPECT_EQ(com_intl_load(c.get(), name, -1, &r), 1) << name;
    return r;
}

struct DateCase {
    const char *locale, *text;
    int32_t year, month, day; // month from 0
    int32_t style;
    const char *printed;
};

TEST(Utf8Locale, DatesReadAndPrintWithTheLocaleNames) {
    EnvGuard veldar{"VELDAR"};
    veldar.set(COMN_TEST_HOME);
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
        LocaleRecord *r = load(c, t.locale);
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

// A utf8 locale against iso_1 and sjis locales through com_intl_xlate: the state words
// count bytes taken and written, a CS_VARCHAR destination gets the bytes written.
TEST(Utf8Locale, DriverTranslatesBetweenLocales) {
    EnvGuard veldar{"VELDAR"};
    veldar.set(COMN_TEST_HOME);
    LocCtx c;
    LocaleRecord *u = load(c, "fr_FR.UTF-8"), *l1 = load(c, "fr_FR"), *sj = load(c, "ja_JP.SJIS");
    ASSERT_TRUE(u && l1 && sj);
    LocaleHandle hu{u, u, u, u, u, u, nullptr}, hl{l1, l1, l1, l1, l1, l1, nullptr},
        hs{sj, sj, sj, sj, sj, sj, nullptr};
    auto fmt = [](LocaleHandle *h, int32_t type, int32_t len) {
        DataFormat f{};
        f.datatype = type;
        f.maxlength = len;
        f.locale = h;
        return f;
    };
    struct Case {
        LocaleHandle *from, *to;
        std::string src;
        int32_t room;
        int32_t rc, taken;
        std::string out;
    };
    const Case cases[] = {
        {&hu, &hl, "d\xc3\xa9j\xc3\xa0", 16, CS_SUCCEED, 6, "d\xe9j\xe0"},
        {&hl, &hu, "d\xe9j\xe0", 16, CS_SUCCEED, 4, "d\xc3\xa9j\xc3\xa0"},
        {&hl, &hu, "d\xe9j\xe0", 4, CS_CONV_OVERFLOW, 3, "d\xc3\xa9j"}, // à does not fit
        {&hu, &hl, "\xe2\x82\xac!", 16, CS_CONV_BADXLT, 4, "?!"},       // no euro in iso_1
        {&hu, &hl, "a\xe3\x81", 16, CS_CONV_BADXLT, 3, "a?"},           // cut at the end
        {&hu, &hs, "\xe6\x97\xa5\xef\xbd\xb6", 16, CS_SUCCEED, 6, "\x93\xfa\xb6"},
        {&hs, &hu, "\x93\xfa\xb6", 16, CS_SUCCEED, 3, "\xe6\x97\xa5\xef\xbd\xb6"},
        {&hs, &hu, "\x93\xfa\xb6", 5, CS_CONV_OVERFLOW, 2, "\xe6\x97\xa5"},
        {&hu, &hu, "\xc3\xa9", 16, CS_SUCCEED, 2, "\xc3\xa9"},
    };
    for (const Case &t : cases) {
        SCOPED_TRACE(t.src);
        for (const int32_t type : {CS_CHAR, CS_VARCHAR}) {
            // A CS_VARCHAR destination has 256 bytes of room: only CS_CHAR tests a short one.
            if (type == CS_VARCHAR && t.rc == CS_CONV_OVERFLOW) continue;
            DataFormat s = fmt(t.from, CS_CHAR, static_cast<int32_t>(t.src.size()));
            DataFormat d = fmt(t.to, type, t.room);
            char out[2 + 256] = {};
            int32_t len = -1, state[2] = {-1, -1};
            EXPECT_EQ(
                com_intl_xlate(c.get(), &s, const_cast<char *>(t.src.data()), &d, out, &len, state),
                t.rc);
            const char *text = type == CS_VARCHAR ? out + 2 : out;
            EXPECT_EQ(std::string(text, static_cast<size_t>(len)), t.out);
            EXPECT_EQ(state[0], t.from == t.to ? static_cast<int32_t>(t.out.size()) : t.taken);
            EXPECT_EQ(state[1], t.from == t.to ? -1 : static_cast<int32_t>(t.out.size()));
            if (type == CS_VARCHAR) {
                int16_t l16 = -1;
                std::memcpy(&l16, out, sizeof l16);
                EXPECT_EQ(l16, static_cast<int16_t>(t.out.size()));
            }
        }
    }
}

// A handle whose ctype record stands for the set of the given translation id.
struct IdLocale {
    CharAttrib attr{};
    ComCharsetDesc desc{};
    LocaleRecord rec{};
    LocaleHandle handle{};
    explicit IdLocale(uint8_t id) {
        attr.xlate_id = id;
        desc.attr = &attr;
        rec.charset_desc = &desc;
        handle.ctype = &rec;
    }
};

// utf8's row and column of the dispatch, and the converter each cell names: "é" goes out to
// every set and comes back, or becomes "?" where the set has no é.
TEST(Utf8Locale, DispatchReachesEverySet) {
    struct Cell {
        uint8_t id;
        int32_t to_mode, from_mode;
        const char *e_acute; // é in the set, or "?"
    } cells[] = {
        {COM_XLT_ASCII8, 3, 2, "?"},
        {COM_XLT_ISO1, 3, 3, "\xe9"},
        {COM_XLT_CP850, 3, 3, "\x82"},
        {COM_XLT_CP437, 3, 3, "\x82"},
        {COM_XLT_ROMAN8, 3, 3, "\xc5"},
        {COM_XLT_MAC, 3, 3, "\x8e"},
        {COM_XLT_EUCJIS, 3, 3, "\x8f\xab\xb1"},
        {COM_XLT_SJIS, 3, 3, "?"},
        {COM_XLT_DECKANJI, 3, 3, "?"},
        {COM_XLT_CASESWAP, 0, 0, ""},
    };
    IdLocale utf8(COM_XLT_UTF8);
    for (const Cell &c : cells) {
        SCOPED_TRACE(static_cast<int>(c.id));
        IdLocale other(c.id);
        DataFormat u{}, o{};
        u.datatype = o.datatype = CS_CHAR;
        u.locale = &utf8.handle;
        o.locale = &other.handle;
        int32_t to = -1, from = -1;
        ASSERT_EQ(com_intl_will_xlate(nullptr, &u, &o, &to), CS_SUCCEED);
        ASSERT_EQ(com_intl_will_xlate(nullptr, &o, &u, &from), CS_SUCCEED);
        EXPECT_EQ(to, c.to_mode);
        EXPECT_EQ(from, c.from_mode);
        if (to == 0) continue;
        char e[] = "\xc3\xa9", out[8], back[8];
        int32_t len = -1, back_len = -1, state[2];
        u.maxlength = 2;
        o.maxlength = sizeof out;
        com_intl_xlate(nullptr, &u, e, &o, out, &len, state);
        EXPECT_EQ(std::string(out, static_cast<size_t>(len)), c.e_acute);
        o.maxlength = len;
        u.maxlength = sizeof back;
        com_intl_xlate(nullptr, &o, out, &u, back, &back_len, state);
        EXPECT_EQ(std::string(back, static_cast<size_t>(back_len)),
                  std::string(c.e_acute) == "?" ? "?" : "\xc3\xa9");
    }
}

// What the text conversions rely on: whole characters are kept (never cut), and only ASCII
// reduces to ASCII, so "1é5" or full-width digits never read as a number.
TEST(Utf8Locale, AttributesKeepCharactersWhole) {
    LocCtx c;
    ComCharsetDesc *d = nullptr;
    EnvGuard veldar{"VELDAR"};
    veldar.set(COMN_TEST_HOME);
    ASSERT_EQ(com__charset_desc_get(c.get(), "utf8", "binary", &d), 1);
    const CharAttrib *a = d->attr;
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
    struct Ascii {
        const char *text, *out;
    } asc[] = {
        {"1\xc3\xa9"
         "5",
         "1\xc3\xa9"
         "5"},
        {"\xef\xbc\x91\xef\xbc\x92", "\xef\xbc\x91\xef\xbc\x92"}, // full-width 1 2: kept
        {"12\xc2\xa0"
         "345",
         "12 345"},               // the no-break space is a space
        {"\xc2\xb2", "\xc2\xb2"}, // superscript two is no digit 2
    };
    for (const Ascii &t : asc) {
        char out[32];
        int32_t n = -1;
        comn_str_to_ascii(t.text, static_cast<int32_t>(std::strlen(t.text)), out, &n, a);
        EXPECT_EQ(std::string(out, static_cast<size_t>(n)), t.out);
    }
    for (const char *digitless :
         {"\xef\xbc\x91", "\xe3\x80\x80", "\xef\xbc\x8c", "\xf0\x9f\x98\x80"}) {
        EXPECT_EQ(comn_isdigit(a, digitless), 0);
        EXPECT_EQ(comn_isspace(a, digitless), 0);
        EXPECT_EQ(comn_ispunct(a, digitless), 0);
    }
}

} // namespace
