/* comnlib: TDS datatype, version and token maps. */
#ifndef COMNLIB_TDS_H
#define COMNLIB_TDS_H

#include "types.h"

COMN_BEGIN_DECLS

/* ---- Datatype maps ---- */

/* One row: TDS type code, datatype id, length (255: up to 255 with a one-byte length;
   2147483647: a long type), flag, length-prefix size (0, 1 or 4). */
typedef struct ComTdsDatatype {
    int32_t tdstype;
    int32_t datatype;
    int32_t length;
    int32_t flag;
    int32_t prefix;
} ComTdsDatatype;

/* Message numbers returned by the datatype lookups: layer 4, origin 1 or 2, severity 5,
   numbers 41 and 41 of their sections. */
#define COM_TDS_ERR_BADTDSTYPE 0x4010529
#define COM_TDS_ERR_BADDATATYPE 0x4020629

#define COM_TDS_UNIQ_ROWS 23
#define COM_TDS_DUP_ROWS 12
#define COM_TDS_CS_ROWS 23

/* Searched by TDS code; each ends with a row whose datatype id is -1. */
COMN_API extern const ComTdsDatatype Com__tds_uniq_datatype_map[COM_TDS_UNIQ_ROWS + 1];
COMN_API extern const ComTdsDatatype Com__tds_dup_datatype_map[COM_TDS_DUP_ROWS + 1];
/* Indexed by datatype id 0..22: the TDS form to send a value as, fixed and nullable. */
COMN_API extern const ComTdsDatatype Com__tds_cs_uniq[COM_TDS_CS_ROWS];
COMN_API extern const ComTdsDatatype Com__tds_cs_dup[COM_TDS_CS_ROWS];

COMN_API int32_t com_tds_get_tdsdatainfo(int32_t tdstype, int32_t *prefix, int32_t *flag);
COMN_API int32_t com_tds_get_tdsfixedlen(int32_t tdstype, int32_t *length);
COMN_API int32_t com_tds_get_cstype(int32_t tdstype, int32_t length, int32_t *datatype);
COMN_API int32_t com_tds_get_fixed_tdstype(int32_t datatype, int32_t *tdstype, int32_t *prefix,
                                           int32_t *length);
COMN_API int32_t com_tds_get_nullable_tdstype(int32_t datatype, int32_t *tdstype, int32_t *prefix,
                                              int32_t *length);

/* ---- Protocol versions ---- */

#define COM_TDS_VERSION_40 7360
#define COM_TDS_VERSION_42 7361
#define COM_TDS_VERSION_46 7362
#define COM_TDS_VERSION_495 7363
#define COM_TDS_VERSION_50 7364

#define COM_TDS_TO_WIRE 1 /* direction: client value (or version code) to TDS */
#define COM_TDS_FROM_WIRE 2

COMN_API int32_t com_tds_version_map(uint8_t *bytes, void *unused, int32_t *version,
                                     int32_t direction, int32_t *count);

/* ---- Token maps ----
   A map is an array of (client value, TDS value) pairs. A value map ends with a pair whose
   client value is -1 or -2 and whose TDS value is -1; a bit map ends with the pair
   (0x70000000, 0x70000000).

   Each list below is one map: X(client name, client value, TDS value). The client values
   are this library's own constants (the client layers use these names); the TDS values are
   the protocol's. A map whose list is empty has only its end pair. */

#define COM_TDS_VALUE_END (-1)
#define COM_TDS_BIT_END 0x70000000

/* clang-format off */
/* 0: aggregate operators of compute rows. */
#define COM_TDS_ALTOP_PAIRS(X)                                                                     \
    X(COM_OP_COUNT, 1, 0x4B)                                                                       \
    X(COM_OP_SUM, 2, 0x4D) X(COM_OP_AVG, 3, 0x4F) X(COM_OP_MIN, 4, 0x51) X(COM_OP_MAX, 5, 0x52)
/* 1: capability kinds. */
#define COM_TDS_CAPTYPE_PAIRS(X) X(COM_CAP_REQUEST, 1, 1) X(COM_CAP_RESPONSE, 2, 2)
/* 2: request capabilities (TDS value: the capability's bit number). */
#define COM_TDS_CAP_REQ_PAIRS(X)                                                                   \
    X(COM_REQ_LANG, 1, 1)                                                                          \
    X(COM_REQ_RPC, 2, 2) X(COM_REQ_NOTIF, 3, 3) X(COM_REQ_MSTMT, 4, 4) X(COM_REQ_BCP, 5, 5)        \
        X(COM_REQ_CURSOR, 6, 6) X(COM_REQ_DYN, 7, 7) X(COM_REQ_MSG, 8, 8) X(COM_REQ_PARAM, 9, 9)   \
            X(COM_DATA_INT1, 10, 10) X(COM_DATA_INT2, 11, 11) X(COM_DATA_INT4, 12, 12) X(          \
                COM_DATA_BIT, 13, 13) X(COM_DATA_CHAR, 14, 14) X(COM_DATA_VCHAR, 15, 15)           \
                X(COM_DATA_BIN, 16, 16) X(COM_DATA_VBIN, 17, 17) X(COM_DATA_MNY8, 18, 18) X(       \
                    COM_DATA_MNY4, 19, 19) X(COM_DATA_DATE8, 20, 20) X(COM_DATA_DATE4, 21, 21)     \
                    X(COM_DATA_FLT4, 22, 22) X(COM_DATA_FLT8, 23, 23) X(COM_DATA_NUM, 24, 24)      \
                        X(COM_DATA_TEXT, 25, 25) X(COM_DATA_IMAGE, 26, 26) X(COM_DATA_DEC, 27, 27) \
                            X(COM_DATA_LCHAR, 28, 28) X(COM_DATA_LBIN, 29, 29) X(                  \
                                COM_DATA_INTN, 30, 30) X(COM_DATA_DATETIMEN, 31, 31)               \
                                X(COM_DATA_MONEYN, 32, 32) X(COM_CSR_PREV, 33, 33) X(              \
                                    COM_CSR_FIRST, 34, 34) X(COM_CSR_LAST, 35, 35)                 \
                                    X(COM_CSR_ABS, 36, 36) X(COM_CSR_REL, 37, 37) X(               \
                                        COM_CSR_MULTI, 38, 38) X(COM_CON_OOB, 39, 39)              \
                                        X(COM_CON_INBAND, 40, 40) X(COM_CON_LOGICAL, 41, 41)       \
                                            X(COM_PROTO_TEXT, 42, 42) X(COM_PROTO_BULK, 43, 43)    \
                                                X(COM_REQ_URGNOTIF, 44, 44)                        \
                                                    X(COM_DATA_SENSITIVITY, 45, 45)                \
                                                        X(COM_DATA_BOUNDARY, 46, 46)               \
                                                            X(COM_PROTO_DYNAMIC, 47, 47)           \
                                                                X(COM_PROTO_DYNPROC, 48, 48)       \
                                                                    X(COM_DATA_FLTN, 49, 49)       \
                                                                        X(COM_DATA_BITN, 50, 50)
/* 3: response capabilities (things the client does not want). */
#define COM_TDS_CAP_RESP_PAIRS(X)                                                                  \
    X(COM_RES_NOMSG, 1, 1)                                                                         \
    X(COM_RES_NOEED, 2, 2) X(COM_RES_NOPARAM, 3, 3) X(COM_DATA_NOINT1, 4, 4)                       \
        X(COM_DATA_NOINT2, 5, 5) X(COM_DATA_NOINT4, 6, 6) X(COM_DATA_NOBIT, 7, 7)                  \
            X(COM_DATA_NOCHAR, 8, 8) X(COM_DATA_NOVCHAR, 9, 9) X(COM_DATA_NOBIN, 10, 10)           \
                X(COM_DATA_NOVBIN, 11, 11) X(COM_DATA_NOMNY8, 12, 12) X(COM_DATA_NOMNY4, 13, 13)   \
                    X(COM_DATA_NODATE8, 14, 14) X(COM_DATA_NODATE4, 15, 15)                        \
                        X(COM_DATA_NOFLT4, 16, 16) X(COM_DATA_NOFLT8, 17, 17)                      \
                            X(COM_DATA_NONUM, 18, 18) X(COM_DATA_NOTEXT, 19, 19)                   \
                                X(COM_DATA_NOIMAGE, 20, 20) X(COM_DATA_NODEC, 21, 21)              \
                                    X(COM_DATA_NOLCHAR, 22, 22) X(COM_DATA_NOLBIN, 23, 23)         \
                                        X(COM_DATA_NOINTN, 24, 24) X(COM_DATA_NODATETIMEN, 25, 25) \
                                            X(COM_DATA_NOMONEYN, 26, 26) X(COM_CON_NOOOB, 27, 27)  \
                                                X(COM_CON_NOINBAND, 28, 28)                        \
                                                    X(COM_PROTO_NOTEXT, 29, 29)                    \
                                                        X(COM_PROTO_NOBULK, 30, 30)                \
                                                            X(COM_DATA_NOSENSITIVITY, 31, 31)      \
                                                                X(COM_DATA_NOBOUNDARY, 32, 32)
/* 4 (bit map): column status of column-information rows. */
#define COM_TDS_COLINFO_PAIRS(X)                                                                   \
    X(COM_COL_EXPRESSION, 0x1, 0x04)                                                               \
    X(COM_COL_KEY, 0x2, 0x08) X(COM_COL_HIDDEN, 0x4, 0x10) X(COM_COL_RENAME, 0x8, 0x20)
/* 5: cursor close options. */
#define COM_TDS_CURCLOSE_PAIRS(X) X(COM_CURCLOSE_KEEP, 1, 0x00) X(COM_CURCLOSE_DEALLOC, 2, 0x01)
/* 6: cursor declare options. */
#define COM_TDS_CURDECL_PAIRS(X)                                                                   \
    X(COM_CURDECL_NONE, 1, 0x00)                                                                   \
    X(COM_CURDECL_READONLY, 2, 0x01) X(COM_CURDECL_UPDATABLE, 3, 0x02)                             \
        X(COM_CURDECL_SENSITIVE, 4, 0x04) X(COM_CURDECL_DYNAMIC, 5, 0x08)                          \
            X(COM_CURDECL_IMPLICIT, 6, 0x10)
/* 7 (bit map): cursor status of cursor-information rows. */
#define COM_TDS_CURINFO_PAIRS(X)                                                                   \
    X(COM_CURSTAT_DECLARED, 0x01, 0x01)                                                            \
    X(COM_CURSTAT_OPEN, 0x02, 0x02) X(COM_CURSTAT_CLOSED, 0x04, 0x04)                              \
        X(COM_CURSTAT_RDONLY, 0x08, 0x08) X(COM_CURSTAT_UPDATABLE, 0x10, 0x10)                     \
            X(COM_CURSTAT_ROWCNT, 0x20, 0x20) X(COM_CURSTAT_DEALLOC, 0x40, 0x40)
/* 8: dynamic-statement operations. */
#define COM_TDS_DYNAMIC_PAIRS(X)                                                                   \
    X(COM_DYN_PREPARE, 1, 0x01)                                                                    \
    X(COM_DYN_EXECUTE, 2, 0x02) X(COM_DYN_DEALLOC, 3, 0x04) X(COM_DYN_EXEC_IMMEDIATE, 4, 0x08)     \
        X(COM_DYN_PROCNAME, 5, 0x10) X(COM_DYN_ACK, 6, 0x20) X(COM_DYN_DESCIN, 7, 0x40)            \
            X(COM_DYN_DESCOUT, 8, 0x80)
/* 9: option commands. */
#define COM_TDS_OPTCOM_PAIRS(X)                                                                    \
    X(COM_OPTCMD_SET, 1, 1)                                                                        \
    X(COM_OPTCMD_DEFAULT, 2, 2) X(COM_OPTCMD_LIST, 3, 3) X(COM_OPTCMD_INFO, 4, 4)
/* 10: options. */
#define COM_TDS_OPTION_PAIRS(X)                                                                    \
    X(COM_OPT_DATEFIRST, 1, 1)                                                                     \
    X(COM_OPT_TEXTSIZE, 2, 2) X(COM_OPT_STATS_TIME, 3, 3) X(COM_OPT_STATS_IO, 4, 4)                \
        X(COM_OPT_ROWCOUNT, 5, 5) X(COM_OPT_NATLANG, 6, 6) X(COM_OPT_DATEFORMAT, 7, 7)             \
            X(COM_OPT_ISOLATION, 8, 8) X(COM_OPT_AUTHON, 9, 9) X(COM_OPT_CHARSET, 10, 10)          \
                X(COM_OPT_SHOWPLAN, 11, 13) X(COM_OPT_NOEXEC, 12, 14)                              \
                    X(COM_OPT_ARITHIGNORE, 13, 15) X(COM_OPT_ARITHABORT, 14, 17)                   \
                        X(COM_OPT_PARSEONLY, 15, 18) X(COM_OPT_GETDATA, 16, 20)                    \
                            X(COM_OPT_NOCOUNT, 17, 21) X(COM_OPT_FORCEPLAN, 18, 23)                \
                                X(COM_OPT_FORMATONLY, 19, 24) X(COM_OPT_CHAINXACTS, 20, 25)        \
                                    X(COM_OPT_CURCLOSEONXACT, 21, 26) X(COM_OPT_FIPSFLAG, 22, 27)  \
                                        X(COM_OPT_RESTREES, 23, 28) X(COM_OPT_IDENTITYON, 24, 29)  \
                                            X(COM_OPT_CURREAD, 25, 30) X(COM_OPT_CURWRITE, 26, 31) \
                                                X(COM_OPT_IDENTITYOFF, 27, 32)                     \
                                                    X(COM_OPT_AUTHOFF, 28, 33)                     \
                                                        X(COM_OPT_ANSINULL, 29, 34)                \
                                                            X(COM_OPT_QUOTED_IDENT, 30, 35)        \
                                                                X(COM_OPT_ANSIPERM, 31, 36)        \
                                                                    X(COM_OPT_STR_RTRUNC, 32, 37)
/* 11: boolean option values. */
#define COM_TDS_OPTBOOLEAN_PAIRS(X) X(COM_OPTVAL_FALSE, 0, 0) X(COM_OPTVAL_TRUE, 1, 1)
/* 12: first day of the week. */
#define COM_TDS_OPTDATEFIRST_PAIRS(X)                                                              \
    X(COM_OPT_MONDAY, 1, 1)                                                                        \
    X(COM_OPT_TUESDAY, 2, 2) X(COM_OPT_WEDNESDAY, 3, 3) X(COM_OPT_THURSDAY, 4, 4)                  \
        X(COM_OPT_FRIDAY, 5, 5) X(COM_OPT_SATURDAY, 6, 6) X(COM_OPT_SUNDAY, 7, 7)
/* 13: date formats (orders of day, month and year). */
#define COM_TDS_OPTDATEFMT_PAIRS(X)                                                                \
    X(COM_OPT_FMTMDY, 1, 1)                                                                        \
    X(COM_OPT_FMTDMY, 2, 2) X(COM_OPT_FMTYMD, 3, 3) X(COM_OPT_FMTYDM, 4, 4)                        \
        X(COM_OPT_FMTMYD, 5, 5) X(COM_OPT_FMTDYM, 6, 6)
/* 14: transaction isolation levels. */
#define COM_TDS_OPTISOLATION_PAIRS(X) X(COM_OPT_LEVEL1, 1, 1) X(COM_OPT_LEVEL3, 3, 3)
/* 15: parameter status. */
#define COM_TDS_PARAMSTAT_PAIRS(X)                                                                 \
    X(COM_PARAM_INPUT, 1, 0x00) X(COM_PARAM_RETURN, 2, 0x01) X(COM_PARAM_NULLALLOWED, 3, 0x20)
/* 16: remote procedure call options. */
#define COM_TDS_RPCOPT_PAIRS(X)                                                                    \
    X(COM_RPC_NOOPTION, 1, 0x00) X(COM_RPC_RECOMPILE, 2, 0x01) X(COM_RPC_PARAMS, 3, 0x02)
/* 17, 18: remote procedure call status and return-value status: client values not held. */
#define COM_TDS_RPCSTAT_PAIRS(X)
#define COM_TDS_RETVAL_PAIRS(X)
/* 19 (bit map): row-format column status. */
#define COM_TDS_ROWFMT_PAIRS(X)                                                                    \
    X(COM_ROW_HIDDEN, 0x01, 0x01)                                                                  \
    X(COM_ROW_KEY, 0x02, 0x02) X(COM_ROW_VERSION, 0x04, 0x04) X(COM_ROW_COLUMNSTATUS, 0x08, 0x08)  \
        X(COM_ROW_UPDATABLE, 0x10, 0x10) X(COM_ROW_NULLALLOWED, 0x20, 0x20)                        \
            X(COM_ROW_IDENTITY, 0x40, 0x40) X(COM_ROW_PADCHAR, 0x80, 0x80)

/* The maps by index: X(index, table name, pairs list, kind: 1 value map, 0 bit map). */
/* clang-format on */
#define COM_TDS_MAPS(X)                                                                            \
    X(0, Com__tds_altop_map, COM_TDS_ALTOP_PAIRS, 1)                                               \
    X(1, Com__tds_captype_map, COM_TDS_CAPTYPE_PAIRS, 1)                                           \
    X(2, Com__tds_cap_req_map, COM_TDS_CAP_REQ_PAIRS, 1)                                           \
    X(3, Com__tds_cap_resp_map, COM_TDS_CAP_RESP_PAIRS, 1)                                         \
    X(4, Com__tds_colinfo_map, COM_TDS_COLINFO_PAIRS, 0)                                           \
    X(5, Com__tds_curclose_map, COM_TDS_CURCLOSE_PAIRS, 1)                                         \
    X(6, Com__tds_curdecl_map, COM_TDS_CURDECL_PAIRS, 1)                                           \
    X(7, Com__tds_curinfo_map, COM_TDS_CURINFO_PAIRS, 0)                                           \
    X(8, Com__tds_dynamic_map, COM_TDS_DYNAMIC_PAIRS, 1)                                           \
    X(9, Com__tds_optcom_map, COM_TDS_OPTCOM_PAIRS, 1)                                             \
    X(10, Com__tds_option_map, COM_TDS_OPTION_PAIRS, 1)                                            \
    X(11, Com__tds_optboolean_map, COM_TDS_OPTBOOLEAN_PAIRS, 1)                                    \
    X(12, Com__tds_optdatefirst_map, COM_TDS_OPTDATEFIRST_PAIRS, 1)                                \
    X(13, Com__tds_optdatefmt_map, COM_TDS_OPTDATEFMT_PAIRS, 1)                                    \
    X(14, Com__tds_optisolation_map, COM_TDS_OPTISOLATION_PAIRS, 1)                                \
    X(15, Com__tds_paramstat_map, COM_TDS_PARAMSTAT_PAIRS, 1)                                      \
    X(16, Com__tds_rpcopt_map, COM_TDS_RPCOPT_PAIRS, 1)                                            \
    X(17, Com__tds_rpcstat_map, COM_TDS_RPCSTAT_PAIRS, 1)                                          \
    X(18, Com__tds_retval_map, COM_TDS_RETVAL_PAIRS, 1)                                            \
    X(19, Com__tds_rowfmt_map, COM_TDS_ROWFMT_PAIRS, 0)

#define COM_TDS_MAP_COUNT (0 COM_TDS_MAPS(COMN_COUNT_ROW_))

/* The client constants, one enum per map. */
#define COM_TDS_CLIENT_ENUM_(name, client, tds) name = (client),
#define COM_TDS_MAP_ENUM_(index, table, pairs, kind)                                               \
    enum { pairs(COM_TDS_CLIENT_ENUM_) COM_TDS_MAP_END_##index };
COM_TDS_MAPS(COM_TDS_MAP_ENUM_)
#undef COM_TDS_MAP_ENUM_

/* A pair of a token map. */
typedef struct ComTdsPair {
    int32_t client;
    int32_t tds;
} ComTdsPair;

/* A map and its kind (1 value map, 0 bit map). */
typedef struct ComTdsMapEntry {
    const ComTdsPair *map;
    int32_t kind;
} ComTdsMapEntry;

#define COM_TDS_MAP_DECL_(index, table, pairs, kind) COMN_API extern const ComTdsPair table[];
COM_TDS_MAPS(COM_TDS_MAP_DECL_)
#undef COM_TDS_MAP_DECL_

COMN_API extern const ComTdsMapEntry Com__tds_maparray[COM_TDS_MAP_COUNT];

COMN_API int32_t com_tds_maptoken(int32_t mapindex, int32_t value, int32_t *mapped,
                                  int32_t *unmapped, int32_t direction);

COMN_END_DECLS

#endif
