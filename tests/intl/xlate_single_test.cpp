// Single-byte translation: the whole-buffer and short-destination behaviour of the table
// converters, the ASCII and test-set converters, and the shape of the dispatch table. The
// table converters are checked byte for byte against Python's codecs by check_xlate_single.py.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

struct Result {
    int32_t bits, consumed, produced;
};

Result run(ComXlateFunc f, const std::vector<uint8_t> &in, std::vector<uint8_t> &out) {
    Result r{};
    r.bits = f(in.data(), static_cast<int32_t>(in.size()), out.data(),
               static_cast<int32_t>(out.size()), &r.consumed, &r.produced);
    return r;
}

TEST(XlateSingleByte, AsciiConverterPassesSevenBitsOnly) {
    std::vector<uint8_t> in{'a', 0x00, 0x7F, 0x80, 0xE9, 'z'}, out(6);
    Result r = run(com__fou_ascii8_tofrom_1byte, in, out);
    EXPECT_EQ(out, (std::vector<uint8_t>{'a', 0x00, 0x7F, '?', '?', 'z'}));
    EXPECT_EQ(r.bits, COM_XLT_BADCHAR);
    EXPECT_EQ(r.consumed, 6);
    std::vector<uint8_t> shortout(3);
    r = run(com__fou_ascii8_tofrom_1byte, in, shortout);
    EXPECT_EQ(r.bits, COM_XLT_TRUNCATED);
    EXPECT_EQ(r.produced, 3);
    r = run(com__fou_ascii8_tofrom_1byte, {}, shortout);
    EXPECT_EQ(r.bits, 0);
    EXPECT_EQ(r.produced, 0);
}

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
        const Result r = run(com__fou_caseswap, c.in, out);
        EXPECT_EQ(r.bits, c.bits);
        EXPECT_EQ(r.consumed, c.consumed);
        EXPECT_EQ(r.produced, c.produced);
        EXPECT_EQ(out, std::vector<uint8_t>(c.room, 0xEE));
    }
}

TEST(XlateSingleByte, NegativeLengthsTranslateNothing) {
    uint8_t in[4] = {'a', 'b', 'c', 'd'}, out[4] = {};
    int32_t consumed = -7, produced = -7;
    EXPECT_EQ(com__fou_iso1_to_cp850(in, -1, out, 4, &consumed, &produced), 0);
    EXPECT_EQ(consumed, 0);
    EXPECT_EQ(com__fou_iso1_to_cp850(in, 4, out, -1, &consumed, &produced), COM_XLT_TRUNCATED);
    EXPECT_EQ(produced, 0);
}

// Expected modes, rows and columns in the order ascii8, iso_1, cp850, cp437, roman8, mac,
// eucjis, sjis, deckanji, test set.
constexpr int k_ids[COM_XLT_NSETS] = {0, 1, 2, 3, 4, 5, 140, 141, 142, 255};
constexpr const char *k_modes[COM_XLT_NSETS] = {
    "1222222223", "2133332223", "2313332220", "2331332220", "2333132220",
    "2333312220", "2222221330", "2222223130", "2222223310", "2200000001",
};

struct Dedicated {
    int src, dst;
    ComXlateFunc func;
};
const Dedicated k_dedicated[] = {
    {0, 255, com__fou_caseswap},
    {1, 2, com__fou_iso1_to_cp850},
    {1, 3, com__fou_iso1_to_cp437},
    {1, 4, com__fou_iso1_to_roman8},
    {1, 5, com__fou_iso1_to_mac},
    {1, 255, com__fou_caseswap},
    {2, 1, com__fou_cp850_to_iso1},
    {2, 3, com__fou_cp850_to_cp437},
    {2, 4, com__fou_cp850_to_roman8},
    {2, 5, com__fou_cp850_to_mac},
    {3, 1, com__fou_cp437_to_iso1},
    {3, 2, com__fou_cp437_to_cp850},
    {3, 4, com__fou_cp437_to_roman8},
    {3, 5, com__fou_cp437_to_mac},
    {4, 1, com__fou_roman8_to_iso1},
    {4, 2, com__fou_roman8_to_cp850},
    {4, 3, com__fou_roman8_to_cp437},
    {4, 5, com__fou_roman8_to_mac},
    {5, 1, com__fou_mac_to_iso1},
    {5, 2, com__fou_mac_to_cp850},
    {5, 3, com__fou_mac_to_cp437},
    {5, 4, com__fou_mac_to_roman8},
    {140, 141, com__fou_eucjis_to_sjis},
    {140, 142, com__fou_eucjis_to_deckanji},
    {141, 140, com__fou_sjis_to_eucjis_deckanj},
    {141, 142, com__fou_sjis_to_eucjis_deckanj},
    {142, 140, com__fou_deckanji_to_eucjis},
    {142, 141, com__fou_deckanji_to_sjis},
};

TEST(XlateSingleByte, WholeBufferAgreesWithBytewiseAndReportsShortDestination) {
    std::vector<uint8_t> all(256);
    for (unsigned b = 0; b < 256; ++b)
        all[b] = static_cast<uint8_t>(b);
    for (const Dedicated &c : k_dedicated) {
        if (c.src < 1 || c.src > 5 || c.dst < 1 || c.dst > 5) continue; // single-byte pairs only
        SCOPED_TRACE(testing::Message() << c.src << " -> " << c.dst);
        std::vector<uint8_t> whole(256), one(1);
        const Result r = run(c.func, all, whole);
        EXPECT_EQ(r.bits, COM_XLT_BADCHAR); // every table has holes
        for (unsigned b = 0; b < 256; ++b) {
            std::vector<uint8_t> in{static_cast<uint8_t>(b)};
            run(c.func, in, one);
            ASSERT_EQ(whole[b], one[0]) << std::hex << b;
        }
        // A destination of 100 bytes takes the first 100 (all ASCII): truncation only.
        std::vector<uint8_t> small(100, 0xEE);
        const Result s = run(c.func, all, small);
        EXPECT_EQ(s.bits, COM_XLT_TRUNCATED);
        EXPECT_EQ(s.consumed, 100);
        EXPECT_EQ(s.produced, 100);
        EXPECT_TRUE(std::equal(small.begin(), small.end(), all.begin()));
    }
}

TEST(XlateMap, TenRowsOfTenCellsWithTheExpectedModesAndConverters) {
    int dedicated = 0;
    for (int r = 0; r < COM_XLT_NSETS; ++r) {
        const ComXltRow &row = Com_fou_xlt_map[r];
        EXPECT_EQ(row.src_id, k_ids[r]);
        for (int c = 0; c < COM_XLT_NSETS; ++c) {
            const ComXltCell &cell = row.cells[c];
            SCOPED_TRACE(testing::Message() << k_ids[r] << " -> " << k_ids[c]);
            EXPECT_EQ(cell.dest_id, k_ids[c]);
            EXPECT_EQ(cell.mode, k_modes[r][c] - '0');
            switch (cell.mode) {
            case COM_XLT_MODE_NONE:
            case COM_XLT_MODE_COPY:
                EXPECT_EQ(cell.func, nullptr);
                break;
            case COM_XLT_MODE_ASCII:
                EXPECT_EQ(cell.func, com__fou_ascii8_tofrom_1byte);
                break;
            default: {
                ComXlateFunc want = nullptr;
                for (const Dedicated &d : k_dedicated)
                    if (d.src == k_ids[r] && d.dst == k_ids[c]) want = d.func;
                EXPECT_EQ(cell.func, want);
                ++dedicated;
            }
            }
        }
    }
    EXPECT_EQ(dedicated, static_cast<int>(std::size(k_dedicated)));
}

} // namespace
