/*
 * comnlib: exact numerics: layout tables, magnitude arithmetic, signed operations, text and
 * the client operations on NumericValue.
 *
 * A value is a sign byte (0 non-negative, 1 negative) followed by an unsigned base-256
 * magnitude, most significant byte first, holding |value| * 10^scale. The routines work on
 * ExactNumericRef descriptors that point into a NumericValue or a scratch buffer.
 *
 * Internal routines return the arithmetic codes of types.h: COMN_ARITH_OK, _OVERFLOW (the
 * value does not fit its destination), _DIVZERO, _DROPPED (digits dropped by downward
 * scaling) and, from the text parser, _SYNTAX.
 */
#ifndef COMNLIB_NUMERIC_H
#define COMNLIB_NUMERIC_H

#include "types.h"

COMN_BEGIN_DECLS

/* Working descriptor of one exact numeric; it never owns its bytes. */
typedef struct ExactNumericRef {
    int32_t length;    /* bytes of sign and magnitude, 2..33 */
    uint8_t precision; /* 1..77 (255 while a parser still has to decide) */
    uint8_t scale;     /* 0..77 */
    uint8_t *bytes;    /* the sign byte, followed by length - 1 magnitude bytes */
} ExactNumericRef;

/* Entry size of the power-of-ten table: a length byte and up to 33 value bytes. */
#define COMN_NUME_POWER_ENTRY 34

/* Bytes of sign and magnitude needed for each precision 0..77. */
COMN_API extern const uint8_t Com__Nume_Prec_To_Len[CS_MAX_PREC + 1];
/* Largest precision whose every value fits a length, indexed by length - 2 (lengths 2..35;
   255 where no precision fits). */
COMN_API extern const uint8_t Com__Nume_Len_To_Prec[34];
/* 10^p for p = 0..77: byte 0 is the shortest length L that holds it, bytes 1..L its positive
   value image (sign byte 0, then the magnitude), the rest zero. */
COMN_API extern const uint8_t Com__Nume_Byte_Power_Array[CS_MAX_PREC + 1][COMN_NUME_POWER_ENTRY];

COMN_API int32_t comn_num_getlen(int32_t precision);
COMN_API int32_t comn_num_getprec(int32_t length);

/* ---- Magnitude routines ---- */

/* Comparison flags. */
#define COMN_NUME_CMP_SIGNED 0x1 /* take the sign bytes into account */
#define COMN_NUME_CMP_ALIGN 0x2  /* compare values, bringing both to the larger scale */

COMN_API int32_t com__exctnume_cmp(const ExactNumericRef *a, const ExactNumericRef *b,
                                   int32_t flags);
COMN_API int32_t com__exctnume_intcmp(const ExactNumericRef *x, int32_t k);
COMN_API int32_t com__exctnume_copy(const ExactNumericRef *src, ExactNumericRef *dst);
COMN_API int32_t com__exctnume_divby10(uint8_t **bytes, int32_t *length);
COMN_API int32_t com__exctnume_mulby10_add(ExactNumericRef *x, int32_t digit);
COMN_API int32_t com__exctnume_inc(ExactNumericRef *x);
COMN_API int32_t com__exctnume_needsbyte(const ExactNumericRef *x);
COMN_API int32_t com__exctnume_checkprecision(const ExactNumericRef *x);
/* Multiplies x by 10^k into dst (k may be negative; dst null: in place). */
COMN_API int32_t com__exctnume_scale(ExactNumericRef *x, ExactNumericRef *dst, int32_t k);
COMN_API int32_t com__exctnume_intadd(const ExactNumericRef *a, const ExactNumericRef *b,
                                      ExactNumericRef *r);
COMN_API int32_t com__exctnume_intsub(const ExactNumericRef *a, const ExactNumericRef *b,
                                      ExactNumericRef *r);
COMN_API int32_t com__exctnume_intmul(const ExactNumericRef *a, const ExactNumericRef *b,
                                      ExactNumericRef *r);
/* Unsigned long division of the magnitudes; 3 for a zero divisor, 1 when the quotient or
   the remainder does not fit its descriptor. Sign bytes are left alone. */
COMN_API int32_t com__exctnume_intdiv(const ExactNumericRef *dividend,
                                      const ExactNumericRef *divisor, ExactNumericRef *quotient,
                                      ExactNumericRef *remainder);

/* ---- Signed operations ----
   Each result descriptor carries the result's length, precision and scale; the exact result
   is brought to that scale rounding half away from zero, and must fit the length and (for a
   precision of 1..77) the precision, else 1. A zero result gets sign byte 0. */

#define COMN_NUME_ADD 0
#define COMN_NUME_SUB 1
#define COMN_NUME_CEILING 0
#define COMN_NUME_FLOOR 1

COMN_API int32_t com__exctnume_addorsub(const ExactNumericRef *a, const ExactNumericRef *b,
                                        ExactNumericRef *r, int32_t op);
COMN_API int32_t com__exctnume_mul(const ExactNumericRef *a, const ExactNumericRef *b,
                                   ExactNumericRef *r);
/* q = a / b at q's scale. The remainder descriptor (may be null) receives the remainder of
   the truncating division a * 10^(q.scale - a.scale + b.scale) / b in its length's bytes,
   with the dividend's sign; its length is set to 0 when that remainder is zero. */
COMN_API int32_t com__exctnume_div(const ExactNumericRef *a, const ExactNumericRef *b,
                                   ExactNumericRef *q, ExactNumericRef *rem);
/* r = x rounded to `places` digits after the point, expressed at r's scale. */
COMN_API int32_t com__exctnume_round(const ExactNumericRef *x, ExactNumericRef *r, int32_t places);
/* r = the smallest integer >= x (COMN_NUME_CEILING) or the largest <= x (COMN_NUME_FLOOR). */
COMN_API int32_t com__exctnume_ceilingfloor(const ExactNumericRef *x, ExactNumericRef *r,
                                            int32_t op);

/* ---- Conversions to and from machine numbers and money ----
   Integer and double sources are written at the destination descriptor's precision and
   scale; 1 when the value does not fit (or is not finite). */
COMN_API int32_t com__longtoexctnume(int32_t value, ExactNumericRef *x);
COMN_API int32_t com__longlongtoexctnume(int64_t value, ExactNumericRef *x);
COMN_API int32_t com__doubletoexctnume(double value, ExactNumericRef *x);
/* The nearest double (ties to even) of the exact value; always 0. */
COMN_API int32_t com__subexctnumetoflt8(const ExactNumericRef *x, double *out);
/* Money as an exact numeric: sets x to length 9, precision 19, scale 4 and fills x->bytes
   (9 bytes). Returns 0. */
COMN_API int32_t com__mny8toexctnume(const MoneyValue *money, ExactNumericRef *x);
/* Brings x to scale 4 (rounding half away from zero); 1 when the result fits a MoneyValue,
   which is then written, 0 otherwise (money untouched). */
COMN_API int32_t com__exctnumetomny8(const ExactNumericRef *x, MoneyValue *money);

/* ---- Text ---- */

/* Parses text into the area at *bytes (sign byte first) of *length bytes (0: 33). A precision
   or scale of 255 is taken from the text. Mode 1 rounds digits that do not fit; any other
   mode refuses them. 0 success, 1 overflow, 2 syntax error, 6 digits would be lost. When the
   precision comes from the text, *bytes and *length are moved to the value's own bytes. */
COMN_API int32_t com__subchartoexctnume(const char *text, int32_t textlen, uint8_t **bytes,
                                        int32_t *length, uint8_t *precision, uint8_t *scale,
                                        int32_t mode);
/* Writes the value's text right-aligned so that it ends at buf[buflen - 1]; returns the index
   of its first character, or -1 when it does not fit. */
COMN_API int32_t com__subexctnumetochar(const ExactNumericRef *value, char *buf, int32_t buflen);

/* ---- Client operations on NumericValue ---- */

COMN_API int32_t comn_num_addorsub(NumericValue *a, NumericValue *b, NumericValue *result,
                                   int32_t op);
COMN_API int32_t comn_numadd(NumericValue *a, NumericValue *b, NumericValue *result);
COMN_API int32_t comn_numsub(NumericValue *a, NumericValue *b, NumericValue *result);
COMN_API int32_t comn_nummul(NumericValue *a, NumericValue *b, NumericValue *result);
COMN_API int32_t comn_numdivide(NumericValue *a, NumericValue *b, NumericValue *result);
COMN_API int32_t comn_numcmp(NumericValue *a, NumericValue *b);

COMN_END_DECLS

#endif
