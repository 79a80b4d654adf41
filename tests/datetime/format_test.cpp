// Formatting outside the range, truncation and errors; the clock text with a pinned clock;
// the built-in date settings. The conversions through the table are the conversion tests'.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "comnlib.h"
#include "datetime/make_datetime.h"
#include "datetime/clock.h"

namespace {

std::string fmt(const DateTimeValue &dt, int32_t style, int32_t max = -1,
                const char *const *names = com__get_shortmonths()) {
    char buf[64];
    const int32_t n = com__datetochar(&dt, buf, max, style, names);
    return n > 0 ? std::string(buf, static_cast<size_t>(n)) : "<" + std::to_string(n) + ">";
}

// The Python oracle prints random datetimes of the range in every style; these are values
// outside the range and names longer than a field.
TEST(DateFormat, OutOfRangeValuesAndLongNames) {
    struct {
        DateTimeValue dt;
        int32_t style;
        const char *text;
    } cases[] = {
        // Values outside the valid range: a year keeps its low digits, and ticks past the end
        // of the day run the clock on (to hour 31 at most).
        {{0, 25920000}, 109, "Jan  1 1900 12:00:00:000PM"},
        {{0, 0x1FFFFFF}, 109, "Jan  1 1900  7:04:08:103PM"},
        {{0, 0x1FFFFFF}, 8, "31:04:08"},
        {{2958464, 0}, 112, "00000101"},
        {{2958464, 0}, 0, "Jan  1    0 12:00AM"},
        {{2958464 + 3 * 146097, 0}, 107, "Jan 01, 1200"},
        {{-53691 - 365 * 900, 0}, 0, "Dec 30  852 12:00AM"},
        {{-53691 - 365 * 1800, 0}, 101, "12/30/0048"},
    };
    for (auto c : cases)
        EXPECT_EQ(fmt(c.dt, c.style), c.text) << c.dt.days << " " << c.dt.ticks << " " << c.style;
    const char *long_names[12] = {"Januaryyyyyy"};
    EXPECT_EQ(fmt({0, 0}, 6, -1, long_names), "01 Januaryyy 00"); // names stop at 9 bytes
}

TEST(DateFormat, TruncationAndErrors) {
    const DateTimeValue dt = make(1999, 1, 15);
    char buf[40] = {};
    EXPECT_EQ(com__datetochar(&dt, buf, 5, 101, nullptr), 0);
    EXPECT_EQ(std::string(buf, 5), "01/15");
    EXPECT_EQ(com__datetochar(&dt, buf, 10, 101, nullptr), 10);
    // Styles that print month names fail without them.
    for (int32_t style : {0, 6, 7, 9, 100, 106, 107, 109})
        EXPECT_EQ(com__datetochar(&dt, buf, 16, style, nullptr), -2) << style;

    const DateTime4Value small{0, 30};
    EXPECT_EQ(com_cvtdate4tochar(&small, buf, -1, 9, com__get_shortmonths()), 26);
    EXPECT_EQ(std::string(buf, 26), "Jan  1 1900 12:30:00:000AM");
    EXPECT_EQ(com_cvtdatetochar(&dt, buf, -1, 12, nullptr), 6);
    // Binary destinations are not in the default table but the routines exist.
    DataFormat bin{};
    bin.maxlength = 6;
    int32_t len = 0;
    EXPECT_EQ(comn_datetobin(nullptr, nullptr, const_cast<DateTimeValue *>(&dt), &bin, buf, &len),
              CS_CONV_TRUNCATED);
    EXPECT_EQ(
        comn_date4tobin(nullptr, nullptr, const_cast<DateTime4Value *>(&small), &bin, buf, &len),
        CS_SUCCEED);
    EXPECT_EQ(len, 4);
}

std::time_t pinned_time = 0;
std::time_t pinned() {
    return pinned_time;
}

TEST(DateClock, TextByOrderAndClock) {
    setenv("TZ", "UTC", 1);
    tzset();
    const comn::ClockSource old = comn::set_clock_source(pinned);
    struct {
        std::time_t t;
        int32_t order, is12;
        const char *text;
    } cases[] = {
        {1137284100, 1, 1, "01/15/106 00:15:00 AM"}, // 2006-01-15 00:15:00
        {1137327300, 1, 1, "01/15/106 12:15:00 PM"}, {1137331800, 1, 0, "01/15/106 13:30:00"},
        {1137331800, 2, 1, "15/01/106 01:30:00 PM"}, {1137331800, 3, 0, "106/15/01 13:30:00"},
        {1137331800, 4, 0, "106/01/15 13:30:00"},    {1137331800, 5, 0, "01/106/15 13:30:00"},
        {1137331800, 6, 0, "15/106/01 13:30:00"},    {1137331800, 42, 0, "01/15/106 13:30:00"},
    };
    for (auto c : cases) {
        pinned_time = c.t;
        char buf[64];
        int32_t len = 0;
        DateRec r{};
        r.millisecond = 77;
        ASSERT_EQ(comn_time(c.order, c.is12, buf, sizeof buf, &len, &r), 1);
        EXPECT_STREQ(buf, c.text);
        EXPECT_EQ(len, static_cast<int32_t>(strlen(c.text)) + 1);
        EXPECT_EQ(r.year, 106);
        EXPECT_EQ(r.month, 0);
        EXPECT_EQ(r.day_of_month, 15);
        EXPECT_EQ(r.day_of_year, 15);
        EXPECT_EQ(r.weekday, 0);
        EXPECT_EQ(r.millisecond, 77);
    }
    char small[8] = "keep";
    int32_t len = 0;
    EXPECT_EQ(comn_time(1, 0, small, sizeof small, &len, nullptr), 0);
    EXPECT_EQ(len, 19);
    EXPECT_STREQ(small, "keep");
    DateRec r{};
    EXPECT_EQ(comn_time(1, 0, nullptr, 0, nullptr, &r), 1);
    EXPECT_EQ(r.hour, 13);
    comn::set_clock_source(old);
}

TEST(DateLocale, DefaultsAndHandles) {
    EXPECT_STREQ(com__get_date_order(), "mdy");
    const char *orders[] = {"mdy", "dmy", "ymd", "ydm", "myd", "dym", "xyz", "MDY", ""};
    const int ids[] = {1, 2, 3, 4, 5, 6, 1, 1, 1};
    const int styles[] = {9, 3, 11, 13, 14, 15};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(com__get_dateorder_id(orders[i]), ids[i]) << orders[i];
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(com__map_dateorder_id_to_fmt(i + 1), styles[i]);
    EXPECT_EQ(com__map_dateorder_id_to_fmt(0), -1);
    EXPECT_EQ(com__map_dateorder_id_to_fmt(7), -1);

    EXPECT_EQ(comn_dtloc_format(nullptr, nullptr), 1);
    EXPECT_EQ(comn_dtloc_is12hour(nullptr, nullptr), 1);
    CommonInfo info{};
    info.is12hour = 0;
    LocaleRecord rec{};
    rec.dateorder_id = 2;
    rec.common = &info;
    LocaleHandle h{};
    h.time = &rec;
    EXPECT_EQ(comn_dtloc_format(nullptr, &h), 2);
    EXPECT_EQ(comn_dtloc_is12hour(nullptr, &h), 0);
    ComContext ctx{};
    ctx.conv.default_locale = &h;
    EXPECT_EQ(comn_dtloc_format(&ctx, nullptr), 2);
    LocaleHandle empty{};
    EXPECT_EQ(comn_dtloc_format(&ctx, &empty), 2); // no time record: the context's
}

} // namespace
