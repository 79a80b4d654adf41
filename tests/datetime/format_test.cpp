// Formatting in every style, truncation and errors; the datetime conversions through the
// conversion table; the clock text with a pinned clock; the built-in date settings.
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

TEST(DateFormat, EveryStyle) {
    const DateTimeValue dt = make(1999, 1, 15, 22, 30, 15, 500);
    struct {
        int32_t style;
        const char *text;
    } cases[] = {
        {0, "Jan 15 1999 10:30PM"},
        {100, "Jan 15 1999 10:30PM"},
        {1, "01/15/99"},
        {101, "01/15/1999"},
        {2, "99.01.15"},
        {102, "1999.01.15"},
        {3, "15/01/99"},
        {103, "15/01/1999"},
        {4, "15.01.99"},
        {104, "15.01.1999"},
        {5, "15-01-99"},
        {105, "15-01-1999"},
        {6, "15 Jan 99"},
        {106, "15 Jan 1999"},
        {7, "Jan 15, 99"},
        {107, "Jan 15, 1999"},
        {8, "22:30:15"},
        {108, "22:30:15"},
        {9, "Jan 15 1999 10:30:15:500PM"},
        {109, "Jan 15 1999 10:30:15:500PM"},
        {10, "01-15-99"},
        {110, "01-15-1999"},
        {11, "99/01/15"},
        {111, "1999/01/15"},
        {12, "990115"},
        {112, "19990115"},
        {13, "99/15/01"},
        {14, "01/99/15"},
        {15, "15/99/01"},
    };
    for (auto c : cases)
        EXPECT_EQ(fmt(dt, c.style), c.text) << c.style;
}

TEST(DateFormat, ClockHoursPaddingAndYears) {
    struct {
        DateTimeValue dt;
        int32_t style;
        const char *text;
    } cases[] = {
        {{0, 0}, 0, "Jan  1 1900 12:00AM"},
        {make(1999, 1, 15, 12, 5), 0, "Jan 15 1999 12:05PM"},
        {make(1999, 1, 15, 11, 59), 100, "Jan 15 1999 11:59AM"},
        {make(1999, 1, 15, 0, 0, 0, 3), 109, "Jan 15 1999 12:00:00:003AM"},
        {make(1999, 1, 15, 23, 59, 59, 999), 9, "Jan 15 1999 11:59:59:996PM"},
        {make(2005, 3, 4), 1, "03/04/05"},
        {make(1753, 1, 1), 112, "17530101"},
        {make(9999, 12, 31), 107, "Dec 31, 9999"},
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
    struct {
        int32_t style, rc;
    } bad[] = {{16, -1}, {99, -1},  {113, -1}, {-1, -1},  {0, -2}, {6, -2},
               {7, -2},  {106, -2}, {107, -2}, {109, -2}, {9, -2}, {100, -2}};
    for (auto b : bad)
        EXPECT_EQ(com__datetochar(&dt, buf, 16, b.style, nullptr), b.rc) << b.style;

    const DateTime4Value small{0, 30};
    EXPECT_EQ(com_cvtdate4tochar(&small, buf, -1, 9, com__get_shortmonths()), 26);
    EXPECT_EQ(std::string(buf, 26), "Jan  1 1900 12:30:00:000AM");
    EXPECT_EQ(com_cvtdatetochar(&dt, buf, -1, 12, nullptr), 6);
}

struct Conv {
    ComContext ctx{};
    DataFormat src{}, dst{};
    char out[300] = {};
    int32_t len = -1;
    Conv(int32_t srctype, int32_t dsttype, int32_t maxlen, uint32_t flags = 0) {
        EXPECT_EQ(com_conv_init(&ctx), CS_SUCCEED);
        src.datatype = srctype;
        src.maxlength = srctype == CS_DATETIME ? 8 : 4;
        dst.datatype = dsttype;
        dst.maxlength = maxlen;
        dst.format = flags;
    }
    ~Conv() { com_conv_free(&ctx); }
    int32_t run(void *value) {
        ComConvFunc f = com_conv_func(&ctx, src.datatype, dst.datatype);
        EXPECT_NE(f, nullptr);
        return f ? f(&ctx, &src, value, &dst, out, &len) : CS_FAIL;
    }
};

TEST(DateConvert, ToTextUsesTheDefaultStyleAndPadding) {
    DateTimeValue dt = make(1999, 1, 15, 22, 30, 15, 500);
    {
        Conv c(CS_DATETIME, CS_CHAR, 40);
        EXPECT_EQ(c.run(&dt), CS_SUCCEED);
        EXPECT_EQ(std::string(c.out, static_cast<size_t>(c.len)), "Jan 15 1999 10:30:15:500PM");
    }
    {
        Conv c(CS_DATETIME, CS_CHAR, 30, CS_FMT_PADBLANK | CS_FMT_NULLTERM);
        EXPECT_EQ(c.run(&dt), CS_SUCCEED);
        EXPECT_EQ(c.len, 30);
        EXPECT_EQ(std::string(c.out, 30), std::string("Jan 15 1999 10:30:15:500PM   ") + '\0');
    }
    {
        Conv c(CS_DATETIME, CS_CHAR, 10);
        EXPECT_EQ(c.run(&dt), CS_CONV_TRUNCATED);
        EXPECT_EQ(c.len, 10);
        EXPECT_EQ(std::string(c.out, 10), "Jan 15 199");
    }
    {
        Conv c(CS_DATETIME, CS_CHAR, 26, CS_FMT_NULLTERM); // no room for the terminator
        EXPECT_EQ(c.run(&dt), CS_CONV_OVERFLOW);
    }
    {
        Conv c(CS_DATETIME, CS_VARCHAR, 258);
        EXPECT_EQ(c.run(&dt), CS_SUCCEED);
        EXPECT_EQ(c.len, 258);
        int16_t n;
        std::memcpy(&n, c.out, 2);
        EXPECT_EQ(std::string(c.out + 2, static_cast<size_t>(n)), "Jan 15 1999 10:30:15:500PM");
    }
    DateTime4Value d4{36173, 90};
    {
        Conv c(CS_DATETIME4, CS_CHAR, 40);
        EXPECT_EQ(c.run(&d4), CS_SUCCEED);
        EXPECT_EQ(std::string(c.out, static_cast<size_t>(c.len)), "Jan 15 1999  1:30:00:000AM");
    }
    EXPECT_EQ(comn_get_datetochar_fmt(nullptr, nullptr), 9);
}

TEST(DateConvert, BetweenTheTwoTypesAndToBinary) {
    DateTimeValue dt = make(2079, 6, 6, 23, 59, 29);
    DateTime4Value d4{};
    {
        Conv c(CS_DATETIME, CS_DATETIME4, 4);
        EXPECT_EQ(c.run(&dt), CS_SUCCEED);
        EXPECT_EQ(c.len, 4);
        std::memcpy(&d4, c.out, 4);
        EXPECT_EQ(d4.days, 65535);
        EXPECT_EQ(d4.minutes, 1439);
        DateTimeValue late = make(2079, 6, 6, 23, 59, 30);
        EXPECT_EQ(c.run(&late), CS_CONV_OVERFLOW);
        EXPECT_EQ(c.len, 4);
    }
    {
        Conv c(CS_DATETIME4, CS_DATETIME, 8);
        EXPECT_EQ(c.run(&d4), CS_SUCCEED);
        DateTimeValue back;
        std::memcpy(&back, c.out, 8);
        EXPECT_EQ(back.days, 65535);
        EXPECT_EQ(back.ticks, 1439u * 18000);
    }
    for (int32_t t : {CS_DATETIME, CS_DATETIME4}) {
        Conv same(t, t, 8);
        EXPECT_EQ(same.run(&dt), CS_SUCCEED);
        EXPECT_EQ(same.len, t == CS_DATETIME ? 8 : 4);
        EXPECT_EQ(std::memcmp(same.out, &dt, static_cast<size_t>(same.len)), 0);
        Conv vb(t, CS_VARBINARY, 258);
        EXPECT_EQ(vb.run(&dt), CS_SUCCEED);
        EXPECT_EQ(vb.len, 258);
        EXPECT_EQ(std::memcmp(vb.out + 2, &dt, t == CS_DATETIME ? 8 : 4), 0);
    }
    // Binary destinations are not in the default table but the routines exist.
    DataFormat bin{};
    bin.maxlength = 6;
    char out[8];
    int32_t len;
    EXPECT_EQ(comn_datetobin(nullptr, nullptr, &dt, &bin, out, &len), CS_CONV_TRUNCATED);
    EXPECT_EQ(len, 6);
    EXPECT_EQ(comn_date4tobin(nullptr, nullptr, &d4, &bin, out, &len), CS_SUCCEED);
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
    EXPECT_STREQ(com__get_months()[8], "September");
    EXPECT_STREQ(com__get_days()[6], "Sat");
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
