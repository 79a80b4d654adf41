// The error cache: preloads and on-demand loading against a model of the cache; SQL states
// and escapes.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <utility>

#include "msg_test_util.h"

namespace {

const ComErrSection kSections[] = {{1, "fallback"}, {7, "msgs"}};

std::string numbered_section(const char *name, int from, int to) {
    std::string s = std::string("[") + name + "]\n";
    for (int i = from; i <= to; ++i)
        s += std::to_string(i) + " = S" + std::to_string(i) + ", \"text " + std::to_string(i) +
             "\"\n";
    return s;
}

std::string msg(MsgHome &h, int32_t section, int32_t number) {
    const ComErrKey key{section, number};
    const char *text = nullptr;
    return com_err_msg(&h.ctx, &h.ec, &key, &text) == CS_SUCCEED ? text : "<none>";
}

// The load-order list and the per-section lists agree with the count.
void expect_consistent(const MsgHome &h) {
    if (!h.loc.msgcache) return;
    int32_t n = 0;
    for (const ComErrEntry *e = h.loc.msgcache->loaded; e; e = e->next_loaded) {
        ++n;
        EXPECT_EQ(com__scan_cache(e->section, e->number), e);
    }
    EXPECT_EQ(n, h.loc.msgcache->count);
    EXPECT_LE(n, COM_ERR_CACHE_MAX);
}

// The cache against a model of it: a list of at most COM_ERR_CACHE_MAX entries that drops the
// first loaded when a new one comes. After preloads, random lookups over a file of 150
// messages (and numbers and a section it lacks) answer the file's text, load on a miss and
// read an evicted message again.
TEST(ErrCache, RandomLookupsFollowAFirstInFirstOutModel) {
    MsgHome h;
    h.write(numbered_section("fallback", 1, 4) + numbered_section("msgs", 1, 150));
    const ComErrKey pre[] = {{1, 2}, {7, 3}, {7, 150}};
    ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 3), CS_SUCCEED);
    std::deque<std::pair<int32_t, int32_t>> model = {{1, 2}, {7, 3}, {7, 150}}; // oldest first
    std::mt19937 rng(11);
    for (int i = 0; i < 2000; ++i) {
        const int32_t section = rng() % 10 == 0 ? 1 + 4 * (rng() % 2) : 7;
        const int32_t number = 1 + static_cast<int32_t>(rng() % 160);
        const bool known = section == 7 ? number <= 150 : section == 1 && number <= 4;
        ASSERT_EQ(msg(h, section, number), known ? "text " + std::to_string(number) : "<none>")
            << section << " " << number;
        if (known &&
            std::find(model.begin(), model.end(), std::pair(section, number)) == model.end()) {
            model.emplace_back(section, number);
            if (model.size() > COM_ERR_CACHE_MAX) model.pop_front();
        }
        ASSERT_EQ(h.count(), static_cast<int32_t>(model.size()));
        for (const auto &[s, n] : model)
            ASSERT_NE(h.cached(s, n), nullptr) << s << " " << n;
    }
    expect_consistent(h);
}

// An SQL state is kept to seven characters; a buffer too small for it gets nothing but the length.
TEST(ErrCache, SqlStates) {
    MsgHome h;
    h.write("[fallback]\n[msgs]\n3 = 22003, \"three\"\n10 = ABCDEFGHIJ, \"ten\"\n");
    ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, nullptr, 0), CS_SUCCEED);
    char state[8];
    int32_t len = -1;
    EXPECT_EQ(com_err_sqlstate(&h.ctx, &h.ec, 10, 7, state, 8, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(state, static_cast<size_t>(len)), "ABCDEFG");
    EXPECT_EQ(com_err_sqlstate(&h.ctx, &h.ec, 3, 7, state, 4, &len), CS_FAIL);
    EXPECT_EQ(len, 5);
}

// Escapes resolve in place: a known one to its character, any other to a backslash alone; a
// backslash that ends the text stays.
TEST(ErrCache, EscapesAreResolvedInPlace) {
    std::string text = "a\\nb\\qc\\\\d\\\"\\b\\f\\r\\tend\\";
    EXPECT_EQ(com__err_filterescape(text.data()), CS_SUCCEED);
    EXPECT_STREQ(text.c_str(), "a\nb\\c\\d\"\b\f\r\tend\\");
}

} // namespace
