// Text to the integers and bit against a model of the scanner over random texts of every width;
// full-width numbers in each Japanese set against their ASCII twins; the cut character.
#include <gtest/gtest.h>

#include <random>

#include "text_input_util.h"

namespace {

struct Expect {
    int32_t rc;
    int32_t len;
    int64_t value; // -1000000000000 when the destination is left alone
};
constexpr int64_t kUntouched = -1000000000000;
__extension__ typedef __int128 Wide;

bool model_space(unsigned char c) {
    return c == ' ' || (c >= 0x09 && c <= 0x0F) || c == 0x8E || c == 0x8F || c == 0xA0 || c == 0xAD;
}

// kind: 1, 2, 4 (also "i8") or 0 for bit.
Expect model(const std::string &t, int kind) {
    size_t i = 0, n = t.size();
    while (i < n && model_space(static_cast<unsigned char>(t[i])))
        ++i;
    const int size = kind == 0 ? 1 : kind;
    if (i == n) return {CS_SUCCEED, size, 0};
    bool neg = false;
    if (t[i] == '+' || t[i] == '-') neg = t[i++] == '-';
    const size_t first = i;
    Wide v = 0;
    for (; i < n && t[i] >= '0' && t[i] <= '9'; ++i) {
        v = v * 10 + (t[i] - '0');
        if (v > (Wide{1} << 40)) v = Wide{1} << 40;
    }
    const bool digits = i > first;
    while (i < n && model_space(static_cast<unsigned char>(t[i])))
        ++i;
    // The narrow scanners store 0 whenever the 32-bit scan fails.
    if (!digits || i != n) return {CS_CONV_SYNTAX, 0, kind == 1 || kind == 2 ? 0 : kUntouched};
    if (neg) v = -v;
    const bool fits32 = v >= INT32_MIN && v <= INT32_MAX;
    switch (kind) {
    case 0:
        return fits32 ? Expect{CS_SUCCEED, 1, v != 0} : Expect{CS_CONV_OVERFLOW, 1, kUntouched};
    case 4:
        if (fits32) return {CS_SUCCEED, 4, static_cast<int64_t>(v)};
        return {CS_CONV_OVERFLOW, 4, v < 0 ? INT32_MIN : INT32_MAX};
    case 2:
        if (!fits32) return {CS_CONV_OVERFLOW, 2, 0};
        return {v >= -32768 && v <= 32767 ? CS_SUCCEED : CS_CONV_OVERFLOW, 2,
                static_cast<int16_t>(static_cast<uint16_t>(static_cast<int64_t>(v)))};
    default:
        if (!fits32) return {CS_CONV_OVERFLOW, 1, 0};
        return {static_cast<uint32_t>(static_cast<int64_t>(v)) <= 255 ? CS_SUCCEED
                                                                      : CS_CONV_OVERFLOW,
                1, static_cast<uint8_t>(static_cast<int64_t>(v))};
    }
}

struct Width {
    ComConvFunc f;
    int kind;
};
const Width kWidths[] = {{comn_chartoi1, 1},
                         {comn_chartoi2, 2},
                         {comn_chartoi4, 4},
                         {comn_chartoi8, 4},
                         {comn_chartobit, 0}};

Expect run(const Width &w, const std::string &t) {
    // Two runs over differently filled destinations tell a stored value from none.
    const Outcome a = convert(w.f, t, {}, nullptr, nullptr, '\x5A');
    const Outcome b = convert(w.f, t, {}, nullptr, nullptr, '\xA5');
    const size_t bytes = w.kind == 0 ? 1 : static_cast<size_t>(w.kind);
    if (a.bytes.compare(0, bytes, b.bytes, 0, bytes) != 0) return {a.rc, a.len, kUntouched};
    const int64_t v = w.kind == 4   ? value_in<int32_t>(a)
                      : w.kind == 2 ? value_in<int16_t>(a)
                                    : value_in<uint8_t>(a);
    return {a.rc, a.len, v};
}

// A number text near the edges of every width, with blanks, signs and now and then junk.
std::string random_text(std::mt19937_64 &rng) {
    static const int64_t edges[] = {0,          1,          127,        255,        256,
                                    32767,      32768,      65535,      65536,      2147483647,
                                    2147483648, 4294967295, 4294967296, 99999999999};
    auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<uint64_t>(n)); };
    std::string t;
    static const char *const blanks[] = {"", "", " ", "  ", "\t", "\xa0", "\x0e"};
    t += blanks[pick(7)];
    t += "  +- -+"[pick(7)] == ' ' ? "" : std::string(1, "+-+-"[pick(4)]);
    if (pick(10) == 0) t += std::string(static_cast<size_t>(pick(15)), '0');
    int64_t v = pick(2) ? edges[pick(14)] + pick(3) - 1 : static_cast<int64_t>(rng() >> pick(64));
    if (pick(20) != 0) t += std::to_string(v < 0 ? -v : v);
    t += blanks[pick(7)];
    if (pick(12) == 0)
        t.insert(static_cast<size_t>(pick(static_cast<int>(t.size()) + 1)),
                 std::string(1, "x. -+e\0"[pick(7)]));
    return t;
}

TEST(TextToInteger, AgreesWithTheModelOverRandomTexts) {
    std::mt19937_64 rng(16);
    int failures = 0;
    for (int i = 0; i < 200000 && failures < 10; ++i) {
        const std::string t = random_text(rng);
        for (const Width &w : kWidths) {
            const Expect got = run(w, t), want = model(t, w.kind);
            if (got.rc != want.rc || got.len != want.len || got.value != want.value) {
                ++failures;
                ADD_FAILURE() << "\"" << t << "\" kind " << w.kind << ": rc " << got.rc << " vs "
                              << want.rc << ", len " << got.len << " vs " << want.len << ", value "
                              << got.value << " vs " << want.value;
            }
        }
    }
}

// A number written in full-width characters of a Japanese set (some or all of them) converts
// as its ASCII twin, into every numeric destination; a lead byte cut by the end of the text
// is no digit.
TEST(TextToNumber, FullWidthTextInEachJapaneseSetIsItsAsciiTwin) {
    TextCtx c;
    std::mt19937_64 rng(42);
    const ComConvFunc dests[] = {comn_chartoi1,   comn_chartoi2,  comn_chartoi4,
                                 comn_chartoi8,   comn_chartobit, comn_chartoflt4,
                                 comn_chartoflt8, comn_chartonum, comn_chartomoney};
    DataFormat df{};
    df.maxlength = 35;
    df.precision = 10;
    df.scale = 2;
    const std::string signs[] = {" -", "-", ""};
    int converted = 0; // (so that a pass cannot come from both sides failing alike)
    for (const JapaneseSet &set : kJapaneseSets) {
        LocaleHandle *loc = c.locale(set.locale);
        ASSERT_NE(loc, nullptr) << set.locale;
        for (int i = 0; i < 2000; ++i) {
            std::string ascii = random_text(rng), mixed;
            if (i % 2) // a decimal number, sometimes with an exponent
                ascii = signs[rng() % 3] + std::to_string(rng() % 100000) + "." +
                        std::to_string(rng() % 1000) +
                        (rng() % 3 ? "" : "e" + std::to_string(rng() % 7));
            for (char &ch : ascii) {
                if (ch == '\t' || ch == '\xa0' || ch == '\x0e') ch = ' ';
                mixed += rng() % 2 ? full_width(std::string(1, ch), set.sjis) : std::string(1, ch);
            }
            for (const ComConvFunc f : dests) {
                const Outcome got = convert(f, mixed, df, c.get(), loc);
                ASSERT_EQ(got, convert(f, ascii, df)) << set.locale << " \"" << ascii << "\"";
                converted += got.rc == CS_SUCCEED;
            }
        }
        const std::string cut = "12" + full_width("3", set.sjis).substr(0, 1);
        for (const ComConvFunc f : {comn_chartoi4, comn_chartoflt8}) {
            const Outcome o = convert(f, cut, df, c.get(), loc);
            EXPECT_EQ(o.rc, CS_CONV_SYNTAX);
            EXPECT_EQ(o.len, 0);
        }
    }
    EXPECT_GT(converted, 3 * 2000 * 9 / 4);
}

} // namespace
