// Collation over the bundled sort orders and a hand-made weight table; the binary and nocase
// orders against strcmp and strcasecmp.
#include <strings.h>

#include <cstring>
#include <random>
#include <vector>

#include "intl_test_util.h"

namespace {

// The weight table of a bundled sort order.
const uint8_t *table(LocCtx &ctx, const char *set, const char *order) {
    const ComCharsetDesc *d = ctx.desc(set, order);
    return d ? d->sort_table : nullptr;
}

int32_t cmp(const uint8_t *t, const std::string &a, const std::string &b) {
    return com__ps_dl_sqlhilo(t, a.data(), static_cast<int32_t>(a.size()), b.data(),
                              static_cast<int32_t>(b.size()));
}
int32_t sgn(int32_t v) {
    return (v > 0) - (v < 0);
}

TEST(Collate, DictionaryLigaturesExpansionsAndSecondaryTieBreaks) {
    LocCtx ctx;
    for (const char *set : {"iso_1", "cp850"}) {
        const uint8_t *t = table(ctx, set, "dict");
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

// Random strings: plain letters, some sharing a prefix and some padded with blanks, compare
// in the binary and nocase orders as strcmp and strcasecmp compare them without the blanks;
// in the dictionary order a shared plain prefix never changes the answer, however long the
// common run of bytes that follows it (which the comparison skips up to its last plain
// character).
TEST(Collate, RandomStringsAgainstStrcmpAndUnderACommonPrefix) {
    LocCtx ctx;
    const uint8_t *binary = table(ctx, "iso_1", "binary"), *nocase = table(ctx, "iso_1", "nocase"),
                  *dict = table(ctx, "iso_1", "dict");
    ASSERT_TRUE(binary && nocase && dict);
    std::mt19937 rng(7);
    auto word = [&rng](const std::string &alphabet, int max) {
        std::string s;
        for (int n = rng() % max; n > 0; --n)
            s += alphabet[rng() % alphabet.size()];
        return s;
    };
    auto len = [](const std::string &s) { return static_cast<int32_t>(s.size()); };
    const std::string plain = "abcABCxyzXYZ019", letters = "cChHa \xe6\xdf\xe9"
                                                           "e";
    for (int i = 0; i < 20000; ++i) {
        const std::string a = word(plain, 6);
        const std::string b =
            (rng() % 3 ? a.substr(0, rng() % (a.size() + 1)) : "") + word(plain, 6);
        const std::string pa = a + std::string(rng() % 3, ' '),
                          pb = b + std::string(rng() % 3, ' ');
        for (const uint8_t *t : {binary, nocase}) {
            const int32_t want =
                t == binary ? std::strcmp(a.c_str(), b.c_str()) : strcasecmp(a.c_str(), b.c_str());
            EXPECT_EQ(sgn(cmp(t, pa, pb)), sgn(want)) << "'" << pa << "' '" << pb << "'";
            // The public form answers exactly -1, 0 or 1.
            EXPECT_EQ(com_ps_dl_sqlhilo(t, pa.data(), len(pa), pb.data(), len(pb)), sgn(want));
        }
        const std::string c = word(letters, 6), d = word(letters, 6), x = word(letters, 8) + "a";
        const std::string xc = x + c, xd = x + d;
        EXPECT_EQ(cmp(dict, xc, xd), cmp(dict, c, d)) << x << "|" << c << "|" << d;
        EXPECT_EQ(com__spec_tord(dict, xc.data(), len(xc), xd.data(), len(xd)),
                  com__spec_tord(dict, c.data(), len(c), d.data(), len(d)));
    }
}

} // namespace
