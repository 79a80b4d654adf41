/* comnlib: datetime values: calendar arithmetic, parsing and formatting. */
#ifndef COMNLIB_DATETIME_H
#define COMNLIB_DATETIME_H

#include "intl.h"
#include "types.h"

COMN_BEGIN_DECLS

/* ---- Encodings ----
   DateTimeValue: days since 1 January 1900 (negative before it) and ticks of 1/300 second
   since midnight; only the low 25 bits of ticks are read. Valid from 1 January 1753 (days
   -53690) to 31 December 9999 (days 2958463). DateTime4Value: days since 1 January 1900
   (0..65535, up to 6 June 2079) and minutes since midnight (0..1439). */
#define COM_DT_TICKS_PER_DAY 25920000
#define COM_DT_TICKS_PER_HOUR 1080000
#define COM_DT_TICKS_PER_MINUTE 18000
#define COM_DT_TICKS_PER_SECOND 300
#define COM_DT_TICK_MASK 0x1FFFFFF
#define COM_DT_MIN_DAYS (-53690)
#define COM_DT_MAX_DAYS 2958463

/* ---- Date parts ---- */
#define DATEPART_YEAR 0
#define DATEPART_QUARTER 1
#define DATEPART_MONTH 2
#define DATEPART_WEEKDAY 3
#define DATEPART_DAY 4
#define DATEPART_DAYOFYEAR 5
#define DATEPART_HOUR 6
#define DATEPART_MINUTE 7
#define DATEPART_SECOND 8
#define DATEPART_MILLISECOND 9
#define DATEPART_WEEK 10
#define DATEPART_ISOYEAR 11
#define DATEPART_ISOWEEK 12
#define DATEPART_ISOWEEKDAY 13

/* Date order codes. */
#define COM_DATEORDER_MDY 1
#define COM_DATEORDER_DMY 2
#define COM_DATEORDER_YMD 3
#define COM_DATEORDER_YDM 4
#define COM_DATEORDER_MYD 5
#define COM_DATEORDER_DYM 6

/* A value as the bulk-copy routines describe it: its length, the room available, and where
   it lies. */
typedef struct ComValueDesc {
    int32_t length;
    int32_t maxlength;
    void *value;
} ComValueDesc;

/* ---- Date result codes ----
   Success, text the parser cannot read (negative) and values out of range (positive). The
   calendar answers the range codes: com__datemake the year, month or day, com__timemake the
   hour, minute, second or millisecond; com__date_add, com__datediff, com__dttodate4 and
   com__dateadd_both COMN_DATE_RANGE for a result beyond the calendar. The parser folds
   every time component into COMN_DATE_RANGE. The formatter's negative results have their
   own two names. */
#define COMN_DATE_CODES(X)                                                                         \
    X(COMN_DATE_OK, 0)                                                                             \
    X(COMN_DATE_MALFORMED, -1)                                                                     \
    X(COMN_DATE_LEFTOVER, -2)                                                                      \
    X(COMN_DATE_RANGE, 1)                                                                          \
    X(COMN_DATE_MONTH_RANGE, 2)                                                                    \
    X(COMN_DATE_DAY_RANGE, 3)                                                                      \
    X(COMN_DATE_HOUR_RANGE, 4)                                                                     \
    X(COMN_DATE_MINUTE_RANGE, 5)                                                                   \
    X(COMN_DATE_SECOND_RANGE, 6)                                                                   \
    X(COMN_DATE_MSEC_RANGE, 7)                                                                     \
    X(COMN_DATE_AMPM, 9)                                                                           \
    X(COMN_DATE_NOSTYLE, -1)                                                                       \
    X(COMN_DATE_NONAMES, -2)
enum { COMN_DATE_CODES(COMN_ENUM_ROW_) };

/* ---- Calendar (internal layer: COMN_DATE_OK or a range code) ---- */
COMN_API int32_t com__leapcnt(int32_t n);
COMN_API void com__datecrack(const DateTimeValue *dt, DateRec *rec);
COMN_API void com__timecrack(const DateTimeValue *dt, DateRec *rec);
COMN_API int32_t com__datemake(DateTimeValue *dt, const DateRec *rec);
COMN_API int32_t com__timemake(DateTimeValue *dt, const DateRec *rec);
COMN_API int32_t com__datepart(int32_t part, const DateTimeValue *dt, int32_t first_day);
COMN_API int32_t com__datename(int32_t part, const DateTimeValue *dt, char *out,
                               const char *const *month_names, const char *const *day_names);
COMN_API int32_t com__datediff(int32_t part, const DateTimeValue *from, const DateTimeValue *to,
                               int32_t *result);
COMN_API int32_t com__date_add(int32_t part, int32_t amount, DateTimeValue *dt);
COMN_API int32_t com__datecmp(const DateTimeValue *a, const DateTimeValue *b);
COMN_API int32_t com__dttodate4(const DateTimeValue *dt, DateTime4Value *out);
COMN_API int32_t com__date4todt(const DateTime4Value *dt4, DateTimeValue *out);
COMN_API int32_t com__dateadd_both(int32_t part, int32_t amount, const ComValueDesc *src,
                                   ComValueDesc *dest);
COMN_API int32_t com__valid_datetime(const ComValueDesc *desc, const void *value);
COMN_API int32_t com__itochar(long value, char *out, int32_t max);
COMN_API int32_t com__cpint(char *out, int32_t value, int32_t terminator, int32_t width);
COMN_API int32_t com__cpchar(char *out, const char *text, int32_t terminator, int32_t max);

/* ---- Calendar (public layer) ---- */
COMN_API void com_datecrack(const DateTimeValue *dt, DateRec *rec);
COMN_API void com_timecrack(const DateTimeValue *dt, DateRec *rec);
COMN_API int32_t com_datepart(int32_t part, const DateTimeValue *dt, int32_t first_day);
COMN_API int32_t com_datename(int32_t part, const DateTimeValue *dt, char *out,
                              const char *const *month_names, const char *const *day_names);
COMN_API int32_t com_datecmp(const DateTimeValue *a, const DateTimeValue *b);
COMN_API int32_t com_date4cmp(const DateTime4Value *a, const DateTime4Value *b);
COMN_API DateTimeValue *com_datezero(DateTimeValue *dt);
COMN_API DateTime4Value *com_date4zero(DateTime4Value *dt4);
COMN_API void com_setdatetime(DateTimeValue *dt, int32_t days, uint32_t ticks);

/* ---- Parsing ----
   Results: COMN_DATE_OK; COMN_DATE_MALFORMED; COMN_DATE_LEFTOVER (tokens left over);
   COMN_DATE_RANGE (year or time component); COMN_DATE_MONTH_RANGE; COMN_DATE_DAY_RANGE;
   COMN_DATE_AMPM (AM/PM does not fit the hour).
   attr may be null: plain ASCII classes with upper-case folding. */
COMN_API int32_t com__datefromchar_mb(DateTimeValue *out, const char *text, int32_t len,
                                      int32_t style, int32_t dateorder,
                                      const char *const *month_names,
                                      const char *const *short_month_names, const CharAttrib *attr);
COMN_API int32_t com__timefromchar_mb(DateTimeValue *out, const char *text, int32_t len,
                                      int32_t style, const CharAttrib *attr);
COMN_API int32_t com__date4fromchar_mb(DateTime4Value *out, const char *text, int32_t len,
                                       int32_t style, int32_t dateorder,
                                       const char *const *month_names,
                                       const char *const *short_month_names,
                                       const CharAttrib *attr);
COMN_API int32_t com__amcheck(DateRec *rec, int32_t pm);
COMN_API int32_t com__year2digit(int32_t *year);

/* ---- Formatting ----
   Returns the bytes written (no terminator), 0 when the text did not fit in max bytes (the
   prefix that fits is written), COMN_DATE_NOSTYLE for an unknown style, COMN_DATE_NONAMES
   when the style shows month names and none were given. A negative max means no limit. */
COMN_API int32_t com__datetochar(const DateTimeValue *dt, char *out, int32_t max, int32_t style,
                                 const char *const *month_names);
COMN_API int32_t com__date4tochar(const DateTime4Value *dt4, char *out, int32_t max, int32_t style,
                                  const char *const *month_names);
COMN_API int32_t com_cvtdatetochar(const DateTimeValue *dt, char *out, int32_t max, int32_t style,
                                   const char *const *month_names);
COMN_API int32_t com_cvtdate4tochar(const DateTime4Value *dt4, char *out, int32_t max,
                                    int32_t style, const char *const *month_names);

/* ---- Clock and locale date settings ---- */
COMN_API int32_t comn_time(int32_t dateorder, int32_t is12hour, char *buf, int32_t buflen,
                           int32_t *outlen, DateRec *rec);
COMN_API int32_t comn_dtloc_format(ComContext *ctx, LocaleHandle *locale);
COMN_API int32_t comn_dtloc_is12hour(ComContext *ctx, LocaleHandle *locale);

/* ---- Built-in English date names and settings, used where no locale is at hand ---- */
COMN_API extern const char *const Com__Months[12];      /* full month names, January first */
COMN_API const char *const *com__get_ampm(void);        /* 2: AM, PM */
COMN_API const char *const *com__get_weekdays(void);    /* 7 full names, Sunday first */
COMN_API const char *const *com__get_months(void);      /* 12 full names, January first */
COMN_API const char *const *com__get_shortmonths(void); /* 12 abbreviations */
COMN_API const char *const *com__get_days(void);        /* 7 abbreviations, Sunday first */
COMN_API int32_t com__get_firstday(void);
COMN_API const char *com__get_date_order(void);
COMN_API int32_t com__get_date_order_id(void);
COMN_API int32_t com__get_dateorder_id(const char *order);
COMN_API int32_t com__map_dateorder_id_to_fmt(int32_t id);

COMN_END_DECLS

#endif
