// Calendar internals shared by the calendar, parser and formatter: the month tables, the
// leap-year tests and the tick constants. A day is 1753-based ("y" below is years since
// 1753) wherever the name says so; days are 1900-based as in DateTimeValue.
#pragma once

#include <cstdint>

#include "comnlib/datetime.h"

namespace comn {

constexpr int32_t kTicksPerDay = COM_DT_TICKS_PER_DAY;
constexpr int32_t kTicksPerHour = COM_DT_TICKS_PER_HOUR;
constexpr int32_t kTicksPerMinute = COM_DT_TICKS_PER_MINUTE;
constexpr int32_t kTicksPerSecond = COM_DT_TICKS_PER_SECOND;
constexpr uint32_t kTickMask = COM_DT_TICK_MASK;
constexpr int32_t kDays1753 = 53690; // days from 1 January 1753 to 1 January 1900
constexpr int32_t kMinDays = COM_DT_MIN_DAYS;
constexpr int32_t kMaxDays = COM_DT_MAX_DAYS;
static_assert(kTicksPerDay == 24 * kTicksPerHour && kTicksPerHour == 60 * kTicksPerMinute &&
              kTicksPerMinute == 60 * kTicksPerSecond);
static_assert(kMinDays == -kDays1753);

// One month: its length, then the days of the year before it.
struct MonthDays {
    int16_t length;
    int16_t before;
};
extern const MonthDays monthdays[12];
extern const MonthDays lmonthdays[12];

// Leap year test on years since 1753 (not on the year itself).
constexpr int32_t leapyear(int32_t y) {
    const int32_t year = 1753 + y;
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 ? 1 : 0;
}

constexpr const MonthDays *month_table(int32_t y) {
    return leapyear(y) ? lmonthdays : monthdays;
}

// Ticks of a millisecond count, rounded half away from zero.
constexpr int64_t ms_to_ticks(int64_t ms) {
    return ms >= 0 ? (ms * 3 + 5) / 10 : (ms * 3 - 5) / 10;
}

// Weekday (0 Sunday) of a 1900-based day number, for any day number.
constexpr int32_t weekday_of(int64_t days) {
    const int64_t w = (days + kDays1753 + 1) % 7; // day 0 is a Monday
    return static_cast<int32_t>(w < 0 ? w + 7 : w);
}

// The number of leap years among the n years 1753 .. 1753 + n - 1 (1800, 1900, 2100 ...
// skipped, 2000 counted); 0 for n <= 0.
constexpr int32_t leapcnt(int32_t n) {
    if (n < 0) return 0;
    return ((n + 52) / 100 + 1) / 4 + n / 4 - (n + 52) / 100;
}

// Days since 1753 split into years since 1753 and the day of that year (0-based).
struct YearDay {
    int32_t y;
    int32_t r; // [0, 365]
};
YearDay split_year_outside(int64_t d); // before 1753 or after 9999: not valid values

// Unsigned forms of the counts above for the valid range, where y is never negative.
constexpr uint32_t leapcnt_u(uint32_t n) {
    return ((n + 52) / 100 + 1) / 4 + n / 4 - (n + 52) / 100;
}
constexpr uint32_t leapyear_u(uint32_t y) {
    const uint32_t year = 1753 + y;
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 ? 1 : 0;
}

inline YearDay split_year(int32_t days) {
    const int64_t d = int64_t{days} + kDays1753;
    if (d < 0 || d > int64_t{kMaxDays} + kDays1753) [[unlikely]]
        return split_year_outside(d);
    // Days over the mean Gregorian year (365.2425 days, as the multiplier 2871 / 2^20) lands
    // within a year of the answer; one step corrects it.
    const auto ud = static_cast<uint32_t>(d);                   // [0, 3012153]
    uint32_t y = (ud * uint64_t{2871}) >> 20;                   // [0, 8247]
    auto r = static_cast<int32_t>(ud - 365 * y - leapcnt_u(y)); // [-366, 730]
    while (r < 0)
        r += static_cast<int32_t>(365 + leapyear_u(--y));
    while (r >= static_cast<int32_t>(365 + leapyear_u(y)))
        r -= static_cast<int32_t>(365 + leapyear_u(y++));
    return {static_cast<int32_t>(y), r};
}

inline void crack_date(const DateTimeValue &dt, DateRec &rec) {
    const YearDay yd = split_year(dt.days);
    rec.year = 1753 + yd.y;
    rec.weekday = weekday_of(dt.days);
    rec.day_of_year = yd.r + 1;
    // Months are at least 28 days long, so r / 32 is the month or the one before it.
    const MonthDays *t = month_table(yd.y);
    int32_t m = yd.r >> 5; // [0, 11]
    if (m < 11 && yd.r >= t[m + 1].before) ++m;
    rec.month = m;
    rec.day_of_month = yd.r - t[m].before + 1;
}

inline void crack_time(const DateTimeValue &dt, DateRec &rec) {
    const uint32_t t = dt.ticks & kTickMask;
    const uint32_t secs = t / kTicksPerSecond;
    const uint32_t mins = secs / 60;
    rec.hour = static_cast<int32_t>(mins / 60);
    rec.minute = static_cast<int32_t>(mins % 60);
    rec.second = static_cast<int32_t>(secs % 60);
    rec.millisecond = static_cast<int32_t>((t - secs * kTicksPerSecond) * 10 / 3);
}

} // namespace comn
