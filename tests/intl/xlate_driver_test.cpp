// The translation driver's framing of CS_VARCHAR values: the plain copy starts at the record's
// length word (and leaves a record copied onto itself alone), and a damaged length word is kept
// within the record. Statuses and state words are checked through the locales in
// xlate_dispatch_test.cpp.
#include <comnlib.h>
#include "intl/xlate/xlate_dispatch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

namespace {

struct VarChar {
    int16_t len;
    char text[256];
};
static_assert(sizeof(VarChar) == 258);

TEST(XlateDriver, VarCharCopyAndDamagedLengths) {
    VarChar in{5, "hello"}, out{};
    int32_t len = 0, state[2] = {};
    DataFormat s{}, d{};
    s.datatype = d.datatype = CS_VARCHAR;
    s.maxlength = d.maxlength = 258;
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, &in, &d, &out, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(len, 5);
    EXPECT_EQ(out.len, 5);
    // The five bytes copied are the source's length word and its first three characters.
    EXPECT_EQ(std::memcmp(out.text, &in, 5), 0);
    EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_COPY, nullptr, &s, &in, &d, &in, &len, state),
              CS_SUCCEED);
    EXPECT_EQ(std::string(in.text, 5), "hello");
    EXPECT_EQ(in.len, 5);

    // A length word beyond the record reads 256 bytes; a negative one reads none.
    char text[300] = {};
    d.datatype = CS_CHAR;
    d.maxlength = sizeof text;
    for (const auto &[word, want] : {std::pair<int16_t, int32_t>{3000, 256}, {-5, 0}}) {
        in.len = word;
        EXPECT_EQ(comn::xlate_run(COM_XLT_MODE_CONVERT, com__fou_iso1_to_cp850, &s, &in, &d, text,
                                  &len, state),
                  CS_SUCCEED);
        EXPECT_EQ(len, want);
    }
}

} // namespace
