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

} // namespace comn
