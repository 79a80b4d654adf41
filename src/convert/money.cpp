// Client conversions from money sources to integers, floats, bit and money, and from
// integers and floats into money. One algorithm per direction, instantiated for every pair of
// COMN_MONEY_SOURCE_PAIRS and COMN_INTO_MONEY_PAIRS.
//
// Money to integer rounds to whole units half away from zero; a value outside the
// destination's range writes the nearest end of that range and gives CS_CONV_OVERFLOW (the
// "i8" destination is the platform long, stored in 32 bits). Money to float is never an
// error. Money to bit gives 1 for any non-zero value. Narrowing to 4-byte money and any
// overflow into money give CS_CONV_OVERFLOW with 0 in the destination. The result length is
// always the destination's size, written before any range test.
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "money/money_internal.h"
#include "convert/buffers.h"
#include "convert/entry.h"

namespace comn {
namespace {

// ---- Sources ----

// Each source reads its value record widened to 8-byte money, and gives it as a float or
// double through its own width's routine.
struct S_money {
    using value = MoneyValue;
    static MoneyValue wide(const void *src) { return load<MoneyValue>(src); }
    static void to_float(const MoneyValue &m, double *d) { com__mnytoflt8(&m, 8, d); }
    static void to_float(const MoneyValue &m, float *f) { com__mnytoflt4(&m, 8, f); }
};

struct S_mny4 {
    using value = Money4Value;
    static MoneyValue wide(const void *src) {
        const Money4Value m = load<Money4Value>(src);
        MoneyValue w;
        com__mny4tomny(&m, &w);
        return w;
    }
    static void to_float(const Money4Value &m, double *d) { com__mny4toflt8(&m, d); }
    static void to_float(const Money4Value &m, float *f) { com__mny4toflt4(&m, f); }
};

// ---- Integer destinations and sources ----

template <typename T, int64_t Lo, int64_t Hi>
struct IntType {
    using type = T;
    static constexpr int64_t lo = Lo;
    static constexpr int64_t hi = Hi;
};
using I_i1 = IntType<uint8_t, 0, 255>;
using I_i2 = IntType<int16_t, -32768, 32767>;
using I_i4 = IntType<int32_t, INT32_MIN, INT32_MAX>;
using I_i8 = IntType<int32_t, INT32_MIN, INT32_MAX>; // the platform long, 32 bits

template <typename S, typename I>
int32_t money_to_int(const void *src, void *dest, int32_t *destlen) {
    using T = typename I::type;
    *destlen = static_cast<int32_t>(sizeof(T));
    const MoneyValue m = S::wide(src);
    int32_t whole;
    int64_t v;
    if (com__mnytoint(&m, &whole) != COMN_ARITH_OK)
        v = m.high < 0 ? INT64_MIN : INT64_MAX; // beyond either end of any destination
    else
        v = whole;
    return store_clamped<I>(dest, v);
}

template <typename S>
int32_t money_to_bit(const void *src, void *dest, int32_t *destlen) {
    *destlen = 1;
    const MoneyValue m = S::wide(src);
    store<uint8_t>(dest, (m.high | static_cast<int32_t>(m.low)) != 0 ? 1 : 0);
    return CS_SUCCEED;
}

// F is float or double.
template <typename S, typename F>
int32_t money_to_float(const void *src, void *dest, int32_t *destlen) {
    *destlen = static_cast<int32_t>(sizeof(F));
    F f;
    S::to_float(load<typename S::value>(src), &f);
    store(dest, f);
    return CS_SUCCEED;
}

template <typename S>
int32_t money_to_money(const void *src, void *dest, int32_t *destlen) {
    *destlen = 8;
    store(dest, S::wide(src));
    return CS_SUCCEED;
}

template <typename S>
int32_t money_to_mny4(const void *src, void *dest, int32_t *destlen) {
    *destlen = 4;
    const MoneyValue m = S::wide(src);
    Money4Value n{0};
    const int32_t rc = com__mnytomny4(&m, &n) == 4 ? CS_SUCCEED : CS_CONV_OVERFLOW;
    store(dest, n);
    return rc;
}

// ---- Into money ----

template <typename T>
int32_t int_to_money(const void *src, void *dest, int32_t *destlen) {
    *destlen = 8;
    MoneyValue m;
    com__inttomny(&m, load<T>(src)); // cannot overflow from 32 bits
    store(dest, m);
    return CS_SUCCEED;
}

template <typename T>
int32_t int_to_mny4(const void *src, void *dest, int32_t *destlen) {
    *destlen = 4;
    Money4Value m;
    const int32_t code = com__inttomny4(&m, load<T>(src));
    store(dest, m);
    return comn__arith_to_conv(code);
}

// A float source is a value of its fixed size: its length is never the "no value" length 0.
// Convert is the double-to-money routine of destination M, which answers M's size on success.
template <typename T, typename M, auto Convert>
int32_t float_to_money(const void *src, void *dest, int32_t *destlen) {
    constexpr int32_t size = sizeof(M);
    *destlen = size;
    const double v = load<T>(src);
    M m;
    const int32_t rc = Convert(&v, 8, &m) == size ? CS_SUCCEED : CS_CONV_OVERFLOW;
    store(dest, m);
    return rc;
}

// Routine per (source, destination) short name.
template <typename S>
struct FromMoney {
    static constexpr auto i1 = money_to_int<S, I_i1>;
    static constexpr auto i2 = money_to_int<S, I_i2>;
    static constexpr auto i4 = money_to_int<S, I_i4>;
    static constexpr auto i8 = money_to_int<S, I_i8>;
    static constexpr auto bit = money_to_bit<S>;
    static constexpr auto flt4 = money_to_float<S, float>;
    static constexpr auto flt8 = money_to_float<S, double>;
    static constexpr auto money = money_to_money<S>;
    static constexpr auto mny4 = money_to_mny4<S>;
};

template <typename T, bool Float = std::is_floating_point_v<T>>
struct IntoMoney {
    static constexpr auto money = int_to_money<T>;
    static constexpr auto mny4 = int_to_mny4<T>;
};
template <typename T>
struct IntoMoney<T, true> {
    static constexpr auto money = float_to_money<T, MoneyValue, com__flt8tomny>;
    static constexpr auto mny4 = float_to_money<T, Money4Value, com__flt8tomny4>;
};

using Src_money = FromMoney<S_money>;
using Src_mny4 = FromMoney<S_mny4>;
using Src_i1 = IntoMoney<uint8_t>;
using Src_i2 = IntoMoney<int16_t>;
using Src_i4 = IntoMoney<int32_t>;
using Src_flt4 = IntoMoney<float>;
using Src_flt8 = IntoMoney<double>;

} // namespace
} // namespace comn

#define COMN_DEFINE_MONEY_PAIR_(a, b)                                                              \
    COMN_CONV_ROUTINE(comn_##a##to##b) {                                                           \
        return comn::Src_##a::b(src, dest, destlen);                                               \
    }
COMN_MONEY_SOURCE_PAIRS(COMN_DEFINE_MONEY_PAIR_)
COMN_INTO_MONEY_PAIRS(COMN_DEFINE_MONEY_PAIR_)
