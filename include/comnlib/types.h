/*
 * comnlib: datatype ids, status and conversion result codes, the data format record,
 * the fixed-layout value records and the context record that callers own.
 *
 * Every list here is written once as an X-macro so that enums, name tables and test
 * iterations come from the same rows.
 */
#ifndef COMNLIB_TYPES_H
#define COMNLIB_TYPES_H

#include <stddef.h>
#include <stdint.h>

#include "export.h"

COMN_BEGIN_DECLS

/* ---- Datatype ids: dense 0..23; 24 and above are user-defined types. ---- */
#define COMN_DATATYPES(X)                                                                          \
    X(CS_CHAR, 0)                                                                                  \
    X(CS_BINARY, 1)                                                                                \
    X(CS_LONGCHAR, 2)                                                                              \
    X(CS_LONGBINARY, 3)                                                                            \
    X(CS_TEXT, 4)                                                                                  \
    X(CS_IMAGE, 5)                                                                                 \
    X(CS_TINYINT, 6)                                                                               \
    X(CS_SMALLINT, 7)                                                                              \
    X(CS_INT, 8)                                                                                   \
    X(CS_REAL, 9)                                                                                  \
    X(CS_FLOAT, 10)                                                                                \
    X(CS_BIT, 11)                                                                                  \
    X(CS_DATETIME, 12)                                                                             \
    X(CS_DATETIME4, 13)                                                                            \
    X(CS_MONEY, 14)                                                                                \
    X(CS_MONEY4, 15)                                                                               \
    X(CS_NUMERIC, 16)                                                                              \
    X(CS_DECIMAL, 17)                                                                              \
    X(CS_VARCHAR, 18)                                                                              \
    X(CS_VARBINARY, 19)                                                                            \
    X(CS_LONG, 20)                                                                                 \
    X(CS_SENSITIVITY, 21)                                                                          \
    X(CS_BOUNDARY, 22)                                                                             \
    X(CS_VOID, 23)

/* ---- Status codes returned by every routine that reports success or failure. ---- */
#define COMN_STATUS_CODES(X)                                                                       \
    X(CS_SUCCEED, 1)                                                                               \
    X(CS_FAIL, 0)                                                                                  \
    X(CS_MEM_ERROR, -1)                                                                            \
    X(CS_PENDING, -2)                                                                              \
    X(CS_QUIET, -3)                                                                                \
    X(CS_BUSY, -4)                                                                                 \
    X(CS_INTERRUPT, -5)                                                                            \
    X(CS_CANCELED, -202)                                                                           \
    X(CS_ROW_FAIL, -203)                                                                           \
    X(CS_END_DATA, -204)                                                                           \
    X(CS_END_RESULTS, -205)                                                                        \
    X(CS_END_ITEM, -206)                                                                           \
    X(CS_NOMSG, -207)                                                                              \
    X(CS_TIMED_OUT, -208)                                                                          \
    X(CS_PASSTHRU_EOM, -210)                                                                       \
    X(CS_PASSTHRU_MORE, -211)                                                                      \
    X(CS_TRYING, -213)

/* ---- Conversion result codes, -101..-117. ---- */
#define COMN_CONV_CODES(X)                                                                         \
    X(CS_CONV_OVERFLOW, -101)                                                                      \
    X(CS_CONV_UNDERFLOW, -102)                                                                     \
    X(CS_CONV_PRECISION, -103)                                                                     \
    X(CS_CONV_SCALE, -104)                                                                         \
    X(CS_CONV_SYNTAX, -105)                                                                        \
    X(CS_CONV_FORMAT, -106)                                                                        \
    X(CS_CONV_DOMAIN, -107)                                                                        \
    X(CS_CONV_DIVZERO, -108)                                                                       \
    X(CS_CONV_RESOURCE, -109)                                                                      \
    X(CS_CONV_NULLNOIND, -110)                                                                     \
    X(CS_CONV_TRUNCNOIND, -111)                                                                    \
    X(CS_CONV_NOBIND, -112)                                                                        \
    X(CS_CONV_TRUNCATED, -113)                                                                     \
    X(CS_CONV_STYLE, -114)                                                                         \
    X(CS_CONV_BADXLT, -115)                                                                        \
    X(CS_CONV_NOXLT, -116)                                                                         \
    X(CS_CONV_USEREP, -117)

/* A list's length: each row of an X-macro list expands to "+1", so (0 LIST(COMN_COUNT_ROW_))
   counts the rows whatever their arity. */
#define COMN_COUNT_ROW_(...) +1

/* One anonymous enum for all three lists, so that codes of either kind mix freely in
   expressions (a routine may return a status or a conversion code). */
#define COMN_ENUM_ROW_(name, value) name = (value),
enum {
    COMN_DATATYPES(COMN_ENUM_ROW_) COMN_STATUS_CODES(COMN_ENUM_ROW_) COMN_CONV_CODES(COMN_ENUM_ROW_)
        COMN_DATATYPE_COUNT = 0 COMN_DATATYPES(COMN_COUNT_ROW_)
};

/* Localisation routines report a failure of the platform reader with this status, after
   storing the reader's own status in the context's intl_status. */
#define COM_INTL_ERROR (-301)

/* ---- Arithmetic codes: what the internal money and exact-numeric routines return. ----
   DROPPED: digits were (or would have to be) rounded away by a downward scaling. */
#define COMN_ARITH_CODES(X)                                                                        \
    X(COMN_ARITH_OK, 0)                                                                            \
    X(COMN_ARITH_OVERFLOW, 1)                                                                      \
    X(COMN_ARITH_SYNTAX, 2)                                                                        \
    X(COMN_ARITH_DIVZERO, 3)                                                                       \
    X(COMN_ARITH_DROPPED, 6)
enum { COMN_ARITH_CODES(COMN_ENUM_ROW_) };

/* The one mapping from an arithmetic code to the conversion result the client layers
   return (dropped digits count as an overflow there); the codes above are all there are,
   anything else counts as success. */
static inline int32_t comn__arith_to_conv(int32_t code) {
    switch (code) {
    case COMN_ARITH_OVERFLOW:
    case COMN_ARITH_DROPPED:
        return CS_CONV_OVERFLOW;
    case COMN_ARITH_SYNTAX:
        return CS_CONV_SYNTAX;
    case COMN_ARITH_DIVZERO:
        return CS_CONV_DIVZERO;
    default:
        return CS_SUCCEED;
    }
}
/* The same for conversions, where rounded-away decimals are a truncation of the value. */
static inline int32_t comn__arith_to_conv_trunc(int32_t code) {
    return code == COMN_ARITH_DROPPED ? CS_CONV_TRUNCATED : comn__arith_to_conv(code);
}

/* Precision or scale marker: take it from the source value. */
#define CS_SRC_VALUE (-2562)

/* DataFormat.format flag bits. */
#define CS_FMT_NULLTERM 0x1
#define CS_FMT_PADNULL 0x2
#define CS_FMT_PADBLANK 0x4

#define CS_MAX_NAME 132
#define CS_MAX_PREC 77
#define CS_MAX_SCALE 77
#define CS_MAX_NUMLEN 33

struct LocaleHandle;
struct LocaleRecord;
struct ComCharsetDesc;
struct ComErrFile;
struct UserConvEntry;
struct NullEntry;
struct UserNullEntry;

/* Describes one value of a conversion: its type, length, padding and locale. */
typedef struct DataFormat {
    char name[CS_MAX_NAME];
    int32_t namelen;
    int32_t datatype;
    uint32_t format;   /* CS_FMT_ flags */
    int32_t maxlength; /* source: bytes in the value; destination: buffer size */
    int32_t scale;     /* exact numerics: 0..77 or CS_SRC_VALUE */
    int32_t precision; /* exact numerics: 1..77 or CS_SRC_VALUE */
    uint32_t status;
    int32_t count;
    int32_t usertype;
    struct LocaleHandle *locale; /* may be null: the context's default locale applies */
} DataFormat;

/* ---- Fixed-layout value records. ---- */

/* 8-byte money: the 64-bit two's-complement count of 1/10000 units, upper word first. */
typedef struct MoneyValue {
    int32_t high;
    uint32_t low;
} MoneyValue;

/* 4-byte money: a signed count of 1/10000 units. */
typedef struct Money4Value {
    int32_t mny4;
} Money4Value;

/* Exact numeric: precision, scale, then sign byte and base-256 magnitude (most significant
   first); only the first Com__Nume_Prec_To_Len[precision] bytes of array are the value. */
typedef struct NumericValue {
    uint8_t precision;
    uint8_t scale;
    uint8_t array[CS_MAX_NUMLEN];
} NumericValue;

/* 8-byte datetime: days since 1 January 1900 and ticks of 1/300 s since midnight. */
typedef struct DateTimeValue {
    int32_t days;
    uint32_t ticks;
} DateTimeValue;

/* 4-byte datetime: days since 1 January 1900 and minutes since midnight. */
typedef struct DateTime4Value {
    uint16_t days;
    uint16_t minutes;
} DateTime4Value;

/* A datetime broken into its fields; month is zero-based, weekday 0 is Sunday. */
typedef struct DateRec {
    int32_t year;
    int32_t month;
    int32_t day_of_month;
    int32_t day_of_year;
    int32_t weekday;
    int32_t hour;
    int32_t minute;
    int32_t second;
    int32_t millisecond;
} DateRec;

typedef struct ComContext ComContext;

/* The one signature every conversion routine shares. */
typedef int32_t (*ComConvFunc)(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt,
                               void *dest, int32_t *destlen);

/* Optional lock callbacks of a context, guarding its list of locale handles. They return
   CS_SUCCEED (1) on success. */
typedef int32_t (*ComCtxLockFunc)(ComContext *ctx);

/* The conversion fields of a context. */
typedef struct ConvContext {
    struct LocaleHandle *default_locale; /* used when a format carries no locale */
    ComConvFunc *conv_table;             /* conv_dim x conv_dim routines, owned */
    uint32_t conv_dim;
    struct UserConvEntry *user_convs; /* user conversions for ids >= 24, owned */
    struct NullEntry *null_values;    /* null substitution values per datatype id, owned */
} ConvContext;

/* Context flag bits. */
#define COM_CTX_CLIENT_LAYER 0x1 /* the client layer is present: its message file is checked */

/*
 * The context record. The calling layer owns it and zero-fills it before the library's
 * start-up routines fill their parts; each part is freed by its own drop routine.
 */
struct ComContext {
    ConvContext conv;
    int32_t null_count;               /* 24 once null values are initialised, else 0 */
    struct UserNullEntry *user_nulls; /* null values of user types, owned */

    /* Localisation area. */
    struct LocaleRecord *loc_cache;       /* cached locale records, newest first */
    struct ComCharsetDesc *charset_descs; /* character set and sort order descriptions */
    struct LocaleHandle *loc_handles;     /* handles handed out, newest first */
    struct LocaleHandle *current_locale;
    void *loc_buffer; /* scratch owned for locale use, freed by comn_loc_drop_all */

    struct ComErrFile *err_files; /* message files loaded for this context */
    int32_t intl_status;          /* last failure status of the platform reader */

    ComCtxLockFunc lock; /* optional: guard the locale-handle list */
    ComCtxLockFunc unlock;
    uint32_t flags;  /* COM_CTX_ bits */
    void *user_data; /* the calling layer's own */
};

/* Natural storage length of a datatype: fixed types give their size, others len. */
COMN_API int32_t comn_typelen(int32_t datatype, int32_t len);

COMN_END_DECLS

#endif
