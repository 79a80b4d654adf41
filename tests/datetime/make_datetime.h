// Test helper: a datetime from calendar fields (month 1..12), checked to be valid.
#pragma once

#include <gtest/gtest.h>

#include "comnlib.h"

inline DateTimeValue make(int y, int m, int d, int h = 0, int mi = 0, int s = 0, int ms = 0) {
    DateRec r{};
    r.year = y;
    r.month = m - 1;
    r.day_of_month = d;
    r.hour = h;
    r.minute = mi;
    r.second = s;
    r.millisecond = ms;
    DateTimeValue dt{};
    EXPECT_EQ(com__datemake(&dt, &r), 0);
    EXPECT_EQ(com__timemake(&dt, &r), 0);
    return dt;
}
