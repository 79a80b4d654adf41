/* comnlib: localisation: platform reader, paths and locale names, locale cache, character
   classification, translation and collation. */
#ifndef COMNLIB_INTL_H
#define COMNLIB_INTL_H

#include "types.h"
#include "context.h" /* comn_ctx_setup and comn_ctx_teardown, for callers of this header alone */

COMN_BEGIN_DECLS

/* ---- Character attributes ----
   Type map entries are 4 bytes: upper-case byte, lower-case byte, lexical class, type bits.
   An entry with COM_CT_LEAD set names, in its first byte, the page (p * 1024 bytes from the
   map's start) that holds the entries of the characters it leads, indexed by second byte. */
#define COM_CT_UPPER 0x01
#define COM_CT_LOWER 0x02
#define COM_CT_DIGIT 0x04
#define COM_CT_SPACE 0x08
#define COM_CT_XDIGIT 0x10
#define COM_CT_PUNCT 0x20
#define COM_CT_GRAPH 0x40
#define COM_CT_LEAD 0x80

/* Kinds of table given to com_build_char_attrib. */
#define COM_CHARATTR_TYPEMAP 1001 /* a single-byte 1024-byte type map */
#define COM_CHARATTR_IMAGE 1002   /* a character set image made by the character set loader */

#define COM_CHARSET_NAME_MAX 30

/* The character attribute record of a character set. (Its size is 60 bytes with 32-bit
   pointers; on 64-bit hosts the four pointers make it larger.) */
typedef struct CharAttrib {
    uint16_t image_id;
    uint8_t mb_level; /* 1 for a single-byte set */
    uint8_t xlate_id; /* character set id used by translation */
    uint16_t namelen;
    char name[COM_CHARSET_NAME_MAX]; /* not terminated when 30 long */
    uint8_t flags[5];
    const uint8_t *widthmap; /* 256 bytes: low nibble byte length, high nibble columns */
    const uint8_t *asciimap; /* 256 bytes plus 256-byte pages, or null */
    const uint8_t *typemap;  /* 256 4-byte entries plus 1024-byte pages */
    const uint8_t *second;   /* a further table of the set, carried as is */
} CharAttrib;

/* ---- Locale cache ---- */

struct ComMsgCache;

/* The date and time names of a locale. */
typedef struct CommonInfo {
    char *months[12];      /* full month names, January first; one owned block */
    char *shortmonths[12]; /* abbreviated month names; one owned block */
    char *days[7];         /* day names from the locale's first day of the week; one owned block */
    int32_t firstday;      /* 1..7 as numbered by the platform reader */
    char dateorder[4];     /* three letters and a terminator, such as "mdy" */
    int32_t is12hour;
    int32_t dtfmt; /* default date style derived from the date order */
} CommonInfo;

/* One cached locale. */
typedef struct LocaleRecord {
    char *name;
    char *language;
    char *charset;
    char *sortorder;
    struct ComMsgCache *msgcache; /* message files of this locale, dropped with it */
    intptr_t reserved[3];
    struct ComCharsetDesc *charset_desc; /* shared, owned by the context's description list */
    int32_t dateorder_id;                /* 1 mdy, 2 dmy, 3 ymd, 4 ydm, 5 myd, 6 dym */
    CommonInfo *common;
    struct LocaleRecord *next;
} LocaleRecord;

/* Locale categories, indexes 1..6 into a LocaleHandle. */
#define COM_LC_COLLATE 1
#define COM_LC_CTYPE 2
#define COM_LC_MESSAGE 3
#define COM_LC_MONETARY 4
#define COM_LC_NUMERIC 5
#define COM_LC_TIME 6

/* What the public locale operations hand out: one cached record per category. */
typedef struct LocaleHandle {
    LocaleRecord *collate;
    LocaleRecord *ctype;
    LocaleRecord *message;
    LocaleRecord *monetary;
    LocaleRecord *numeric;
    LocaleRecord *time;
    struct LocaleHandle *next;
} LocaleHandle;

/* ---- Locale cache: loading, common information, accessors and handles ----
   Locale routines answer 1, 0 (unknown locale, missing section, text too long), CS_MEM_ERROR
   (-1) or COM_INTL_ERROR (-301, with the reader's status in ctx->intl_status). A name length
   below 0 means the name is NUL-terminated. */

/* The record intl_datetime fills from the section "datetime" of a "common.loc" (604 bytes).
   Names are NUL-terminated in their slots; days are indexed by day number - 1, day 1 being
   Monday and day 7 Sunday. The keys are described in docs/common_loc.md. */
#define COM_DT_MONTH_SLOT 21
#define COM_DT_SHORTMONTH_SLOT 10
#define COM_DT_DAY_SLOT 31
typedef struct IntlDateTime {
    char months[12][COM_DT_MONTH_SLOT];
    char shortmonths[12][COM_DT_SHORTMONTH_SLOT];
    char days[7][COM_DT_DAY_SLOT];
    char pad[3];
    int32_t firstday;
    char dateorder[4];
    int32_t is12hour;
} IntlDateTime;

/* Fills rec from the entries of the reader's current section. Returns 0, or a negative
   INTL_E_ status: INTL_E_SYNTAX for a missing key, a wrong count of names or a bad number,
   INTL_E_TOOLONG for a name that does not fit its slot. */
struct IntlFile;
COMN_API int32_t intl_datetime(struct IntlFile *handle, IntlDateTime *rec);

/* Loading: the cache first, else the locales file and a new record. */
COMN_API int32_t com_intl_load(ComContext *ctx, const char *name, int32_t namelen,
                               LocaleRecord **locale_out);
COMN_API int32_t com__intl_load_new(ComContext *ctx, const char *name, int32_t namelen,
                                    const char *language, const char *charset,
                                    const char *sortorder, LocaleRecord **locale_out);
/* A locale by its parts (null or empty parts: us_english, iso_1, binary). When one of its
   files is missing (0), path_out holds that file's path and *path_length_out its length. */
COMN_API int32_t com_intl_load_lcs(ComContext *ctx, const char *language, const char *charset,
                                   const char *sortorder, char *path_out, int32_t path_size,
                                   int32_t *path_length_out, LocaleRecord **locale_out);

COMN_API LocaleRecord *com__scan_lcache_name(ComContext *ctx, const char *name, int32_t namelen);
COMN_API LocaleRecord *com__scan_lcache_lang(ComContext *ctx, const char *language,
                                             const char *charset);
COMN_API LocaleRecord *com__scan_lcache_sort(ComContext *ctx, const char *sortorder,
                                             const char *charset);
COMN_API int32_t com__read_common(ComContext *ctx, LocaleRecord *locale);
COMN_API int32_t com__copy_common_info(const LocaleRecord *source, LocaleRecord *locale);
/* Frees a record with its names, common information and message cache; never its shared
   character set description. */
COMN_API void com__lcache_drop(LocaleRecord *locale);
COMN_API void com_intl_loccache_drop(ComContext *ctx);
COMN_API const char *com_intl_get_locname(const LocaleRecord *locale);

/* which: 1 the charset, 2 the language, other the sort order of the category's record. The
   text is written without terminator; 0 (nothing copied) when its length exceeds size. */
COMN_API int32_t com_intl_getstr(const LocaleHandle *locale, int32_t category, int32_t which,
                                 char *buf, int32_t size, int32_t *outlen);
/* 0 for the same record. which 1: charsets; 2: charsets, then languages; 3: charsets, then
   sort orders (different charsets give -1); another which or a null handle gives -2. */
COMN_API int32_t com_intl_loccmp(int32_t category, int32_t which, const LocaleHandle *a,
                                 const LocaleHandle *b);

/* Accessors over (context, data format): the format's locale when fmt is given, else the
   context's default locale; the built-in English values when there is no time record. A
   format whose locale is null reads the built-in values, except com_intl_get_dtfmt and
   com_intl_set_dtfmt, which then use the context's default locale. */
COMN_API int32_t com_intl_dateorder_id(ComContext *ctx, const DataFormat *fmt);
COMN_API const char *const *com_intl_shortmonths(ComContext *ctx, const DataFormat *fmt);
COMN_API const char *const *com_intl_months(ComContext *ctx, const DataFormat *fmt);
COMN_API const char *const *com_intl_days(ComContext *ctx, const DataFormat *fmt);
COMN_API int32_t com_intl_firstday(ComContext *ctx, const DataFormat *fmt);
COMN_API const char *com_intl_dateorder(ComContext *ctx, const DataFormat *fmt);
COMN_API int32_t com_intl_is12hour(ComContext *ctx, const DataFormat *fmt);
COMN_API int32_t com_intl_get_dtfmt(ComContext *ctx, const DataFormat *fmt);
COMN_API int32_t com_intl_set_dtfmt(ComContext *ctx, const DataFormat *fmt, int32_t dtfmt);
/* The ctype record's character attributes: the format's locale, else the context's default
   locale, else the built-in "iso_1" record. */
COMN_API const CharAttrib *com_intl_charattr(ComContext *ctx, const DataFormat *fmt);
/* ((firstday - 1 + day) mod 7 - (base - 8)) mod 7, with C's signed remainder. */
COMN_API int32_t com_intl_convt_firstday(int32_t day, int32_t firstday, int32_t base);

/* Locale handles. These take the context's lock callback (when set) around the handle list;
   a lock status other than 1 is returned at once, as is an unlock status other than 1
   (comn_loc_validate then answers 0). */
COMN_API int32_t comn_loc_alloc(ComContext *ctx, LocaleHandle **locale_out);
COMN_API int32_t comn_loc_drop(ComContext *ctx, LocaleHandle *locale);
COMN_API int32_t comn_loc_drop_all(ComContext *ctx);
COMN_API int32_t comn_loc_validate(ComContext *ctx, const LocaleHandle *locale);
COMN_API int32_t comn_loc_copy(LocaleHandle *dest, const LocaleHandle *src);

/* ---- Platform reader: installation home, environment, sectioned text files ----
   The file syntax is described in docs/intl_files.md. Strings handed out by the reader stay
   valid until intl_close. Failures are negative INTL_E_ statuses. */
#define INTL_E_NOMEM (-1)   /* an allocation failed */
#define INTL_E_OPEN (-2)    /* the file cannot be opened or read */
#define INTL_E_SYNTAX (-3)  /* malformed line: header, entry without '=', open quote, ... */
#define INTL_E_TOOBIG (-4)  /* file larger than INTL_FILE_MAX */
#define INTL_E_BINARY (-5)  /* the file holds a NUL byte */
#define INTL_E_NOHOME (-6)  /* neither VELDAR nor the home of the user veldar is known */
#define INTL_E_TOOLONG (-7) /* a value does not fit the caller's buffer */
#define INTL_E_ARG (-8)     /* a null handle, path or buffer */

#define INTL_FILE_MAX (16L * 1024 * 1024)

typedef struct IntlFile IntlFile;

/* The installation home: VELDAR, else the home directory of the user veldar. Returns the
   length (>= 0) with the path terminated in buf, or a negative status. */
COMN_API int32_t intl_home(char *buf, int32_t size);
/* A variable's value: its length (> 0) with the value in buf; 0 when unset, empty or name is
   null; a negative status when it does not fit. */
COMN_API int32_t intlgetenv(char *buf, int32_t size, const char *name);
COMN_API int32_t intl_open(const char *path, IntlFile **handle);
COMN_API char *intl_nextsection(IntlFile *handle, int32_t *status);
COMN_API char *intl_nextentry(IntlFile *handle, int32_t *status);
COMN_API char *intl_nextvalue(IntlFile *handle, int32_t *status);
COMN_API int32_t intl_close(IntlFile *handle);

/* ---- Unsigned byte comparisons ----
   com_unsignstrncmp compares exactly n bytes and does not stop at a terminator. */
COMN_API int32_t com_unsignstrcmp(const char *a, const char *b);
COMN_API int32_t com_unsignstrncmp(const char *a, const char *b, int32_t n);

/* ---- Installation paths, locale names and the locales file ----
   Path routines answer 1, 0 when the path does not fit, or COM_INTL_ERROR. A path exactly as
   long as size is accepted: the buffer must hold size + 1 bytes. */
#define COM_INTL_PATH_SIZE 1025 /* a path of at most 1024 bytes and one byte of slack */
#define COM_INTL_NAME_SIZE 256  /* buffers for language, charset and sort order names */

COMN_API int32_t com_path_ifile(ComContext *ctx, char *buf, int32_t size);
COMN_API int32_t com__path_locfile(ComContext *ctx, const char *language, const char *charset,
                                   const char *file, char *buf, int32_t size);
COMN_API int32_t com__path_charfile(ComContext *ctx, const char *charset, const char *file,
                                    const char *extension, char *buf, int32_t size);
COMN_API int32_t com__open_locfile(ComContext *ctx, const char *language, const char *charset,
                                   const char *file, IntlFile **handle);
COMN_API int32_t com__open_charfile(ComContext *ctx, const char *charset, const char *file,
                                    const char *extension, IntlFile **handle);
COMN_API int32_t com_intl_envloc(ComContext *ctx, int32_t category, char *buf, int32_t size);
/* sortorder_out must hold COM_INTL_NAME_SIZE bytes. */
COMN_API int32_t com__intl_lookup(ComContext *ctx, const char *locale, int32_t locale_length,
                                  char *language_out, int32_t language_size, char *charset_out,
                                  int32_t charset_size, char *sortorder_out);
COMN_API int32_t com_intl_locname(ComContext *ctx, const char *language, int32_t language_length,
                                  const char *charset, int32_t charset_length,
                                  const char *sortorder, int32_t sortorder_length, char *name_out,
                                  int32_t name_size, int32_t *name_length_out);
COMN_API int32_t com__verify_msgfile(ComContext *ctx, const char *language, const char *charset,
                                     const char *file, char *path_out, int32_t size);
COMN_API int32_t com__verify_charfile(ComContext *ctx, const char *charset, const char *file,
                                      const char *extension, char *path_out, int32_t size);
COMN_API int32_t com_intl_verify_locfiles(ComContext *ctx, const char *language,
                                          const char *charset, const char *sortorder,
                                          char *path_out, int32_t size);
COMN_API int32_t com_intl_verify_a_msgfile(ComContext *ctx, LocaleRecord *locale, const char *file,
                                           char *path_out, int32_t size);
COMN_API void com_intl_verify_ctxloc(ComContext *ctx);

/* ---- Character attributes and classification ----
   Each comn_ routine takes an attribute record (null: the built-in "iso_1" record) and the
   first byte of a character. */
COMN_API const uint8_t *com_get_typemap(void);
COMN_API const CharAttrib *com_get_charattrib(void);
COMN_API CharAttrib *com_alloc_char_attrib(void);
COMN_API void com_free_char_attrib(CharAttrib *rec);
/* kind COM_CHARATTR_TYPEMAP (a 1024-byte map) or COM_CHARATTR_IMAGE (a loader's image, whose
   big-endian header words are converted in place). Returns 1, or 0 for a bad kind or null. */
COMN_API int32_t com_build_char_attrib(int32_t kind, int32_t xlate_id, const char *name,
                                       void *table, CharAttrib *rec);

COMN_API int32_t comn_isalpha(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_isupper(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_islower(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_isdigit(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_isxdigit(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_isspace(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_ispunct(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_isgraph(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_get_lex(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_char_width(const CharAttrib *attr, const char *c);
COMN_API int32_t comn_disp_width(const CharAttrib *attr, const char *c);
/* The position of the next character. */
COMN_API const char *comn_inc_char(const CharAttrib *attr, const char *c);
COMN_API const uint8_t *comn_get_widthmap(const CharAttrib *attr);
/* Write the mapped character to dest (up to the character's byte length) and return the
   number of bytes written. */
COMN_API int32_t comn_toupper(const CharAttrib *attr, const char *src, char *dest);
COMN_API int32_t comn_tolower(const CharAttrib *attr, const char *src, char *dest);
COMN_API int32_t comn_whole_char(const CharAttrib *attr, const char *start, const char *end,
                                 int32_t *chars, int32_t *whole_bytes, int32_t *cut_bytes,
                                 int32_t *overrun);
COMN_API int32_t comn_to_ascii(const CharAttrib *attr, const char *c);
/* dest must hold length bytes; *count receives the bytes written. Returns CS_SUCCEED. */
COMN_API int32_t comn_str_to_ascii(const char *src, int32_t length, char *dest, int32_t *count,
                                   const CharAttrib *attr);

/* The older single-byte family, reading the global map (by default Com_Iso1_charmap). */
COMN_API extern const uint8_t *const Com_Iso1_charmap;
COMN_API extern const uint8_t *Com_charmap;
COMN_API int32_t com_toupper(int32_t c);
COMN_API int32_t com_tolower(int32_t c);
COMN_API int32_t com_isalpha(int32_t c);
COMN_API int32_t com_isupper(int32_t c);
COMN_API int32_t com_islower(int32_t c);
COMN_API int32_t com_isdigit(int32_t c);
COMN_API int32_t com_isxdigit(int32_t c);
COMN_API int32_t com_isspace(int32_t c);
COMN_API int32_t com_isgraph(int32_t c);

/* Inline forms of the tests and case maps, for loops that classify text a byte at a time:
   each gives the routine's answer by reading the maps directly, without a call into the
   library. They evaluate their arguments once. Define COMN_NO_INLINE_CTYPE before including
   this header to call the routines instead; a parenthesised name, (comn_isalpha)(attr, c),
   always calls the routine. */
/* The 4-byte type map entry of the character at c: a lead byte's entry names the page that
   holds the entry of the pair, indexed by the second byte. The library's routines and the
   inline forms below both read entries this way. The second byte is read only after a lead
   byte, which a whole character always follows; once inlined beside a one-byte buffer, the
   compiler cannot see that and would warn. */
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
#endif
static inline const uint8_t *comn__type_entry(const uint8_t *map, const char *c) {
    const uint8_t *e = map + 4 * (size_t)(uint8_t)c[0];
    if (e[3] & COM_CT_LEAD) e = map + 1024 * (size_t)e[0] + 4 * (size_t)(uint8_t)c[1];
    return e;
}
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

#ifndef COMN_NO_INLINE_CTYPE
static inline int32_t comn__ctype_bits(const CharAttrib *attr, const char *c) {
    return comn__type_entry(attr ? attr->typemap : com_get_typemap(), c)[3];
}
#define comn_isalpha(attr, c) (comn__ctype_bits((attr), (c)) & (COM_CT_UPPER | COM_CT_LOWER))
#define comn_isupper(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_UPPER)
#define comn_islower(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_LOWER)
#define comn_isdigit(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_DIGIT)
#define comn_isxdigit(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_XDIGIT)
#define comn_isspace(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_SPACE)
#define comn_ispunct(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_PUNCT)
#define comn_isgraph(attr, c) (comn__ctype_bits((attr), (c)) & COM_CT_GRAPH)

#define COMN__CHARMAP(c, slot) ((int32_t)Com_charmap[4 * (size_t)((c)&0xFF) + (slot)])
#define com_toupper(c) COMN__CHARMAP(c, 0)
#define com_tolower(c) COMN__CHARMAP(c, 1)
#define com_isalpha(c) (COMN__CHARMAP(c, 3) & (COM_CT_UPPER | COM_CT_LOWER))
#define com_isupper(c) (COMN__CHARMAP(c, 3) & COM_CT_UPPER)
#define com_islower(c) (COMN__CHARMAP(c, 3) & COM_CT_LOWER)
#define com_isdigit(c) (COMN__CHARMAP(c, 3) & COM_CT_DIGIT)
#define com_isxdigit(c) (COMN__CHARMAP(c, 3) & COM_CT_XDIGIT)
#define com_isspace(c) (COMN__CHARMAP(c, 3) & COM_CT_SPACE)
#define com_isgraph(c) (COMN__CHARMAP(c, 3) & COM_CT_GRAPH)
#endif

/* ---- Character set and sort order descriptions ----
   One description per (character set, sort order) pair, loaded from the set's "charset.loc"
   and "<sort order>.srt" and kept in the context's list, shared by every locale record with
   that pair, freed by com__charset_drop_all when the context goes. */
#define COM_XLATE_UNKNOWN 254 /* translation id of a set that translation does not know */
#define COM_SORT_HEADER 4     /* weight table: header, 256 weight words, special nodes */
#define COM_SORT_NODE 12

typedef struct ComCharsetDesc {
    char *charset;
    char *sortorder;
    CharAttrib *attr;    /* the set's attribute record, pointing into image */
    uint8_t *image;      /* the character set image */
    uint8_t *sort_table; /* the sort order's weight table */
    int32_t sort_size;   /* its size in bytes */
    struct ComCharsetDesc *next;
} ComCharsetDesc;

/* Find or load the description of a pair. Returns 1, 0 (a path that does not fit),
   CS_MEM_ERROR, or COM_INTL_ERROR (missing or malformed file; status in ctx->intl_status). */
COMN_API int32_t com__charset_desc_get(ComContext *ctx, const char *charset, const char *sortorder,
                                       ComCharsetDesc **desc_out);
/* The same for a locale record's charset and sort order; sets rec->charset_desc. */
COMN_API int32_t com__charset_load(ComContext *ctx, LocaleRecord *rec);
COMN_API void com__charset_drop_all(ComContext *ctx);

/* ---- Collation under a sort order's weight table ---- */
/* Resolves one special character from node start: 1 with *weight, 2 with *weight and a
   pending *second (an expansion), 0 when no weight results (outputs unchanged). */
COMN_API int32_t com__smel_lsc(const uint8_t *list, int32_t start, const uint8_t **pos,
                               const uint8_t *end, uint32_t *weight, uint32_t *second);
/* Primary comparison with secondary tie-break: a signed difference; the com_ form its sign. */
COMN_API int32_t com__ps_dl_sqlhilo(const uint8_t *table, const char *a, int32_t alen,
                                    const char *b, int32_t blen);
COMN_API int32_t com_ps_dl_sqlhilo(const uint8_t *table, const char *a, int32_t alen, const char *b,
                                   int32_t blen);
/* Tertiary comparison: a signed difference; the com_ form its sign. */
COMN_API int32_t com__spec_tord(const uint8_t *table, const char *a, int32_t alen, const char *b,
                                int32_t blen);
COMN_API int32_t com_spec_tord(const uint8_t *table, const char *a, int32_t alen, const char *b,
                               int32_t blen);

/* ---- Platform message text (kept last: the message layer's calls) ----
   intl_errstr names a negative INTL_E_ status ("unknown" texts for other numbers).
   intl_strbuild fills a message template into buf (size bytes, terminator included) and
   returns the length written, or a negative INTL_E_ status. format lists the values that
   follow it, blank-separated: %s (a string), %d (an int), %ld (a long); the template names
   them by position as %1! .. %9! and writes a percent sign as %%. Syntax: docs/messages.md. */
COMN_API const char *intl_errstr(int32_t status);
COMN_API int32_t intl_strbuild(char *buf, int32_t size, const char *tmpl, const char *format, ...);

COMN_END_DECLS

#include "xlate.h" /* character set translation */

#endif
