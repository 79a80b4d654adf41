// Padding of text and binary destinations and the fixed-to-binary copies.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "comnlib.h"

namespace {

struct PadCase {
    const char *text; // bytes already produced
    int32_t maxlength;
    uint32_t flags;
    int32_t rc;
    std::string want; // the whole buffer afterwards ('~' = untouched byte)
    int32_t len;
};

TEST(Padding, CharFlagsDecideTerminatorAndFill) {
    const PadCase cases[] = {
        {"7", 5, 0, CS_SUCCEED, std::string("7~~~~"), 1},
        {"7", 5, CS_FMT_PADBLANK, CS_SUCCEED, std::string("7    "), 5},
        {"7", 5, CS_FMT_PADBLANK | CS_FMT_NULLTERM, CS_SUCCEED, std::string("7   \0", 5), 5},
        {"7", 5, CS_FMT_PADNULL, CS_SUCCEED, std::string("7\0\0\0\0", 5), 5},
        {"7", 5, CS_FMT_PADNULL | CS_FMT_PADBLANK, CS_CONV_FORMAT, std::string("7~~~~"), 1},
        {"7", 5, CS_FMT_NULLTERM, CS_SUCCEED, std::string("7\0~~~", 5), 2},
        {"abcde", 5, CS_FMT_NULLTERM, CS_CONV_OVERFLOW, std::string("abcd\0", 5), 5},
        {"abcde", 5, CS_FMT_PADBLANK, CS_SUCCEED, std::string("abcde"), 5},
    };
    for (const auto &c : cases) {
        std::string buf(static_cast<size_t>(c.maxlength), '~');
        int32_t n = static_cast<int32_t>(std::strlen(c.text));
        buf.replace(0, static_cast<size_t>(n), c.text);
        DataFormat f{};
        f.maxlength = c.maxlength;
        f.format = c.flags;
        int32_t len = n;
        EXPECT_EQ(comn__padchar(n, &f, buf.data(), &len), c.rc) << c.text << " " << c.flags;
        EXPECT_EQ(buf, c.want) << c.text << " " << c.flags;
        EXPECT_EQ(len, c.len) << c.text << " " << c.flags;
    }
}

TEST(Padding, CharTooLongTerminatesInsideTheBuffer) {
    char buf[3] = {'a', 'b', 'c'};
    DataFormat f{};
    f.maxlength = 3;
    f.format = CS_FMT_NULLTERM;
    int32_t len = 3;
    EXPECT_EQ(comn__padchar(4, &f, buf, &len), CS_CONV_OVERFLOW);
    EXPECT_EQ(buf[2], '\0');
    f.maxlength = 0;
    EXPECT_EQ(comn__padchar(1, &f, buf, &len), CS_CONV_OVERFLOW);
}

TEST(Padding, BinaryPadsOnlyWithZeroFlag) {
    unsigned char buf[6] = {1, 2, 9, 9, 9, 9};
    DataFormat f{};
    f.maxlength = 6;
    int32_t len = 2;
    EXPECT_EQ(comn__padbin(2, &f, buf, &len), CS_SUCCEED);
    EXPECT_EQ(len, 2);
    EXPECT_EQ(buf[2], 9);
    f.format = CS_FMT_PADNULL;
    EXPECT_EQ(comn__padbin(2, &f, buf, &len), CS_SUCCEED);
    EXPECT_EQ(len, 6);
    for (int i = 2; i < 6; ++i)
        EXPECT_EQ(buf[i], 0);
}

TEST(Padding, FixedToBinaryTruncatesOrPads) {
    const int32_t v = 0x01020304;
    unsigned char buf[8];
    DataFormat f{};
    int32_t len = -1;

    f.maxlength = 2;
    std::memset(buf, 0xEE, sizeof buf);
    EXPECT_EQ(comn_fixedtobin(&v, 4, &f, buf, &len), CS_CONV_TRUNCATED);
    EXPECT_EQ(len, 2);
    EXPECT_EQ(std::memcmp(buf, &v, 2), 0);
    EXPECT_EQ(buf[2], 0xEE);

    f.maxlength = 8;
    f.format = CS_FMT_PADNULL;
    EXPECT_EQ(comn_fixedtobin(&v, 4, &f, buf, &len), CS_SUCCEED);
    EXPECT_EQ(len, 8);
    EXPECT_EQ(std::memcmp(buf, &v, 4), 0);
    EXPECT_EQ(buf[7], 0);

    unsigned char var[258];
    EXPECT_EQ(comn_fixedtovarbin(&v, 4, &f, var, &len), CS_SUCCEED);
    EXPECT_EQ(len, 258);
    int16_t count;
    std::memcpy(&count, var, 2);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(std::memcmp(var + 2, &v, 4), 0);

    unsigned char big[300] = {};
    EXPECT_EQ(comn_fixedtovarbin(big, 300, &f, var, &len), CS_CONV_OVERFLOW);
    std::memcpy(&count, var, 2);
    EXPECT_EQ(count, 256);
}

} // namespace
