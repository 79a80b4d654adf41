// The current local date and time as text for messages, and the date settings of a locale
// handle: its date order and whether it shows times on a 12-hour clock.
#include "clock.h"

#include <cstdio>

#include "comnlib/datetime.h"

namespace comn {
namespace {

std::time_t system_clock() {
    return std::time(nullptr);
}
ClockSource g_clock = system_clock;

// Date texts by date order code. Codes 3 (ymd) and 4 (ydm) print year/day/month and
// year/month/day respectively: the crossing is part of the established output.
enum class Field { Day, Month, Year };
struct ClockDate {
    const char *format;
    Field a, b, c;
};
// clang-format off
constexpr ClockDate kClockDates[7] = {
    {"%02d/%02d/%d", Field::Month, Field::Day,   Field::Year},  // 0 and any other: as 1
    {"%02d/%02d/%d", Field::Month, Field::Day,   Field::Year},  // 1 mdy
    {"%02d/%02d/%d", Field::Day,   Field::Month, Field::Year},  // 2 dmy
    {"%d/%02d/%02d", Field::Year,  Field::Day,   Field::Month}, // 3
    {"%d/%02d/%02d", Field::Year,  Field::Month, Field::Day},   // 4
    {"%02d/%d/%02d", Field::Month, Field::Year,  Field::Day},   // 5 myd
    {"%02d/%d/%02d", Field::Day,   Field::Year,  Field::Month}, // 6 dym
};
// clang-format on

LocaleRecord *time_record(ComContext *ctx, LocaleHandle *locale) {
    if (locale != nullptr && locale->time != nullptr) return locale->time;
    if (ctx != nullptr && ctx->conv.default_locale != nullptr)
        return ctx->conv.default_locale->time;
    return nullptr;
}

} // namespace

ClockSource set_clock_source(ClockSource source) {
    const ClockSource old = g_clock;
    g_clock = source != nullptr ? source : system_clock;
    return old;
}

} // namespace comn

using namespace comn;

extern "C" {

// The year shown and stored is the broken-down time's count of years since 1900 (126 in
// 2026), as readers of this text have always seen it.
COMN_API int32_t comn_time(int32_t dateorder, int32_t is12hour, char *buf, int32_t buflen,
                           int32_t *outlen, DateRec *rec) {
    const std::time_t now = g_clock();
    std::tm tm{};
    localtime_r(&now, &tm);

    char tbuf[32];
    int tlen;
    if (is12hour == 1) {
        const int h = tm.tm_hour > 12 ? tm.tm_hour - 12 : tm.tm_hour;
        tlen = std::snprintf(tbuf, sizeof tbuf, "%02d:%02d:%02d %s", h, tm.tm_min, tm.tm_sec,
                             tm.tm_hour < 12 ? "AM" : "PM");
    } else {
        tlen = std::snprintf(tbuf, sizeof tbuf, "%02d:%02d:%02d", tm.tm_hour, tm.tm_min, tm.tm_sec);
    }
    const ClockDate &cd = kClockDates[dateorder >= 1 && dateorder <= 6 ? dateorder : 0];
    auto field = [&tm](Field f) {
        return f == Field::Day ? tm.tm_mday : f == Field::Month ? tm.tm_mon + 1 : tm.tm_year;
    };
    char dbuf[48];
    const int dlen =
        std::snprintf(dbuf, sizeof dbuf, cd.format, field(cd.a), field(cd.b), field(cd.c));

    const int32_t needed = dlen + 1 + tlen + 1;
    if (outlen != nullptr) *outlen = needed;
    if (buf != nullptr) {
        if (buflen < needed) return 0;
        std::snprintf(buf, static_cast<size_t>(needed), "%s %s", dbuf, tbuf);
    }
    if (rec != nullptr) {
        rec->year = tm.tm_year;
        rec->month = tm.tm_mon;
        rec->day_of_month = tm.tm_mday;
        rec->day_of_year = tm.tm_yday + 1;
        rec->weekday = tm.tm_wday;
        rec->hour = tm.tm_hour;
        rec->minute = tm.tm_min;
        rec->second = tm.tm_sec;
    }
    return 1;
}

COMN_API int32_t comn_dtloc_format(ComContext *ctx, LocaleHandle *locale) {
    const LocaleRecord *r = time_record(ctx, locale);
    return r != nullptr ? r->dateorder_id : com__get_date_order_id();
}

COMN_API int32_t comn_dtloc_is12hour(ComContext *ctx, LocaleHandle *locale) {
    const LocaleRecord *r = time_record(ctx, locale);
    return r != nullptr && r->common != nullptr ? r->common->is12hour : 1;
}
}
