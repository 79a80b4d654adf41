// TDS datatype, version and token maps: every entry of each table must map back to where it
// came from, and the rules around the tables (shared codes told apart by length, lookups
// outside the tables, unclaimed bits) hold.
#include <gtest/gtest.h>

#include "comnlib.h"

namespace {

TEST(TdsDatatypes, SharedCodesAndLookupsOutsideTheTables) {
    struct {
        int32_t code, length, rc, datatype;
    } cases[] = {
        {0x26, 1, CS_SUCCEED, CS_TINYINT},   {0x26, 2, CS_SUCCEED, CS_SMALLINT},
        {0x26, 4, CS_SUCCEED, CS_INT},       {0x26, 3, COM_TDS_ERR_BADTDSTYPE, -7},
        {0x38, 99, CS_SUCCEED, CS_INT},      {0x00, 0, COM_TDS_ERR_BADTDSTYPE, -7},
        {-1, 0, COM_TDS_ERR_BADTDSTYPE, -7},
    };
    for (const auto &c : cases) {
        int32_t dt = -7;
        EXPECT_EQ(com_tds_get_cstype(c.code, c.length, &dt), c.rc) << std::hex << c.code;
        EXPECT_EQ(dt, c.datatype) << std::hex << c.code;
    }
    int32_t len = -7, prefix = -7, flag = -7, code = -7;
    EXPECT_EQ(com_tds_get_tdsfixedlen(0x26, &len), COM_TDS_ERR_BADTDSTYPE); // a nullable code
    EXPECT_EQ(len, -7);
    EXPECT_EQ(com_tds_get_tdsdatainfo(0x99, &prefix, &flag), COM_TDS_ERR_BADTDSTYPE);
    for (int32_t id : {24, -1}) {
        EXPECT_EQ(com_tds_get_fixed_tdstype(id, &code, &prefix, &len), COM_TDS_ERR_BADDATATYPE);
        EXPECT_EQ(com_tds_get_nullable_tdstype(id, &code, &prefix, &len), COM_TDS_ERR_BADDATATYPE);
    }
    EXPECT_EQ(code, -7);
}

// Each datatype's fixed and nullable forms map back to it, with the prefix the data-info
// lookup gives and, where the code has a fixed length, that length.
TEST(TdsDatatypes, EveryFormMapsBackToItsDatatype) {
    for (int32_t id = 0; id <= CS_VOID; ++id) {
        for (auto get : {com_tds_get_fixed_tdstype, com_tds_get_nullable_tdstype}) {
            int32_t code, prefix, len, back = -1, fixed = -1, info_prefix = -1, flag = -1;
            ASSERT_EQ(get(id, &code, &prefix, &len), CS_SUCCEED);
            if (code == -1) { // no wire form of its own
                EXPECT_EQ(prefix, -1) << id;
                EXPECT_EQ(len, -1) << id;
                continue;
            }
            ASSERT_EQ(com_tds_get_cstype(code, len, &back), CS_SUCCEED) << id;
            EXPECT_EQ(back, id);
            ASSERT_EQ(com_tds_get_tdsdatainfo(code, &info_prefix, &flag), CS_SUCCEED) << id;
            EXPECT_EQ(info_prefix, prefix) << id;
            if (com_tds_get_tdsfixedlen(code, &fixed) == CS_SUCCEED) {
                EXPECT_EQ(fixed, len) << id;
            }
        }
    }
}

TEST(TdsVersions, BytesToCodeAndBack) {
    struct {
        uint8_t b[4];
        int32_t rc, code;
    } cases[] = {
        {{4, 0, 7, 0}, CS_SUCCEED, 7360}, {{4, 2, 9, 0}, CS_SUCCEED, 7361},
        {{4, 9, 4, 0}, CS_FAIL, -7},      {{5, 0, 3, 1}, CS_SUCCEED, 7364},
        {{5, 1, 0, 0}, CS_FAIL, -7},      {{3, 0, 0, 0}, CS_FAIL, -7},
    };
    for (auto &c : cases) {
        int32_t code = -7;
        EXPECT_EQ(com_tds_version_map(c.b, nullptr, &code, COM_TDS_FROM_WIRE, nullptr), c.rc);
        EXPECT_EQ(code, c.code);
    }
    for (int32_t code = 7360; code <= 7365; ++code) {
        uint8_t b[4] = {9, 9, 9, 9};
        int32_t n = 0, back = 0, c = code;
        const int32_t rc = com_tds_version_map(b, nullptr, &c, COM_TDS_TO_WIRE, &n);
        if (code == 7365) {
            EXPECT_EQ(rc, CS_FAIL);
            break;
        }
        ASSERT_EQ(rc, CS_SUCCEED);
        EXPECT_EQ(n, 4);
        EXPECT_EQ(b[3], 0);
        ASSERT_EQ(com_tds_version_map(b, nullptr, &back, COM_TDS_FROM_WIRE, nullptr), CS_SUCCEED);
        EXPECT_EQ(back, code);
    }
}

TEST(TdsTokens, EveryPairRoundTrips) {
    for (int32_t i = 0; i < COM_TDS_MAP_COUNT; ++i) {
        const ComTdsMapEntry &e = Com__tds_maparray[i];
        for (const ComTdsPair *p = e.map; p->tds != COM_TDS_VALUE_END && p->tds != COM_TDS_BIT_END;
             ++p) {
            int32_t wire = 0, back = 0, un = 0;
            ASSERT_EQ(com_tds_maptoken(i, p->client, &wire, &un, COM_TDS_TO_WIRE), CS_SUCCEED);
            ASSERT_EQ(com_tds_maptoken(i, wire, &back, &un, COM_TDS_FROM_WIRE), CS_SUCCEED);
            EXPECT_EQ(back, p->client) << "map " << i;
        }
    }
}

TEST(TdsTokens, MissesAndBitMaps) {
    int32_t mapped = -7, unmapped = -7;
    EXPECT_EQ(com_tds_maptoken(0, 999, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    EXPECT_EQ(mapped, 0);
    EXPECT_EQ(unmapped, 999);
    // A map without pairs has only its end pair: every lookup fails cleanly.
    EXPECT_EQ(com_tds_maptoken(17, 1, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    EXPECT_EQ(com_tds_maptoken(COM_TDS_MAP_COUNT, 1, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    EXPECT_EQ(com_tds_maptoken(-1, 1, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    // Bit maps combine bits and hand back the ones no pair claims.
    ASSERT_EQ(
        com_tds_maptoken(4, COM_COL_KEY | COM_COL_HIDDEN, &mapped, &unmapped, COM_TDS_TO_WIRE),
        CS_SUCCEED);
    EXPECT_EQ(mapped, 0x08 | 0x10);
    EXPECT_EQ(unmapped, 0);
    ASSERT_EQ(com_tds_maptoken(4, 0x04 | 0x100, &mapped, &unmapped, COM_TDS_FROM_WIRE), CS_SUCCEED);
    EXPECT_EQ(mapped, COM_COL_EXPRESSION);
    EXPECT_EQ(unmapped, 0x100);
    // Zero in a bit map is looked up as a value: no pair holds 0, so it fails.
    EXPECT_EQ(com_tds_maptoken(19, 0, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
}

} // namespace
