// Cracking and making datetimes and their date parts.
//
// Calendar: proleptic Gregorian, 1 January 1753 (days -53690) to 31 December 9999 (days
// 2958463), day 0 = Monday 1 January 1900. Cracking a day of the valid range is the
// table-free method in calendar.h. Day numbers outside it (not valid values, but cracked
// without fault) count 365-day years back from 1753, and Gregorian years on from 1753
// corrected by at most a year at a time; the month is found with one table probe. The ISO
// week-numbering parts take Monday as the first day and the week holding the first Thursday
// as week 1.
#include "calendar.h"

namespace comn {

// clang-format off
constinit const MonthDays monthdays[12] = {
    {31, 0}, {28, 31}, {31, 59}, {30, 90}, {31, 120}, {30, 151},
    {31, 181}, {31, 212}, {30, 243}, {31, 273}, {30, 304}, {31, 334}};
constinit const MonthDays lmonthdays[12] = {
    {31, 0}, {29, 31}, {31, 60}, {30, 91}, {31, 121}, {30, 152},
    {31, 182}, {31, 213}, {30, 244}, {31, 274}, {30, 305}, {31, 335}};
// clang-format on

void crack_civil_outside(int32_t days, DateRec &rec) {
    const int64_t d = int64_t{days} + kDays1753; // days since 1753
    int32_t y;                                   // years since 1753
    int64_t r;                                   // day of that year, [0, 365]
    if (d < 0) {                                 // no leap days are counted before 1753
        y = static_cast<int32_t>((d - 364) / 365);
        r = d - 365 * int64_t{y};
    } else {
        y = static_cast<int32_t>((d - leapcnt(static_cast<int32_t>(d / 365))) / 365);
        r = d - (365 * int64_t{y} + leapcnt(y));
        while (r < 0)
            r += 365 + leapyear(--y);
        while (r >= 365 + leapyear(y))
            r -= 365 + leapyear(y++);
    }
    // Months are at least 28 days long, so r / 32 is the month or the one before it.
    const MonthDays *t = month_table(y);
    auto m = static_cast<int32_t>(r >> 5); // [0, 11]
    if (m < 11 && r >= t[m + 1].before) ++m;
    rec.year = 1753 + y;
    rec.month = m;
    rec.day_of_month = static_cast<int32_t>(r) - t[m].before + 1;
}

namespace {

// Added to the day number of 1 January (indexed by its weekday, 0 Sunday) it gives the
// Monday on which ISO week 1 begins.
constexpr int32_t week_one_offset[7] = {1, 0, -1, -2, -3, 3, 2};

constexpr bool full_leap(int32_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Day number of the Monday starting ISO week 1 of the year whose 1 January is day j.
constexpr int64_t week_one(int64_t j) {
    return j + week_one_offset[weekday_of(j)];
}

int32_t iso_year(int32_t days, const DateRec &r) {
    const int64_t j = int64_t{days} - r.day_of_year + 1;
    const int64_t s = week_one(j);
    if (days < s) return r.year - 1;
    if ((days - s) / 7 + 1 < 52) return r.year;
    const int64_t next = week_one(j + (full_leap(r.year) ? 366 : 365));
    return days < next ? r.year : r.year + 1;
}

int32_t iso_week(int32_t days, const DateRec &r) {
    const int64_t j = int64_t{days} - r.day_of_year + 1;
    const int64_t s = week_one(j);
    if (days >= s) {
        const int32_t w = static_cast<int32_t>((days - s) / 7 + 1);
        if (w < 52) return w;
        const int64_t next = week_one(j + (full_leap(r.year) ? 366 : 365));
        return days < next ? w : 1;
    }
    // The days before week 1 belong to the last week of the previous year. Its 1 January is
    // stepped back to by the length of the current year, not the previous one: after a leap
    // year this lands on 2 January, before one on 31 December. Callers rely on the weeks
    // this gives (1 January 2005 is in week 52, 1 January 2000 in week 53).
    const int64_t prev = week_one(j - (full_leap(r.year) ? 366 : 365));
    return static_cast<int32_t>((days - prev) / 7 + 1);
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t com__leapcnt(int32_t n) {
    return leapcnt(n);
}

COMN_API void com__datecrack(const DateTimeValue *dt, DateRec *rec) {
    crack_date(*dt, *rec);
}

COMN_API void com__timecrack(const DateTimeValue *dt, DateRec *rec) {
    crack_time(*dt, *rec);
}

COMN_API int32_t com__datemake(DateTimeValue *dt, const DateRec *rec) {
    dt->days = 0;
    const int64_t y = int64_t{rec->year} - 1753;
    if (y < 0 || y > 9999 - 1753) return COMN_DATE_RANGE;
    const int32_t yy = static_cast<int32_t>(y);
    int32_t n = 365 * yy + leapcnt(yy);
    if (rec->month < 0 || rec->month > 11) return COMN_DATE_MONTH_RANGE;
    const MonthDays &m = month_table(yy)[rec->month];
    n += m.before;
    if (rec->day_of_month < 1 || rec->day_of_month > m.length) return COMN_DATE_DAY_RANGE;
    dt->days = n - kDays1753 - 1 + rec->day_of_month;
    return COMN_DATE_OK;
}

// Only upper bounds are checked. A millisecond of 999 gives 299 ticks rather than the 300
// that rounding would give, so that xx:xx:59.999 stays within its second and its day.
COMN_API int32_t com__timemake(DateTimeValue *dt, const DateRec *rec) {
    if (rec->hour > 23) return COMN_DATE_HOUR_RANGE;
    int64_t t = int64_t{rec->hour} * kTicksPerHour;
    if (rec->minute > 59) return COMN_DATE_MINUTE_RANGE;
    t += int64_t{rec->minute} * kTicksPerMinute;
    if (rec->second > 59) return COMN_DATE_SECOND_RANGE;
    t += int64_t{rec->second} * kTicksPerSecond;
    if (rec->millisecond > 999) return COMN_DATE_MSEC_RANGE;
    t += rec->millisecond == 999 ? 299 : ms_to_ticks(rec->millisecond);
    dt->ticks = static_cast<uint32_t>(t);
    return COMN_DATE_OK;
}

COMN_API int32_t com__datepart(int32_t part, const DateTimeValue *dt, int32_t first_day) {
    DateRec r;
    if (part > DATEPART_ISOWEEKDAY) return CS_CONV_OVERFLOW;
    if (part >= DATEPART_HOUR && part <= DATEPART_MILLISECOND) {
        crack_time(*dt, r);
    } else {
        crack_date(*dt, r);
    }
    switch (part) {
    case DATEPART_YEAR:
        return r.year;
    case DATEPART_QUARTER:
        return r.month / 3 + 1;
    case DATEPART_MONTH:
        return r.month + 1;
    case DATEPART_WEEKDAY: {
        const int32_t w = r.weekday + 1 - first_day;
        return w <= 0 ? w + 7 : w;
    }
    case DATEPART_DAY:
        return r.day_of_month;
    case DATEPART_DAYOFYEAR:
        return r.day_of_year;
    case DATEPART_HOUR:
        return r.hour;
    case DATEPART_MINUTE:
        return r.minute;
    case DATEPART_SECOND:
        return r.second;
    case DATEPART_MILLISECOND:
        return r.millisecond;
    case DATEPART_WEEK: {
        const int32_t jan1 = weekday_of(int64_t{dt->days} - r.day_of_year + 1);
        return (jan1 + r.day_of_year + 6) / 7;
    }
    case DATEPART_ISOYEAR:
        return iso_year(dt->days, r);
    case DATEPART_ISOWEEK:
        return iso_week(dt->days, r);
    case DATEPART_ISOWEEKDAY:
        return r.weekday == 0 ? 7 : r.weekday;
    default:
        return CS_CONV_OVERFLOW; // negative codes
    }
}

// Names are cut at 30 bytes; numbers wider than four digits show as "*".
COMN_API int32_t com__datename(int32_t part, const DateTimeValue *dt, char *out,
                               const char *const *month_names, const char *const *day_names) {
    constexpr int32_t kNameMax = 30;
    if (part < 0 || part > DATEPART_WEEK) return 0;
    if (part == DATEPART_WEEKDAY) {
        if (day_names == nullptr) return 0;
        return com__cpchar(out, day_names[weekday_of(dt->days)], 0, kNameMax);
    }
    const int32_t v = com__datepart(part, dt, 0);
    if (part == DATEPART_MONTH)
        return month_names ? com__cpchar(out, month_names[v - 1], 0, kNameMax) : 0;
    return com__itochar(v, out, 4);
}

COMN_API void com_datecrack(const DateTimeValue *dt, DateRec *rec) {
    com__datecrack(dt, rec);
}
COMN_API void com_timecrack(const DateTimeValue *dt, DateRec *rec) {
    com__timecrack(dt, rec);
}
COMN_API int32_t com_datepart(int32_t part, const DateTimeValue *dt, int32_t first_day) {
    return com__datepart(part, dt, first_day);
}
COMN_API int32_t com_datename(int32_t part, const DateTimeValue *dt, char *out,
                              const char *const *month_names, const char *const *day_names) {
    return com__datename(part, dt, out, month_names, day_names);
}
}
