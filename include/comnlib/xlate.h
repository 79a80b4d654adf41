/* comnlib: character set translation between the single-byte sets (ascii8, iso_1, cp850,
   cp437, roman8, mac), the Japanese sets (eucjis, sjis, deckanji), utf8 and the case-swapped
   test set. Included from intl.h. */
#ifndef COMNLIB_XLATE_H
#define COMNLIB_XLATE_H

#include "types.h"

COMN_BEGIN_DECLS

/* Character set ids used by translation: the xlate_id of a set's CharAttrib. */
#define COM_XLT_ASCII8 0
#define COM_XLT_ISO1 1
#define COM_XLT_CP850 2
#define COM_XLT_CP437 3
#define COM_XLT_ROMAN8 4
#define COM_XLT_MAC 5
#define COM_XLT_EUCJIS 140
#define COM_XLT_SJIS 141
#define COM_XLT_DECKANJI 142
#define COM_XLT_CASESWAP 255
#define COM_XLT_UTF8 190 /* the library's own set beside the traditional ones */

#define COM_XLT_NSETS 10 /* rows of Com_fou_xlt_map, and cells per row (utf8 has no row) */

/* Translation modes of a (source set, destination set) pair. */
#define COM_XLT_MODE_NONE 0    /* no translation possible */
#define COM_XLT_MODE_COPY 1    /* the sets are the same: plain copy */
#define COM_XLT_MODE_ASCII 2   /* through the ASCII converter */
#define COM_XLT_MODE_CONVERT 3 /* through a dedicated converter */

/* Result bits of a converter. */
#define COM_XLT_BADCHAR 1   /* some character had no counterpart and became "?" */
#define COM_XLT_TRUNCATED 2 /* the destination was shorter than the source: a prefix was done */

/* A converter translates src[0..srclen) into dst[0..dstlen). It stores the bytes it took and
   the bytes it wrote; a multibyte character cut by either length is left for the next call.
   It returns a combination of the COM_XLT_ result bits (0: everything translated). */
typedef int32_t (*ComXlateFunc)(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen,
                                int32_t *consumed, int32_t *produced);

typedef struct ComXltCell {
    uint8_t dest_id;
    uint8_t mode; /* COM_XLT_MODE_ */
    ComXlateFunc func;
} ComXltCell;

typedef struct ComXltRow {
    uint8_t src_id;
    ComXltCell cells[COM_XLT_NSETS];
} ComXltRow;

/* The translation dispatch table: one row per source set, one cell per destination set, both
   in the order of the ids above. */
COMN_API extern const ComXltRow Com_fou_xlt_map[COM_XLT_NSETS];

/* ---- Dispatch and driver ---- */

/* The translation id of a locale record's character attributes. */
COMN_API int32_t com__intl_get_csid(struct LocaleRecord *rec);
/* Stores in *mode how text goes from srcfmt's locale to destfmt's (COM_XLT_MODE_); a format
   without a locale takes the context's default. Returns CS_SUCCEED, or CS_FAIL on null
   arguments. */
COMN_API int32_t com_intl_will_xlate(ComContext *ctx, DataFormat *srcfmt, DataFormat *destfmt,
                                     int32_t *mode);
/* The converter of the pair, or NULL when translation is impossible or unneeded. */
COMN_API ComXlateFunc com__intl_get_xlate(ComContext *ctx, DataFormat *srcfmt, DataFormat *destfmt);
/* Translates one value. state is two words: bytes taken and bytes written. Returns
   CS_SUCCEED, CS_CONV_BADXLT, CS_CONV_OVERFLOW or CS_CONV_NOXLT. */
COMN_API int32_t com_intl_xlate(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt,
                                void *dest, int32_t *outlen, int32_t *state);
COMN_API int32_t comb__intl_xlate(ComContext *ctx, DataFormat *srcfmt, void *src,
                                  DataFormat *destfmt, void *dest, int32_t *outlen, int32_t *state);

/* ---- Converters ---- */

#define COMN_XLT_DECLARE_(name)                                                                    \
    COMN_API int32_t name(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen,        \
                          int32_t *consumed, int32_t *produced);

/* Byte for byte: ASCII passes, any byte from 80 becomes "?". */
COMN_XLT_DECLARE_(com__fou_ascii8_tofrom_1byte)
/* The test set: writes nothing and reports the text up to its first NUL as translated. */
COMN_XLT_DECLARE_(com__fou_caseswap)

/* Between two single-byte sets. */
COMN_XLT_DECLARE_(com__fou_iso1_to_cp850)
COMN_XLT_DECLARE_(com__fou_iso1_to_cp437)
COMN_XLT_DECLARE_(com__fou_iso1_to_roman8)
COMN_XLT_DECLARE_(com__fou_iso1_to_mac)
COMN_XLT_DECLARE_(com__fou_cp850_to_iso1)
COMN_XLT_DECLARE_(com__fou_cp850_to_cp437)
COMN_XLT_DECLARE_(com__fou_cp850_to_roman8)
COMN_XLT_DECLARE_(com__fou_cp850_to_mac)
COMN_XLT_DECLARE_(com__fou_cp437_to_iso1)
COMN_XLT_DECLARE_(com__fou_cp437_to_cp850)
COMN_XLT_DECLARE_(com__fou_cp437_to_roman8)
COMN_XLT_DECLARE_(com__fou_cp437_to_mac)
COMN_XLT_DECLARE_(com__fou_roman8_to_iso1)
COMN_XLT_DECLARE_(com__fou_roman8_to_cp850)
COMN_XLT_DECLARE_(com__fou_roman8_to_cp437)
COMN_XLT_DECLARE_(com__fou_roman8_to_mac)
COMN_XLT_DECLARE_(com__fou_mac_to_iso1)
COMN_XLT_DECLARE_(com__fou_mac_to_cp850)
COMN_XLT_DECLARE_(com__fou_mac_to_cp437)
COMN_XLT_DECLARE_(com__fou_mac_to_roman8)

/* Between the Japanese sets, and from them to ASCII. */
COMN_XLT_DECLARE_(com__fou_eucjis_to_sjis)
COMN_XLT_DECLARE_(com__fou_eucjis_to_deckanji)
COMN_XLT_DECLARE_(com__fou_eucjis_to_ascii8)
COMN_XLT_DECLARE_(com__fou_sjis_to_eucjis_deckanj)
COMN_XLT_DECLARE_(com__fou_sjis_to_ascii8)
COMN_XLT_DECLARE_(com__fou_deckanji_to_eucjis)
COMN_XLT_DECLARE_(com__fou_deckanji_to_sjis)
COMN_XLT_DECLARE_(com__fou_deckanji_to_ascii8)

/* Between utf8 and every other set but the test set. Lengths change in translation: consumed
   and produced count the whole characters done, COM_XLT_TRUNCATED tells that the next
   character did not fit. Ill-formed UTF-8 gives one "?" per maximal ill-formed subpart.
   ascii8 to utf8 is the ASCII converter's work. */
#define COMN_XLT_FROM_UTF8(X)                                                                      \
    X(ascii8) X(iso1) X(cp850) X(cp437) X(roman8) X(mac) X(eucjis) X(sjis) X(deckanji)
#define COMN_XLT_TO_UTF8(X) X(iso1) X(cp850) X(cp437) X(roman8) X(mac) X(eucjis) X(sjis) X(deckanji)
#define COMN_XLT_DECLARE_FROM_UTF8_(set) COMN_XLT_DECLARE_(com__fou_utf8_to_##set)
#define COMN_XLT_DECLARE_TO_UTF8_(set) COMN_XLT_DECLARE_(com__fou_##set##_to_utf8)
COMN_XLT_FROM_UTF8(COMN_XLT_DECLARE_FROM_UTF8_)
COMN_XLT_TO_UTF8(COMN_XLT_DECLARE_TO_UTF8_)
#undef COMN_XLT_DECLARE_FROM_UTF8_
#undef COMN_XLT_DECLARE_TO_UTF8_

#undef COMN_XLT_DECLARE_

COMN_END_DECLS

#endif
