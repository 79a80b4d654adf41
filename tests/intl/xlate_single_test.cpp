// Single-byte translation: every table converter checked byte for byte against its table
// written out in hexadecimal (first entry for the first byte of the range), together with the
// pass-through and "?" rules around the range; the ASCII and test-set converters; and the
// shape of the dispatch table.
#include <comnlib.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

enum Below { Pass, Bad }; // what bytes from 80 up to the range's first byte become

struct SbCase {
    const char *name;
    ComXlateFunc func;
    unsigned lo, hi;
    Below below;
    const char *hex;
};

// clang-format off
const SbCase k_tables[] = {
    {"cp437->cp850", com__fou_cp437_to_cp850, 0x9B, 0xFF, Pass,
     "BD9CBE009FA0A1A2A3A4A5A6A7A800AAABACADAEAFB0B1B2B3B400B9BABBBC00"
     "00BFC0C1C2C3C4C50000C8C9CACBCCCDCE00000000000000000000D9DADBDC00"
     "00DF00E1000000000000000000000000000000F100000000F600F800FA0000FD"
     "FEFF000000"},
    {"cp437->iso1", com__fou_cp437_to_iso1, 0x80, 0xFF, Bad,
     "C7FCE9E2E4E0E5E7EAEBE8EFEEECC4C5C9E6C6F4F6F2FBF9FFD6DCA2A3A50000"
     "E1EDF3FAF1D1AABABF00ACBDBCA1ABBB00000000000000000000000000000000"
     "000000000000000000000000000000000000000000000000000000000000DF00"
     "0000000000000000000000000000B100000000F700B000B70000B200A0000000"},
    {"cp437->roman8", com__fou_cp437_to_roman8, 0x80, 0xFF, Bad,
     "B4CFC5C0CCC8D4B5C1CDC9DDD1D9D8D0DCD7D3C2CECAC3CBEFDADBBFBBBC00BE"
     "C4D5C6C7B7B6F9FAB90000F8F7B8FBFD00000000000000000000000000000000"
     "0000000000000000000000000000000000000000000000000000000000000000"
     "00DE00000000F300000000000000000000FE000000000000B300F2000000FC00"},
    {"roman8->cp437", com__fou_roman8_to_cp437, 0xB0, 0xFF, Bad,
     "000000F88087A5A4ADA8009C9D009F9B83889396A082A2A3858A959784899481"
     "8F8C009286A100918E8D999A908BE10000000000000000000000000000000098"
     "0000FAE6000000ACABA6A7AEFEAFF100"},
    {"cp850->cp437", com__fou_cp850_to_cp437, 0x9B, 0xFF, Pass,
     "009C00009FA0A1A2A3A4A5A6A7A800AAABACADAEAFB0B1B2B3B400000000B9BA"
     "BBBC9B9DBFC0C1C2C3C4C50000C8C9CACBCCCDCE00000000000000000000D9DA"
     "DBDC0000DF00E1000000000000000000000000000000F100000000F600F800FA"
     "0000FDFEFF"},
    {"cp850->iso1", com__fou_cp850_to_iso1, 0x80, 0xFF, Bad,
     "C7FCE9E2E4E0E5E7EAEBE8EFEEECC4C5C9E6C6F4F6F2FBF9FFD6DCF8A3D8D700"
     "E1EDF3FAF1D1AABABFAEACBDBCA1ABBB0000000000C1C2C0A900000000A2A500"
     "000000000000E3C300000000000000A4F0D0CACBC800CDCECF00000000A6CC00"
     "D3DFD4D2F5D5B5FEDEDADBD9FDDDAFB4ADB100BEB6A7F7B8B0A8B7B9B3B200A0"},
    {"iso1->cp437", com__fou_iso1_to_cp437, 0xA0, 0xFF, Bad,
     "FFAD9B9C009D00000000A6AEAA000000F8F1FD00000000FA0000A7AFACAB00A8"
     "000000008E8F9280009000000000000000A5000000009900000000009A0000E1"
     "85A08300848691878A8288898DA18C8B00A495A2930094F60097A39681000098"},
    {"iso1->cp850", com__fou_iso1_to_cp850, 0xA0, 0xFF, Bad,
     "FFADBD9CCFBEDDF5F9B8A6AEAAF0A9EEF8F1FDFCEFE6F4FAF7FBA7AFACABF3A8"
     "B7B5B6C78E8F9280D490D2D3DED6D7D8D1A5E3E0E2E5999E9DEBE9EA9AEDE8E1"
     "85A083C6848691878A8288898DA18C8BD0A495A293E494F69B97A39681ECE798"},
    {"iso1->roman8", com__fou_iso1_to_roman8, 0xA0, 0xFF, Bad,
     "A0B8BFBBBABC00BDAB00F9FB000000B0B3FE0000A8F3F4F20000FAFDF7F8F5B9"
     "A1E0A2E1D8D0D3B4A3DCA4A5E6E5A6A7E3B6E8E7DFE9DA00D2ADEDAEDBB1F0DE"
     "C8C4C0E2CCD4D7B5C9C5C1CDD9D5D1DDE4B7CAC6C2EACE00D6CBC7C3CFB2F1EF"},
    {"roman8->iso1", com__fou_roman8_to_iso1, 0xA0, 0xFF, Bad,
     "A0C0C2C8CACBCECFB40000A800D9DB00AFDDFDB0C7E7D1F1A1BFA4A3A5A700A2"
     "E2EAF4FBE1E9F3FAE0E8F2F9E4EBF6FCC5EED8C6E5EDF8E6C4ECD6DCC9EFDFD4"
     "C1C3E3D0F0CDCCD3D2D5F50000DA00FFDEFEB7B5B6BE00BCBDAABAAB00BBB100"},
    {"cp850->roman8", com__fou_cp850_to_roman8, 0x80, 0xFF, Bad,
     "B4CFC5C0CCC8D4B5C1CDC9DDD1D9D8D0DCD7D3C2CECAC3CBEFDADBD6BBD200BE"
     "C4D5C6C7B7B6F9FAB90000F8F7B8FBFD0000000000E0A2A10000000000BFBC00"
     "000000000000E2E100000000000000BAE4E3A4A5A300E5A6A70000000000E600"
     "E7DEDFE8EAE9F3F1F0EDAEADB2B1B0A800FE00F5F4BD0000B3ABF2000000FC00"},
    {"roman8->cp850", com__fou_roman8_to_cp850, 0xA0, 0xFF, Bad,
     "00B7B6D4D2D3D7D8EF0000F900EBEA00EEEDECF88087A5A4ADA8CF9CBEF59FBD"
     "83889396A082A2A3858A9597848994818F8C9D9286A19B918E8D999A908BE1E2"
     "B5C7C6D1D0D6DEE0E3E5E40000E90098E8E7FAE6F4F300ACABA6A7AEFEAFF100"},
    {"iso1->mac", com__fou_iso1_to_mac, 0xA0, 0xFF, Bad,
     "CAC1A2A300B400A4ACA9BBC7C2D0A800A1B10000ABB5A6000000BCC8000000C0"
     "CB0000CC8081AE8200830000000000000084000000CD8500AF000000860000A7"
     "8887898B8A8CBE8D8F8E90919392949500969897999B9AD6BF9D9C9E9F0000D8"},
    {"mac->iso1", com__fou_mac_to_iso1, 0x80, 0xD8, Bad,
     "C4C5C7C9D1D6DCE1E0E2E4E3E5E7E9E8EAEBEDECEEEFF1F3F2F4F6F5FAF9FBFC"
     "00B0A2A3A700B6DFAEA900B4A800C6D800B10000A5B50000000000AABA00E6F8"
     "BFA1AC00000000ABBB00A0C0C3D50000AD0000000000F700FF"},
    {"cp850->mac", com__fou_cp850_to_mac, 0x80, 0xFF, Bad,
     "829F8E898A888C8D90918F959493808183BEAE999A989E9DD88586BFA3AF0000"
     "8792979C9684BBBCC0A8C20000C1C7C800000000000000CBA900000000A2B400"
     "0000000000008BCC000000000000000000000000000000000000000000000000"
     "00A700009BCDB50000000000000000ABD0B10000A6A4D600A1AC0000000000CA"},
    {"mac->cp850", com__fou_mac_to_cp850, 0x80, 0xD8, Bad,
     "8E8F8090A5999AA0858384C68687828A8889A18D8C8BA4A2959394E4A3979681"
     "00F8BD9CF500F4E1A9B800EFF900929D00F10000BEE60000000000A6A700919B"
     "A8ADAA00000000AEAF00FFB7C7E50000F00000000000F60098"},
    {"cp437->mac", com__fou_cp437_to_mac, 0x80, 0xFF, Bad,
     "829F8E898A888C8D90918F959493808183BEAE999A989E9DD88586A2A3B400C4"
     "8792979C9684BBBCC000C20000C1C7C800000000000000000000000000000000"
     "0000000000000000000000000000000000000000000000000000000000000000"
     "00A700B9B700B5000000BD00B000000000B1B3B20000D6C5A10000C3000000CA"},
    {"mac->cp437", com__fou_mac_to_cp437, 0x80, 0xD8, Bad,
     "8E8F8090A5999AA0858384008687828A8889A18D8C8BA4A295939400A3979681"
     "00F89B9C000000E10000000000009200ECF1F3F29DE600E400E300A6A7EA9100"
     "A8ADAAFB9FF700AEAF00FF0000000000000000000000F60098"},
    {"mac->roman8", com__fou_mac_to_roman8, 0x80, 0xD8, Bad,
     "D8D0B4DCB6DADBC4C8C0CCE2D4B5C5C9C1CDD5D9D1DDB7C6CAC2CEEAC7CBC3CF"
     "00B3BFBBBD00F4DE000000A8AB00D3D200FE0000BCF30000000000F9FA00D7D6"
     "B9B80000BE0000FBFD0000A1E1E9000000F6000000000000EF"},
    {"roman8->mac", com__fou_roman8_to_mac, 0xA0, 0xFF, Bad,
     "00CB000000000000AB0000AC00000000000000A1828D8496C1C000A3B4A4C4A2"
     "8990999E878E979C888F989D8A919A9F8194AFAE8C92BFBE809385868395A700"
     "00CC8B000000000000CD9B00000000D8000000B5A600D10000BBBCC700C8B100"},
};
// clang-format on

std::vector<uint8_t> from_hex(const char *hex) {
    std::vector<uint8_t> out;
    for (const char *p = hex; p[0] && p[1]; p += 2)
        out.push_back(static_cast<uint8_t>(std::stoul(std::string(p, 2), nullptr, 16)));
    return out;
}

struct Result {
    int32_t bits, consumed, produced;
};

Result run(ComXlateFunc f, const std::vector<uint8_t> &in, std::vector<uint8_t> &out) {
    Result r{};
    r.bits = f(in.data(), static_cast<int32_t>(in.size()), out.data(),
               static_cast<int32_t>(out.size()), &r.consumed, &r.produced);
    return r;
}

TEST(XlateSingleByte, EveryConverterMatchesItsTableOverAll256Bytes) {
    for (const SbCase &c : k_tables) {
        SCOPED_TRACE(c.name);
        const std::vector<uint8_t> table = from_hex(c.hex);
        ASSERT_EQ(table.size(), c.hi - c.lo + 1);
        for (unsigned b = 0; b < 256; ++b) {
            uint8_t want = '?';
            bool bad = true;
            if (b < 0x80 || (b < c.lo && c.below == Pass)) {
                want = static_cast<uint8_t>(b);
                bad = false;
            } else if (b >= c.lo && b <= c.hi && table[b - c.lo] != 0) {
                want = table[b - c.lo];
                bad = false;
            }
            std::vector<uint8_t> in{static_cast<uint8_t>(b)}, out{0};
            const Result r = run(c.func, in, out);
            EXPECT_EQ(out[0], want) << "byte " << std::hex << b;
            EXPECT_EQ(r.bits, bad ? COM_XLT_BADCHAR : 0) << "byte " << std::hex << b;
            EXPECT_EQ(r.consumed, 1);
            EXPECT_EQ(r.produced, 1);
        }
    }
}

TEST(XlateSingleByte, WholeBufferAgreesWithBytewiseAndReportsShortDestination) {
    std::vector<uint8_t> all(256);
    for (unsigned b = 0; b < 256; ++b)
        all[b] = static_cast<uint8_t>(b);
    for (const SbCase &c : k_tables) {
        SCOPED_TRACE(c.name);
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
