// Translation through locales: character sets loaded from the bundled home, hung on locale
// handles as the locale cache does, and the context's default handle for formats without one;
// the driver's statuses, state words and CS_VARCHAR framing, where lengths change with utf8.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "locale_test_util.h"

namespace {

class XlateLocales : public testing::Test {
  protected:
    void SetUp() override {
        veldar.set(COMN_TEST_HOME);
        for (const char *set : {"ascii8", "iso_1", "cp850", "cp437", "roman8", "mac", "eucjis",
                                "sjis", "deckanji", "utf8"}) {
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
        const char *from, *to;
        std::string in;
        int32_t room, status, taken;
        std::string out;
    } cases[] = {
        {"iso_1", "cp437", "caf\xE9", 8, CS_SUCCEED, 4, "caf\x82"},
        {"iso_1", "cp437", "\xA4", 8, CS_CONV_BADXLT, 1, "?"},
        {"iso_1", "cp850", "na\xEFve", 3, CS_CONV_OVERFLOW, 3, "na\x8B"},
        {"eucjis", "sjis", "\xB0\xA1", 8, CS_SUCCEED, 2, "\x88\x9F"},
        {"eucjis", "sjis", "a\xB0", 8, CS_SUCCEED, 1, "a"}, // the cut lead byte waits
        {"sjis", "iso_1", "\x88\x9Fz", 8, CS_CONV_BADXLT, 3, "??z"},
        {"cp850", "caseswap", "abc", 8, CS_CONV_NOXLT, 0, ""},
        {"cp850", "cp850", "abc", 2, CS_CONV_OVERFLOW, 2, "ab"},
        {"utf8", "iso_1", "d\xc3\xa9j\xc3\xa0", 16, CS_SUCCEED, 6, "d\xe9j\xe0"},
        {"iso_1", "utf8", "d\xe9j\xe0", 4, CS_CONV_OVERFLOW, 3, "d\xc3\xa9j"}, // à does not fit
        {"utf8", "iso_1", "\xe2\x82\xac!", 16, CS_CONV_BADXLT, 4, "?!"},       // no euro in iso_1
        {"utf8", "iso_1", "a\xe3\x81", 16, CS_CONV_BADXLT, 3, "a?"},           // cut at the end
        {"utf8", "sjis", "\xe6\x97\xa5\xef\xbd\xb6", 16, CS_SUCCEED, 6, "\x93\xfa\xb6"},
        {"sjis", "utf8", "\x93\xfa\xb6", 5, CS_CONV_OVERFLOW, 2, "\xe6\x97\xa5"},
        {"utf8", "utf8", "\xc3\xa9", 16, CS_SUCCEED, 2, "\xc3\xa9"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.from) + " -> " + c.to + ": " + c.in);
        const bool copy = std::string(c.from) == c.to;
        // A CS_VARCHAR destination has 256 bytes of room: only CS_CHAR tests a short one.
        for (const int32_t type : {CS_CHAR, CS_VARCHAR}) {
            if (type == CS_VARCHAR && c.status == CS_CONV_OVERFLOW) continue;
            DataFormat s = fmt(c.from, CS_CHAR, static_cast<int32_t>(c.in.size()));
            DataFormat d = fmt(c.to, type, c.room);
            for (auto xlate : {com_intl_xlate, comb__intl_xlate}) {
                char out[2 + 256] = {};
                int32_t len = -1, state[2] = {-1, -1};
                EXPECT_EQ(xlate(&ctx, &s, const_cast<char *>(c.in.data()), &d, out, &len, state),
                          c.status);
                const char *text = type == CS_VARCHAR ? out + 2 : out;
                EXPECT_EQ(std::string(text, static_cast<size_t>(len)), c.out);
                EXPECT_EQ(state[0], c.taken);
                EXPECT_EQ(state[1], copy ? -1 : static_cast<int32_t>(c.out.size()));
                int16_t word = -1;
                std::memcpy(&word, out, sizeof word);
                if (type == CS_VARCHAR) {
                    EXPECT_EQ(word, static_cast<int16_t>(c.out.size()));
                }
            }
        }
    }
}

// utf8's row and column of the dispatch, and the converter each cell names: "é" goes out to
// every set as iconv encodes it and comes back, or becomes "?" where the set has no é.
TEST_F(XlateLocales, Utf8ReachesEverySet) {
    struct Cell {
        const char *set, *iconv; // null: the set has no é
        int32_t to_mode, from_mode;
    } cells[] = {
        {"ascii8", nullptr, 3, 2},   {"iso_1", "ISO-8859-1", 3, 3}, {"cp850", "CP850", 3, 3},
        {"cp437", "CP437", 3, 3},    {"roman8", "HP-ROMAN8", 3, 3}, {"mac", "MACINTOSH", 3, 3},
        {"eucjis", "EUC-JP", 3, 3},  {"sjis", nullptr, 3, 3},       {"deckanji", nullptr, 3, 3},
        {"caseswap", nullptr, 0, 0},
    };
    for (const Cell &c : cells) {
        SCOPED_TRACE(c.set);
        EXPECT_EQ(mode("utf8", c.set), c.to_mode);
        EXPECT_EQ(mode(c.set, "utf8"), c.from_mode);
        if (c.to_mode == 0) continue;
        const std::string e = "\xc3\xa9", want = c.iconv ? encode(e, c.iconv) : "?";
        DataFormat u = fmt("utf8", CS_CHAR, 2), o = fmt(c.set, CS_CHAR, 8);
        char out[8], back[8];
        int32_t len = -1, back_len = -1, state[2];
        com_intl_xlate(&ctx, &u, const_cast<char *>(e.data()), &o, out, &len, state);
        EXPECT_EQ(std::string(out, static_cast<size_t>(len)), want);
        o.maxlength = len;
        u.maxlength = sizeof back;
        com_intl_xlate(&ctx, &o, out, &u, back, &back_len, state);
        EXPECT_EQ(std::string(back, static_cast<size_t>(back_len)), c.iconv ? e : "?");
    }
}

} // namespace
