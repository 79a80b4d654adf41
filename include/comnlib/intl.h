/* comnlib: localisation: platform reader, paths and locale names, locale cache, character
   classification, translation and collation. */
#ifndef COMNLIB_INTL_H
#define COMNLIB_INTL_H

#include "types.h"

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
    uint8_t mb_level;                    /* 1 for a single-byte set */
    uint8_t xlate_id;                    /* character set id used by translation */
    uint16_t namelen;
    char name[COM_CHARSET_NAME_MAX];     /* not terminated when 30 long */
    uint8_t flags[5];
    const uint8_t *widthmap;             /* 256 bytes: low nibble byte length, high nibble columns */
    const uint8_t *asciimap;             /* 256 bytes plus 256-byte pages, or null */
    const uint8_t *typemap;              /* 256 4-byte entries plus 1024-byte pages */
    const uint8_t *second;               /* a further table of the set, carried as is */
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
    int32_t dtfmt;         /* default date style derived from the date order */
} CommonInfo;

/* One cached locale. */
typedef struct LocaleRecord {
    char *name;
    char *language;
    char *charset;
    char *sortorder;
    struct ComMsgCache *msgcache;        /* message files of this locale, dropped with it */
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

COMN_END_DECLS

#endif
