/*
 * comnlib: the conversion table, null substitution values and the conversion routines.
 * Every conversion routine has the ComConvFunc signature and is named source "to"
 * destination on the datatypes' short names.
 */
#ifndef COMNLIB_CONVERT_H
#define COMNLIB_CONVERT_H

#include "types.h"

COMN_BEGIN_DECLS

/* ---- Conversion table ---- */

/* A user conversion for a pair in which either id is 24 or above. Heads of the list are
   joined by next_src (one per source id); each head's chain runs through next_dest. */
typedef struct UserConvEntry {
    int32_t src_type;
    int32_t dest_type;
    ComConvFunc func; /* null after a reset to default */
    struct UserConvEntry *next_dest;
    struct UserConvEntry *next_src;
} UserConvEntry;

#define COMN_CONV_DIM 24

/* The static default table, row = source id, column = destination id. */
COMN_API extern const ComConvFunc Com__cnvrt_array[COMN_CONV_DIM * COMN_CONV_DIM];

COMN_API void com__get_ctbl(const ComConvFunc **table, uint32_t *dim);
COMN_API int32_t com_conv_init(ComContext *ctx);
COMN_API int32_t com_conv_free(ComContext *ctx);
COMN_API int32_t com__conv_usr_free(ComContext *ctx);
COMN_API ComConvFunc com_conv_func(ComContext *ctx, int32_t srctype, int32_t desttype);
COMN_API UserConvEntry *com__conv_usr_struct(ComContext *ctx, int32_t srctype, int32_t desttype);
COMN_API ComConvFunc com__conv_usr_func(ComContext *ctx, int32_t srctype, int32_t desttype);
COMN_API int32_t com_conv_install(ComContext *ctx, int32_t srctype, int32_t desttype,
                                  ComConvFunc func);
COMN_API int32_t com__conv_usr_install(ComContext *ctx, int32_t srctype, int32_t desttype,
                                       ComConvFunc func);
COMN_API int32_t com_conv_default(ComContext *ctx, int32_t srctype, int32_t desttype);

/* Inline form of com_conv_func for code that looks a conversion up per value: a built-in pair
   is read straight from the context's table, anything else goes to the routine. It gives the
   routine's answer and evaluates its arguments once. Define COMN_NO_INLINE_CONV before
   including this header to call the routine instead; (com_conv_func)(ctx, s, d) always
   calls it. */
#ifndef COMN_NO_INLINE_CONV
static inline ComConvFunc comn__conv_func(ComContext *ctx, int32_t srctype, int32_t desttype) {
    const uint32_t s = (uint32_t)srctype, d = (uint32_t)desttype, dim = ctx->conv.conv_dim;
    if (s < COMN_CONV_DIM && d < COMN_CONV_DIM && s < dim && d < dim && ctx->conv.conv_table)
        return ctx->conv.conv_table[s * dim + d];
    return (com_conv_func)(ctx, srctype, desttype);
}
#define com_conv_func(ctx, srctype, desttype) comn__conv_func((ctx), (srctype), (desttype))
#endif

/* ---- Null substitution values ---- */

/* One per built-in datatype id; pad kind 1 pads like text, 2 like binary, 3 not at all. */
typedef struct NullEntry {
    void *value; /* owned copy; may be null after a set of length 0 */
    int32_t length;
    int32_t padkind;
} NullEntry;

typedef struct UserNullEntry {
    int32_t type;
    void *value; /* owned copy; null for length 0 */
    int32_t length;
    struct UserNullEntry *next;
} UserNullEntry;

COMN_API int32_t com_null_init(ComContext *ctx);
COMN_API int32_t com_null_free(ComContext *ctx);
COMN_API int32_t com_null_get(ComContext *ctx, DataFormat *fmt, void *dest, int32_t dstlen,
                              int32_t *outlen);
COMN_API int32_t com_null_set(ComContext *ctx, int32_t datatype, void *value, int32_t len);
COMN_API int32_t com_null_reinstall(ComContext *ctx, int32_t datatype);
COMN_API int32_t com__null_usr_get(ComContext *ctx, DataFormat *fmt, void *dest, int32_t dstlen,
                                   int32_t *outlen);
COMN_API int32_t com__null_usr_set(ComContext *ctx, int32_t datatype, void *value, int32_t len);
COMN_API int32_t com__null_usr_reinstall(ComContext *ctx, int32_t datatype);
COMN_API int32_t com__null_usr_free(ComContext *ctx);

/* Declares one conversion routine. */
#define COMN_DECLARE_CONV_(name)                                                                   \
    COMN_API int32_t name(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt,     \
                          void *dest, int32_t *destlen);

COMN_DECLARE_CONV_(comn_voidtoany)
COMN_DECLARE_CONV_(comn_voidtovoid)

/* ---- Integer, bit and float conversions ----
   One row per (source, destination) short-name pair; the routine is comn_<src>to<dst>.
   "i8" is the platform long integer, stored in 32 bits. */
/* clang-format off */
#define COMN_SCALAR_PAIRS(X)                                                                 \
    X(i1, i1) X(i1, i2) X(i1, i4) X(i1, i8) X(i1, bit) X(i1, flt4) X(i1, flt8)               \
    X(i2, i1) X(i2, i2) X(i2, i4) X(i2, i8) X(i2, bit) X(i2, flt4) X(i2, flt8)               \
    X(i4, i1) X(i4, i2) X(i4, i4) X(i4, i8) X(i4, bit) X(i4, flt4) X(i4, flt8)               \
    X(i8, i4) X(i8, i8)                                                                      \
    X(bit, i1) X(bit, i2) X(bit, i4) X(bit, i8) X(bit, bit) X(bit, flt4) X(bit, flt8)        \
    X(flt4, i1) X(flt4, i2) X(flt4, i4) X(flt4, i8) X(flt4, bit) X(flt4, flt4) X(flt4, flt8) \
    X(flt8, i1) X(flt8, i2) X(flt8, i4) X(flt8, i8) X(flt8, bit) X(flt8, flt4) X(flt8, flt8)
/* clang-format on */

#define COMN_DECLARE_PAIR_(a, b) COMN_DECLARE_CONV_(comn_##a##to##b)
COMN_SCALAR_PAIRS(COMN_DECLARE_PAIR_)

/* ---- Padding and fixed-to-binary helpers shared by text and binary destinations ---- */

/* Applies the destination's null-termination and padding flags to n produced bytes. */
COMN_API int32_t comn__padchar(int32_t n, DataFormat *destfmt, void *dest, int32_t *destlen);
COMN_API int32_t comn__padbin(int32_t n, DataFormat *destfmt, void *dest, int32_t *destlen);
/* Copies a fixed-length value of size bytes into a binary / varbinary destination. */
COMN_API int32_t comn_fixedtobin(const void *src, int32_t size, DataFormat *destfmt, void *dest,
                                 int32_t *destlen);
COMN_API int32_t comn_fixedtovarbin(const void *src, int32_t size, DataFormat *destfmt, void *dest,
                                    int32_t *destlen);

/* ---- Money conversions ----
   Money sources to integers, floats, bit and money, and integers and floats into money;
   the routine is comn_<src>to<dst>. */
/* clang-format off */
#define COMN_MONEY_SOURCE_PAIRS(X)                                                           \
    X(money, i1) X(money, i2) X(money, i4) X(money, i8) X(money, bit) X(money, flt4)         \
        X(money, flt8) X(money, money) X(money, mny4)                                        \
    X(mny4, i1) X(mny4, i2) X(mny4, i4) X(mny4, i8) X(mny4, bit) X(mny4, flt4) X(mny4, flt8) \
        X(mny4, money) X(mny4, mny4)
/* clang-format on */
/* clang-format off */
#define COMN_INTO_MONEY_PAIRS(X)                                                              \
    X(i1, money) X(i1, mny4) X(i2, money) X(i2, mny4) X(i4, money) X(i4, mny4) X(flt4, money) \
        X(flt4, mny4) X(flt8, money) X(flt8, mny4)
/* clang-format on */
COMN_MONEY_SOURCE_PAIRS(COMN_DECLARE_PAIR_)
COMN_INTO_MONEY_PAIRS(COMN_DECLARE_PAIR_)
COMN_DECLARE_CONV_(comn_moneytonum)
COMN_DECLARE_CONV_(comn_mny4tonum)

/* ---- Exact numeric conversions ---- */

COMN_DECLARE_CONV_(comn_numtonum)
COMN_DECLARE_CONV_(comn_numtomoney)
COMN_DECLARE_CONV_(comn_numtomny4)

/* ---- Money, numeric and date cross conversions ----
   Exact numeric sources to bit, integers and floats (through the value's nearest double, then
   as the float routines), and to text, varchar, binary and varbinary; money and small money to
   text, varchar, binary and varbinary; integers, floats and bit into exact numerics. */
/* clang-format off */
#define COMN_NUMERIC_TO_SCALAR(X) X(bit) X(i1) X(i2) X(i4) X(i8) X(flt4) X(flt8)
#define COMN_TEXT_BIN_DESTS(X) X(char) X(varchar) X(bin) X(varbin)
#define COMN_INTO_NUMERIC_SOURCES(X) X(i1) X(i2) X(i4) X(i8) X(bit) X(flt4) X(flt8)
/* clang-format on */
#define COMN_DECLARE_NUM_TO_(b) COMN_DECLARE_CONV_(comn_numto##b)
#define COMN_DECLARE_MONEY_TO_(b)                                                                  \
    COMN_DECLARE_CONV_(comn_moneyto##b) COMN_DECLARE_CONV_(comn_mny4to##b)
#define COMN_DECLARE_INTO_NUM_(a) COMN_DECLARE_CONV_(comn_##a##tonum)
COMN_NUMERIC_TO_SCALAR(COMN_DECLARE_NUM_TO_)
COMN_TEXT_BIN_DESTS(COMN_DECLARE_NUM_TO_)
COMN_TEXT_BIN_DESTS(COMN_DECLARE_MONEY_TO_)
COMN_INTO_NUMERIC_SOURCES(COMN_DECLARE_INTO_NUM_)

/* ---- Datetime conversions ---- */

/* clang-format off */
#define COMN_DATE_CONVS(X)                                                              \
    X(comn_datetodate) X(comn_datetodate4) X(comn_datetochar) X(comn_datetovarchar)     \
        X(comn_datetobin) X(comn_datetovarbin)                                          \
    X(comn_date4todate4) X(comn_date4todate) X(comn_date4tochar) X(comn_date4tovarchar) \
        X(comn_date4tobin) X(comn_date4tovarbin)
/* clang-format on */
COMN_DATE_CONVS(COMN_DECLARE_CONV_)

/* The output style of a datetime-to-text conversion: the locale's, if the formatter knows it,
   else 9. */
COMN_API int32_t comn_get_datetochar_fmt(ComContext *ctx, DataFormat *fmt);

/* ---- Text input conversions ----
   Text into every non-text type. One row per destination short name: the routine for a char
   source (CS_CHAR and its kin) is comn_charto<dst>, its twin for a CS_VARCHAR source
   comn_varcharto<dst>. */
/* clang-format off */
#define COMN_TEXT_INPUT_DESTS(X)                                                          \
    X(bit) X(i1) X(i2) X(i4) X(i8) X(flt4) X(flt8) X(num) X(money) X(mny4) X(datetime)    \
    X(date4) X(bin) X(varbin)
/* clang-format on */
#define COMN_DECLARE_TEXT_INPUT_(d)                                                                \
    COMN_DECLARE_CONV_(comn_charto##d) COMN_DECLARE_CONV_(comn_varcharto##d)
COMN_TEXT_INPUT_DESTS(COMN_DECLARE_TEXT_INPUT_)

struct CharAttrib;
/* Reduces srclen bytes of text to ASCII, character by character, into at most destcap bytes:
   a character with an ASCII equivalent becomes that one byte, any other is copied whole.
   attr may be null (every byte is its own equivalent). Returns the bytes written. */
COMN_API int32_t com__conv2ascii(const char *src, int32_t srclen, char *dest, int32_t destcap,
                                 const struct CharAttrib *attr);
/* Integer text scanners: blanks, an optional sign, decimal digits, blanks, read a character
   at a time through attr (null: the built-in single-byte rules), so that full-width digits
   and signs count as their ASCII twins. Return -2 for a syntax error, -1 for overflow, 0 for
   a text without digits (0 stored) and 4 for a number. On overflow the 32-bit scanners store
   the nearest extreme; the tinyint and smallint scanners store the low 8 or 16 bits of the
   32-bit value when it does not fit them (0 when the 32-bit scan itself failed). */
COMN_API int32_t com__chtoi1_mb(const char *text, int32_t len, uint8_t *out,
                                const struct CharAttrib *attr);
COMN_API int32_t com__chtoi2_mb(const char *text, int32_t len, int16_t *out,
                                const struct CharAttrib *attr);
COMN_API int32_t com__chtoi4_mb(const char *text, int32_t len, int32_t *out,
                                const struct CharAttrib *attr);
COMN_API int32_t com__chtoi8_mb(const char *text, int32_t len, int32_t *out,
                                const struct CharAttrib *attr);
/* Hexadecimal text to bytes: white space trimmed at both ends, then an optional "0x" or "0X".
   An odd digit count implies a leading zero nibble. Writes at most outmax bytes and sets
   *outlen to the bytes written. CS_SUCCEED; CS_CONV_SYNTAX for a character that is not a
   hexadecimal digit (*outlen 0); CS_CONV_OVERFLOW when not even the first byte fits;
   CS_CONV_TRUNCATED when digits remain once outmax bytes are written. */
COMN_API int32_t comn__hex2binbytes(const char *text, int32_t len, uint8_t *out, int32_t outmax,
                                    int32_t *outlen);

/* ---- Text and binary output conversions ---- */

/* Numbers to text, varchar, binary and varbinary: comn_<src>tochar, comn_<src>tovarchar,
   comn_<src>tobin and comn_<src>tovarbin for each source below. */
#define COMN_NUMBER_OUTPUT_SOURCES(X) X(i1) X(i2) X(i4) X(flt4) X(flt8) X(bit)
#define COMN_DECLARE_NUMBER_OUTPUT_(s)                                                             \
    COMN_DECLARE_CONV_(comn_##s##tochar)                                                           \
    COMN_DECLARE_CONV_(comn_##s##tovarchar)                                                        \
    COMN_DECLARE_CONV_(comn_##s##tobin) COMN_DECLARE_CONV_(comn_##s##tovarbin)
COMN_NUMBER_OUTPUT_SOURCES(COMN_DECLARE_NUMBER_OUTPUT_)

/* Binary and varbinary sources: to text as lowercase hexadecimal, to the binary types as
   bytes, and into the fixed types as the value's own host-order image. */
#define COMN_BINARY_SOURCES(X) X(bin) X(varbin)
/* clang-format off */
#define COMN_BINARY_DESTS(X)                                                                 \
    X(char) X(bin) X(varchar) X(varbin) X(i1) X(i2) X(i4) X(flt4) X(flt8) X(bit)             \
    X(datetime) X(date4) X(money) X(mny4) X(num)
/* clang-format on */
#define COMN_DECLARE_BIN_(d) COMN_DECLARE_CONV_(comn_binto##d)
#define COMN_DECLARE_VARBIN_(d) COMN_DECLARE_CONV_(comn_varbinto##d)
COMN_BINARY_DESTS(COMN_DECLARE_BIN_)
COMN_BINARY_DESTS(COMN_DECLARE_VARBIN_)

/* Text to text, translated between character sets when the two formats' sets differ. */
COMN_DECLARE_CONV_(comn_chartochar)
COMN_DECLARE_CONV_(comn_chartovarchar)
COMN_DECLARE_CONV_(comn_varchartochar)
COMN_DECLARE_CONV_(comn_varchartovarchar)

struct CharAttrib;
/* The longest prefix of text[0..length) of at most limit bytes that ends on a character
   boundary of the set described by attr (null: single-byte). A length below the limit is
   returned as it is; a limit of 0 or less gives 0. */
COMN_API int32_t comnb_truncate_chars(const struct CharAttrib *attr, const char *text,
                                      int32_t length, int32_t limit);

/* The process-wide float format setting. It is kept for callers; the conversions themselves
   always print floats with 17 significant digits. */
COMN_API extern int32_t Com__fltfmt;
COMN_API int32_t com_getfltfmt(void);
COMN_API int32_t com_setfltfmt(int32_t fltfmt);

COMN_END_DECLS

#endif
