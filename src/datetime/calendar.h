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

// Year, month and day of month of a day number outside the valid range (see calendar.cpp).
void crack_civil_outside(int32_t days, DateRec &rec);

// Day 0 of the computational calendar below is 1 March of year 0, so that the leap day is
// the last day of its computational year.
constexpr uint32_t kDaysMarch0 = 693901; // days from 1 March 0000 to 1 January 1900

// Year, month (0-based) and day of month, leaving the other fields alone. In the valid range
// this is Neri and Schneider's Euclidean affine method: each division by a constant is a
// multiply and a shift, and the month and day come from one affine function of the day of
// the computational year, with no table and no correction loop.
inline void crack_civil(int32_t days, DateRec &rec) {
    if (days < kMinDays || days > kMaxDays) [[unlikely]]
        return crack_civil_outside(days, rec);
    const uint32_t n = static_cast<uint32_t>(days) + kDaysMarch0;      // [640211, 3652364]
    const uint32_t n1 = 4 * n + 3;                                     // < 2^24
    const uint32_t century = n1 / 146097;                              // [17, 99]
    const uint32_t n2 = (n1 % 146097) | 3;                             // 4 * day of century + 3
    const uint64_t p2 = uint64_t{2939745} * n2;                        // high half: year of century
    const auto year_of_century = static_cast<uint32_t>(p2 >> 32);      // [0, 99]
    const uint32_t day_of_year = static_cast<uint32_t>(p2) / 11758980; // [0, 365] from 1 March
    const uint32_t n3 = 2141 * day_of_year + 197913;
    const uint32_t month = n3 >> 16;             // [3, 14]: March .. February
    const uint32_t day = (n3 & 0xFFFF) / 2141;   // [0, 30]
    const uint32_t january = day_of_year >= 306; // January and February end the year
    const uint32_t year = 100 * century + year_of_century + january; // [1753, 9999]
    rec.year = static_cast<int32_t>(year);
    rec.month = static_cast<int32_t>(month - 12 * january) - 1;
    rec.day_of_month = static_cast<int32_t>(day) + 1;
}
static_assert(4 * (uint64_t{kMaxDays} + kDaysMarch0) + 3 < (uint64_t{1} << 32));

inline void crack_date(const DateTimeValue &dt, DateRec &rec) {
    crack_civil(dt.days, rec);
    rec.weekday = weekday_of(dt.days);
    rec.day_of_year = month_table(rec.year - 1753)[rec.month].before + rec.day_of_month;
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
