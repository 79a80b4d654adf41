// The template filler and the reader's status texts.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <random>
#include <set>
#include <string>

#include "comnlib.h"

namespace {

TEST(StrBuild, MarkersByPosition) {
    struct Case {
        const char *tmpl;
        int32_t rc;
        const char *out;
    };
    const Case cases[] = {
        {"plain", 5, "plain"},
        {"%1!|%2!|%3!", 15, "alpha|-42|omega"},
        {"%3! %2! %1!", 15, "omega -42 alpha"},
        {"%1!%1!", 10, "alphaalpha"},
        {"100%% sure", 9, "100% sure"},
        {"", 0, ""},
        {"%4!", INTL_E_ARG, nullptr},
        {"%0!", INTL_E_SYNTAX, nullptr},
        {"%1", INTL_E_SYNTAX, nullptr},
        {"%1x", INTL_E_SYNTAX, nullptr},
        {"50%", INTL_E_SYNTAX, nullptr},
        {"%s", INTL_E_SYNTAX, nullptr},
        {"%12!", INTL_E_SYNTAX, nullptr},
    };
    for (const Case &c : cases) {
        char buf[64];
        const int32_t rc =
            intl_strbuild(buf, sizeof buf, c.tmpl, "%s %ld %s", "alpha", -42L, "omega");
        EXPECT_EQ(rc, c.rc) << c.tmpl;
        if (c.out) {
            EXPECT_STREQ(buf, c.out) << c.tmpl;
        }
    }
}

TEST(StrBuild, FormatsAndSizes) {
    char buf[8];
    EXPECT_EQ(intl_strbuild(buf, 8, "%1!", "%s", "1234567"), 7); // exactly fits
    EXPECT_EQ(intl_strbuild(buf, 8, "%1!", "%s", "12345678"), INTL_E_TOOLONG);
    EXPECT_EQ(intl_strbuild(buf, 8, "12345678", ""), INTL_E_TOOLONG);
    EXPECT_EQ(intl_strbuild(buf, 8, "%1!", "%d", -5), 2);
    EXPECT_STREQ(buf, "-5");
    EXPECT_EQ(intl_strbuild(buf, 8, "%1!", "%x", 5), INTL_E_ARG);
    EXPECT_EQ(intl_strbuild(buf, 8, "%1!", "%s%s%s%s%s%s%s%s%s%s", "", "", "", "", "", "", "", "",
                            "", ""),
              INTL_E_ARG); // more than nine values
    EXPECT_EQ(intl_strbuild(buf, 0, "x", ""), INTL_E_ARG);
    EXPECT_EQ(intl_strbuild(nullptr, 8, "x", ""), INTL_E_ARG);
}

TEST(StrBuild, LongValuesMatchPrintf) {
    std::mt19937_64 rng(20261122);
    std::vector<long> values = {0, 1, -1, LONG_MAX, LONG_MIN, 9, 10, -10};
    for (int i = 0; i < 2000; ++i)
        values.push_back(static_cast<long>(rng() >> (rng() % 64)) * (i % 2 ? 1 : -1));
    for (long v : values) {
        char ours[32], theirs[32];
        ASSERT_GE(intl_strbuild(ours, sizeof ours, "[%1!]", "%ld", v), 0);
        std::snprintf(theirs, sizeof theirs, "[%ld]", v);
        ASSERT_STREQ(ours, theirs);
    }
}

TEST(IntlErrstr, EveryStatusHasItsOwnText) {
    std::set<std::string> seen;
    for (int32_t st : {INTL_E_NOMEM, INTL_E_OPEN, INTL_E_SYNTAX, INTL_E_TOOBIG, INTL_E_BINARY,
                       INTL_E_NOHOME, INTL_E_TOOLONG, INTL_E_ARG})
        EXPECT_TRUE(seen.insert(intl_errstr(st)).second) << st;
    const std::string unknown = intl_errstr(-99);
    EXPECT_EQ(seen.count(unknown), 0u);
    EXPECT_EQ(unknown, intl_errstr(0));
}

} // namespace
