// Error message assembly: joining, truncation, origin 5, templates and failing allocations.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "msg_test_util.h"

namespace {

const ComErrSection kSections[] = {{1, "fallback"}, {2, "layers"}, {3, "origins"}, {7, "msgs"}};

const char *const kFile = "[fallback]\n"
                          "1 = HY000, \"file: no memory\"\n"
                          "2 = HY000, \"file: no layer\"\n"
                          "3 = HY000, \"file: no origin\"\n"
                          "4 = HY000, \"file: no message\"\n"
                          "[layers]\n4 = 00000, \"common library\"\n"
                          "[origins]\n2 = 00000, \"usage error\"\n"
                          "[msgs]\n"
                          "1 = S1, \"Plain text with 100%% and %s and %1!.\"\n"
                          "2 = S2, \"Value %1! refused.\"\n"
                          "3 = S3, \"First %1!, then %2!.\"\n"
                          "4 = S4, \"Then %2!, first %1!.\"\n"
                          "5 = S5, \"Too many: %1! %2! %3!\"\n"
                          "6 = S6, \"Broken %1 marker\"\n";

constexpr uint32_t kNum(int origin, int number) {
    return COM_ERRNUM(COM_LAYER_COMMON, origin, 7, number);
}

struct Built {
    int32_t rc;
    std::string text;
    int32_t len;
};

Built build(MsgHome &h, uint32_t num, const ComErrParams &p, int32_t buflen = 512,
            int32_t notrunc = 0, const char *msgtext = nullptr, int32_t msglen = 0) {
    std::string buf(static_cast<size_t>(buflen), '#');
    int32_t len = -7;
    int32_t rc = com_notrunc_errmsg(&h.ctx, &h.ec, num, &p, msgtext, msglen, 7, notrunc, buf.data(),
                                    buflen, &len);
    return {rc, rc == CS_SUCCEED ? buf.substr(0, static_cast<size_t>(len)) : buf, len};
}

struct BuildTest : ::testing::Test {
    MsgHome h;
    ComErrParams p{};
    void SetUp() override {
        h.write(kFile);
        ASSERT_EQ(com_err_init(&h.ctx, &h.ec, kSections, 4, nullptr, 0), CS_SUCCEED);
        com_ep_s(&p, "ct_convert()");
    }
};

TEST_F(BuildTest, JoinsPrefixLayerOriginAndMessage) {
    long v = -17;
    com_ep_sd(&p, "ct_convert()", &v);
    Built b = build(h, kNum(2, 2), p);
    EXPECT_EQ(b.rc, CS_SUCCEED);
    EXPECT_EQ(b.text, "ct_convert(): common library: usage error: Value -17 refused.");
    EXPECT_EQ(b.len, static_cast<int32_t>(b.text.size()));
    // A text given by the caller replaces the message, cut to its length.
    b = build(h, kNum(2, 2), p, 512, 0, "own text, not this", 8);
    EXPECT_EQ(b.text, "ct_convert(): common library: usage error: own text");
}

TEST_F(BuildTest, TruncationAllowedAndRefused) {
    const std::string full = build(h, kNum(2, 1), p).text;
    Built b = build(h, kNum(2, 1), p, 10);
    EXPECT_EQ(b.rc, CS_SUCCEED);
    EXPECT_EQ(b.text, full.substr(0, 10));
    EXPECT_EQ(b.len, 10);
    b = build(h, kNum(2, 1), p, 10, 1);
    EXPECT_EQ(b.rc, CS_FAIL);
    EXPECT_EQ(b.text, std::string(10, '#')); // nothing written
    EXPECT_EQ(b.len, static_cast<int32_t>(full.size()));
    b = build(h, kNum(2, 1), p, static_cast<int32_t>(full.size()), 1);
    EXPECT_EQ(b.rc, CS_SUCCEED);
    EXPECT_EQ(b.text, full);
}

TEST_F(BuildTest, OriginFiveTakesTheReaderText) {
    Built b = build(h, COM_ERRNUM(COM_LAYER_COMMON, COM_ORIGIN_INTL, 7, 3), p);
    EXPECT_EQ(b.text, std::string("ct_convert(): common library: file: no origin: ") +
                          intl_errstr(INTL_E_SYNTAX));
}

TEST_F(BuildTest, TemplatesWithTwoAndThreeValuesInBothOrders) {
    long a = 7, b = 9;
    struct Case {
        int number;
        ComErrParams rec;
        const char *message;
    };
    ComErrParams s{}, sd{}, ss{}, sss{}, sds{}, sdd{}, ssd{};
    com_ep_s(&s, "f");
    com_ep_sd(&sd, "f", &a);
    com_ep_ss(&ss, "f", "x");
    com_ep_sss(&sss, "f", "x", "y");
    com_ep_sds(&sds, "f", &a, "y");
    com_ep_sdd(&sdd, "f", &a, &b);
    com_ep_ssd(&ssd, "f", "x", &b);
    const Case cases[] = {
        {2, sd, "Value 7 refused."},       {2, ss, "Value x refused."},
        {3, sss, "First x, then y."},      {4, sss, "Then y, first x."},
        {3, sds, "First 7, then y."},      {4, sds, "Then y, first 7."},
        {3, sdd, "First 7, then 9."},      {4, sdd, "Then 9, first 7."},
        {3, ssd, "First x, then 9."},      {4, ssd, "Then 9, first x."},
        {3, sd, "First %1!, then %2!."}, // names a value that was not given
        {5, sss, "Too many: %1! %2! %3!"}, {6, sss, "Broken %1 marker"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(build(h, kNum(2, c.number), c.rec).text,
                  std::string("f: common library: usage error: ") + c.message)
            << c.number;
    // A record of the prefix alone leaves the template as it is, conversions and all.
    EXPECT_EQ(build(h, kNum(2, 1), s).text,
              "f: common library: usage error: Plain text with 100%% and %s and %1!.");
    // A record whose format does not match its value types is not handed to the filler.
    ComErrParams bad = sd;
    bad.format = "%s";
    EXPECT_EQ(build(h, kNum(2, 2), bad).text, "f: common library: usage error: Value %1! refused.");
    bad.count = 4;
    EXPECT_EQ(build(h, kNum(2, 2), bad).text, "f: common library: usage error: Value %1! refused.");
}

TEST_F(BuildTest, FailingAllocationsLeaveTheTemplateOrTheMemoryText) {
    long v = 5;
    com_ep_sd(&p, "f", &v);
    build(h, kNum(2, 2), p); // caches the names and the message
    {
        FailingAlloc fail(0); // the template buffer
        EXPECT_EQ(build(h, kNum(2, 2), p).text,
                  "f: common library: usage error: Value %1! refused.");
    }
    // A layer name too long to keep inline needs memory of its own.
    MsgHome big;
    big.write(std::string("[fallback]\n[layers]\n4 = S, ") + std::string(300, 'L') +
              "\n[origins]\n[msgs]\n");
    ASSERT_EQ(com_err_init(&big.ctx, &big.ec, kSections, 4, nullptr, 0), CS_SUCCEED);
    const ComErrKey key{2, 4};
    const char *text;
    ASSERT_EQ(com_err_msg(&big.ctx, &big.ec, &key, &text), CS_SUCCEED); // now cached
    FailingAlloc fail(0);
    Built b = build(big, kNum(2, 2), p);
    EXPECT_EQ(b.text.substr(0, 46), "f: unable to get string due to lack of memory:");
}

} // namespace
