// Translation through locales: sets hung on locale handles as the locale cache does, the
// driver's statuses, state words and CS_VARCHAR framing, and its plain copy of CS_VARCHAR.
#include <cstring>
#include <map>
#include <utility>

#include "intl/xlate/xlate_dispatch.h"
#include "intl_test_util.h"

namespace {

class XlateLocales : public testing::Test {
  protected:
    void SetUp() override {
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

    ComContext ctx{};
    CharAttrib swap_attr{}, other_attr{};
    ComCharsetDesc swap_desc{}, other_desc{};
    std::map<std::string, LocaleRecord> records;
    std::map<std::string, LocaleHandle> handles;
    LocaleHandle bare{};
};

// Every pair of sets resolves through the locales to the mode and converter of the exported
// table's cell; utf8's row and column to its own converters; an unknown set to none.
TEST_F(XlateLocales, EveryPairResolvesAsTheTableSays) {
    const char *names[COM_XLT_NSETS] = {"ascii8", "iso_1",  "cp850", "cp437",    "roman8",
                                        "mac",    "eucjis", "sjis",  "deckanji", "caseswap"};
    const ComXlateFunc to_utf8[COM_XLT_NSETS] = {
        com__fou_ascii8_tofrom_1byte, com__fou_iso1_to_utf8,   com__fou_cp850_to_utf8,
        com__fou_cp437_to_utf8,       com__fou_roman8_to_utf8, com__fou_mac_to_utf8,
        com__fou_eucjis_to_utf8,      com__fou_sjis_to_utf8,   com__fou_deckanji_to_utf8};
    const ComXlateFunc from_utf8[COM_XLT_NSETS] = {
        com__fou_utf8_to_ascii8, com__fou_utf8_to_iso1,   com__fou_utf8_to_cp850,
        com__fou_utf8_to_cp437,  com__fou_utf8_to_roman8, com__fou_utf8_to_mac,
        com__fou_utf8_to_eucjis, com__fou_utf8_to_sjis,   com__fou_utf8_to_deckanji};
    auto check = [&](const char *from, const char *to, int32_t want, ComXlateFunc func) {
        SCOPED_TRACE(std::string(from) + " -> " + to);
        EXPECT_EQ(mode(from, to), want);
        DataFormat s = fmt(from, CS_CHAR, 1), d = fmt(to, CS_CHAR, 1);
        EXPECT_EQ(com__intl_get_xlate(&ctx, &s, &d), func);
    };
    const int32_t NONE = COM_XLT_MODE_NONE, CONV = COM_XLT_MODE_CONVERT;
    for (int r = 0; r < COM_XLT_NSETS; ++r) {
        const ComXltRow &row = Com_fou_xlt_map[r];
        EXPECT_EQ(com__intl_get_csid(&records[names[r]]), row.src_id);
        for (int c = 0; c < COM_XLT_NSETS; ++c)
            check(names[r], names[c], row.cells[c].mode, row.cells[c].func);
        check("utf8", names[r], from_utf8[r] ? CONV : NONE, from_utf8[r]);
        check(names[r], "utf8", r == 0 ? COM_XLT_MODE_ASCII : to_utf8[r] ? CONV : NONE, to_utf8[r]);
        check("other", names[r], NONE, nullptr); // no row
        check(names[r], "other", NONE, nullptr); // no cell
    }
    check("utf8", "utf8", COM_XLT_MODE_COPY, nullptr);
    check("other", "other", COM_XLT_MODE_COPY, nullptr); // same handle
    EXPECT_EQ(com__intl_get_csid(nullptr), COM_XLT_ISO1);
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

// The plain copy of a CS_VARCHAR starts at the record's length word (and leaves a record
// copied onto itself alone); a damaged length word is kept within the record.
struct VarChar {
    int16_t len;
    char text[256];
};
static_assert(sizeof(VarChar) == 258);

TEST(XlateDriver, VarCharCopyAndDamagedLengths) {
    VarChar in{5, "hello"}, out{};
    int32_t len = 0, state[2] = {};
    DataFormat s{}, d{};
    s.datatype = d.datatype = CS_VARCHAR;
    s.maxlength = d.maxlength = 258;
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, &in, &d, &out, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(len, 5);
    EXPECT_EQ(out.len, 5);
    // The five bytes copied are the source's length word and its first three characters.
    EXPECT_EQ(std::memcmp(out.text, &in, 5), 0);
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, &in, &d, &in, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(std::string(in.text, 5), "hello");
    EXPECT_EQ(in.len, 5);

    // A length word beyond the record reads 256 bytes; a negative one reads none.
    char text[300] = {};
    d.datatype = CS_CHAR;
    d.maxlength = sizeof text;
    for (const auto &[word, want] : {std::pair<int16_t, int32_t>{3000, 256}, {-5, 0}}) {
        in.len = word;
        EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp850, &s, &in, &d, text,
                                  &len, state),
                  CS_SUCCEED);
        EXPECT_EQ(len, want);
    }
}

} // namespace
