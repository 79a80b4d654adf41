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

#define COM_ERRORS_COUNT 17

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

/* ---- Version ---- */

/* Stores the major and minor version numbers (either pointer may be null) and returns the
   library's version text, seven fields separated by "/". */
COMN_API const char *com_version(int32_t *major, int32_t *minor);

COMN_END_DECLS

#endif
