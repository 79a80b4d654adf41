// The inline forms of money addition and subtraction that the including file's settings
// select, checked against the routines they stand in for over the extremes, the word
// boundaries and random values. Internal linkage: each including file checks its own forms.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "comnlib/money.h"
#include "money/money_internal.h"

static void check_inline_addsub() {
    using comn::kMoneyMax, comn::kMoneyMin;
    // clang-format off
    std::vector<int64_t> v = {0, 1, -1, kMoneyMax, kMoneyMin, kMoneyMax - 1, kMoneyMin + 1,
                              0xFFFFFFFF, 0x100000000, -0x100000000};
    // clang-format on
    std::mt19937_64 rng(11);
    for (int i = 0; i < 40; ++i)
        v.push_back(static_cast<int64_t>(rng() >> (rng() % 64)) * (i % 2 ? 1 : -1));
    auto same = [](int32_t inline_code, MoneyValue di, int32_t routine_code, MoneyValue dr) {
        return inline_code == routine_code && comn::mny_get(di) == comn::mny_get(dr);
    };
    for (const int64_t x : v)
        for (const int64_t y : v) {
            const MoneyValue a = comn::mny_make(x), b = comn::mny_make(y);
            MoneyValue di, dr;
#define COMN_CHECK_(name)                                                                          \
    {                                                                                              \
        const int32_t ci = name(&a, &b, &di), cr = (name)(&a, &b, &dr);                            \
        ASSERT_TRUE(same(ci, di, cr, dr)) << #name << " " << x << " " << y;                        \
    }
            COMN_CHECK_(com__mnyadd);
            COMN_CHECK_(comn_mnyadd);
            COMN_CHECK_(com_mnyadd);
            COMN_CHECK_(com__mnysub);
            COMN_CHECK_(comn_mnysub);
            COMN_CHECK_(com_mnysub);
#undef COMN_CHECK_
            const Money4Value a4{static_cast<int32_t>(x >> 32)}, b4{static_cast<int32_t>(y >> 32)};
            Money4Value ei, er;
#define COMN_CHECK4_(name)                                                                         \
    {                                                                                              \
        const int32_t ci = name(&a4, &b4, &ei), cr = (name)(&a4, &b4, &er);                        \
        ASSERT_TRUE(ci == cr && ei.mny4 == er.mny4) << #name << " " << a4.mny4 << " " << b4.mny4;  \
    }
            COMN_CHECK4_(com__mnyadd4)
            COMN_CHECK4_(comn_mny4add)
            COMN_CHECK4_(com_mny4add)
            COMN_CHECK4_(com__mnysub4) COMN_CHECK4_(comn_mny4sub) COMN_CHECK4_(com_mny4sub)
#undef COMN_CHECK4_
        }
}
