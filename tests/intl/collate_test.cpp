// Collation: padding, ligatures, expansions, secondary tie-breaks and tertiary order, over the
// bundled sort orders and a small hand-made weight table; differential checks of the binary
// and nocase orders against memcmp and strcasecmp.
#include <gtest/gtest.h>
#include <strings.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "comnlib.h"
#include "intl_test_util.h"

namespace {

struct Orders {
    EnvGuard veldar{"VELDAR"};
    ComContext ctx{};
    Orders() { veldar.set(COMN_TEST_HOME); }
    ~Orders() { com__charset_drop_all(&ctx); }
    const uint8_t *table(const char *set, const char *order) {
        ComCharsetDesc *d = nullptr;
        EXPECT_EQ(com__charset_desc_get(&ctx, set, order, &d), 1) << set << " " << order;
        return d ? d->sort_table : nullptr;
    }
};

int32_t cmp(const uint8_t *t, const std::string &a, const std::string &b) {
    return com__ps_dl_sqlhilo(t, a.data(), static_cast<int32_t>(a.size()), b.data(),
                              static_cast<int32_t>(b.size()));
}
int32_t sgn(int32_t v) {
    return (v > 0) - (v < 0);
}

TEST(Collate, DictionaryLigaturesExpansionsAndSecondaryTieBreaks) {
    Orders o;
    for (const char *set : {"iso_1", "cp850"}) {
        const uint8_t *t = o.table(set, "dict");
        ASSERT_NE(t, nullptr);
        // The dictionary letters of the set, spelled in its own bytes.
        const bool iso = std::strcmp(set, "iso_1") == 0;
        const std::string ae = iso ? "\xe6" : "\x91", AE = iso ? "\xc6" : "\x92",
                          sz = iso ? "\xdf" : "\xe1", e_acute = iso ? "\xe9" : "\x82",
                          a_grave = iso ? "\xe0" : "\x85";
        struct Case {
            std::string a, b;
            int want;
        } cases[] = {
            {"cz", "ch", -1},
            {"ch", "d", -1},
            {"Ch", "cz", 1},
            {"CH", "ch", 0},
            {"c", "ch", -1},
            {"hc", "hch", -1},
            {"ca", "c", 1},
            {ae, "ae", 1},
            {ae, "af", -1},
            {ae, "ad", 1},
            {AE, "ae", 1},
            {sz, "ss", 1},
            {sz, "st", -1},
            {"a", ae, -1},
            {ae, "a", 1},
            {"Abc", "abd", -1},
            {"ABC", "abc", 0},
            // Blanks pad the shorter string.
            {"abc", "abc   ", 0},
            {"", "  ", 0},
            {"ab", "abc ", -1},
            {"a\x01", "a", 1}, // a byte below the blank still makes the longer string greater
            // Secondary differences: the first one decides, later ones the other way
            // notwithstanding.
            {e_acute + "a", "e" + a_grave, 1},
            {"e" + a_grave, e_acute + "a", -1},
            {e_acute, "e", 1},
            {e_acute, "f", -1},
        };
        for (const auto &c : cases)
            EXPECT_EQ(sgn(cmp(t, c.a, c.b)), c.want) << set << " '" << c.a << "' '" << c.b << "'";
        // A ligature's first byte at the very end of the string does not reach past it.
        EXPECT_EQ(com_ps_dl_sqlhilo(t, "ch", 1, "c", 1), 0);
        EXPECT_EQ(com_ps_dl_sqlhilo(t, "ch", 2, "c", 1), 1);
        // Tertiary order: case only.
        EXPECT_EQ(com_spec_tord(t, "abc", 3, "aBc", 3), -1);
        EXPECT_EQ(com_spec_tord(t, "aBc", 3, "abc", 3), 1);
        EXPECT_EQ(com_spec_tord(t, "ab", 2, "abC", 3), 0); // one used up: no difference
        EXPECT_EQ(com_spec_tord(t, "Ch", 2, "ch", 2), 1);
    }
}

// A weight table built by hand: every byte weighs itself (tertiary 1) except 'x', a skipped
// node before a replacement, and 'y', whose special index is 255.
std::vector<uint8_t> hand_table() {
    std::vector<uint8_t> t(COM_SORT_HEADER + 1024 + 2 * COM_SORT_NODE);
    for (int c = 0; c < 256; ++c) {
        const uint32_t w = static_cast<uint32_t>(c) | 1u << 16;
        std::memcpy(&t[COM_SORT_HEADER + 4 * c], &w, 4);
    }
    const uint32_t wx = 0u << 16 | 0u << 24, wy = 255u << 24, replaced = 'q' | 5u << 8 | 1u << 16;
    std::memcpy(&t[COM_SORT_HEADER + 4 * 'x'], &wx, 4);
    std::memcpy(&t[COM_SORT_HEADER + 4 * 'y'], &wy, 4);
    uint8_t *n0 = &t[COM_SORT_HEADER + 1024], *n1 = n0 + COM_SORT_NODE;
    n0[0] = 1, n0[1] = 2; // skipped
    n1[0] = 255, n1[1] = 0;
    std::memcpy(n1 + 4, &replaced, 4);
    t[2] = 2;
    return t;
}

TEST(Collate, SpecialListResolution) {
    const auto t = hand_table();
    const uint8_t *list = t.data() + COM_SORT_HEADER + 1024;
    const uint8_t text[] = "ab";
    const uint8_t *pos = text;
    uint32_t w = 77, second = 88;
    EXPECT_EQ(com__smel_lsc(list, 255, &pos, text + 2, &w, &second), 0);
    EXPECT_EQ(w, 77u);
    EXPECT_EQ(second, 88u);
    EXPECT_EQ(com__smel_lsc(list, 0, &pos, text + 2, &w, &second), 1);
    EXPECT_EQ(w & 0xFFFF, 'q' | 5u << 8);
    EXPECT_EQ(pos, text);
    // 'x' weighs as 'q' with a greater secondary: equal to "q" on primaries, after it on the tie.
    EXPECT_EQ(com__ps_dl_sqlhilo(t.data(), "x", 1, "q", 1), 5);
    EXPECT_EQ(com__ps_dl_sqlhilo(t.data(), "xa", 2, "qb", 2), 'a' - 'b');
}

// Random strings, some sharing a prefix and some padded with blanks, compare as strcmp and
// strcasecmp compare them with the trailing blanks removed.
TEST(Collate, DifferentialAgainstStrcmpAndStrcasecmp) {
    Orders o;
    const uint8_t *binary = o.table("iso_1", "binary");
    const uint8_t *nocase = o.table("iso_1", "nocase");
    ASSERT_TRUE(binary && nocase);
    std::mt19937 rng(7);
    const std::string alphabet = "abcABCxyzXYZ019";
    for (int i = 0; i < 20000; ++i) {
        std::string a, b;
        for (int n = rng() % 6; n > 0; --n)
            a += alphabet[rng() % alphabet.size()];
        b = rng() % 3 ? a.substr(0, rng() % (a.size() + 1)) : "";
        for (int n = rng() % 6; n > 0; --n)
            b += alphabet[rng() % alphabet.size()];
        const std::string pa = a + std::string(rng() % 3, ' '),
                          pb = b + std::string(rng() % 3, ' ');
        for (const uint8_t *t : {binary, nocase}) {
            const int32_t want =
                t == binary ? std::strcmp(a.c_str(), b.c_str()) : strcasecmp(a.c_str(), b.c_str());
            EXPECT_EQ(sgn(cmp(t, pa, pb)), sgn(want)) << "'" << pa << "' '" << pb << "'";
            // The public form answers exactly -1, 0 or 1.
            EXPECT_EQ(com_ps_dl_sqlhilo(t, pa.data(), static_cast<int32_t>(pa.size()), pb.data(),
                                        static_cast<int32_t>(pb.size())),
                      sgn(want));
        }
    }
}

// A shared plain prefix never changes the answer, however long the common run of bytes that
// follows it (which the comparison skips up to its last plain character).
TEST(Collate, CommonPrefixIsNeutral) {
    Orders o;
    const uint8_t *t = o.table("iso_1", "dict");
    ASSERT_NE(t, nullptr);
    std::mt19937 rng(11);
    const std::string alphabet = "cChHa \xe6\xdf\xe9"
                                 "e";
    auto word = [&](int max) {
        std::string s;
        for (int n = rng() % max; n > 0; --n)
            s += alphabet[rng() % alphabet.size()];
        return s;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string a = word(6), b = word(6), x = word(8) + "a";
        EXPECT_EQ(cmp(t, x + a, x + b), cmp(t, a, b)) << x << "|" << a << "|" << b;
        EXPECT_EQ(com__spec_tord(t, (x + a).data(), static_cast<int32_t>(x.size() + a.size()),
                                 (x + b).data(), static_cast<int32_t>(x.size() + b.size())),
                  com__spec_tord(t, a.data(), static_cast<int32_t>(a.size()), b.data(),
                                 static_cast<int32_t>(b.size())));
    }
}

} // namespace
