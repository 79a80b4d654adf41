// Single-byte translation at its edges: the test set's converter, which counts and writes
// nothing, and lengths that are negative or shorter than the source. What each converter writes,
// and the dispatch table naming them, are checked against Python's codecs by
// check_xlate_single.py.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(XlateSingleByte, CaseSwapCountsUpToNulAndWritesNothing) {
    struct {
        std::vector<uint8_t> in;
        size_t room;
        int32_t bits, consumed, produced;
    } cases[] = {
        {{'a', 'b', 0, 'c'}, 8, 0, 2, 2},
        {{'a', 'b', 'c'}, 8, 0, 3, 3},
        {{'a', 'b', 'c', 'd'}, 2, COM_XLT_TRUNCATED, 4, 2},
        {{0, 'x'}, 1, COM_XLT_TRUNCATED, 0, 0},
    };
    for (const auto &c : cases) {
        std::vector<uint8_t> out(c.room, 0xEE);
        int32_t consumed = -1, produced = -1;
        EXPECT_EQ(com__fou_caseswap(c.in.data(), static_cast<int32_t>(c.in.size()), out.data(),
                                    static_cast<int32_t>(c.room), &consumed, &produced),
                  c.bits);
        EXPECT_EQ(consumed, c.consumed);
        EXPECT_EQ(produced, c.produced);
        EXPECT_EQ(out, std::vector<uint8_t>(c.room, 0xEE));
    }
}

TEST(XlateSingleByte, ShortAndNegativeLengths) {
    const uint8_t in[6] = {'a', 0x00, 0xE9, 0x7F, 0x80, 'z'};
    for (ComXlateFunc f : {com__fou_iso1_to_cp850, com__fou_ascii8_tofrom_1byte}) {
        uint8_t out[6] = {};
        int32_t consumed = -7, produced = -7;
        // A destination of two bytes takes the first two, and says so.
        EXPECT_EQ(f(in, 6, out, 2, &consumed, &produced), COM_XLT_TRUNCATED);
        EXPECT_EQ(consumed, 2);
        EXPECT_EQ(produced, 2);
        EXPECT_EQ(f(in, -1, out, 6, &consumed, &produced), 0);
        EXPECT_EQ(consumed, 0);
        EXPECT_EQ(f(in, 6, out, -1, &consumed, &produced), COM_XLT_TRUNCATED);
        EXPECT_EQ(produced, 0);
    }
}

} // namespace
