// Japanese translation between the sets: round trips over every two-byte cell, every Shift-JIS
// pair, the fixed substitutions, characters cut by either end, and piecewise translation
// agreeing with one call. What each pair writes for every JIS X 0208 character is compared
// with Python's codecs by check_xlate_single.py.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

struct Out {
    Bytes text;
    int32_t bits, consumed, produced;
};

Out run(ComXlateFunc f, const Bytes &in, size_t room) {
    Out o{Bytes(room, 0xEE), 0, -1, -1};
    o.bits = f(in.data(), static_cast<int32_t>(in.size()), o.text.data(),
               static_cast<int32_t>(room), &o.consumed, &o.produced);
    o.text.resize(static_cast<size_t>(std::max(o.produced, 0)));
    return o;
}

Out run(ComXlateFunc f, const Bytes &in) {
    return run(f, in, in.size());
}

TEST(XlateJapanese, RoundTripsOverEveryTwoByteCell) {
    for (unsigned c1 = 0xA1; c1 <= 0xFE; ++c1) {
        for (unsigned c2 = 0xA1; c2 <= 0xFE; ++c2) {
            const Bytes euc{static_cast<uint8_t>(c1), static_cast<uint8_t>(c2)};
            const Out sjis = run(com__fou_eucjis_to_sjis, euc);
            ASSERT_EQ(sjis.bits, 0);
            EXPECT_EQ(run(com__fou_sjis_to_eucjis_deckanj, sjis.text).text, euc);
            const Out dec = run(com__fou_eucjis_to_deckanji, euc);
            ASSERT_EQ(dec.bits, 0);
            EXPECT_EQ(run(com__fou_deckanji_to_eucjis, dec.text).text, euc);
            EXPECT_EQ(run(com__fou_deckanji_to_sjis, dec.text).text, sjis.text);
            EXPECT_EQ(run(com__fou_eucjis_to_ascii8, euc).text, Bytes({'?', '?'}));
        }
    }
}

// Every Shift-JIS lead byte with every second byte: valid pairs of rows 1-94 survive the trip
// through EUC; every other pair becomes "??".
TEST(XlateJapanese, ShiftJisPairsOutsideJisX0208BecomeQuestionMarks) {
    for (unsigned s1 = 0x81; s1 <= 0xFC; ++s1) {
        if (s1 >= 0xA0 && s1 < 0xE0) continue;
        for (unsigned s2 = 0; s2 <= 0xFF; ++s2) {
            const Bytes sjis{static_cast<uint8_t>(s1), static_cast<uint8_t>(s2)};
            const bool valid =
                s1 <= 0xEF && ((s2 >= 0x40 && s2 <= 0x7E) || (s2 >= 0x80 && s2 <= 0xFC));
            const Out e = run(com__fou_sjis_to_eucjis_deckanj, sjis);
            SCOPED_TRACE(testing::Message() << std::hex << s1 << " " << s2);
            EXPECT_EQ(e.consumed, 2);
            if (valid) {
                EXPECT_EQ(e.bits, 0);
                EXPECT_EQ(run(com__fou_eucjis_to_sjis, e.text).text, sjis);
            } else {
                EXPECT_EQ(e.bits, COM_XLT_BADCHAR);
                EXPECT_EQ(e.text, Bytes({'?', '?'}));
            }
        }
    }
}

struct Case {
    const char *name;
    ComXlateFunc f;
    Bytes in;
    size_t room;
    Bytes out;
    int32_t bits;
};

// clang-format off
const Case k_cases[] = {
    {"euc ascii",         com__fou_eucjis_to_sjis, {'a', 0x00, 0x7F}, 3, {'a', 0x00, 0x7F}, 0},
    {"euc kana",          com__fou_eucjis_to_sjis, {0x8E, 0xB1, 'b'}, 3, {'?', '?', 'b'}, 1},
    {"euc 8F",            com__fou_eucjis_to_sjis, {0x8F, 0xB0, 0xA1, 'c'}, 4, {'?', '?', '?', 'c'}, 1},
    {"euc bad lead",      com__fou_eucjis_to_sjis, {0xFF, 0x80, 0xA0}, 3, {'?', '?', '?'}, 1},
    {"euc bad trail",     com__fou_eucjis_to_sjis, {0xB0, 0x41}, 2, {'?', '?'}, 1},
    {"euc cut lead",      com__fou_eucjis_to_sjis, {'a', 0xB0}, 2, {'a'}, 0},
    {"euc cut 8F",        com__fou_eucjis_to_sjis, {'a', 0x8F, 0xB0}, 3, {'a'}, 0},
    {"euc cut 8F early",  com__fou_eucjis_to_sjis, {0x8F}, 1, {}, 0},
    {"euc cut kana",      com__fou_eucjis_to_sjis, {'a', 0x8E}, 2, {'a'}, 0},
    {"euc short dest",    com__fou_eucjis_to_sjis, {0xB0, 0xA1, 0xB0, 0xA1}, 3, {0x88, 0x9F}, 2},
    {"euc short kana",    com__fou_eucjis_to_sjis, {0x8E, 0xB1}, 1, {}, 2},
    {"euc bad and short", com__fou_eucjis_to_sjis, {0xFF, 0xB0, 0xA1}, 2, {'?'}, 3},
    {"euc to ascii",      com__fou_eucjis_to_ascii8, {'a', 0xB0, 0xA1, 0x8E, 0xB1, 0x8F, 0xA1, 0xA1, 0xFF}, 9,
                          {'a', '?', '?', '?', '?', '?', '?', '?', '?'}, 1},
    {"euc to ascii cut",  com__fou_eucjis_to_ascii8, {'a', 0x8F, 0xA1}, 3, {'a'}, 0},
    {"euc to deckanji",   com__fou_eucjis_to_deckanji, {0xB0, 0xA1, 0x8E, 0xB1}, 4, {0xB0, 0xA1, '?', '?'}, 1},
    {"sjis kana",         com__fou_sjis_to_eucjis_deckanj, {0xB1, 0xDF, 'x'}, 3, {'?', '?', 'x'}, 1},
    {"sjis single bad",   com__fou_sjis_to_eucjis_deckanj, {0x80, 0xA0, 0xFD, 0xFF}, 4, {'?', '?', '?', '?'}, 1},
    {"sjis user area",    com__fou_sjis_to_eucjis_deckanj, {0xF0, 0x40}, 2, {'?', '?'}, 1},
    {"sjis cut lead",     com__fou_sjis_to_eucjis_deckanj, {'a', 0x88}, 2, {'a'}, 0},
    {"sjis cut user lead", com__fou_sjis_to_eucjis_deckanj, {0xFC}, 1, {}, 0},
    {"sjis to ascii",     com__fou_sjis_to_ascii8, {0x88, 0x9F, 0xB1, 0x80, 'x'}, 5, {'?', '?', '?', '?', 'x'}, 1},
    {"sjis to ascii cut", com__fou_sjis_to_ascii8, {'x', 0xE0}, 2, {'x'}, 0},
    {"deckanji user",     com__fou_deckanji_to_eucjis, {0xB0, 0x21, 'y'}, 3, {'?', '?', 'y'}, 1},
    {"deckanji no kana",  com__fou_deckanji_to_eucjis, {0x8E, 'x'}, 2, {'?', 'x'}, 1},
    {"deckanji cut",      com__fou_deckanji_to_sjis, {'a', 0xB0}, 2, {'a'}, 0},
    {"deckanji to ascii", com__fou_deckanji_to_ascii8, {0xB0, 0xA1, 0xA0, 'z'}, 4, {'?', '?', '?', 'z'}, 1},
};
// clang-format on

TEST(XlateJapanese, Cases) {
    for (const Case &c : k_cases) {
        SCOPED_TRACE(c.name);
        const Out o = run(c.f, c.in, c.room);
        EXPECT_EQ(o.text, c.out);
        EXPECT_EQ(o.bits, c.bits);
        EXPECT_EQ(o.consumed, static_cast<int32_t>(c.out.size()));
        EXPECT_EQ(o.produced, static_cast<int32_t>(c.out.size()));
    }
}

// Random text mixing ASCII, kanji, kana, supplementary kanji and stray bytes, translated in
// pieces of random size (each call resuming where the last one stopped) gives what one call
// gives. Cut characters must be left, not damaged.
Bytes random_text(std::mt19937 &rng, ComXlateFunc f) {
    const bool from_sjis = f == com__fou_sjis_to_eucjis_deckanj || f == com__fou_sjis_to_ascii8;
    Bytes t;
    for (int i = 0; i < 400; ++i) {
        const unsigned k = rng() % 10, a = 0xA1 + rng() % 94, b = 0xA1 + rng() % 94;
        if (k < 3) {
            t.push_back(static_cast<uint8_t>(0x20 + rng() % 0x5F));
        } else if (k < 7) {
            const Bytes euc{static_cast<uint8_t>(a), static_cast<uint8_t>(b)};
            const Bytes c = from_sjis ? run(com__fou_eucjis_to_sjis, euc).text : euc;
            t.insert(t.end(), c.begin(), c.end());
        } else if (k == 7) {
            t.insert(t.end(), {0x8E, static_cast<uint8_t>(a)});
        } else if (k == 8) {
            t.insert(t.end(), {0x8F, static_cast<uint8_t>(a), static_cast<uint8_t>(b)});
        } else {
            t.push_back(static_cast<uint8_t>(rng()));
        }
    }
    return t;
}

TEST(XlateJapanese, PiecewiseTranslationMatchesOneCall) {
    const ComXlateFunc funcs[] = {
        com__fou_eucjis_to_sjis,   com__fou_eucjis_to_deckanji,     com__fou_eucjis_to_ascii8,
        com__fou_sjis_to_ascii8,   com__fou_sjis_to_eucjis_deckanj, com__fou_deckanji_to_eucjis,
        com__fou_deckanji_to_sjis, com__fou_deckanji_to_ascii8,
    };
    std::mt19937 rng(9);
    for (ComXlateFunc f : funcs) {
        for (int round = 0; round < 20; ++round) {
            const Bytes text = random_text(rng, f);
            const Out whole = run(f, text, text.size() + 8);
            Bytes pieces;
            size_t pos = 0;
            while (pos < text.size()) {
                const size_t want = 1 + rng() % 7, rest = text.size() - pos;
                Bytes piece(text.begin() + pos, text.begin() + pos + std::min(want, rest));
                const Out o = run(f, piece, piece.size() + rng() % 2);
                ASSERT_LE(o.consumed, static_cast<int32_t>(piece.size()));
                if (o.consumed == 0) {
                    // Only a cut character may be left; given the rest of the text the whole
                    // call stops in the same place.
                    if (want >= rest) break;
                    continue;
                }
                pieces.insert(pieces.end(), o.text.begin(), o.text.end());
                pos += static_cast<size_t>(o.consumed);
            }
            EXPECT_EQ(pieces, whole.text);
            EXPECT_EQ(pos, static_cast<size_t>(whole.consumed));
        }
    }
}

} // namespace
