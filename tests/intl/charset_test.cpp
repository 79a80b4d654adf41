// The character set and sort order loaders over the bundled home and broken files in temporary
// homes. (Each record's answers are compared with Python by check_charsets.py.)
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#include "intl/ctype/charset_internal.h"
#include "intl_test_util.h"

namespace {

// The header's inline tests must answer as the routines do, for every first byte and, behind a
// lead byte, every second byte, in each bundled set (the multibyte ones reach the pages).
TEST(CharsetLoader, InlineTestsAgreeWithTheRoutines) {
    LocCtx ctx;
    using ClassTest = int32_t (*)(const CharAttrib *, const char *);
    const ClassTest routines[] = {(comn_isalpha),  (comn_isupper), (comn_islower), (comn_isdigit),
                                  (comn_isxdigit), (comn_isspace), (comn_ispunct), (comn_isgraph)};
    for (const char *set : {"iso_1", "cp850", "roman8", "mac", "eucjis", "sjis", "deckanji"}) {
        const CharAttrib *const attrs[] = {nullptr, ctx.desc(set)->attr};
        for (const CharAttrib *a : attrs)
            for (int b0 = 0; b0 < 256; ++b0)
                for (int b1 = 0; b1 < 256; b1 += (b1 < 0x40 ? 0x1F : 1)) {
                    const char c[2] = {static_cast<char>(b0), static_cast<char>(b1)};
                    const int32_t inline_forms[] = {comn_isalpha(a, c),  comn_isupper(a, c),
                                                    comn_islower(a, c),  comn_isdigit(a, c),
                                                    comn_isxdigit(a, c), comn_isspace(a, c),
                                                    comn_ispunct(a, c),  comn_isgraph(a, c)};
                    for (size_t i = 0; i < std::size(routines); ++i)
                        ASSERT_EQ(inline_forms[i], routines[i](a, c))
                            << set << " test " << i << " bytes " << b0 << " " << b1;
                }
    }
    // The older family follows Com_charmap wherever it points.
    std::vector<uint8_t> swapped(Com_Iso1_charmap, Com_Iso1_charmap + 1024);
    for (int c = 0; c < 256; ++c)
        std::swap(swapped[4 * c], swapped[4 * c + 1]);
    swapped[4 * '7' + 3] = COM_CT_UPPER;
    const uint8_t *saved = Com_charmap;
    for (const uint8_t *map : {Com_Iso1_charmap, static_cast<const uint8_t *>(swapped.data())}) {
        Com_charmap = map;
        for (int c = -128; c < 256; ++c) {
            EXPECT_EQ(com_isalpha(c), (com_isalpha)(c)) << c;
            EXPECT_EQ(com_isupper(c), (com_isupper)(c)) << c;
            EXPECT_EQ(com_islower(c), (com_islower)(c)) << c;
            EXPECT_EQ(com_isdigit(c), (com_isdigit)(c)) << c;
            EXPECT_EQ(com_isxdigit(c), (com_isxdigit)(c)) << c;
            EXPECT_EQ(com_isspace(c), (com_isspace)(c)) << c;
            EXPECT_EQ(com_isgraph(c), (com_isgraph)(c)) << c;
            EXPECT_EQ(com_toupper(c), (com_toupper)(c)) << c;
            EXPECT_EQ(com_tolower(c), (com_tolower)(c)) << c;
        }
    }
    EXPECT_EQ(com_isupper('7'), COM_CT_UPPER);
    Com_charmap = saved;
    EXPECT_EQ(com_isupper('7'), 0);
}

// A minimal valid pair of files, which the failure cases below spoil one at a time.
const std::string Good_charset = "[charset]\nid = 7\nlevel = 1\n[typemap]\n00 = 00000008\n";
std::string good_sort() {
    std::string s = "[sortorder]\nid = 3\n[weights]\n";
    for (int row = 0; row < 256; row += 16) {
        char line[200];
        int n = std::snprintf(line, sizeof line, "%02X =", row);
        for (int i = 0; i < 16; ++i)
            n += std::snprintf(line + n, sizeof line - n, "%s %02X000100", i ? "," : "", row + i);
        s += std::string(line) + "\n";
    }
    return s;
}

TEST(CharsetLoader, BrokenFilesGiveCleanStatuses) {
    EnvGuard veldar("VELDAR");
    TempHome home;
    veldar.set(home.path);
    struct Case {
        std::string charset, sort;
        int32_t rc, status;
    } cases[] = {
        {Good_charset, good_sort(), 1, 0},
        {"", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX}, // no type map
        {Good_charset + "00 = 0000008\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "F8 = 0,0,0,0,0,0,0,0,0\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "41 = 02000080\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "[typemap 2]\n41 = 02000080\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "[typemap x]\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "[widthmap]\n00 = 10\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "[widthmap]\n00 = 15\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {"[charset]\nlevel = 9\n[typemap]\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {"[charset]\nflags = 1, 2\n[typemap]\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset + "\"\n", good_sort(), COM_INTL_ERROR, INTL_E_SYNTAX},
        {Good_charset, "", COM_INTL_ERROR, INTL_E_SYNTAX}, // no weights
        {Good_charset, good_sort().substr(0, good_sort().size() - 30), COM_INTL_ERROR,
         INTL_E_SYNTAX},                                                                // truncated
        {Good_charset, good_sort() + "41 = 00000000\n", COM_INTL_ERROR, INTL_E_SYNTAX}, // node 0?
        {Good_charset, good_sort() + "41 = 00000000\n[specials]\n0 = 1, 0, 00000000, 00000000\n",
         COM_INTL_ERROR, INTL_E_SYNTAX}, // next names no node
        {Good_charset,
         good_sort() + "[specials]\n0 = 1, 2, 00000000, 00000000\n1 = 0, 2, 00000000, 00000000\n",
         COM_INTL_ERROR, INTL_E_SYNTAX}, // a loop
        {Good_charset, good_sort() + "[specials]\n0 = 255, 4, 00000000, 00000000\n", COM_INTL_ERROR,
         INTL_E_SYNTAX}, // unknown kind
        {Good_charset, good_sort() + "41 = 00000000\n[specials]\n0 = 255, 3, 01020304, 05060708\n",
         1, 0},
    };
    int i = 0;
    for (const auto &c : cases) {
        home.write("charsets/t/charset.loc", c.charset);
        home.write("charsets/t/o.srt", c.sort);
        ComContext ctx{};
        ComCharsetDesc *d = nullptr;
        EXPECT_EQ(com__charset_desc_get(&ctx, "t", "o", &d), c.rc) << "case " << i;
        if (c.rc != 1) {
            EXPECT_EQ(ctx.intl_status, c.status) << "case " << i;
            EXPECT_EQ(ctx.charset_descs, nullptr);
        }
        com__charset_drop_all(&ctx);
        ++i;
    }
    ComContext ctx{};
    ComCharsetDesc *d = nullptr;
    home.remove("charsets/t/o.srt");
    EXPECT_EQ(com__charset_desc_get(&ctx, "t", "o", &d), COM_INTL_ERROR);
    EXPECT_EQ(ctx.intl_status, INTL_E_OPEN);
    EXPECT_EQ(com__charset_desc_get(&ctx, std::string(2000, 'x').c_str(), "o", &d), 0);
    EXPECT_EQ(ctx.charset_descs, nullptr);
}

// A width map of one-byte characters except the two-byte lead 80.
std::string width_rows() {
    std::string s = "[widthmap]\n";
    for (int row = 0; row < 256; row += 16) {
        char head[8];
        std::snprintf(head, sizeof head, "%02X = ", row);
        s += head;
        for (int i = 0; i < 16; ++i)
            s += std::string(i ? ", " : "") + (row + i == 0x80 ? "22" : "11");
        s += "\n";
    }
    return s;
}

TEST(CharsetLoader, ImageHeaderFromFile) {
    EnvGuard veldar("VELDAR");
    TempHome home;
    veldar.set(home.path);
    home.write("charsets/t/charset.loc",
               std::string("[charset]\nid = 513\nlevel = 2\nflags = 1, 2, 3, 4, 5\nxlate = 255\n") +
                   std::string("[typemap]\n80 = 01000080\n[typemap 1]\n41 = 41610151\n") +
                   width_rows() + "[second]\n0100 = AB\n");
    home.write("charsets/t/o.srt", good_sort());
    LocCtx ctx;
    const ComCharsetDesc *d = ctx.desc("t", "o");
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(ctx.desc("t", "o"), d); // kept by the context, not loaded again
    const CharAttrib *a = d->attr;
    EXPECT_EQ(a->image_id, 513);
    EXPECT_EQ(a->mb_level, 2);
    EXPECT_EQ(a->xlate_id, 255);
    const uint8_t flags[5] = {1, 2, 3, 4, 5};
    EXPECT_EQ(std::memcmp(a->flags, flags, 5), 0);
    EXPECT_EQ(a->second[0x100], 0xAB);
    EXPECT_EQ(comn_char_width(a, "\x80\x41"), 2);
    EXPECT_EQ(comn_get_lex(a, "\x80\x41"), 1);
    EXPECT_NE(comn_isupper(a, "\x80\x41"), 0);
    EXPECT_EQ(d->sort_table[0], 3);
}

} // namespace
