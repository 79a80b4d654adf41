/*
 * comnlib: money values: arithmetic, text and scaling.
 *
 * MoneyValue is a 64-bit two's-complement count of 1/10000 units (upper word first);
 * Money4Value a 32-bit one. Most operations exist in three layers with the same arithmetic:
 *   com__mny...  internal: returns an arithmetic code (COMN_ARITH_OK, _OVERFLOW, _SYNTAX,
 *                _DIVZERO, _DROPPED; see types.h);
 *   comn_mny...  client: the same with the code mapped by comn__arith_to_conv;
 *   com_mny...   old: the internal code handed back unchanged.
 */
#ifndef COMNLIB_MONEY_H
#define COMNLIB_MONEY_H

#include <string.h>

#include "intl.h"
#include "types.h"

COMN_BEGIN_DECLS

/* clang-format off */
/* ---- Layered 8-byte and 4-byte operations ----
   One row per operation: internal name, client name, old name, parameters, arguments.
   The client form maps the internal code; the old form returns it unchanged. */
#define COMN_MONEY_LAYERED(X)                                                                      \
    X(com__mnycopy, comn_mnycopy, com_mnycopy, (const MoneyValue *src, MoneyValue *dst),           \
      (src, dst))                                                                                  \
    X(com__mnyminus, comn_mnyminus, com_mnyminus, (const MoneyValue *src, MoneyValue *dst),        \
      (src, dst))                                                                                  \
    X(com__mnyinc, comn_mnyinc, com_mnyinc, (MoneyValue *value), (value))                          \
    X(com__mnydec, comn_mnydec, com_mnydec, (MoneyValue *value), (value))                          \
    X(com__mnyadd, comn_mnyadd, com_mnyadd,                                                        \
      (const MoneyValue *a, const MoneyValue *b, MoneyValue *dst), (a, b, dst))                    \
    X(com__mnysub, comn_mnysub, com_mnysub,                                                        \
      (const MoneyValue *a, const MoneyValue *b, MoneyValue *dst), (a, b, dst))                    \
    X(com__mnyscale, comn_mnyscale, com_mnyscale,                                                  \
      (MoneyValue *value, uint32_t multiplier, int32_t addend), (value, multiplier, addend))       \
    X(com__mnyminus4, comn_mny4minus, com_mny4minus, (const Money4Value *src, Money4Value *dst),   \
      (src, dst))                                                                                  \
    X(com__mnyadd4, comn_mny4add, com_mny4add,                                                     \
      (const Money4Value *a, const Money4Value *b, Money4Value *dst), (a, b, dst))                 \
    X(com__mnysub4, comn_mny4sub, com_mny4sub,                                                     \
      (const Money4Value *a, const Money4Value *b, Money4Value *dst), (a, b, dst))

/* Multiplication and division, which go through exact numerics. */
#define COMN_MONEY_LAYERED_NUMERIC(X)                                                              \
    X(com__mnymul, comn_mnymul, com_mnymul,                                                        \
      (const MoneyValue *a, const MoneyValue *b, MoneyValue *dst), (a, b, dst))                    \
    X(com__mnydiv, comn_mnydivide, com_mnydivide,                                                  \
      (const MoneyValue *a, const MoneyValue *b, MoneyValue *dst), (a, b, dst))                    \
    X(com__mnymul4, comn_mny4mul, com_mny4mul,                                                     \
      (const Money4Value *a, const Money4Value *b, Money4Value *dst), (a, b, dst))                 \
    X(com__mnydiv4, comn_mny4divide, com_mny4divide,                                               \
      (const Money4Value *a, const Money4Value *b, Money4Value *dst), (a, b, dst))

/* Operations whose result is not a code: every layer returns the internal result as is. */
#define COMN_MONEY_UNMAPPED(X)                                                                     \
    X(com__mnydown, comn_mnydown, com_mnydown, (MoneyValue *value, int32_t divisor),               \
      (value, divisor))                                                                            \
    X(com__mnyinit, comn_mnyinit, com_mnyinit, (MoneyValue *value, int32_t digits),                \
      (value, digits))                                                                             \
    X(com__mnyndigit, comn_mnyndigit, com_mnyndigit, (MoneyValue *value, char *out), (value, out))

/* Operations that return nothing. */
#define COMN_MONEY_VOID(X)                                                                         \
    X(com__maxposmny, comn_mnymaxpos, com_mnymaxpos, (MoneyValue *dst), (dst))                     \
    X(com__maxnegmny, comn_mnymaxneg, com_mnymaxneg, (MoneyValue *dst), (dst))
/* clang-format on */

#define COMN_MONEY_DECLARE_INT_(internal, client, old, params, args)                               \
    COMN_API int32_t internal params;                                                              \
    COMN_API int32_t client params;                                                                \
    COMN_API int32_t old params;
#define COMN_MONEY_DECLARE_VOID_(internal, client, old, params, args)                              \
    COMN_API void internal params;                                                                 \
    COMN_API void client params;                                                                   \
    COMN_API void old params;
COMN_MONEY_LAYERED(COMN_MONEY_DECLARE_INT_)
COMN_MONEY_LAYERED_NUMERIC(COMN_MONEY_DECLARE_INT_)
COMN_MONEY_UNMAPPED(COMN_MONEY_DECLARE_INT_)
COMN_MONEY_VOID(COMN_MONEY_DECLARE_VOID_)

/* ---- Operations without an internal layer ---- */
COMN_API void comn_mnyzero(MoneyValue *dst);
COMN_API void com_mnyzero(MoneyValue *dst);
COMN_API int32_t comn_mnycmp(const MoneyValue *a, const MoneyValue *b); /* -1, 0, 1 */
COMN_API int32_t com_mnycmp(const MoneyValue *a, const MoneyValue *b);
COMN_API int32_t comn_mny4copy(const Money4Value *src, Money4Value *dst); /* CS_SUCCEED */
COMN_API int32_t com_mny4copy(const Money4Value *src, Money4Value *dst);  /* 0 */
COMN_API void comn_mny4zero(Money4Value *dst);
COMN_API void com_mny4zero(Money4Value *dst);
COMN_API int32_t comn_mny4cmp(const Money4Value *a, const Money4Value *b);
COMN_API int32_t com_mny4cmp(const Money4Value *a, const Money4Value *b);

/* Long division of a money value by the unsigned low word of divisor (its high word is
   ignored). The divisor must not be zero: it is not checked. */
COMN_API void comn_mnyxdiv(const MoneyValue *dividend, const MoneyValue *divisor, MoneyValue *dst);
COMN_API void com_mnyxdiv(const MoneyValue *dividend, const MoneyValue *divisor, MoneyValue *dst);
/* The same for a divisor below 65536 (the low 16 bits of divisor->low are used). */
COMN_API void comn__mny16div(const MoneyValue *dividend, const MoneyValue *divisor,
                             MoneyValue *dst);
COMN_API void com__mny16div(const MoneyValue *dividend, const MoneyValue *divisor, MoneyValue *dst);

/* Logical right shift by one bit per significant bit of count. */
COMN_API void com__mnyshift(MoneyValue *value, int32_t count);

/* Money has no remainder operation: both always return COMN_ARITH_OVERFLOW. */
COMN_API int32_t com__mnyrem(const MoneyValue *a, const MoneyValue *b, MoneyValue *dst);
COMN_API int32_t com__mnyrem4(const Money4Value *a, const Money4Value *b, Money4Value *dst);

/* ---- Text ----
   Printing flags: low byte 1 asks for thousands separators; flags >> 8 is the number of
   decimal places (0 means 2, above 4 means 4). The text is right-aligned against the end of
   the buffer and not terminated; the result is its first character, or null when the
   buffer is too short. */
COMN_API char *com__mnytochar(const MoneyValue *value, char *buf, int32_t buflen, int32_t flags);
COMN_API char *com__mny4tochar(const Money4Value *value, char *buf, int32_t buflen, int32_t flags);
COMN_API char *com_cvtmnytochar(const MoneyValue *value, char *buf, int32_t buflen,
                                int32_t separators);
COMN_API char *com_cvtmny4tochar(const Money4Value *value, char *buf, int32_t buflen,
                                 int32_t flags);
COMN_API char *com_precmnytochar(const MoneyValue *value, char *buf, int32_t buflen,
                                 int32_t separators, int32_t places);

/* Parses money text of len bytes through the character set's attribute record (null: the
   built-in single-byte Latin-1 rules). Returns COMN_ARITH_OK, _OVERFLOW or _SYNTAX. The fourth
   argument is not used. */
COMN_API int32_t com__mnyfromchar_mb(MoneyValue *dst, const char *text, int32_t len, int32_t unused,
                                     const CharAttrib *charset);
COMN_API int32_t com__mny4fromchar_mb(Money4Value *dst, const char *text, int32_t len,
                                      int32_t unused, const CharAttrib *charset);

/* ---- Integers and floating point ----
   The integer routines return internal codes (0 success); the floating-point routines
   return the destination length on success and -1 on overflow. */
COMN_API int32_t com__inttomny(MoneyValue *dst, int32_t value);
COMN_API int32_t com__mnytoint(const MoneyValue *value, int32_t *dst);
COMN_API int32_t com__mny4toint(const Money4Value *value, int32_t *dst);
COMN_API int32_t com__inttomny4(Money4Value *dst, int32_t value);
COMN_API void com__mny4tomny(const Money4Value *value, MoneyValue *dst);
COMN_API int32_t com__mnytomny4(const MoneyValue *value, Money4Value *dst); /* 4 or -1 */
COMN_API int32_t com__mnytoflt8(const MoneyValue *value, int32_t len, double *dst);
COMN_API int32_t com__mnytoflt4(const MoneyValue *value, int32_t len, float *dst);
COMN_API int32_t com__mny4toflt8(const Money4Value *value, double *dst);
COMN_API int32_t com__mny4toflt4(const Money4Value *value, float *dst);
COMN_API int32_t com__flt8tomny(const double *value, int32_t len, MoneyValue *dst);
COMN_API int32_t com__flt4tomny(const float *value, int32_t len, MoneyValue *dst);
COMN_API int32_t com__flt8tomny4(const double *value, int32_t len, Money4Value *dst);
COMN_API int32_t com__flt4tomny4(const float *value, int32_t len, Money4Value *dst);

/* The 64-bit value of a money record, upper word first, and back; the library reads and
   writes money values through these too. */
static inline int64_t comn__mny_get(const MoneyValue *m) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    uint64_t u; /* one load: the words are swapped in a register */
    memcpy(&u, m, sizeof u);
    return (int64_t)(u << 32 | u >> 32);
#else
    return (int64_t)((uint64_t)(uint32_t)m->high << 32 | m->low);
#endif
}
static inline void comn__mny_set(MoneyValue *m, int64_t v) {
    m->high = (int32_t)(uint32_t)((uint64_t)v >> 32);
    m->low = (uint32_t)v;
}

/* Inline forms of addition and subtraction, in all three layers, for loops that add a value
   at a time: the routine's result and destination, without a call into the library. They
   evaluate their arguments once. Define COMN_NO_INLINE_MONEY before including this header to
   call the routines instead; a parenthesised name, (com__mnyadd)(a, b, dst), always calls.
   COMN_PORTABLE_INLINE selects the plain C overflow test used where the compiler has no
   checked-arithmetic builtins. */
#ifndef COMN_NO_INLINE_MONEY
/* Sum (subtract 0) or difference (subtract 1); on overflow the destination is 0 and the code
   COMN_ARITH_OVERFLOW. */
static inline int32_t comn__mny_addsub(const MoneyValue *a, const MoneyValue *b, MoneyValue *dst,
                                       int subtract) {
    const int64_t x = comn__mny_get(a), y = comn__mny_get(b);
    int64_t r;
#if (defined(__GNUC__) || defined(__clang__)) && !defined(COMN_PORTABLE_INLINE)
    const int over = subtract ? __builtin_sub_overflow(x, y, &r) : __builtin_add_overflow(x, y, &r);
#else
    const uint64_t ux = (uint64_t)x, uy = (uint64_t)y, ur = subtract ? ux - uy : ux + uy;
    /* overflow exactly when the operands' signs call for a sign the wrapped result lacks */
    const int over = (int)(((subtract ? ux ^ uy : ~(ux ^ uy)) & (ux ^ ur)) >> 63);
    r = (int64_t)ur;
#endif
    comn__mny_set(dst, over ? 0 : r);
    return over ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}
static inline int32_t comn__mny4_addsub(const Money4Value *a, const Money4Value *b,
                                        Money4Value *dst, int subtract) {
    const int64_t r = subtract ? (int64_t)a->mny4 - b->mny4 : (int64_t)a->mny4 + b->mny4;
    const int over = r < INT32_MIN || r > INT32_MAX;
    dst->mny4 = over ? 0 : (int32_t)r;
    return over ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}
#define com__mnyadd(a, b, dst) comn__mny_addsub((a), (b), (dst), 0)
#define com__mnysub(a, b, dst) comn__mny_addsub((a), (b), (dst), 1)
#define com_mnyadd(a, b, dst) comn__mny_addsub((a), (b), (dst), 0)
#define com_mnysub(a, b, dst) comn__mny_addsub((a), (b), (dst), 1)
#define comn_mnyadd(a, b, dst) comn__arith_to_conv(comn__mny_addsub((a), (b), (dst), 0))
#define comn_mnysub(a, b, dst) comn__arith_to_conv(comn__mny_addsub((a), (b), (dst), 1))
#define com__mnyadd4(a, b, dst) comn__mny4_addsub((a), (b), (dst), 0)
#define com__mnysub4(a, b, dst) comn__mny4_addsub((a), (b), (dst), 1)
#define com_mny4add(a, b, dst) comn__mny4_addsub((a), (b), (dst), 0)
#define com_mny4sub(a, b, dst) comn__mny4_addsub((a), (b), (dst), 1)
#define comn_mny4add(a, b, dst) comn__arith_to_conv(comn__mny4_addsub((a), (b), (dst), 0))
#define comn_mny4sub(a, b, dst) comn__arith_to_conv(comn__mny4_addsub((a), (b), (dst), 1))
#endif

COMN_END_DECLS

#endif
