// Differences, additions, comparison and narrowing of datetimes.
//
// Differences count part boundaries crossed (to - from). Hours divide the whole tick
// difference; minutes, seconds and milliseconds convert the days and the part of a day
// separately, so 23:59:59 to 00:00:00 next day is one minute and 00:00:30 to 00:00:00 next
// day is 1440 minutes. Additions of months and years keep the day but clamp it to the
// length of the target month (31 January + 1 month is 28 or 29 February).
#include <climits>
#include <cstring>

#include "calendar.h"

namespace comn {
namespace {

constexpr bool fits32(int64_t v) {
    return v >= INT32_MIN && v <= INT32_MAX;
}

// Days may be added only while the result stays within 1753-01-01 .. 9999-12-31.
constexpr bool days_in_range(int64_t days) {
    return static_cast<uint64_t>(days + kDays1753) < uint64_t{kMaxDays} + kDays1753 + 1;
}

struct SmallUnit {
    int32_t per_day;   // units in a day
    int32_t day_limit; // largest day count that fits with a non-positive part of a day
};
// Indexed by part - DATEPART_MINUTE.
constexpr SmallUnit kSmallUnits[3] = {{1440, 1491308}, {86400, 24855}, {86400000, 24}};
static_assert(int64_t{1491308} * 1440 <= INT32_MAX && int64_t{1491309} * 1440 > INT32_MAX);
static_assert(int64_t{24855} * 86400 <= INT32_MAX && int64_t{24856} * 86400 > INT32_MAX);
static_assert(int64_t{24} * 86400000 <= INT32_MAX && int64_t{25} * 86400000 > INT32_MAX);

// Minutes, seconds or milliseconds: days converted whole, the part of a day on its own.
// The overflow test runs before the multiplication and is kept as stated: a positive day
// count with a non-positive part is held to the fixed limit even where the part would pull
// the sum back into range.
int32_t diff_small(int32_t part, int64_t d, int64_t dticks, int32_t *result) {
    const SmallUnit u = kSmallUnits[part - DATEPART_MINUTE];
    int64_t p;
    switch (part) {
    case DATEPART_MINUTE:
        p = dticks / kTicksPerMinute;
        break;
    case DATEPART_SECOND:
        p = dticks / kTicksPerSecond;
        break;
    default:
        p = dticks * 10 / 3;
        break;
    }
    if (d > 0) {
        if (p > 0 ? d > (INT32_MAX - p) / u.per_day : d > u.day_limit) return COMN_DATE_RANGE;
    } else if (d < 0) {
        if (p < 0 ? d < (INT32_MIN - p) / u.per_day : d < -int64_t{u.day_limit})
            return COMN_DATE_RANGE;
    }
    *result = static_cast<int32_t>(d * u.per_day + p);
    return COMN_DATE_OK;
}

int32_t add_months(int64_t months, DateTimeValue *dt) {
    DateRec r;
    crack_date(*dt, r);
    int64_t month = r.month + months;
    int64_t year = r.year;
    if (month < 0 || month > 11) {
        year += month / 12;
        month %= 12;
        if (month < 0) {
            year -= 1;
            month += 12;
        }
    }
    if (!fits32(year)) return COMN_DATE_RANGE;
    r.year = static_cast<int32_t>(year);
    r.month = static_cast<int32_t>(month);
    const int32_t len = month_table(r.year - 1753)[r.month].length;
    if (r.day_of_month > len) r.day_of_month = len;
    return com__datemake(dt, &r);
}

int32_t add_days(int64_t amount, DateTimeValue *dt) {
    const int64_t days = dt->days + amount;
    if (!days_in_range(days)) return COMN_DATE_RANGE;
    dt->days = static_cast<int32_t>(days);
    return COMN_DATE_OK;
}

// Hours to milliseconds: whole days of the amount are carried to the day count, the rest
// goes into the ticks, and one carry corrects ticks that left the day.
int32_t add_time(int32_t part, int64_t amount, DateTimeValue *dt) {
    static constexpr int32_t kPerDay[4] = {24, 1440, 86400, 86400000};
    static constexpr int32_t kTicksPerUnit[3] = {kTicksPerHour, kTicksPerMinute, kTicksPerSecond};
    const int32_t per_day = kPerDay[part - DATEPART_HOUR];
    int64_t carry = 0;
    if (amount > per_day || amount < -per_day) {
        carry = amount / per_day;
        amount %= per_day;
    }
    const int64_t add = part == DATEPART_MILLISECOND ? ms_to_ticks(amount)
                                                     : amount * kTicksPerUnit[part - DATEPART_HOUR];
    int64_t ticks = int64_t{dt->ticks} + add;
    if (ticks < 0) {
        --carry;
        ticks += kTicksPerDay;
    } else if (ticks > kTicksPerDay - 1) {
        ++carry;
        ticks -= kTicksPerDay;
    }
    dt->ticks = static_cast<uint32_t>(ticks);
    return add_days(carry, dt);
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t com__datediff(int32_t part, const DateTimeValue *from, const DateTimeValue *to,
                               int32_t *result) {
    if (part < 0 || part > DATEPART_WEEK) return 0;
    const int64_t d = int64_t{to->days} - from->days;
    int64_t v;
    switch (part) {
    case DATEPART_YEAR:
    case DATEPART_QUARTER:
    case DATEPART_MONTH: {
        DateRec a, b;
        crack_date(*from, a);
        crack_date(*to, b);
        const int64_t years = int64_t{b.year} - a.year;
        if (part == DATEPART_YEAR)
            v = years;
        else if (part == DATEPART_QUARTER)
            v = years * 4 + (b.month / 3 - a.month / 3);
        else
            v = years * 12 + (b.month - a.month);
        break;
    }
    case DATEPART_DAY:
    case DATEPART_DAYOFYEAR:
        v = d;
        break;
    case DATEPART_WEEKDAY:
        v = d / 7;
        break;
    case DATEPART_WEEK:
        v = d >= 0 ? (d + weekday_of(from->days)) / 7 : (d - weekday_of(to->days)) / 7;
        break;
    case DATEPART_HOUR:
        // The whole tick difference, truncated toward zero as one quotient.
        v = (d * kTicksPerDay + (int64_t{to->ticks} - from->ticks)) / kTicksPerHour;
        break;
    default:
        return diff_small(part, d, int64_t{to->ticks} - from->ticks, result);
    }
    if (!fits32(v)) return COMN_DATE_RANGE;
    *result = static_cast<int32_t>(v);
    return COMN_DATE_OK;
}

COMN_API int32_t com__date_add(int32_t part, int32_t amount, DateTimeValue *dt) {
    switch (part) {
    case DATEPART_YEAR: {
        DateRec r;
        crack_date(*dt, r);
        const int64_t year = int64_t{r.year} + amount;
        if (!fits32(year)) return COMN_DATE_RANGE;
        r.year = static_cast<int32_t>(year);
        // 29 February plus a year is 28 February.
        if (r.month == 1 && r.day_of_month == 29 && !leapyear(r.year - 1753)) r.day_of_month = 28;
        return com__datemake(dt, &r);
    }
    case DATEPART_QUARTER:
        return add_months(int64_t{amount} * 3, dt);
    case DATEPART_MONTH:
        return add_months(amount, dt);
    case DATEPART_WEEKDAY:
    case DATEPART_DAY:
    case DATEPART_DAYOFYEAR:
        return add_days(amount, dt);
    case DATEPART_WEEK:
        return add_days(int64_t{amount} * 7, dt);
    case DATEPART_HOUR:
    case DATEPART_MINUTE:
    case DATEPART_SECOND:
    case DATEPART_MILLISECOND:
        return add_time(part, amount, dt);
    default:
        return CS_CONV_OVERFLOW;
    }
}

COMN_API int32_t com__datecmp(const DateTimeValue *a, const DateTimeValue *b) {
    const int64_t v =
        a->days != b->days ? int64_t{a->days} - b->days : int64_t{a->ticks} - int64_t{b->ticks};
    return v > 0 ? (v > INT32_MAX ? INT32_MAX : static_cast<int32_t>(v))
                 : (v < INT32_MIN ? INT32_MIN : static_cast<int32_t>(v));
}

// The time is rounded to the nearest minute, 30.000 seconds rounding up; 23:59:30 and later
// moves to the next day.
COMN_API int32_t com__dttodate4(const DateTimeValue *dt, DateTime4Value *out) {
    if (static_cast<uint32_t>(dt->days) > 65535) return COMN_DATE_RANGE;
    uint32_t days = static_cast<uint32_t>(dt->days);
    uint32_t minutes = ((dt->ticks & kTickMask) + kTicksPerMinute / 2) / kTicksPerMinute;
    if (minutes == 1440) {
        if (days == 65535) return COMN_DATE_RANGE;
        ++days;
        minutes = 0;
    }
    out->days = static_cast<uint16_t>(days);
    out->minutes = static_cast<uint16_t>(minutes);
    return COMN_DATE_OK;
}

COMN_API int32_t com__date4todt(const DateTime4Value *dt4, DateTimeValue *out) {
    out->days = dt4->days;
    out->ticks = uint32_t{dt4->minutes} * kTicksPerMinute;
    return COMN_DATE_OK;
}

COMN_API int32_t com__dateadd_both(int32_t part, int32_t amount, const ComValueDesc *src,
                                   ComValueDesc *dest) {
    if (src == nullptr || dest == nullptr || src->value == nullptr || dest->value == nullptr ||
        src->length != 8)
        return COMN_DATE_RANGE;
    if (dest->maxlength != 8 && dest->maxlength != 4) return COMN_DATE_RANGE;
    DateTimeValue dt;
    std::memcpy(&dt, src->value, sizeof dt);
    if (com__date_add(part, amount, &dt) != COMN_DATE_OK) return COMN_DATE_RANGE;
    if (dest->maxlength == 8) {
        std::memcpy(dest->value, &dt, sizeof dt);
        dest->length = 8;
        return COMN_DATE_OK;
    }
    DateTime4Value dt4;
    if (com__dttodate4(&dt, &dt4) != COMN_DATE_OK) return COMN_DATE_RANGE;
    std::memcpy(dest->value, &dt4, sizeof dt4);
    dest->length = 4;
    return COMN_DATE_OK;
}

// A value is valid when its date re-makes (adding no years) and its ticks and days stay in
// range (adding no minutes).
COMN_API int32_t com__valid_datetime(const ComValueDesc *desc, const void *value) {
    DateTimeValue dt;
    if (desc != nullptr && desc->length == 4) {
        DateTime4Value dt4;
        std::memcpy(&dt4, value, sizeof dt4);
        com__date4todt(&dt4, &dt);
    } else {
        std::memcpy(&dt, value, sizeof dt);
    }
    if (com__date_add(DATEPART_YEAR, 0, &dt) != COMN_DATE_OK) return 0;
    return com__date_add(DATEPART_MINUTE, 0, &dt) == COMN_DATE_OK ? 1 : 0;
}

COMN_API int32_t com_datecmp(const DateTimeValue *a, const DateTimeValue *b) {
    if (a->days != b->days) return a->days < b->days ? -1 : 1;
    const auto ta = static_cast<int32_t>(a->ticks), tb = static_cast<int32_t>(b->ticks);
    return ta < tb ? -1 : ta > tb ? 1 : 0;
}

COMN_API int32_t com_date4cmp(const DateTime4Value *a, const DateTime4Value *b) {
    if (a->days != b->days) return a->days < b->days ? -1 : 1;
    return a->minutes < b->minutes ? -1 : a->minutes > b->minutes ? 1 : 0;
}

COMN_API DateTimeValue *com_datezero(DateTimeValue *dt) {
    dt->days = 0;
    dt->ticks = 0;
    return dt;
}

COMN_API DateTime4Value *com_date4zero(DateTime4Value *dt4) {
    dt4->days = 0;
    dt4->minutes = 0;
    return dt4;
}

COMN_API void com_setdatetime(DateTimeValue *dt, int32_t days, uint32_t ticks) {
    dt->days = days;
    dt->ticks = ticks;
}
}
