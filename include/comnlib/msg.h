/* comnlib: messages and diagnostics: message files, error assembly, trace, assertions,
   version. */
#ifndef COMNLIB_MSG_H
#define COMNLIB_MSG_H

#include <stdarg.h>
#include <stdio.h>

#include "types.h"

COMN_BEGIN_DECLS

/* ---- Trace, debug stream, assertions and panics ---- */

/* Trace levels of Com_trace_enable. */
#define COM_TRACE_OFF 1
#define COM_TRACE_FAILURES 2
#define COM_TRACE_ALL 3

/* A status code and its name. */
typedef struct ComErrorName {
    int32_t code;
    const char *name;
} ComErrorName;

#define COM_ERRORS_COUNT (0 COMN_STATUS_CODES(COMN_COUNT_ROW_))

COMN_API extern int32_t Com_trace_enable;
COMN_API extern FILE *Com_fp;
COMN_API extern const ComErrorName Com_errors[COM_ERRORS_COUNT];

COMN_API int32_t com_errset(int32_t level);
COMN_API int32_t com_errtrace(int32_t status, const char *file, int32_t line);
COMN_API int32_t comn_debug_setfile(ComContext *ctx, const char *path, int32_t on);
COMN_API int32_t comn_debug_print(const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
COMN_API int32_t comn_debug_vprint(const char *format, va_list args);

COMN_API void com_bomb(const char *file, int32_t line);
COMN_API void com_chkptr(const void *ptr, const char *file, int32_t line);
COMN_API void com_chkfunc(void (*func)(void), const char *file, int32_t line);
COMN_API void com__abort(void);
COMN_API void com_dbginit(void);
COMN_API int32_t com__get_stack_depth(void);
COMN_API void com_panic(const char *message);
COMN_API void com_perr(const char *text);

/* Wraps a return statement so that a failing status is traced where it arose. */
#define COM_ERRTRACE(status) com_errtrace((status), __FILE__, __LINE__)
#define COM_ASSERT(cond) ((cond) ? (void)0 : com_bomb(__FILE__, __LINE__))

/* ---- Guarded strings and the environment ---- */

COMN_API void com_copstr(char *dest, const char *src, int32_t size);
COMN_API void com_catstr(char *dest, const char *src, int32_t size);
/* A malloc'ed copy of an environment variable's value, or null; the caller frees it. */
COMN_API char *com_getenv(const char *name);

/* ---- State tables ----
   A verification list is a run of token bytes ended by a byte of 255 or more; a transition
   list a run of (event, next state) pairs ended by an event byte of 255. */
#define COM_ST_SAME 149    /* next state: stay where you are */
#define COM_ST_NOTRANS 254 /* no transition for the event */

COMN_API int32_t com_st_ver(const uint8_t *const *table, int32_t state, int32_t token);
/* A dependency record: count (key, value) pairs, laid out key, value, key, value, ... */
typedef struct ComStDepend {
    const int32_t *pairs;
    int32_t count;
} ComStDepend;

COMN_API int32_t com_st_depend(const ComStDepend *record, int32_t key, int32_t *value);
COMN_API int32_t com_st_trans(const uint8_t *const *table, int32_t state, int32_t event);
COMN_API int32_t com_ns_trans(const uint8_t *const *table, int32_t state, int32_t event);

/* ---- Message files and the error cache ----
   A message file ("cslib.loc", "ctlib.loc", ...) lies in the directory of a locale and is read
   through the platform reader: named sections of entries "number = sqlstate, text". The
   messages loaded from it are cached per locale record (LocaleRecord.msgcache), at most
   COM_ERR_CACHE_MAX of them; a message that is not cached is read from the file on demand. */
#define COM_ERR_CACHE_MAX 100
#define COM_ERR_SQLSTATE_SIZE 8 /* at most seven characters and a terminator */

struct LocaleRecord;
struct IntlFile;

/* A section the caller needs: its id and its name in the file (exact, case-sensitive). */
typedef struct ComErrSection {
    int32_t id;
    const char *name;
} ComErrSection;

/* A message: its section id and its number within the section. Preload lists and lookups
   use the same pair. */
typedef struct ComErrKey {
    int32_t section;
    int32_t number;
} ComErrKey;

/* Who owns the loaded messages and where the file is: the locale record names the language
   and charset directory and holds the cache; file is the message file's name. */
typedef struct ComErrCtx {
    struct LocaleRecord *locale;
    const char *file;
} ComErrCtx;

/* One cached message. */
typedef struct ComErrEntry {
    char sqlstate[COM_ERR_SQLSTATE_SIZE];
    int32_t number;
    char *text;                      /* owned, escapes resolved */
    struct ComErrSect *section;      /* the section record it belongs to */
    struct ComErrEntry *next_loaded; /* the owner's load-order list, newest first */
    struct ComErrEntry *next;        /* the section's list */
} ComErrEntry;

/* One section of a loaded file. */
typedef struct ComErrSect {
    int32_t id;
    char *name; /* owned */
    ComErrEntry *entries;
    struct ComErrSect *next;
} ComErrSect;

/* One loaded message file. */
typedef struct ComErrFile {
    char *name; /* owned */
    ComErrSect *sections;
    struct ComErrFile *next;
} ComErrFile;

/* The message cache of a locale record. */
typedef struct ComMsgCache {
    ComErrFile *files;
    ComErrEntry *loaded; /* every cached entry, newest first */
    int32_t count;
} ComMsgCache;

COMN_API int32_t com_err_init(ComContext *ctx, ComErrCtx *errctx, const ComErrSection *sections,
                              int32_t section_count, const ComErrKey *preloads,
                              int32_t preload_count);
/* The text of a message, loading it on demand. The text belongs to the cache and stays valid
   until the cache drops the entry (a later load may evict it). */
COMN_API int32_t com_err_msg(ComContext *ctx, ComErrCtx *errctx, const ComErrKey *key,
                             const char **text);
/* Copies the SQL state (terminated when there is room); CS_FAIL when it is longer than
   buflen, with its length in *outlen. */
COMN_API int32_t com_err_sqlstate(ComContext *ctx, ComErrCtx *errctx, int32_t number,
                                  int32_t section, char *buf, int32_t buflen, int32_t *outlen);
COMN_API int32_t com__err_getcache(ComContext *ctx, ComErrCtx *errctx, int32_t number,
                                   int32_t section, ComErrEntry **entry);
/* Steps of loading, for the routines above. handle is an open platform reader. */
COMN_API int32_t com__err_load_sections(ComContext *ctx, struct IntlFile *handle,
                                        ComMsgCache *cache, ComErrFile *file,
                                        const ComErrSection *sections, int32_t section_count,
                                        const ComErrKey *preloads, int32_t preload_count);
COMN_API int32_t com__err_load_errors(ComContext *ctx, struct IntlFile *handle, ComMsgCache *cache,
                                      ComErrSect *section, const ComErrKey *preloads,
                                      int32_t preload_count);
/* Adds an entry (evicting the oldest loaded one when the cache is full). */
COMN_API int32_t com__update_cache(ComMsgCache *cache, ComErrSect *section, int32_t number,
                                   const char *sqlstate, const char *text);
COMN_API ComErrEntry *com__scan_cache(const ComErrSect *section, int32_t number);
/* Resolves backslash escapes in place. */
COMN_API int32_t com__err_filterescape(char *text);
/* Frees a chain of file records with their sections and entries. */
COMN_API void com__errfile_cache_drop(ComErrFile *files);
/* Frees a locale record's message cache and everything in it (null is allowed). */
COMN_API void com__msgcache_drop(ComMsgCache *cache);

/* ---- Error message assembly ----
   A message number: bits 31..24 the layer, 23..16 the origin (COM_ORIGIN_INTL: an error of
   the internationalisation library, whose status is the negated low byte), 15..8 the section
   of this library's message files, 7..0 the number within the section. */
#define COM_ERRNUM(layer, origin, section, number)                                                 \
    ((uint32_t)(layer) << 24 | (uint32_t)(origin) << 16 | (uint32_t)(section) << 8 |               \
     (uint32_t)(number))
#define COM_ERR_LAYER(n) ((int32_t)(((uint32_t)(n) >> 24) & 0xff))
#define COM_ERR_ORIGIN(n) ((int32_t)(((uint32_t)(n) >> 16) & 0xff))
#define COM_ERR_SECTION(n) ((int32_t)(((uint32_t)(n) >> 8) & 0xff))
#define COM_ERR_NUMBER(n) ((int32_t)((uint32_t)(n)&0xff))
#define COM_ORIGIN_INTL 5

/* Sections of this library's message files: id and name in the file. Sections 1 to 3 hold
   the localized fallback texts (entries 1..4), the layer names and the origin names; the
   others hold messages. "ctlib.loc" has sections 1 to 4, 7 and 8; "cslib.loc" all of them. */
#define COMN_MSG_SECTIONS(X)                                                                       \
    X(COM_ERRSEC_FALLBACK, 1, "fallback")                                                          \
    X(COM_ERRSEC_LAYERS, 2, "layers")                                                              \
    X(COM_ERRSEC_ORIGINS, 3, "origins")                                                            \
    X(COM_ERRSEC_STATUS, 4, "status")                                                              \
    X(COM_ERRSEC_TDS_INPUT, 5, "tds_input")                                                        \
    X(COM_ERRSEC_TDS_OUTPUT, 6, "tds_output")                                                      \
    X(COM_ERRSEC_CONVERSION, 7, "conversion")                                                      \
    X(COM_ERRSEC_LOCALE, 8, "localisation")                                                        \
    X(COM_ERRSEC_MESSAGES, 9, "messages")

#define COMN_MSG_SECTION_ROW_(name, id, text) name = (id),
enum {
    COMN_MSG_SECTIONS(COMN_MSG_SECTION_ROW_) COM_MSG_SECTION_COUNT =
        0 COMN_MSG_SECTIONS(COMN_COUNT_ROW_)
};
/* The section table of "cslib.loc", for com_err_init. */
COMN_API extern const ComErrSection Com_msg_sections[COM_MSG_SECTION_COUNT];

/* Layers and origins named in sections 2 and 3. */
#define COM_LAYER_CLIENT 1
#define COM_LAYER_BULK 2
#define COM_LAYER_OLDCLIENT 3
#define COM_LAYER_COMMON 4
#define COM_ORIGIN_EXTERNAL 1 /* bad data from outside: the server, a file */
#define COM_ORIGIN_USAGE 2    /* a bad argument or call sequence */
#define COM_ORIGIN_RESOURCE 3 /* memory and other resources */
#define COM_ORIGIN_CONVERT 4  /* a value that cannot be converted */
#define COM_ORIGIN_CONFIG 6   /* installation home, locales and their files */

/* This library's messages: name, origin, section, number within the section, and the values
   the message takes (the com_ep_ builder that fills its parameter record). The bundled
   message files hold a text for every row; tools/gen/gen_msgfiles.py writes them. */
#define COMN_MESSAGES(X)                                                                           \
    X(COM_MSG_FAILED, COM_ORIGIN_USAGE, COM_ERRSEC_STATUS, 0, s)                                   \
    X(COM_MSG_NOMEM, COM_ORIGIN_RESOURCE, COM_ERRSEC_STATUS, 1, s)                                 \
    X(COM_MSG_PENDING, COM_ORIGIN_USAGE, COM_ERRSEC_STATUS, 2, s)                                  \
    X(COM_MSG_QUIET, COM_ORIGIN_USAGE, COM_ERRSEC_STATUS, 3, s)                                    \
    X(COM_MSG_BUSY, COM_ORIGIN_USAGE, COM_ERRSEC_STATUS, 4, s)                                     \
    X(COM_MSG_INTERRUPT, COM_ORIGIN_USAGE, COM_ERRSEC_STATUS, 5, s)                                \
    X(COM_MSG_CANCELED, COM_ORIGIN_EXTERNAL, COM_ERRSEC_STATUS, 202, s)                            \
    X(COM_MSG_ROW_FAIL, COM_ORIGIN_EXTERNAL, COM_ERRSEC_STATUS, 203, s)                            \
    X(COM_MSG_NOMSG, COM_ORIGIN_USAGE, COM_ERRSEC_STATUS, 207, s)                                  \
    X(COM_MSG_TIMED_OUT, COM_ORIGIN_EXTERNAL, COM_ERRSEC_STATUS, 208, s)                           \
    X(COM_MSG_TDS_BADTYPE, COM_ORIGIN_EXTERNAL, COM_ERRSEC_TDS_INPUT, 41, sd)                      \
    X(COM_MSG_TDS_BADDATATYPE, COM_ORIGIN_USAGE, COM_ERRSEC_TDS_OUTPUT, 41, sd)                    \
    X(COM_MSG_CONV_OVERFLOW, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 101, sss)                  \
    X(COM_MSG_CONV_UNDERFLOW, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 102, sss)                 \
    X(COM_MSG_CONV_PRECISION, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 103, sss)                 \
    X(COM_MSG_CONV_SCALE, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 104, sss)                     \
    X(COM_MSG_CONV_SYNTAX, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 105, sss)                    \
    X(COM_MSG_CONV_FORMAT, COM_ORIGIN_USAGE, COM_ERRSEC_CONVERSION, 106, s)                        \
    X(COM_MSG_CONV_DOMAIN, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 107, ss)                     \
    X(COM_MSG_CONV_DIVZERO, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 108, s)                     \
    X(COM_MSG_CONV_TRUNCATED, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 113, sd)                  \
    X(COM_MSG_CONV_STYLE, COM_ORIGIN_USAGE, COM_ERRSEC_CONVERSION, 114, sd)                        \
    X(COM_MSG_CONV_BADXLT, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 115, sss)                    \
    X(COM_MSG_CONV_NOXLT, COM_ORIGIN_CONVERT, COM_ERRSEC_CONVERSION, 116, sss)                     \
    X(COM_MSG_INTL_FAILED, COM_ORIGIN_CONFIG, COM_ERRSEC_LOCALE, 1, ss)                            \
    X(COM_MSG_LOCALE_UNKNOWN, COM_ORIGIN_CONFIG, COM_ERRSEC_LOCALE, 2, ss)                         \
    X(COM_MSG_LOCFILE_UNREADABLE, COM_ORIGIN_CONFIG, COM_ERRSEC_LOCALE, 3, ss)                     \
    X(COM_MSG_LOCNAME_TOOLONG, COM_ORIGIN_USAGE, COM_ERRSEC_LOCALE, 4, s)                          \
    X(COM_MSG_NO_DATETIME, COM_ORIGIN_CONFIG, COM_ERRSEC_LOCALE, 5, ss)                            \
    X(COM_MSG_NO_HOME, COM_ORIGIN_CONFIG, COM_ERRSEC_LOCALE, 6, s)                                 \
    X(COM_MSG_CHARSET_UNLOADABLE, COM_ORIGIN_CONFIG, COM_ERRSEC_LOCALE, 7, ss)                     \
    X(COM_MSG_MSGFILE_NOSECTION, COM_ORIGIN_CONFIG, COM_ERRSEC_MESSAGES, 1, ss)                    \
    X(COM_MSG_MSGFILE_NOMESSAGE, COM_ORIGIN_CONFIG, COM_ERRSEC_MESSAGES, 2, sds)                   \
    X(COM_MSG_MSGFILE_BADENTRY, COM_ORIGIN_CONFIG, COM_ERRSEC_MESSAGES, 3, sds)

#define COMN_MSG_ROW_(name, origin, section, number, values)                                       \
    name = (int32_t)COM_ERRNUM(COM_LAYER_COMMON, origin, section, number),
enum { COMN_MESSAGES(COMN_MSG_ROW_) };

/* Kinds of parameter value. */
#define COM_EP_STRING 0
#define COM_EP_LONG 8 /* the value points to a long */

/* The values of a message: value 1 is the prefix (the calling routine's name), values 2 and 3
   fill the message template as format describes. Filled by the com_ep_ builders. */
typedef struct ComErrParams {
    int32_t count; /* 1, 2 or 3 */
    const char *format;
    int32_t type1;
    const void *value1;
    int32_t type2;
    const void *value2;
    int32_t type3;
    const void *value3;
} ComErrParams;

COMN_API int32_t com_ep_s(ComErrParams *rec, const char *s1);
COMN_API int32_t com_ep_sd(ComErrParams *rec, const char *s1, const long *d2);
COMN_API int32_t com_ep_ss(ComErrParams *rec, const char *s1, const char *s2);
COMN_API int32_t com_ep_sss(ComErrParams *rec, const char *s1, const char *s2, const char *s3);
COMN_API int32_t com_ep_sds(ComErrParams *rec, const char *s1, const long *d2, const char *s3);
COMN_API int32_t com_ep_sdd(ComErrParams *rec, const char *s1, const long *d2, const long *d3);
COMN_API int32_t com_ep_ssd(ComErrParams *rec, const char *s1, const char *s2, const long *d3);

/* English texts used when the message file cannot help, ended by number -99999. */
typedef struct ComMsgFailure {
    int32_t number;
    const char *text;
} ComMsgFailure;
#define COM_MSGFAIL_NOMEM 1
#define COM_MSGFAIL_LAYER 2
#define COM_MSGFAIL_ORIGIN 3
#define COM_MSGFAIL_ERROR 4
#define COM_MSGFAIL_END (-99999)
COMN_API extern const ComMsgFailure Msgfailures[5];

/* Builds "prefix: layer: origin: message" into buf (no terminator) and stores the bytes
   written in *outlen. msgtext, when given, is the message itself (msglen bytes). With
   notrunc set, a short buf gives CS_FAIL, nothing written and the needed length in *outlen;
   otherwise the text is cut to buflen. */
COMN_API int32_t com_notrunc_errmsg(ComContext *ctx, ComErrCtx *errctx, uint32_t msgnum,
                                    const ComErrParams *params, const char *msgtext, int32_t msglen,
                                    int32_t section, int32_t notrunc, char *buf, int32_t buflen,
                                    int32_t *outlen);
COMN_API int32_t com_build_errmsg(ComContext *ctx, ComErrCtx *errctx, uint32_t msgnum,
                                  const ComErrParams *params, const char *msgtext, int32_t msglen,
                                  int32_t section, char *buf, int32_t buflen, int32_t *outlen);
/* One entry's text, or the fallback text for fallback number (never fails). */
COMN_API int32_t com__get_errstr(ComContext *ctx, ComErrCtx *errctx, int32_t section,
                                 int32_t number, int32_t fallback, const char **text, int32_t *len);
/* The localized fallback text (section 1), else the Msgfailures text. */
COMN_API int32_t com__get_failerr(ComContext *ctx, ComErrCtx *errctx, int32_t fallback,
                                  const char **text);
/* The message itself. *filled receives a buffer to free when a template was filled. */
COMN_API int32_t com__get_errmsg(ComContext *ctx, ComErrCtx *errctx, uint32_t msgnum,
                                 const ComErrParams *params, int32_t section, const char **text,
                                 int32_t *len, char **filled);
COMN_API int32_t com__get_intlerr(uint32_t msgnum, const char **text, int32_t *len);
/* Fills a template with values 2 and 3; CS_FAIL (and *filled null) when it cannot. */
COMN_API int32_t com__call_strbuild(const ComErrParams *params, const char *tmpl, int32_t tmpl_len,
                                    char **filled, int32_t *len);
/* Copies min(*room, len) bytes to *dest, advancing it and lowering *room. */
COMN_API void com__copy_bytes(char **dest, int32_t *room, const char *src, int32_t len);
/* Writes the four pieces joined by ": " into buf, each cut to the room left; returns the
   bytes written. */
COMN_API int32_t com__fill_climsg(char *buf, int32_t buflen, const char *const pieces[4],
                                  const int32_t lens[4]);

/* ---- Version ---- */

/* Stores the major and minor version numbers (either pointer may be null) and returns the
   library's version text, seven fields separated by "/". */
COMN_API const char *com_version(int32_t *major, int32_t *minor);

COMN_END_DECLS

#endif
