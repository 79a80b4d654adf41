// Loading locales: every entry of the bundled locales file against names encoded by iconv, sharing
// within the cache, loading by parts, the start-up pair, and refused "common.loc" files.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>

#include "intl_test_util.h"

namespace {

// What each language's common.loc holds: March, the short December and the first listed day
// (in UTF-8, at least one of them beyond ASCII where the language has such a name), the first
// day, the date order id, the 12-hour clock and the date style.
struct Language {
    const char *name, *march, *december_short, *first_listed_day;
    int32_t firstday, order_id, is12, dtfmt;
};
const Language kLanguages[] = {
    {"us_english", "March", "Dec", "Sun", 7, 1, 1, 9},
    {"french", "mars", "déc", "lun", 1, 2, 0, 3},
    {"german", "März", "Dez", "Mo", 1, 2, 0, 3},
    {"japanese", "3月", "12月", "日", 7, 3, 0, 11},
};
// iconv's name of each character set.
const std::map<std::string, const char *> kIconvName = {
    {"iso_1", "ISO-8859-1"}, {"utf8", "UTF-8"},     {"cp850", "CP850"},  {"cp437", "CP437"},
    {"roman8", "HP-ROMAN8"}, {"mac", "MACINTOSH"},  {"ascii8", "ASCII"}, {"eucjis", "EUC-JP"},
    {"sjis", "SHIFT_JIS"},   {"deckanji", "EUC-JP"}};

// Every entry of the bundled locales file loads as itself (so no shorter name ahead of it
// takes its place) with its language's names encoded in its character set.
TEST(LocaleLoad, EveryShippedLocaleHasItsNamesInItsOwnEncoding) {
    std::ifstream in(std::string(COMN_TEST_HOME) + "/locales/locales.dat");
    int entries = 0;
    for (std::string line; std::getline(in, line);) {
        char name[64], language[32], charset[32];
        if (std::sscanf(line.c_str(), "locale = %63[^,], %31[^,], %31[^,\n]", name, language,
                        charset) != 3)
            continue;
        SCOPED_TRACE(name);
        ++entries;
        const Language *l =
            std::find_if(std::begin(kLanguages), std::end(kLanguages),
                         [&](const Language &x) { return x.name == std::string(language); });
        ASSERT_NE(l, std::end(kLanguages));
        const char *iconv_name = kIconvName.at(charset);
        LocCtx c;
        LocaleRecord *r = c.load(name);
        ASSERT_NE(r, nullptr);
        EXPECT_STREQ(r->name, name);
        EXPECT_STREQ(r->language, language);
        EXPECT_STREQ(r->charset, charset);
        EXPECT_STREQ(r->sortorder, "binary");
        ASSERT_NE(r->charset_desc, nullptr);
        EXPECT_EQ(r->common->months[2], encode(l->march, iconv_name));
        EXPECT_EQ(r->common->shortmonths[11], encode(l->december_short, iconv_name));
        EXPECT_EQ(r->common->days[0], encode(l->first_listed_day, iconv_name));
        EXPECT_EQ(r->common->firstday, l->firstday);
        EXPECT_EQ(r->dateorder_id, l->order_id);
        EXPECT_EQ(r->common->is12hour, l->is12);
        EXPECT_EQ(r->common->dtfmt, l->dtfmt);
    }
    EXPECT_GT(entries, 40);
}

TEST(LocaleLoad, CacheSharesDescriptionsAndCopiesCommonInfo) {
    LocCtx c;
    LocaleRecord *fr = nullptr, *french = nullptr, *de = nullptr, *again = nullptr,
                 *cp850 = nullptr;
    ASSERT_EQ(com_intl_load(c.get(), "fr_FR", -1, &fr), 1);
    ASSERT_EQ(com_intl_load(c.get(), "french", -1, &french), 1);
    ASSERT_EQ(com_intl_load(c.get(), "de_DE", -1, &de), 1);
    ASSERT_EQ(com_intl_load(c.get(), "fr_FR", 5, &again), 1);
    ASSERT_EQ(com_intl_load(c.get(), "fr_FR.cp850", -1, &cp850), 1);
    EXPECT_EQ(again, fr);
    EXPECT_NE(french, fr);
    EXPECT_NE(french->common, fr->common); // copied, not shared
    EXPECT_NE(french->common->months[0], fr->common->months[0]);
    EXPECT_STREQ(french->common->months[1], fr->common->months[1]);
    EXPECT_EQ(french->dateorder_id, fr->dateorder_id);
    EXPECT_EQ(de->charset_desc, fr->charset_desc); // iso_1 with binary: one description
    EXPECT_NE(cp850->charset_desc, fr->charset_desc);
    EXPECT_EQ(c->loc_cache, cp850); // newest first
    EXPECT_EQ(com__scan_lcache_name(c.get(), "fr_F", 4), nullptr);
    EXPECT_EQ(com__scan_lcache_lang(c.get(), "german", "iso_1"), de);
    EXPECT_EQ(com__scan_lcache_sort(c.get(), "binary", "cp850"), cp850);
    EXPECT_STREQ(com_intl_get_locname(de), "de_DE");
    EXPECT_EQ(com_intl_get_locname(nullptr), nullptr);
    LocaleRecord *none = nullptr;
    EXPECT_EQ(com_intl_load(c.get(), "xx_YY", -1, &none), 0);
}

TEST(LocaleLoad, LoadByPartsNamesTheLocaleAndReportsAMissingFile) {
    const std::string common = "[datetime]\nmonths=a,b,c,d,e,f,g,h,i,j,k,l\n"
                               "shortmonths=a,b,c,d,e,f,g,h,i,j,k,l\ndays=1,2,3,4,5,6,7\n"
                               "firstday=1\ndateorder=ymd\ntwelvehour=0\n";
    // A name longer than the first buffer makes the reverse translation retry.
    const std::string longname(300, 'n');
    ScratchHome home(common, "locale = " + longname + ", xx, iso_1, nocase\n");
    LocCtx c;
    char path[COM_INTL_PATH_SIZE];
    int32_t plen = -1;
    LocaleRecord *r = nullptr;
    EXPECT_EQ(com_intl_load_lcs(c.get(), "xx", "iso_1", nullptr, path, 1024, &plen, &r), 0);
    EXPECT_EQ(std::string(path, plen), home.path + "/locales/xx/iso_1/cslib.loc");
    home.write("locales/xx/iso_1/cslib.loc", "[x]\n");
    ASSERT_EQ(com_intl_load_lcs(c.get(), "xx", "iso_1", "", path, 1024, &plen, &r), 1);
    EXPECT_STREQ(r->name, "xx");
    EXPECT_STREQ(r->common->dateorder, "ymd");
    LocaleRecord *again = nullptr;
    ASSERT_EQ(com_intl_load_lcs(c.get(), "xx", "iso_1", "binary", path, 1024, &plen, &again), 1);
    EXPECT_EQ(again, r);
    // No entry for the parts: the name is made up of them.
    home.write("locales/us_english/iso_1/common.loc", common);
    home.write("locales/us_english/iso_1/cslib.loc", "[x]\n");
    ASSERT_EQ(com_intl_load_lcs(c.get(), nullptr, nullptr, nullptr, path, 1024, &plen, &r), 1);
    EXPECT_STREQ(r->name, "us_english.iso_1.binary");
    // The long name of the nocase entry comes back whole after the retry.
    home.copy_bundled("charsets/iso_1/nocase.srt");
    ASSERT_EQ(com_intl_load_lcs(c.get(), "xx", "iso_1", "nocase", path, 1024, &plen, &r), 1);
    EXPECT_EQ(r->name, longname);
}

TEST(LocaleLoad, StartUpLoadsTheEnvironmentsLocaleAndTearDownUndoesIt) {
    EnvGuard all("LC_ALL");
    all.set("de_DE.UTF-8");
    ComContext ctx{};
    ASSERT_EQ(comn_ctx_setup(&ctx), 1);
    ASSERT_NE(ctx.conv.default_locale, nullptr);
    EXPECT_STREQ(ctx.conv.default_locale->time->language, "german");
    EXPECT_EQ(ctx.conv.default_locale->ctype, ctx.conv.default_locale->time);
    EXPECT_NE(ctx.conv.conv_table, nullptr);
    EXPECT_EQ(ctx.null_count, COMN_CONV_DIM);
    const ComMsgCache *msgs = ctx.conv.default_locale->message->msgcache;
    ASSERT_NE(msgs, nullptr);
    ASSERT_NE(msgs->files, nullptr);
    EXPECT_STREQ(msgs->files->name, "cslib.loc");
    LocaleHandle *h = nullptr;
    ASSERT_EQ(comn_loc_alloc(&ctx, &h), 1);
    EXPECT_EQ(h->time, ctx.conv.default_locale->time);
    comn_ctx_teardown(&ctx);
    const ComContext zero{};
    EXPECT_EQ(std::memcmp(&ctx, &zero, sizeof ctx), 0);

    // A locale that ships no message file still sets up.
    all.set("de_DE.cp850");
    ASSERT_EQ(comn_ctx_setup(&ctx), 1);
    EXPECT_EQ(ctx.conv.default_locale->message->msgcache, nullptr);
    comn_ctx_teardown(&ctx);

    all.set("xx_YY");
    EXPECT_EQ(comn_ctx_setup(&ctx), 0);
    EXPECT_EQ(std::memcmp(&ctx, &zero, sizeof ctx), 0);
}

// "common.loc" files with one entry changed (or dropped, when the text is empty): the load's
// answer, the reader status kept, and whether a record was cached.
TEST(LocaleLoad, CommonLocFilesThatAreRefused) {
    const std::string l12 = "a,b,c,d,e,f,g,h,i,j,k,l", m20(20, 'm'), s9(9, 's'), d30(30, 'd');
    const std::pair<const char *, std::string> good[] = {
        {"months", l12},   {"shortmonths", l12}, {"days", "1,2,3,4,5,6,7"},
        {"firstday", "7"}, {"dateorder", "dmy"}, {"twelvehour", "1"}};
    auto common = [&](const std::map<std::string, std::string> &changed) {
        std::string text = "[datetime]\n";
        for (const auto &[k, v] : good) {
            const auto it = changed.find(k);
            const std::string value = it == changed.end() ? v : it->second;
            if (!value.empty()) text += std::string(k) + "=" + value + "\n";
        }
        return text;
    };
    struct Case {
        std::string text;
        int32_t rc, status;
    } cases[] = {
        {"", COM_INTL_ERROR, INTL_E_OPEN},
        {"[other]\nmonths=x\n", 0, 0},
        {common({}), 1, 0},
        {common({{"months", m20 + ",b,c,d,e,f,g,h,i,j,k,l"}}), 1, 0}, // the longest names
        {common({{"shortmonths", s9 + ",b,c,d,e,f,g,h,i,j,k,l"}}), 1, 0},
        {common({{"days", d30 + ",2,3,4,5,6,7"}}), 1, 0},
        {common({{"months", m20 + "m,b,c,d,e,f,g,h,i,j,k,l"}}), COM_INTL_ERROR, INTL_E_TOOLONG},
        {common({{"shortmonths", s9 + "s,b,c,d,e,f,g,h,i,j,k,l"}}), COM_INTL_ERROR, INTL_E_TOOLONG},
        {common({{"days", d30 + "d,2,3,4,5,6,7"}}), COM_INTL_ERROR, INTL_E_TOOLONG},
        {common({{"months", "a,b,c,d,e,f,g,h,i,j,k"}}), COM_INTL_ERROR, INTL_E_SYNTAX},
        {common({{"days", "1,2,3,4,5,6,7,8"}}), COM_INTL_ERROR, INTL_E_SYNTAX},
        {common({{"days", "1,2,,4,5,6,7"}}), COM_INTL_ERROR, INTL_E_SYNTAX},
        {common({{"firstday", "8"}}), COM_INTL_ERROR, INTL_E_SYNTAX},
        {common({{"twelvehour", ""}}), COM_INTL_ERROR, INTL_E_SYNTAX},
        {common({{"dateorder", "dmyx"}}), COM_INTL_ERROR, INTL_E_TOOLONG},
        {common({{"dateorder", "xyz"}}), 1, 0},
        {"[datetime]\nmonths=\"a\n", COM_INTL_ERROR, INTL_E_SYNTAX},
    };
    for (const Case &k : cases) {
        SCOPED_TRACE(k.text);
        ScratchHome home(k.text);
        LocCtx c;
        c->intl_status = 99;
        LocaleRecord *r = nullptr;
        ASSERT_EQ(com_intl_load(c.get(), "xx", 2, &r), k.rc);
        if (k.rc != 0) {
            EXPECT_EQ(c->intl_status, k.status);
        }
        EXPECT_EQ(c->loc_cache == nullptr, k.rc != 1);
    }
    // An unknown order reads as mdy, style 9; days start at the first day.
    ScratchHome home(common({{"firstday", "3"}, {"dateorder", "xyz"}}));
    LocCtx c;
    LocaleRecord *r = c.load("xx");
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->dateorder_id, 1);
    EXPECT_EQ(r->common->dtfmt, 9);
    const char *rotated[] = {"3", "4", "5", "6", "7", "1", "2"};
    for (int i = 0; i < 7; ++i)
        EXPECT_STREQ(r->common->days[i], rotated[i]);
}

} // namespace
