// Message files and the error cache: loading once, preloads and on-demand loading against a
// model of the cache, odd keys, SQL states, escapes, bad files and failing allocations.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <utility>

#include "msg_test_util.h"

namespace {

const ComErrSection kSections[] = {{1, "fallback"}, {7, "msgs"}};

std::string numbered_section(const char *name, int from, int to, const char *tag = "text") {
    std::string s = std::string("[") + name + "]\n";
    for (int i = from; i <= to; ++i)
        s += std::to_string(i) + " = S" + std::to_string(i) + ", \"" + tag + " " +
             std::to_string(i) + "\"\n";
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

TEST(ErrCache, FileLoadsOnceOrFailsLeavingNothing) {
    MsgHome h;
    EXPECT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, nullptr, 0), COM_INTL_ERROR); // no file
    EXPECT_EQ(h.ctx.intl_status, INTL_E_OPEN);
    struct Case {
        const char *file;
        int32_t rc, status;
    } refused[] = {
        {"[fallback]\n1 = X, \"one\"\n[other]\n5 = X, \"five\"\n", CS_FAIL, 0}, // no msgs
        {"[fallback]\nno equals sign here\n[msgs]\n1 = X, \"one\"\n", COM_INTL_ERROR,
         INTL_E_SYNTAX},
    };
    for (const Case &c : refused) {
        h.write(c.file);
        h.ctx.intl_status = 0;
        EXPECT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, nullptr, 0), c.rc) << c.file;
        EXPECT_EQ(h.ctx.intl_status, c.status);
        EXPECT_EQ(h.loc.msgcache->files, nullptr);
        EXPECT_EQ(msg(h, 1, 1), "<none>");
    }
    h.write("[fallback]\n1 = X, \"one\"\n[msgs]\n5 = 42000, \"five\"\n");
    const ComErrKey pre[] = {{7, 5}};
    ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 1), CS_SUCCEED);
    EXPECT_EQ(h.count(), 1);
    // A second init with a broken file on disk succeeds at once: the file is not read again.
    h.write("[broken\n");
    EXPECT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 1), CS_SUCCEED);
    EXPECT_EQ(msg(h, 7, 5), "five");
    ASSERT_NE(h.loc.msgcache->files, nullptr);
    EXPECT_EQ(h.loc.msgcache->files->next, nullptr);
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

// Unknown sections and keys that are not numbers are skipped; SQL states are cut to seven
// characters.
TEST(ErrCache, OddKeysAndSqlStates) {
    MsgHome h;
    h.write("; unknown sections and odd keys are skipped\n[junk]\n1 = X, \"junk\"\n" +
            numbered_section("fallback", 1, 4) + "[msgs]\nabc = X, \"not a number\"\n" +
            "12x = X, \"not a number\"\n3 = 22003, \"three\"\n 9 = S9, \"nine\"\n" +
            "10 = ABCDEFGHIJ, \"ten\"\n");
    ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(msg(h, 7, 9), "nine");
    EXPECT_EQ(msg(h, 7, 12), "<none>");
    char state[8];
    int32_t len = -1;
    EXPECT_EQ(com_err_sqlstate(&h.ctx, &h.ec, 3, 7, state, 8, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(state, len), "22003");
    EXPECT_EQ(com_err_sqlstate(&h.ctx, &h.ec, 3, 7, state, 4, &len), CS_FAIL);
    EXPECT_EQ(len, 5);
    EXPECT_EQ(com_err_sqlstate(&h.ctx, &h.ec, 10, 7, state, 8, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(state, len), "ABCDEFG"); // cut to seven characters
    expect_consistent(h);
}

TEST(ErrCache, EscapesAreResolvedInPlace) {
    struct Case {
        const char *in, *out;
    };
    const Case cases[] = {
        {"a\\nb", "a\nb"},
        {"a\\qb", "a\\b"},
        {"a\\\\b", "a\\b"},
        {"\\\"q\\\"", "\"q\""},
        {"\\b\\f\\r\\t", "\b\f\r\t"},
        {"end\\", "end\\"},
        {"\\", "\\"},
        {"\\\\\\", "\\\\"},
        {"", ""},
        {"no escapes", "no escapes"},
    };
    for (const Case &c : cases) {
        std::string buf = c.in;
        EXPECT_EQ(com__err_filterescape(buf.data()), CS_SUCCEED);
        EXPECT_STREQ(buf.c_str(), c.out) << c.in;
    }
    // Through the file, where the reader hands backslashes over untouched.
    MsgHome h;
    h.write("[fallback]\n1 = X, \"tab\\there \\\"q\\\" \\\\\"\n[msgs]\n");
    ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(msg(h, 1, 1), "tab\there \"q\" \\");
}

TEST(ErrCache, BadEntriesGiveCleanStatuses) {
    const ComErrKey pre[] = {{7, 1}};
    struct Case {
        std::string file;
        int32_t init, lookup;
    } cases[] = {
        {"[fallback]\n[msgs]\n1 = S\n", CS_FAIL, CS_FAIL},            // no text
        {"[fallback]\n[msgs]\n1 =\n", CS_FAIL, CS_FAIL},              // no values at all
        {"[fallback]\n[msgs]\n1 = S, x\\\n", CS_SUCCEED, CS_SUCCEED}, // backslash at the end
        {"[fallback]\n[msgs]\n1 = S, \"open\n", COM_INTL_ERROR, COM_INTL_ERROR},
        {"[fallback]\n[msgs]\n1 = S, " + std::string(1 << 20, 'z') + "\n", CS_SUCCEED, CS_SUCCEED},
    };
    for (const Case &c : cases) {
        MsgHome h;
        h.write(c.file);
        EXPECT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 1), c.init) << c.file.size();
        // Without preloads both sections are found before the bad entry is reached.
        EXPECT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, nullptr, 0), CS_SUCCEED);
        ComErrEntry *e;
        EXPECT_EQ(com__err_getcache(&h.ctx, &h.ec, 1, 7, &e), c.lookup);
        expect_consistent(h);
    }
}

TEST(ErrCache, EveryAllocationFailingInTurnDuringInit) {
    const std::string file = numbered_section("fallback", 1, 4) + numbered_section("msgs", 1, 8);
    const ComErrKey pre[] = {{1, 1}, {1, 4}, {7, 2}, {7, 8}, {7, 5}};
    long total = -1;
    for (long n = 0; total < 0 || n <= total; ++n) {
        MsgHome h;
        h.write(file);
        int32_t rc;
        {
            FailingAlloc fail(n);
            rc = com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 5);
            if (rc == CS_SUCCEED && total < 0) total = fail.calls();
        }
        if (rc == CS_SUCCEED) {
            EXPECT_EQ(h.count(), 5);
        } else {
            EXPECT_EQ(rc, CS_MEM_ERROR) << n;
            if (h.loc.msgcache) {
                EXPECT_EQ(h.loc.msgcache->files, nullptr);
            }
            EXPECT_EQ(h.count(), 0);
        }
        expect_consistent(h);
        // With memory back the file loads in full.
        EXPECT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 5), CS_SUCCEED);
        EXPECT_EQ(msg(h, 7, 6), "text 6");
    }
    EXPECT_GT(total, 10);
}

} // namespace
