// Message files and the error cache: loading once, sections, preloads, on-demand loading,
// the bound of 100 entries, escapes, SQL states, bad files and failing allocations.
#include <gtest/gtest.h>

#include <string>

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

TEST(ErrCache, PreloadsAndOnDemandLoads) {
    MsgHome h;
    h.write("; unknown sections and odd keys are skipped\n[junk]\n1 = X, \"junk\"\n" +
            numbered_section("fallback", 1, 4) + "[msgs]\nabc = X, \"not a number\"\n" +
            "12x = X, \"not a number\"\n3 = 22003, \"three\"\n 9 = S9, \"nine\"\n" +
            "10 = ABCDEFGHIJ, \"ten\"\n");
    const ComErrKey pre[] = {{1, 2}, {7, 3}};
    ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 2, pre, 2), CS_SUCCEED);
    EXPECT_EQ(h.count(), 2);
    EXPECT_NE(h.cached(1, 2), nullptr);
    EXPECT_EQ(h.cached(7, 9), nullptr);
    EXPECT_EQ(msg(h, 7, 9), "nine"); // read on demand
    EXPECT_EQ(h.count(), 3);
    EXPECT_EQ(msg(h, 7, 4), "<none>");
    EXPECT_EQ(msg(h, 5, 1), "<none>"); // a section the caller never named
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
