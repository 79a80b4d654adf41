// Text to text: the plain copy against a model of the flag rules, every pair of bundled sets
// against their converters, and shortening within a multibyte set, never cutting a character.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "output_model.h"

namespace {

TEST(TextToText, PlainCopyFollowsTheLengthAndFlagRules) {
    std::mt19937 rng(3);
    for (int s = 0; s <= 40; ++s) {
        std::string text(static_cast<size_t>(s), ' ');
        for (auto &c : text)
            c = static_cast<char>('a' + rng() % 26);
        // The same text as maxlength bytes, as a null-terminated source with junk after the
        // terminator, and as a varchar.
        std::string nt = text + '\0' + "junk";
        const auto vc = length_record(text, static_cast<int16_t>(s));
        DataFormat plain = text_format(CS_CHAR, s);
        DataFormat term = text_format(CS_CHAR, static_cast<int32_t>(nt.size()), CS_FMT_NULLTERM);
        DataFormat var = text_format(CS_VARCHAR, 258);
        for (int32_t m = -1; m <= s + 2; ++m)
            for (uint32_t flags = 0; flags < 8; ++flags) {
                const Outcome want = model_text(text, m, flags, Short::Truncate);
                ASSERT_EQ(run_conv(comn_chartochar, nullptr, plain, text.data(), CS_CHAR, m, flags),
                          want)
                    << text << " m=" << m << " flags=" << flags;
                ASSERT_EQ(run_conv(comn_chartochar, nullptr, term, nt.data(), CS_CHAR, m, flags),
                          want);
                ASSERT_EQ(run_conv(comn_varchartochar, nullptr, var, vc.data(), CS_CHAR, m, flags),
                          want);
            }
        EXPECT_EQ(run_conv(comn_chartovarchar, nullptr, plain, text.data(), CS_VARCHAR, 258, 0),
                  framed(text, CS_SUCCEED));
        EXPECT_EQ(run_conv(comn_varchartovarchar, nullptr, var, vc.data(), CS_VARCHAR, 258, 0),
                  framed(text, CS_SUCCEED));
    }
    // Past 256 bytes a varchar destination keeps the first 256.
    const std::string longer(300, 'x');
    DataFormat sf = text_format(CS_CHAR, 300);
    EXPECT_EQ(run_conv(comn_chartovarchar, nullptr, sf, longer.data(), CS_VARCHAR, 258, 0),
              framed(longer, CS_CONV_TRUNCATED));
}

// One character of a set: its bytes. Texts made of them have known boundaries.
const std::map<std::string, std::vector<std::string>> kChars = {
    {"sjis", {"A", "\xb1", "\x88\x9f", "\x82\xa0", "7"}},
    {"eucjis", {"A", "\xb0\xa1", "\x8e\xb1", "\x8f\xb0\xa1", "7"}},
    {"deckanji", {"A", "\xb0\xa1", "\xa4\xa2", "7"}},
    {"utf8", {"A", "\xc3\xa9", "\xc3\xa0", "\xe6\x97\xa5", "\xf0\x9f\x98\x80", "7"}},
};

class CharsetPairs : public testing::Test {
  protected:
    void SetUp() override {
        const char *home = std::getenv("VELDAR");
        setenv("VELDAR", home ? home : COMN_TEST_HOME, 1);
        for (const char *set : {"ascii8", "iso_1", "cp850", "cp437", "roman8", "mac", "eucjis",
                                "sjis", "deckanji", "utf8"}) {
            ComCharsetDesc *d = nullptr;
            ASSERT_EQ(com__charset_desc_get(&ctx, set, "binary", &d), 1) << set;
            records[set].charset_desc = d;
            handles[set].ctype = &records[set];
        }
    }
    void TearDown() override { com__charset_drop_all(&ctx); }

    // A random text of the set: whole characters for the Japanese sets, any bytes else.
    std::string text(const std::string &set, int count, std::vector<int> *bounds = nullptr) {
        std::string t;
        if (bounds) bounds->assign(1, 0);
        for (int i = 0; i < count; ++i) {
            auto it = kChars.find(set);
            if (it == kChars.end())
                t += static_cast<char>(0x20 + rng() % 0xE0);
            else
                t += it->second[rng() % it->second.size()];
            if (bounds) bounds->push_back(static_cast<int>(t.size()));
        }
        return t;
    }

    ComContext ctx{};
    std::map<std::string, LocaleRecord> records;
    std::map<std::string, LocaleHandle> handles;
    std::mt19937 rng{11};
};

// Each pair through comn_chartochar, against the pair's converter from the dispatch table.
TEST_F(CharsetPairs, TranslationMatchesTheConverters) {
    for (auto &[from, hf] : handles)
        for (auto &[to, ht] : handles) {
            const std::string t = text(from, 40);
            const auto s = static_cast<int32_t>(t.size());
            DataFormat sf = text_format(CS_CHAR, s), df = text_format(CS_CHAR, 0);
            sf.locale = &hf;
            df.locale = &ht;
            int32_t mode = -1;
            ASSERT_EQ(com_intl_will_xlate(&ctx, &sf, &df, &mode), CS_SUCCEED);
            const ComXlateFunc func = com__intl_get_xlate(&ctx, &sf, &df);
            for (int32_t m : {s + 8, s / 2}) {
                df.maxlength = m;
                Dest d(m);
                int32_t len = -7;
                const int32_t rc = comn_chartochar(&ctx, &sf, const_cast<char *>(t.data()), &df,
                                                   d.buf.get(), &len);
                if (mode == COM_XLT_MODE_NONE) {
                    EXPECT_EQ(rc, CS_CONV_NOXLT) << from << " " << to;
                    continue;
                }
                std::string want(static_cast<size_t>(m), '\0');
                int32_t consumed = s, produced = std::min(s, m), bits = s > m ? 2 : 0;
                if (mode == COM_XLT_MODE_COPY) {
                    if (kChars.count(from)) {
                        ASSERT_EQ(from, to); // only the same set copies multibyte text
                        continue;            // (shortening is checked below)
                    }
                    consumed = produced;
                    want.replace(0, static_cast<size_t>(produced), t, 0,
                                 static_cast<size_t>(produced));
                } else {
                    ASSERT_NE(func, nullptr) << from << " " << to;
                    bits = func(reinterpret_cast<const uint8_t *>(t.data()), s,
                                reinterpret_cast<uint8_t *>(want.data()), m, &consumed, &produced);
                }
                const int32_t want_rc = (bits & 1)     ? CS_CONV_BADXLT
                                        : consumed < s ? CS_CONV_TRUNCATED
                                                       : CS_SUCCEED;
                EXPECT_EQ(rc, want_rc) << from << " -> " << to << " m=" << m;
                ASSERT_EQ(len, produced) << from << " -> " << to;
                EXPECT_EQ(d.str().substr(0, static_cast<size_t>(produced)),
                          want.substr(0, static_cast<size_t>(produced)))
                    << from << " -> " << to;
            }
        }
}

// Within one multibyte set a short destination takes whole characters only, with or without
// room kept for the terminator.
TEST_F(CharsetPairs, SameSetShorteningNeverCutsACharacter) {
    for (const auto &[set, chars] : kChars) {
        std::vector<int> bounds;
        const std::string t = text(set, 30, &bounds);
        const auto s = static_cast<int32_t>(t.size());
        DataFormat sf = text_format(CS_CHAR, s);
        sf.locale = &handles[set];
        for (int32_t m = 0; m <= s + 1; ++m)
            for (uint32_t flags : {0u, static_cast<uint32_t>(CS_FMT_NULLTERM)}) {
                const int32_t room = flags ? m - 1 : m;
                int32_t n = 0;
                for (int b : bounds)
                    if (b <= room) n = b;
                DataFormat df = text_format(CS_CHAR, m, flags);
                df.locale = &handles[set];
                Dest d(m);
                int32_t len = -7;
                const int32_t rc = comn_chartochar(&ctx, &sf, const_cast<char *>(t.data()), &df,
                                                   d.buf.get(), &len);
                ASSERT_EQ(d.str().substr(0, static_cast<size_t>(n)), t.substr(0, n))
                    << set << " m=" << m;
                const bool whole = n == s;
                EXPECT_EQ(rc, whole ? CS_SUCCEED : CS_CONV_TRUNCATED) << set << " m=" << m;
                EXPECT_EQ(len, n + (flags && m > 0 ? 1 : 0)) << set << " m=" << m;
                if (flags && m > 0) {
                    EXPECT_EQ(d.buf[n], '\0');
                }
                // The shortening routine itself, at the same limit.
                EXPECT_EQ(comnb_truncate_chars(records[set].charset_desc->attr, t.data(), s, room),
                          std::max(room, 0) >= s ? s : n);
            }
        // The varchar destination: at most 256 bytes, whole characters.
        const std::string big = text(set, 200, &bounds);
        DataFormat bf = text_format(CS_CHAR, static_cast<int32_t>(big.size()));
        bf.locale = &handles[set];
        DataFormat vf = text_format(CS_VARCHAR, 258);
        vf.locale = &handles[set];
        std::vector<uint8_t> v(258);
        int32_t len = 0;
        EXPECT_EQ(
            comn_chartovarchar(&ctx, &bf, const_cast<char *>(big.data()), &vf, v.data(), &len),
            big.size() > 256 ? CS_CONV_TRUNCATED : CS_SUCCEED);
        int16_t w;
        std::memcpy(&w, v.data(), 2);
        int n = 0;
        for (int b : bounds)
            if (b <= 256) n = b;
        EXPECT_EQ(w, n) << set;
    }
    EXPECT_EQ(comnb_truncate_chars(nullptr, "abc", 3, 0), 0);
    EXPECT_EQ(comnb_truncate_chars(nullptr, "abc", 3, -4), 0);
    EXPECT_EQ(comnb_truncate_chars(nullptr, "abc", 3, 2), 2);
    EXPECT_EQ(comnb_truncate_chars(nullptr, "abc", 3, 9), 3);
}

} // namespace
