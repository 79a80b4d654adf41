// Calendar cases beside the Python oracle (which cracks and makes every day of the range and
// checks differences, additions, time make and crack, and narrowing by every part): days
// outside the range, field codes, names, unknown parts, and the small text writers.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "comnlib.h"
#include "datetime/make_datetime.h"

namespace {

DateRec crack(const DateTimeValue &dt) {
    DateRec r{};
    com_datecrack(&dt, &r);
    com_timecrack(&dt, &r);
    return r;
}

// Day numbers outside the valid range crack without fault and by fixed rules: after 9999 the
// Gregorian calendar runs on (400 years are 146097 days, a whole number of weeks), and
// before 1753 every year has 365 days.
TEST(Calendar, CracksDaysOutsideTheRange) {
    constexpr int32_t kCycle = 146097;
    std::mt19937 rng(17);
    std::uniform_int_distribution<int32_t> after(COM_DT_MAX_DAYS + 1, INT32_MAX);
    std::uniform_int_distribution<int32_t> before(INT32_MIN, COM_DT_MIN_DAYS - 1);
    for (int i = 0; i < 3000; ++i) {
        const int32_t d = i == 0 ? INT32_MAX : i == 1 ? COM_DT_MAX_DAYS + 1 : after(rng);
        const int32_t k = (d - COM_DT_MAX_DAYS + kCycle - 1) / kCycle;
        const DateRec far = crack({d, 0}), near = crack({d - k * kCycle, 0});
        EXPECT_EQ(far.year, near.year + 400 * k) << d;
        EXPECT_EQ(far.month, near.month) << d;
        EXPECT_EQ(far.day_of_month, near.day_of_month) << d;
        EXPECT_EQ(far.day_of_year, near.day_of_year) << d;
        EXPECT_EQ(far.weekday, near.weekday) << d;

        const int32_t e = i == 0 ? INT32_MIN : i == 1 ? COM_DT_MIN_DAYS - 1 : before(rng);
        const DateRec early = crack({e, 0}), later = crack({e + 365, 0});
        EXPECT_EQ(early.year + 1, later.year) << e;
        EXPECT_EQ(early.day_of_year, later.day_of_year) << e;
    }
}

TEST(Calendar, LeapDayCount) {
    // The exported leap-day count before the n-th year of the range (the oracle checks the
    // calendar built on it): none before the range, 1800 and 1900 skipped, 2000 counted.
    EXPECT_EQ((std::vector{com__leapcnt(-5), com__leapcnt(148), com__leapcnt(248)}),
              (std::vector{0, 35, 60}));
}

TEST(Calendar, DateNames) {
    const DateTimeValue dt = make(1999, 1, 15, 22, 30, 15, 500);
    const char *const *months = com__get_months();
    const char *const *days = com__get_weekdays();
    char buf[64];
    struct {
        int part;
        const char *text;
    } cases[] = {
        {DATEPART_YEAR, "1999"}, {DATEPART_MONTH, "January"}, {DATEPART_WEEKDAY, "Friday"},
        {DATEPART_DAY, "15"},    {DATEPART_HOUR, "22"},       {DATEPART_MILLISECOND, "500"},
        {DATEPART_ISOWEEK, ""},  {DATEPART_ISOYEAR, ""},      {99, ""}};
    for (auto c : cases) {
        const int32_t n = com_datename(c.part, &dt, buf, months, days);
        EXPECT_EQ(std::string(buf, static_cast<size_t>(n)), c.text) << c.part;
    }
    EXPECT_EQ(com__datename(DATEPART_MONTH, &dt, buf, nullptr, days), 0);
    EXPECT_EQ(com__datename(DATEPART_WEEKDAY, &dt, buf, months, nullptr), 0);
    EXPECT_EQ(com_datepart(14, &dt, 0), CS_CONV_OVERFLOW);
    // Unknown parts: a difference leaves the result alone, an addition fails.
    int32_t r = 77;
    DateTimeValue v = dt;
    EXPECT_EQ(com__datediff(11, &dt, &dt, &r), 0);
    EXPECT_EQ(r, 77);
    EXPECT_EQ(com__date_add(11, 1, &v), CS_CONV_OVERFLOW);
    // More than four digits show as a star; names stop at 30 bytes.
    EXPECT_EQ(com__itochar(12345, buf, 4), 1);
    EXPECT_EQ(buf[0], '*');
    const char *long_names[12];
    const std::string long_name(40, 'x');
    for (auto &n : long_names)
        n = long_name.c_str();
    EXPECT_EQ(com__datename(DATEPART_MONTH, &dt, buf, long_names, days), 30);
}

TEST(Calendar, AddBothAndValidity) {
    DateTimeValue src = make(1999, 1, 31, 12);
    DateTimeValue out8{};
    DateTime4Value out4{};
    ComValueDesc s{8, 8, &src}, d8{0, 8, &out8}, d4{0, 4, &out4};
    EXPECT_EQ(com__dateadd_both(DATEPART_MONTH, 1, &s, &d8), 0);
    EXPECT_EQ(d8.length, 8);
    EXPECT_EQ(out8.days, make(1999, 2, 28).days);
    EXPECT_EQ(com__dateadd_both(DATEPART_DAY, 1, &s, &d4), 0);
    EXPECT_EQ(d4.length, 4);
    EXPECT_EQ(out4.days, make(1999, 2, 1).days);
    EXPECT_EQ(out4.minutes, 720);
    ComValueDesc d2{0, 2, &out4}, s4{4, 4, &src};
    EXPECT_EQ(com__dateadd_both(DATEPART_DAY, 1, &s, &d2), 1);
    EXPECT_EQ(com__dateadd_both(DATEPART_DAY, 1, &s4, &d8), 1);
    DateTimeValue old = make(1800, 1, 1);
    ComValueDesc so{8, 8, &old};
    EXPECT_EQ(com__dateadd_both(DATEPART_DAY, 1, &so, &d4), 1);

    struct {
        DateTimeValue v;
        int valid;
    } values[] = {{{0, 0}, 1},        {{2958463, 25919999}, 1}, {{2958464, 0}, 0}, {{-53691, 0}, 0},
                  {{0, 25920000}, 1}, {{2958463, 25920000}, 0}, {{-53690, 0}, 1}};
    // A full day of ticks is accepted where the day after exists: adding no minutes carries
    // it into the next day, and only the day range can fail.
    ComValueDesc desc{8, 8, nullptr};
    for (auto v : values)
        EXPECT_EQ(com__valid_datetime(&desc, &v.v), v.valid) << v.v.days;
    const DateTime4Value small{65535, 1439};
    ComValueDesc desc4{4, 4, nullptr};
    EXPECT_EQ(com__valid_datetime(&desc4, &small), 1);
}

TEST(Calendar, Comparisons) {
    const DateTimeValue a{5, 10}, b{5, 20}, c{-1, 30};
    EXPECT_EQ((std::vector{com_datecmp(&a, &b), com_datecmp(&b, &a), com_datecmp(&c, &a),
                           com_datecmp(&a, &a), int32_t{com__datecmp(&a, &c) > 0}}),
              (std::vector{-1, 1, -1, 0, 1}));
    const DateTime4Value x{1, 2}, y{1, 3}, z{0, 900};
    EXPECT_EQ((std::vector{com_date4cmp(&x, &y), com_date4cmp(&x, &z), com_date4cmp(&y, &y)}),
              (std::vector{-1, 1, 0}));
    DateTimeValue v{9, 9};
    EXPECT_EQ(com_datezero(&v), &v);
    EXPECT_EQ(v.days + v.ticks, 0u);
    com_setdatetime(&v, -7, 0xFFFFFFFFu);
    EXPECT_EQ(v.days, -7);
    EXPECT_EQ(v.ticks, 0xFFFFFFFFu);
    DateTime4Value w{9, 9};
    EXPECT_EQ(com_date4zero(&w)->minutes + w.days, 0);
    const DateTime4Value small{100, 30};
    com__date4todt(&small, &v);
    EXPECT_EQ(v.days, 100);
    EXPECT_EQ(v.ticks, 30u * 18000);
}

TEST(Calendar, FieldWriters) {
    char buf[16];
    struct {
        int32_t value, term, width;
        const char *text;
    } cases[] = {{7, 0, -2, "07"},        {7, 0, 2, " 7"},  {1999, 0, -2, "99"}, {5, 0, -4, "0005"},
                 {1999, ':', 4, "1999:"}, {0, 0, 3, "  0"}, {123, 0, 0, ""}};
    for (auto c : cases) {
        const int32_t n = com__cpint(buf, c.value, c.term, c.width);
        EXPECT_EQ(std::string(buf, static_cast<size_t>(n)), c.text);
    }
    EXPECT_EQ(com__cpchar(buf, "September", 0, 3), 3);
    EXPECT_EQ(std::string(buf, 3), "Sep");
    EXPECT_EQ(com__cpchar(buf, "AM", '|', 9), 3);
    EXPECT_EQ(std::string(buf, 3), "AM|");
    EXPECT_EQ(com__itochar(-42, buf, 0), 3);
    EXPECT_EQ(std::string(buf, 3), "-42");
    EXPECT_EQ(com__itochar(123, buf, 3), 3);
}

} // namespace
