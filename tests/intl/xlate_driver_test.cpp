// The translation driver once a pair is decided: framing of CS_VARCHAR values, the plain copy
// (including its copy from the caller's source address), state words and result mapping.
#include <comnlib.h>
#include "intl/xlate/xlate_dispatch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

DataFormat fmt(int32_t type, int32_t maxlength) {
    DataFormat f{};
    f.datatype = type;
    f.maxlength = maxlength;
    return f;
}

struct VarChar {
    int16_t len;
    char text[256];
};
static_assert(sizeof(VarChar) == 258);

VarChar varchar(const char *s) {
    VarChar v{};
    v.len = static_cast<int16_t>(std::strlen(s));
    std::memcpy(v.text, s, static_cast<size_t>(v.len));
    return v;
}

TEST(XlateDriver, ImpossiblePairClearsStateAndWritesNothing) {
    DataFormat s = fmt(CS_CHAR, 3), d = fmt(CS_CHAR, 3);
    char in[] = "abc", out[] = "xyz";
    int32_t len = 99, state[2] = {5, 6};
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_NONE, nullptr, &s, in, &d, out, &len, state),
              CS_CONV_NOXLT);
    EXPECT_EQ(len, 0);
    EXPECT_EQ(state[0], 0);
    EXPECT_EQ(state[1], 0);
    EXPECT_STREQ(out, "xyz");
    // A converting mode without a converter is just as impossible.
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, nullptr, &s, in, &d, out, &len, state),
              CS_CONV_NOXLT);
}

TEST(XlateDriver, CopyTakesTheShorterLength) {
    char in[] = "abcdef", out[8] = {};
    int32_t len = 0, state[2] = {};
    DataFormat s = fmt(CS_CHAR, 6), d = fmt(CS_CHAR, 4);
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, in, &d, out, &len, state),
              CS_CONV_OVERFLOW);
    EXPECT_EQ(len, 4);
    EXPECT_EQ(state[0], 4);
    EXPECT_EQ(std::string(out), "abcd");
    d.maxlength = 8;
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, in, &d, out, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(len, 6);
}

TEST(XlateDriver, CopyOfAVarCharStartsAtItsLengthWord) {
    VarChar in = varchar("hello");
    VarChar out{};
    int32_t len = 0, state[2] = {};
    DataFormat s = fmt(CS_VARCHAR, 258), d = fmt(CS_VARCHAR, 258);
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, &in, &d, &out, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(len, 5);
    EXPECT_EQ(out.len, 5);
    // The five bytes copied are the source's length word and its first three characters.
    EXPECT_EQ(std::memcmp(out.text, &in, 5), 0);

    // The same record on both sides is left alone.
    len = 0;
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, &in, &d, &in, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(std::string(in.text, 5), "hello");
    EXPECT_EQ(in.len, 5);
}

TEST(XlateDriver, DamagedVarCharLengthIsKeptWithinTheRecord) {
    VarChar in = varchar("abc");
    char out[300] = {};
    int32_t len = 0, state[2] = {};
    DataFormat s = fmt(CS_VARCHAR, 258), d = fmt(CS_CHAR, 300);
    in.len = 3000;
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp850, &s, &in, &d, out, &len,
                              state),
              CS_SUCCEED);
    EXPECT_EQ(len, 256);
    in.len = -5;
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp850, &s, &in, &d, out, &len,
                              state),
              CS_SUCCEED);
    EXPECT_EQ(len, 0);
}

TEST(XlateDriver, ConverterResultsMapToStatuses) {
    struct {
        const char *in;
        int32_t room;
        int32_t status, len;
    } cases[] = {
        {"caf\xE9", 4, CS_SUCCEED, 4},
        {"caf\xE9", 3, CS_CONV_OVERFLOW, 3},
        {"\xA4", 1, CS_CONV_BADXLT, 1},    // iso_1 currency sign has no cp437 byte
        {"\xA4xyz", 2, CS_CONV_BADXLT, 2}, // bad character and short destination
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.in);
        VarChar out{};
        int32_t len = 0, state[2] = {};
        DataFormat s = fmt(CS_CHAR, static_cast<int32_t>(std::strlen(c.in)));
        DataFormat d = fmt(CS_CHAR, c.room);
        EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp437, &s, c.in, &d,
                                  out.text, &len, state),
                  c.status);
        EXPECT_EQ(len, c.len);
        EXPECT_EQ(state[0], c.len);
        EXPECT_EQ(state[1], c.len);
    }
    // iso_1 e-acute is 82 in cp437; a CS_VARCHAR destination gets its length word.
    VarChar out{};
    int32_t len = 0, state[2] = {};
    DataFormat s = fmt(CS_CHAR, 4), d = fmt(CS_VARCHAR, 258);
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp437, &s, "caf\xE9", &d, &out,
                              &len, state),
              CS_SUCCEED);
    EXPECT_EQ(out.len, 4);
    EXPECT_EQ(std::string(out.text, 4), "caf\x82");
}

} // namespace
