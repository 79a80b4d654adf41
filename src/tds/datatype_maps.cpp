// TDS datatype maps: the wire type code, fixed length, flag and length-prefix size of each
// datatype, in both directions. The two maps by TDS code keep the protocol tables' rows in
// their order, each row (TDS code, datatype id, length, flag, prefix size) written through the
// maker of its form, which fixes the flag and the prefix size; the two tables by datatype id
// are derived from them.
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

// Row makers, each for a form of row, so that what the form fixes is stated once: the flag
// (1: the type has a nullable or variable-length encoding) and the length-prefix size.
// A fixed-length type: no flag, no prefix.
constexpr ComTdsDatatype fixed(int32_t tdstype, int32_t datatype, int32_t length) {
    return {tdstype, datatype, length, 0, 0};
}
// A variable-length type: no flag, a 1-byte length prefix.
constexpr ComTdsDatatype prefixed(int32_t tdstype, int32_t datatype, int32_t length) {
    return {tdstype, datatype, length, 0, 1};
}
// A variable-length or nullable type: flag 1, a 1-byte length prefix.
constexpr ComTdsDatatype nullable(int32_t tdstype, int32_t datatype, int32_t length) {
    return {tdstype, datatype, length, 1, 1};
}
// A long type: no flag, up to 2147483647 bytes behind a 4-byte length prefix.
constexpr ComTdsDatatype long_type(int32_t tdstype, int32_t datatype) {
    return {tdstype, datatype, kLong, 0, 4};
}
constexpr ComTdsDatatype kEnd{0, -1, 0, 0, 0};

} // namespace

extern "C" {

// clang-format off
constexpr ComTdsDatatype Com__tds_uniq_datatype_map[COM_TDS_UNIQ_ROWS + 1] = {
    prefixed(0x2D, CS_BINARY, 255),  nullable(0x25, CS_BINARY, 255),
    nullable(0x2F, CS_CHAR, 255),    nullable(0x27, CS_CHAR, 255),
    fixed(0x30, CS_TINYINT, 1),      fixed(0x34, CS_SMALLINT, 2),     fixed(0x38, CS_INT, 4),
    fixed(0x3B, CS_REAL, 4),         fixed(0x3E, CS_FLOAT, 8),
    fixed(0x3A, CS_DATETIME4, 4),    fixed(0x3D, CS_DATETIME, 8),
    fixed(0x7A, CS_MONEY4, 4),       fixed(0x3C, CS_MONEY, 8),
    fixed(0x32, CS_BIT, 1),
    long_type(0xAF, CS_LONGCHAR),    long_type(0xE1, CS_LONGBINARY),  long_type(0x23, CS_TEXT),
    long_type(0x22, CS_IMAGE),       long_type(0x22, CS_IMAGE), // the image row stands twice
    prefixed(0x6C, CS_NUMERIC, 33),  prefixed(0x6A, CS_DECIMAL, 33),
    nullable(0x67, CS_SENSITIVITY, 255), nullable(0x68, CS_BOUNDARY, 255),
    kEnd,
};

// TDS codes that stand for several datatypes, told apart by length, a line per code; every row
// is of the nullable form.
constexpr ComTdsDatatype Com__tds_dup_datatype_map[COM_TDS_DUP_ROWS + 1] = {
    nullable(0x25, CS_BINARY, 255),
    nullable(0x27, CS_CHAR, 255),
    nullable(0x26, CS_TINYINT, 1),   nullable(0x26, CS_SMALLINT, 2),  nullable(0x26, CS_INT, 4),
    nullable(0x6D, CS_REAL, 4),      nullable(0x6D, CS_FLOAT, 8),
    nullable(0x6F, CS_DATETIME4, 4), nullable(0x6F, CS_DATETIME, 8),
    nullable(0x6E, CS_MONEY4, 4),    nullable(0x6E, CS_MONEY, 8),
    nullable(0x1F, CS_VOID, 0),
    kEnd,
};
// clang-format on

} // extern "C"

namespace {

// The by-datatype tables are derived from the two maps above, so that each row stands once.
// A datatype's fixed form is its first row in the unique map; its nullable form takes the TDS
// code, length and prefix of its row in the map of shared codes and keeps the fixed form's
// flag. A datatype in neither map (CS_VARCHAR, CS_VARBINARY, CS_LONG) has no TDS form: its
// code, length and prefix are -1.
constexpr const ComTdsDatatype *row_of(const ComTdsDatatype *table, int32_t datatype) {
    for (; table->datatype != -1; ++table)
        if (table->datatype == datatype) return table;
    return nullptr;
}

constexpr ComTdsDatatype fixed_form(int32_t datatype) {
    const ComTdsDatatype *row = row_of(Com__tds_uniq_datatype_map, datatype);
    return row ? *row : ComTdsDatatype{-1, datatype, -1, 0, -1};
}

constexpr ComTdsDatatype nullable_form(int32_t datatype) {
    ComTdsDatatype form = fixed_form(datatype);
    if (const ComTdsDatatype *row = row_of(Com__tds_dup_datatype_map, datatype)) {
        form.tdstype = row->tdstype;
        form.length = row->length;
        form.prefix = row->prefix;
    }
    return form;
}

// Every datatype id below CS_VOID, in id order.
// clang-format off
#define COMN_TDS_BY_DATATYPE_(form) {                                                              \
    form(CS_CHAR), form(CS_BINARY), form(CS_LONGCHAR), form(CS_LONGBINARY), form(CS_TEXT),         \
    form(CS_IMAGE), form(CS_TINYINT), form(CS_SMALLINT), form(CS_INT), form(CS_REAL),              \
    form(CS_FLOAT), form(CS_BIT), form(CS_DATETIME), form(CS_DATETIME4), form(CS_MONEY),           \
    form(CS_MONEY4), form(CS_NUMERIC), form(CS_DECIMAL), form(CS_VARCHAR), form(CS_VARBINARY),     \
    form(CS_LONG), form(CS_SENSITIVITY), form(CS_BOUNDARY)}
// clang-format on

constexpr bool in_datatype_order(const ComTdsDatatype *table) {
    for (int32_t id = 0; id < COM_TDS_CS_ROWS; ++id)
        if (table[id].datatype != id) return false;
    return true;
}

} // namespace

extern "C" {

constexpr ComTdsDatatype Com__tds_cs_uniq[COM_TDS_CS_ROWS] = COMN_TDS_BY_DATATYPE_(fixed_form);
constexpr ComTdsDatatype Com__tds_cs_dup[COM_TDS_CS_ROWS] = COMN_TDS_BY_DATATYPE_(nullable_form);
static_assert(in_datatype_order(Com__tds_cs_uniq) && in_datatype_order(Com__tds_cs_dup));

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
