// Translation through locales: character sets loaded from the bundled home, hung on locale
// handles as the locale cache does, and the context's default handle for formats without one.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "intl_test_util.h"

namespace {

class XlateLocales : public testing::Test {
  protected:
    void SetUp() override {
        veldar.set(COMN_TEST_HOME);
        for (const char *set : {"iso_1", "cp850", "cp437", "eucjis", "sjis", "deckanji"}) {
            ComCharsetDesc *d = nullptr;
            ASSERT_EQ(com__charset_desc_get(&ctx, set, "binary", &d), 1) << set;
            add(set, d);
        }
        // The case-swapped test set has no files; its description is made by hand.
        ASSERT_EQ(com_build_char_attrib(COM_CHARATTR_TYPEMAP, COM_XLT_CASESWAP, "caseswap",
                                        const_cast<uint8_t *>(com_get_typemap()), &swap_attr),
                  1);
        swap_desc.attr = &swap_attr;
        add("caseswap", &swap_desc);
        // A set translation does not know.
        other_attr = swap_attr;
        other_attr.xlate_id = COM_XLATE_UNKNOWN;
        other_desc.attr = &other_attr;
        add("other", &other_desc);
        bare = LocaleHandle{}; // no ctype record: the built-in iso_1 attributes
    }
    void TearDown() override { com__charset_drop_all(&ctx); }

    void add(const std::string &set, ComCharsetDesc *d) {
        records[set].charset_desc = d;
        handles[set].ctype = &records[set];
    }
    DataFormat fmt(const char *set, int32_t type, int32_t len) {
        DataFormat f{};
        f.datatype = type;
        f.maxlength = len;
        f.locale = set ? &handles.at(set) : nullptr;
        return f;
    }
    int32_t mode(const char *from, const char *to) {
        DataFormat s = fmt(from, CS_CHAR, 1), d = fmt(to, CS_CHAR, 1);
        int32_t m = -1;
        EXPECT_EQ(com_intl_will_xlate(&ctx, &s, &d, &m), CS_SUCCEED);
        return m;
    }

    EnvGuard veldar{"VELDAR"};
    ComContext ctx{};
    CharAttrib swap_attr{}, other_attr{};
    ComCharsetDesc swap_desc{}, other_desc{};
    std::map<std::string, LocaleRecord> records;
    std::map<std::string, LocaleHandle> handles;
    LocaleHandle bare{};
};

TEST_F(XlateLocales, CharacterSetIdsComeFromTheCtypeAttributes) {
    EXPECT_EQ(com__intl_get_csid(&records["cp437"]), COM_XLT_CP437);
    EXPECT_EQ(com__intl_get_csid(&records["sjis"]), COM_XLT_SJIS);
    EXPECT_EQ(com__intl_get_csid(&records["caseswap"]), COM_XLT_CASESWAP);
    EXPECT_EQ(com__intl_get_csid(nullptr), COM_XLT_ISO1);
}

TEST_F(XlateLocales, ModesOfPairs) {
    struct {
        const char *from, *to;
        int32_t mode;
        ComXlateFunc func;
    } cases[] = {
        {"cp850", "cp850", COM_XLT_MODE_COPY, nullptr},
        {"iso_1", "cp437", COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp437},
        {"iso_1", "sjis", COM_XLT_MODE_ASCII, com__fou_ascii8_tofrom_1byte},
        {"eucjis", "sjis", COM_XLT_MODE_CONVERT, com__fou_eucjis_to_sjis},
        {"sjis", "deckanji", COM_XLT_MODE_CONVERT, com__fou_sjis_to_eucjis_deckanj},
        {"iso_1", "caseswap", COM_XLT_MODE_CONVERT, com__fou_caseswap},
        {"cp850", "caseswap", COM_XLT_MODE_NONE, nullptr},
        {"caseswap", "iso_1", COM_XLT_MODE_ASCII, com__fou_ascii8_tofrom_1byte},
        {"other", "iso_1", COM_XLT_MODE_NONE, nullptr}, // no row
        {"iso_1", "other", COM_XLT_MODE_NONE, nullptr}, // no cell
        {"other", "other", COM_XLT_MODE_COPY, nullptr}, // same handle
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.from) + " -> " + c.to);
        EXPECT_EQ(mode(c.from, c.to), c.mode);
        DataFormat s = fmt(c.from, CS_CHAR, 1), d = fmt(c.to, CS_CHAR, 1);
        EXPECT_EQ(com__intl_get_xlate(&ctx, &s, &d), c.func);
    }
}

TEST_F(XlateLocales, FormatsWithoutLocaleTakeTheContextDefault) {
    DataFormat s = fmt(nullptr, CS_CHAR, 1), d = fmt("cp437", CS_CHAR, 1);
    int32_t m = -1;
    // No default at all: the built-in iso_1 attributes.
    ASSERT_EQ(com_intl_will_xlate(&ctx, &s, &d, &m), CS_SUCCEED);
    EXPECT_EQ(m, COM_XLT_MODE_CONVERT);
    ASSERT_EQ(com_intl_will_xlate(nullptr, &s, &d, &m), CS_SUCCEED);
    EXPECT_EQ(m, COM_XLT_MODE_CONVERT);
    ctx.conv.default_locale = &handles["cp437"];
    ASSERT_EQ(com_intl_will_xlate(&ctx, &s, &d, &m), CS_SUCCEED);
    EXPECT_EQ(m, COM_XLT_MODE_COPY);
    // Different handles over the same set copy too; so does a bare handle against iso_1.
    LocaleRecord rec{};
    rec.charset_desc = records["cp437"].charset_desc;
    LocaleHandle other{};
    other.ctype = &rec;
    s.locale = &other;
    ASSERT_EQ(com_intl_will_xlate(&ctx, &s, &d, &m), CS_SUCCEED);
    EXPECT_EQ(m, COM_XLT_MODE_COPY);
    s.locale = &bare;
    d.locale = &handles["iso_1"];
    ASSERT_EQ(com_intl_will_xlate(&ctx, &s, &d, &m), CS_SUCCEED);
    EXPECT_EQ(m, COM_XLT_MODE_COPY);
    EXPECT_EQ(com_intl_will_xlate(&ctx, nullptr, &d, &m), CS_FAIL);
}

TEST_F(XlateLocales, DriverTranslatesThroughTheLocales) {
    struct {
        const char *from, *to, *in;
        int32_t room, status;
        std::string out;
    } cases[] = {
        {"iso_1", "cp437", "caf\xE9", 8, CS_SUCCEED, "caf\x82"},
        {"iso_1", "cp437", "\xA4", 8, CS_CONV_BADXLT, "?"},
        {"iso_1", "cp850", "na\xEFve", 3, CS_CONV_OVERFLOW, "na\x8B"},
        {"eucjis", "sjis", "\xB0\xA1", 8, CS_SUCCEED, "\x88\x9F"},
        {"eucjis", "sjis", "a\xB0", 8, CS_SUCCEED, "a"}, // the cut lead byte waits
        {"sjis", "iso_1", "\x88\x9Fz", 8, CS_CONV_BADXLT, "??z"},
        {"cp850", "caseswap", "abc", 8, CS_CONV_NOXLT, ""},
        {"cp850", "cp850", "abc", 2, CS_CONV_OVERFLOW, "ab"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.from) + " -> " + c.to + ": " + c.in);
        DataFormat s = fmt(c.from, CS_CHAR, static_cast<int32_t>(std::strlen(c.in)));
        DataFormat d = fmt(c.to, CS_CHAR, c.room);
        char out[16] = {};
        int32_t len = -1, state[2] = {-1, -1};
        EXPECT_EQ(com_intl_xlate(&ctx, &s, const_cast<char *>(c.in), &d, out, &len, state),
                  c.status);
        EXPECT_EQ(std::string(out, static_cast<size_t>(len)), c.out);
        EXPECT_EQ(state[0], static_cast<int32_t>(c.out.size()));
        char again[16] = {};
        int32_t len2 = -1, state2[2] = {};
        EXPECT_EQ(comb__intl_xlate(&ctx, &s, const_cast<char *>(c.in), &d, again, &len2, state2),
                  c.status);
        EXPECT_EQ(std::string(again, static_cast<size_t>(len2)), c.out);
    }
}

} // namespace
