// TDS datatype maps: the wire type code, fixed length, flag and length-prefix size of each
// datatype, in both directions. Tables are laid out as the protocol tables are read:
// (TDS code, datatype id, length, flag, prefix size).
#include "comnlib/tds.h"

namespace {

constexpr int32_t kLong = 2147483647;

// The lookups answer only by their result: nothing is written on a failed lookup.
const ComTdsDatatype *find(const ComTdsDatatype *table, int32_t tdstype) {
    for (; table->datatype != -1; ++table)
        if (table->tdstype == tdstype) return table;
    return nullptr;
}

int32_t get_tdstype(const ComTdsDatatype *table, int32_t datatype, int32_t *tdstype,
                    int32_t *prefix, int32_t *length) {
    if (datatype < 0 || datatype > CS_VOID) return COM_TDS_ERR_BADDATATYPE;
    // CS_VOID passes the range guard but has no TDS form, like CS_VARCHAR, CS_VARBINARY and
    // CS_LONG, whose rows hold -1: the caller treats -1 as "no TDS form".
    if (datatype == CS_VOID) {
        *tdstype = *prefix = *length = -1;
        return CS_SUCCEED;
    }
    const ComTdsDatatype &row = table[datatype];
    *tdstype = row.tdstype;
    *prefix = row.prefix;
    *length = row.length;
    return CS_SUCCEED;
}

} // namespace

extern "C" {

// clang-format off
const ComTdsDatatype Com__tds_uniq_datatype_map[COM_TDS_UNIQ_ROWS + 1] = {
    {0x2D, CS_BINARY,      255,   0, 1},
    {0x25, CS_BINARY,      255,   1, 1},
    {0x2F, CS_CHAR,        255,   1, 1},
    {0x27, CS_CHAR,        255,   1, 1},
    {0x30, CS_TINYINT,     1,     0, 0},
    {0x34, CS_SMALLINT,    2,     0, 0},
    {0x38, CS_INT,         4,     0, 0},
    {0x3B, CS_REAL,        4,     0, 0},
    {0x3E, CS_FLOAT,       8,     0, 0},
    {0x3A, CS_DATETIME4,   4,     0, 0},
    {0x3D, CS_DATETIME,    8,     0, 0},
    {0x7A, CS_MONEY4,      4,     0, 0},
    {0x3C, CS_MONEY,       8,     0, 0},
    {0x32, CS_BIT,         1,     0, 0},
    {0xAF, CS_LONGCHAR,    kLong, 0, 4},
    {0xE1, CS_LONGBINARY,  kLong, 0, 4},
    {0x23, CS_TEXT,        kLong, 0, 4},
    {0x22, CS_IMAGE,       kLong, 0, 4},
    {0x22, CS_IMAGE,       kLong, 0, 4}, // the image row stands twice
    {0x6C, CS_NUMERIC,     33,    0, 1},
    {0x6A, CS_DECIMAL,     33,    0, 1},
    {0x67, CS_SENSITIVITY, 255,   1, 1},
    {0x68, CS_BOUNDARY,    255,   1, 1},
    {0,    -1,             0,     0, 0},
};

// TDS codes that stand for several datatypes, told apart by length.
const ComTdsDatatype Com__tds_dup_datatype_map[COM_TDS_DUP_ROWS + 1] = {
    {0x25, CS_BINARY,    255, 1, 1},
    {0x27, CS_CHAR,      255, 1, 1},
    {0x26, CS_TINYINT,   1,   1, 1},
    {0x26, CS_SMALLINT,  2,   1, 1},
    {0x26, CS_INT,       4,   1, 1},
    {0x6D, CS_REAL,      4,   1, 1},
    {0x6D, CS_FLOAT,     8,   1, 1},
    {0x6F, CS_DATETIME4, 4,   1, 1},
    {0x6F, CS_DATETIME,  8,   1, 1},
    {0x6E, CS_MONEY4,    4,   1, 1},
    {0x6E, CS_MONEY,     8,   1, 1},
    {0x1F, CS_VOID,      0,   1, 1},
    {0,    -1,           0,   0, 0},
};

// By datatype id: the fixed form ...
const ComTdsDatatype Com__tds_cs_uniq[COM_TDS_CS_ROWS] = {
    {0x2F, CS_CHAR,        255,   1, 1},
    {0x2D, CS_BINARY,      255,   0, 1},
    {0xAF, CS_LONGCHAR,    kLong, 0, 4},
    {0xE1, CS_LONGBINARY,  kLong, 0, 4},
    {0x23, CS_TEXT,        kLong, 0, 4},
    {0x22, CS_IMAGE,       kLong, 0, 4},
    {0x30, CS_TINYINT,     1,     0, 0},
    {0x34, CS_SMALLINT,    2,     0, 0},
    {0x38, CS_INT,         4,     0, 0},
    {0x3B, CS_REAL,        4,     0, 0},
    {0x3E, CS_FLOAT,       8,     0, 0},
    {0x32, CS_BIT,         1,     0, 0},
    {0x3D, CS_DATETIME,    8,     0, 0},
    {0x3A, CS_DATETIME4,   4,     0, 0},
    {0x3C, CS_MONEY,       8,     0, 0},
    {0x7A, CS_MONEY4,      4,     0, 0},
    {0x6C, CS_NUMERIC,     33,    0, 1},
    {0x6A, CS_DECIMAL,     33,    0, 1},
    {-1,   CS_VARCHAR,     -1,    0, -1},
    {-1,   CS_VARBINARY,   -1,    0, -1},
    {-1,   CS_LONG,        -1,    0, -1},
    {0x67, CS_SENSITIVITY, 255,   1, 1},
    {0x68, CS_BOUNDARY,    255,   1, 1},
};

// ... and the nullable form.
const ComTdsDatatype Com__tds_cs_dup[COM_TDS_CS_ROWS] = {
    {0x27, CS_CHAR,        255,   1, 1},
    {0x25, CS_BINARY,      255,   0, 1},
    {0xAF, CS_LONGCHAR,    kLong, 0, 4},
    {0xE1, CS_LONGBINARY,  kLong, 0, 4},
    {0x23, CS_TEXT,        kLong, 0, 4},
    {0x22, CS_IMAGE,       kLong, 0, 4},
    {0x26, CS_TINYINT,     1,     0, 1},
    {0x26, CS_SMALLINT,    2,     0, 1},
    {0x26, CS_INT,         4,     0, 1},
    {0x6D, CS_REAL,        4,     0, 1},
    {0x6D, CS_FLOAT,       8,     0, 1},
    {0x32, CS_BIT,         1,     0, 0},
    {0x6F, CS_DATETIME,    8,     0, 1},
    {0x6F, CS_DATETIME4,   4,     0, 1},
    {0x6E, CS_MONEY,       8,     0, 1},
    {0x6E, CS_MONEY4,      4,     0, 1},
    {0x6C, CS_NUMERIC,     33,    0, 1},
    {0x6A, CS_DECIMAL,     33,    0, 1},
    {-1,   CS_VARCHAR,     -1,    0, -1},
    {-1,   CS_VARBINARY,   -1,    0, -1},
    {-1,   CS_LONG,        -1,    0, -1},
    {0x67, CS_SENSITIVITY, 255,   1, 1},
    {0x68, CS_BOUNDARY,    255,   1, 1},
};
// clang-format on

COMN_API int32_t com_tds_get_tdsdatainfo(int32_t tdstype, int32_t *prefix, int32_t *flag) {
    const ComTdsDatatype *row = find(Com__tds_uniq_datatype_map, tdstype);
    if (!row) row = find(Com__tds_dup_datatype_map, tdstype);
    if (!row) return COM_TDS_ERR_BADTDSTYPE;
    *prefix = row->prefix;
    *flag = row->flag;
    return CS_SUCCEED;
}

COMN_API int32_t com_tds_get_tdsfixedlen(int32_t tdstype, int32_t *length) {
    const ComTdsDatatype *row = find(Com__tds_uniq_datatype_map, tdstype);
    if (!row) return COM_TDS_ERR_BADTDSTYPE;
    *length = row->length;
    return CS_SUCCEED;
}

COMN_API int32_t com_tds_get_cstype(int32_t tdstype, int32_t length, int32_t *datatype) {
    if (const ComTdsDatatype *row = find(Com__tds_uniq_datatype_map, tdstype)) {
        *datatype = row->datatype;
        return CS_SUCCEED;
    }
    for (const ComTdsDatatype *row = Com__tds_dup_datatype_map; row->datatype != -1; ++row) {
        if (row->tdstype == tdstype && row->length == length) {
            *datatype = row->datatype;
            return CS_SUCCEED;
        }
    }
    return COM_TDS_ERR_BADTDSTYPE;
}

COMN_API int32_t com_tds_get_fixed_tdstype(int32_t datatype, int32_t *tdstype, int32_t *prefix,
                                           int32_t *length) {
    return get_tdstype(Com__tds_cs_uniq, datatype, tdstype, prefix, length);
}

COMN_API int32_t com_tds_get_nullable_tdstype(int32_t datatype, int32_t *tdstype, int32_t *prefix,
                                              int32_t *length) {
    return get_tdstype(Com__tds_cs_dup, datatype, tdstype, prefix, length);
}
}
