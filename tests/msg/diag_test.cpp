// Trace output, assertions, panics, guarded strings, state tables and the version.
#include <gtest/gtest.h>

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <unistd.h>
#include <fstream>
#include <sstream>
#include <string>

#include "comnlib.h"

namespace {

// Runs fn with the debug stream sent to a temporary file and returns what was written.
template <typename F>
std::string traced(F fn) {
    char path[] = "/tmp/comn_traceXXXXXX";
    int fd = mkstemp(path);
    EXPECT_GE(fd, 0);
    close(fd);
    EXPECT_EQ(comn_debug_setfile(nullptr, path, 1), 1);
    fn();
    EXPECT_EQ(comn_debug_setfile(nullptr, nullptr, 0), 1);
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    std::remove(path);
    return ss.str();
}

struct TraceLevel {
    int32_t saved = Com_trace_enable;
    explicit TraceLevel(int32_t level) { com_errset(level); }
    ~TraceLevel() { Com_trace_enable = saved; }
};

TEST(Trace, LevelsFilterNormalFlow) {
    struct {
        int32_t level, status;
        const char *want;
    } cases[] = {
        {COM_TRACE_OFF, CS_FAIL, ""},
        {COM_TRACE_FAILURES, CS_TIMED_OUT, "(CS_TIMED_OUT) file x, line 7\n"},
        {COM_TRACE_FAILURES, CS_SUCCEED, ""},
        {COM_TRACE_FAILURES, CS_END_ITEM, ""},
        {COM_TRACE_FAILURES, CS_INTERRUPT, ""},
        {COM_TRACE_FAILURES, CS_MEM_ERROR, "(CS_MEM_ERROR) file x, line 7\n"},
        {COM_TRACE_ALL, CS_SUCCEED, "(CS_SUCCEED) file x, line 7\n"},
        {COM_TRACE_ALL, -999, "(-999) file x, line 7\n"},
    };
    for (const auto &c : cases) {
        TraceLevel level(c.level);
        int32_t back = 0;
        std::string out = traced([&] { back = com_errtrace(c.status, "a/b/x", 7); });
        EXPECT_EQ(back, c.status);
        EXPECT_EQ(out, c.want) << c.level << " " << c.status;
    }
    TraceLevel level(COM_TRACE_OFF);
    EXPECT_EQ(com_errset(3), 2); // the level before, less one
    EXPECT_EQ(Com_trace_enable, 3);
    EXPECT_DEATH(com_errset(4), "assertion failed");
}

TEST(Fatal, AssertionsAndPointerChecksAbort) {
    EXPECT_DEATH(com_bomb("f.c", 12), "assertion failed, file 'f.c' line 12");
    EXPECT_DEATH(com_chkptr(nullptr, "g.c", 3), "Invalid pointer 0x0, file 'g.c' line 3");
    EXPECT_DEATH(com_chkfunc(nullptr, "h.c", 4), "Invalid pointer 0x0, file 'h.c' line 4");
    EXPECT_EXIT(com_panic("disk on fire"), testing::ExitedWithCode(255),
                "INTERNAL ERROR: unrecoverable error: disk on fire");
    int x = 0;
    com_chkptr(&x, "ok.c", 1); // returns
}

TEST(GuardedStrings, CopyAndConcatenateWithinSize) {
    char buf[6];
    com_copstr(buf, "abcde", 6);
    EXPECT_STREQ(buf, "abcde");
    EXPECT_DEATH(com_copstr(buf, "abcdef", 6), "assertion failed");
    EXPECT_DEATH(com_copstr(buf, "a", 0), "assertion failed");
    com_copstr(buf, "ab", 6);
    com_catstr(buf, "cde", 6);
    EXPECT_STREQ(buf, "abcde");
    EXPECT_DEATH(com_catstr(buf, "f", 6), "assertion failed");
    EXPECT_DEATH(com_catstr(nullptr, "f", 6), "assertion failed");
}

TEST(Environment, GetenvCopies) {
    setenv("COMN_TEST_VAR", "hello", 1);
    char *v = com_getenv("COMN_TEST_VAR");
    ASSERT_NE(v, nullptr);
    EXPECT_STREQ(v, "hello");
    std::free(v);
    unsetenv("COMN_TEST_VAR");
    EXPECT_EQ(com_getenv("COMN_TEST_VAR"), nullptr);
    EXPECT_EQ(com_getenv(nullptr), nullptr);
}

TEST(StateTables, VerifyAndTransition) {
    const uint8_t s0_ver[] = {3, 5, 7, 255};
    const uint8_t s0_trans[] = {1, 2, 4, COM_ST_SAME, 9, 0, 255};
    const uint8_t empty[] = {255};
    const uint8_t *ver[] = {s0_ver, empty};
    const uint8_t *trans[] = {s0_trans, empty};

    EXPECT_EQ(com_st_ver(ver, 0, 5), 1);
    EXPECT_EQ(com_st_ver(ver, 0, 4), 0);
    EXPECT_EQ(com_st_ver(ver, 1, 255), 0);
    EXPECT_EQ(com_st_trans(trans, 0, 1), 2);
    EXPECT_EQ(com_st_trans(trans, 0, 4), 0); // stays in state 0
    EXPECT_EQ(com_st_trans(trans, 0, 9), 0);
    EXPECT_EQ(com_st_trans(trans, 0, 3), COM_ST_NOTRANS);
    EXPECT_EQ(com_st_trans(trans, 1, 1), COM_ST_NOTRANS);
    EXPECT_EQ(com_ns_trans(trans, 1, 1), COM_ST_SAME);
    EXPECT_EQ(com_ns_trans(trans, 0, 1), 2);

    const int32_t pairs[] = {10, 100, 20, 200};
    ComStDepend rec{pairs, 2};
    int32_t v = 0;
    EXPECT_EQ(com_st_depend(&rec, 20, &v), 1);
    EXPECT_EQ(v, 200);
    EXPECT_EQ(com_st_depend(&rec, 30, &v), 0);
    EXPECT_EQ(com_st_depend(nullptr, 10, &v), 0);
}

TEST(Version, TextAndNumbers) {
    int32_t major = 0, minor = -1;
    std::string text = com_version(&major, &minor);
    EXPECT_EQ(major, 112);
    EXPECT_EQ(minor, 0);
    EXPECT_EQ(std::count(text.begin(), text.end(), '/'), 6);
    EXPECT_EQ(text.rfind("Veldar Common-Library/10.0.4/", 0), 0u);
}

} // namespace
