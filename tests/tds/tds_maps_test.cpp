// TDS datatype, version and token maps.
#include <gtest/gtest.h>

#include "comnlib.h"

namespace {

TEST(TdsDatatypes, CodeToDatatypeUsesLengthOnlyForSharedCodes) {
    struct {
        int32_t code, length, rc, datatype;
    } cases[] = {
        {0x26, 1, CS_SUCCEED, CS_TINYINT},   {0x26, 2, CS_SUCCEED, CS_SMALLINT},
        {0x26, 4, CS_SUCCEED, CS_INT},       {0x26, 3, COM_TDS_ERR_BADTDSTYPE, -7},
        {0x6D, 8, CS_SUCCEED, CS_FLOAT},     {0x6F, 4, CS_SUCCEED, CS_DATETIME4},
        {0x38, 99, CS_SUCCEED, CS_INT},      {0x25, 0, CS_SUCCEED, CS_BINARY},
        {0x1F, 0, CS_SUCCEED, CS_VOID},      {0x00, 0, COM_TDS_ERR_BADTDSTYPE, -7},
        {-1, 0, COM_TDS_ERR_BADTDSTYPE, -7},
    };
    for (const auto &c : cases) {
        int32_t dt = -7;
        EXPECT_EQ(com_tds_get_cstype(c.code, c.length, &dt), c.rc) << std::hex << c.code;
        EXPECT_EQ(dt, c.datatype) << std::hex << c.code;
    }
}

TEST(TdsDatatypes, FixedLengthSearchesOnlyTheFirstTable) {
    int32_t len = -7;
    EXPECT_EQ(com_tds_get_tdsfixedlen(0x26, &len), COM_TDS_ERR_BADTDSTYPE);
    EXPECT_EQ(len, -7);
    EXPECT_EQ(com_tds_get_tdsfixedlen(0x3E, &len), CS_SUCCEED);
    EXPECT_EQ(len, 8);
    EXPECT_EQ(com_tds_get_tdsfixedlen(0x23, &len), CS_SUCCEED);
    EXPECT_EQ(len, 2147483647);

    int32_t prefix = -7, flag = -7;
    EXPECT_EQ(com_tds_get_tdsdatainfo(0x26, &prefix, &flag), CS_SUCCEED);
    EXPECT_EQ(prefix, 1);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(com_tds_get_tdsdatainfo(0xE1, &prefix, &flag), CS_SUCCEED);
    EXPECT_EQ(prefix, 4);
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(com_tds_get_tdsdatainfo(0x99, &prefix, &flag), COM_TDS_ERR_BADTDSTYPE);
}

TEST(TdsDatatypes, FixedAndNullableForms) {
    struct {
        int32_t id, rc, fixed_code, fixed_prefix, fixed_len, null_code, null_prefix, null_len;
    } cases[] = {
        {CS_CHAR, CS_SUCCEED, 0x2F, 1, 255, 0x27, 1, 255},
        {CS_INT, CS_SUCCEED, 0x38, 0, 4, 0x26, 1, 4},
        {CS_BIT, CS_SUCCEED, 0x32, 0, 1, 0x32, 0, 1},
        {CS_MONEY4, CS_SUCCEED, 0x7A, 0, 4, 0x6E, 1, 4},
        {CS_DECIMAL, CS_SUCCEED, 0x6A, 1, 33, 0x6A, 1, 33},
        {CS_VARCHAR, CS_SUCCEED, -1, -1, -1, -1, -1, -1},
        {CS_LONG, CS_SUCCEED, -1, -1, -1, -1, -1, -1},
        {CS_VOID, CS_SUCCEED, -1, -1, -1, -1, -1, -1},
        {24, COM_TDS_ERR_BADDATATYPE, -7, -7, -7, -7, -7, -7},
        {-1, COM_TDS_ERR_BADDATATYPE, -7, -7, -7, -7, -7, -7},
    };
    for (const auto &c : cases) {
        int32_t code = -7, prefix = -7, len = -7;
        EXPECT_EQ(com_tds_get_fixed_tdstype(c.id, &code, &prefix, &len), c.rc) << c.id;
        EXPECT_EQ(code, c.fixed_code) << c.id;
        EXPECT_EQ(prefix, c.fixed_prefix) << c.id;
        EXPECT_EQ(len, c.fixed_len) << c.id;
        code = prefix = len = -7;
        EXPECT_EQ(com_tds_get_nullable_tdstype(c.id, &code, &prefix, &len), c.rc) << c.id;
        EXPECT_EQ(code, c.null_code) << c.id;
        EXPECT_EQ(prefix, c.null_prefix) << c.id;
        EXPECT_EQ(len, c.null_len) << c.id;
    }
}

TEST(TdsDatatypes, EveryFixedFormMapsBackToItsDatatype) {
    for (int32_t id = 0; id < COM_TDS_CS_ROWS; ++id) {
        int32_t code, prefix, len, back = -1;
        ASSERT_EQ(com_tds_get_fixed_tdstype(id, &code, &prefix, &len), CS_SUCCEED);
        if (code == -1) continue;
        ASSERT_EQ(com_tds_get_cstype(code, len, &back), CS_SUCCEED) << id;
        EXPECT_EQ(back, id);
    }
}

TEST(TdsVersions, BytesToCode) {
    struct {
        uint8_t b[4];
        int32_t rc, code;
    } cases[] = {
        {{4, 0, 0, 0}, CS_SUCCEED, 7360}, {{4, 0, 7, 0}, CS_SUCCEED, 7360},
        {{4, 2, 9, 0}, CS_SUCCEED, 7361}, {{4, 6, 0, 0}, CS_SUCCEED, 7362},
        {{4, 9, 5, 0}, CS_SUCCEED, 7363}, {{4, 9, 4, 0}, CS_FAIL, -7},
        {{5, 0, 0, 0}, CS_SUCCEED, 7364}, {{5, 0, 3, 1}, CS_SUCCEED, 7364},
        {{5, 1, 0, 0}, CS_FAIL, -7},      {{3, 0, 0, 0}, CS_FAIL, -7},
    };
    for (auto &c : cases) {
        int32_t code = -7;
        EXPECT_EQ(com_tds_version_map(c.b, nullptr, &code, COM_TDS_FROM_WIRE, nullptr), c.rc);
        EXPECT_EQ(code, c.code);
    }
}

TEST(TdsVersions, CodeToBytesRoundTrips) {
    for (int32_t code = 7360; code <= 7364; ++code) {
        uint8_t b[4] = {9, 9, 9, 9};
        int32_t n = 0, back = 0, c = code;
        ASSERT_EQ(com_tds_version_map(b, nullptr, &c, COM_TDS_TO_WIRE, &n), CS_SUCCEED);
        EXPECT_EQ(n, 4);
        EXPECT_EQ(b[3], 0);
        ASSERT_EQ(com_tds_version_map(b, nullptr, &back, COM_TDS_FROM_WIRE, nullptr), CS_SUCCEED);
        EXPECT_EQ(back, code);
    }
    uint8_t b[4];
    int32_t bad = 7365;
    EXPECT_EQ(com_tds_version_map(b, nullptr, &bad, COM_TDS_TO_WIRE, nullptr), CS_FAIL);
}

TEST(TdsTokens, ValueMapsTranslateBothWays) {
    int32_t mapped = -7, unmapped = -7;
    ASSERT_EQ(com_tds_maptoken(0, COM_OP_SUM, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_SUCCEED);
    EXPECT_EQ(mapped, 0x4D);
    ASSERT_EQ(com_tds_maptoken(0, 0x52, &mapped, &unmapped, COM_TDS_FROM_WIRE), CS_SUCCEED);
    EXPECT_EQ(mapped, COM_OP_MAX);
    ASSERT_EQ(com_tds_maptoken(10, COM_OPT_SHOWPLAN, &mapped, &unmapped, COM_TDS_TO_WIRE),
              CS_SUCCEED);
    EXPECT_EQ(mapped, 13);

    EXPECT_EQ(com_tds_maptoken(0, 999, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    EXPECT_EQ(mapped, 0);
    EXPECT_EQ(unmapped, 999);
    // A map without pairs has only its end pair: every lookup fails cleanly.
    EXPECT_EQ(com_tds_maptoken(17, 1, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    EXPECT_EQ(unmapped, 1);
    EXPECT_EQ(com_tds_maptoken(COM_TDS_MAP_COUNT, 1, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
    EXPECT_EQ(com_tds_maptoken(-1, 1, &mapped, &unmapped, COM_TDS_TO_WIRE), CS_FAIL);
}

TEST(TdsTokens, BitMapsCombineAndReportUnclaimedBits) {
    int32_t mapped = -7, unmapped = -7;
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

} // namespace
