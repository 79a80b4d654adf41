// Reading locales: accessor fallbacks, handle strings and comparisons, the first-day
// arithmetic, and handle lists under a counting lock.
#include <cstdlib>

#include "intl/locale/locale_internal.h"
#include "intl_test_util.h"

namespace {

// A context with a default handle (every category on one locale) and its loaded records.
struct Loaded : LocCtx {
    LocaleHandle def{};
    void set_default(LocaleRecord *r) {
        def.collate = def.ctype = def.message = def.monetary = def.numeric = def.time = r;
        ctx.conv.default_locale = &def;
    }
};

TEST(LocaleAccess, AccessorsFollowFormatThenContextThenBuiltIn) {
    Loaded c;
    LocaleRecord *fr = c.load("fr_FR"), *de = c.load("de_DE");
    c.set_default(fr);
    LocaleHandle german{de, de, de, de, de, de, nullptr};
    DataFormat with{}, without{};
    with.locale = &german;
    // No format: the context's default (French).
    EXPECT_EQ(com_intl_months(c.get(), nullptr), fr->common->months);
    EXPECT_EQ(com_intl_dateorder_id(c.get(), nullptr), 2);
    EXPECT_EQ(com_intl_is12hour(c.get(), nullptr), 0);
    // A format with a locale: that one.
    EXPECT_EQ(com_intl_shortmonths(c.get(), &with), de->common->shortmonths);
    EXPECT_EQ(com_intl_days(c.get(), &with)[0], de->common->days[0]);
    EXPECT_STREQ(com_intl_dateorder(c.get(), &with), "dmy");
    EXPECT_EQ(com_intl_firstday(c.get(), &with), 1);
    // A format without one: built-in values, except the date style, which uses the context.
    EXPECT_EQ(com_intl_months(c.get(), &without), com__get_months());
    EXPECT_EQ(com_intl_shortmonths(c.get(), &without), com__get_shortmonths());
    EXPECT_EQ(com_intl_days(c.get(), &without), com__get_days());
    EXPECT_EQ(com_intl_firstday(c.get(), &without), 7);
    EXPECT_EQ(com_intl_is12hour(c.get(), &without), 1);
    EXPECT_EQ(com_intl_get_dtfmt(c.get(), &without), 3);
    EXPECT_EQ(com_intl_set_dtfmt(c.get(), &without, 103), 1);
    EXPECT_EQ(com_intl_get_dtfmt(c.get(), nullptr), 103);
    // Nothing at all.
    EXPECT_EQ(com_intl_is12hour(nullptr, nullptr), 1);
    EXPECT_EQ(com_intl_get_dtfmt(nullptr, nullptr), 9);
    EXPECT_EQ(com_intl_dateorder_id(nullptr, nullptr), 1);
    EXPECT_EQ(com_intl_set_dtfmt(nullptr, nullptr, 3), 0);
    // Character attributes: the locale's set, else the built-in iso_1 record.
    LocaleRecord *ja = c.load("ja_JP.SJIS");
    LocaleHandle japanese{ja, ja, ja, ja, ja, ja, nullptr};
    with.locale = &japanese;
    EXPECT_EQ(com_intl_charattr(c.get(), &with), ja->charset_desc->attr);
    EXPECT_EQ(com_intl_charattr(c.get(), &without), fr->charset_desc->attr);
    EXPECT_EQ(com_intl_charattr(nullptr, nullptr), com_get_charattrib());
}

TEST(LocaleAccess, GetstrAndLoccmp) {
    Loaded c;
    LocaleRecord *fr = c.load("fr_FR"), *de = c.load("de_DE"), *cp = c.load("fr_FR.cp850");
    LocaleHandle a{fr, fr, fr, fr, fr, fr, nullptr}, b = a;
    char buf[16];
    int32_t len = -1;
    EXPECT_EQ(com_intl_getstr(&a, COM_LC_CTYPE, 1, buf, 3, &len), 0); // "iso_1" needs 5
    EXPECT_EQ(len, 5);
    EXPECT_EQ(com_intl_getstr(&a, COM_LC_CTYPE, 1, buf, 5, &len), 1);
    EXPECT_EQ(std::string(buf, len), "iso_1");
    EXPECT_EQ(com_intl_getstr(&a, COM_LC_TIME, 2, buf, 16, &len), 1);
    EXPECT_EQ(std::string(buf, len), "french");
    EXPECT_EQ(com_intl_getstr(&a, COM_LC_TIME, 7, buf, 16, &len), 1);
    EXPECT_EQ(std::string(buf, len), "binary");
    a.message = nullptr;
    EXPECT_EQ(com_intl_getstr(&a, COM_LC_MESSAGE, 1, buf, 16, &len), 1);
    EXPECT_EQ(len, 0);
    EXPECT_EQ(com_intl_getstr(&a, 7, 1, buf, 16, &len), 0);

    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 9, &a, &b), 0); // same record wins over which
    b.time = de;
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 1, &a, &b), 0);         // both iso_1
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 2, &a, &b), 'f' - 'g'); // languages
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 3, &a, &b), 0);         // sort orders
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 4, &a, &b), -2);
    b.time = cp;
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 1, &a, &b), 'i' - 'c');
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 2, &a, &b), -1);
    EXPECT_EQ(com_intl_loccmp(COM_LC_TIME, 1, &a, nullptr), -2);
}

TEST(LocaleAccess, ConvtFirstdayKeepsTheSignedRemainder) {
    struct {
        int32_t day, first, base, want;
    } cases[] = {{1, 7, 8, 0}, {1, 1, 8, 1},   {6, 7, 8, 5},
                 {3, 7, 1, 2}, {0, 1, 14, -6}, {7, 7, 8, 6}};
    for (auto k : cases)
        EXPECT_EQ(com_intl_convt_firstday(k.day, k.first, k.base), k.want)
            << k.day << " " << k.first << " " << k.base;
}

int g_locks, g_unlocks, g_lock_answer = 1;
int32_t count_lock(ComContext *) {
    return ++g_locks, g_lock_answer;
}
int32_t count_unlock(ComContext *) {
    return ++g_unlocks, 1;
}

TEST(LocaleAccess, HandleListUnderACountingLock) {
    Loaded c;
    c.set_default(c.load("de_DE"));
    c->lock = count_lock;
    c->unlock = count_unlock;
    g_locks = g_unlocks = 0;
    LocaleHandle *h1 = nullptr, *h2 = nullptr, *h3 = nullptr;
    ASSERT_EQ(comn_loc_alloc(c.get(), &h1), 1);
    ASSERT_EQ(comn_loc_alloc(c.get(), &h2), 1);
    ASSERT_EQ(comn_loc_alloc(c.get(), &h3), 1);
    EXPECT_EQ(c->loc_handles, h3);
    EXPECT_EQ(h1->numeric, c.def.numeric);
    LocaleHandle foreign{};
    EXPECT_EQ(comn_loc_validate(c.get(), h2), 1);
    EXPECT_EQ(comn_loc_validate(c.get(), &foreign), 0);
    EXPECT_EQ(comn_loc_copy(&foreign, h1), 1);
    EXPECT_EQ(foreign.time, h1->time);
    c->current_locale = h2;
    EXPECT_EQ(comn_loc_drop(c.get(), h2), 1);
    EXPECT_EQ(c->current_locale, nullptr);
    EXPECT_EQ(c->loc_handles, h3);
    EXPECT_EQ(h3->next, h1);
    EXPECT_EQ(g_locks, 6);
    EXPECT_EQ(g_unlocks, 6);
    // A refused lock is answered at once, without an unlock.
    g_lock_answer = CS_BUSY;
    LocaleHandle *h4 = nullptr;
    EXPECT_EQ(comn_loc_alloc(c.get(), &h4), CS_BUSY);
    EXPECT_EQ(h4, nullptr);
    EXPECT_EQ(comn_loc_validate(c.get(), h1), 0);
    EXPECT_EQ(comn_loc_drop_all(c.get()), CS_BUSY);
    EXPECT_EQ(g_unlocks, 6);
    g_lock_answer = 1;
    c->current_locale = h1;
    c->loc_buffer = std::malloc(32);
    EXPECT_EQ(comn_loc_drop_all(c.get()), 1);
    EXPECT_EQ(c->loc_handles, nullptr);
    EXPECT_EQ(c->current_locale, nullptr);
    EXPECT_EQ(c->loc_buffer, nullptr);
    EXPECT_EQ(g_unlocks, 7);
}

} // namespace
