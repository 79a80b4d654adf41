// Client conversions from money sources to integers, floats, bit and money, and from
// integers and floats into money: every pair of COMN_MONEY_SOURCE_PAIRS and COMN_INTO_MONEY_PAIRS,
// one algorithm per kind of destination. The integer, bit and float types are the scalar ones.
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
#include "convert/scalar.h"

namespace comn {
namespace {

// ---- The money types ----

// Each reads its value record widened to 8-byte money, gives it as a float or double through
// its own width's routine, and names the routine that makes it from a double.
struct T_money {
    using value = MoneyValue;
    static constexpr auto from_double = com__flt8tomny;
    static MoneyValue wide(const void *src) { return load<MoneyValue>(src); }
    static void to_float(const MoneyValue &m, double *d) { com__mnytoflt8(&m, 8, d); }
    static void to_float(const MoneyValue &m, float *f) { com__mnytoflt4(&m, 8, f); }
};

struct T_mny4 {
    using value = Money4Value;
    static constexpr auto from_double = com__flt8tomny4;
    static MoneyValue wide(const void *src) {
        const Money4Value m = load<Money4Value>(src);
        MoneyValue w;
        com__mny4tomny(&m, &w);
        return w;
    }
    static void to_float(const Money4Value &m, double *d) { com__mny4toflt8(&m, d); }
    static void to_float(const Money4Value &m, float *f) { com__mny4toflt4(&m, f); }
};

template <typename T>
constexpr bool is_money = std::is_same_v<T, T_money> || std::is_same_v<T, T_mny4>;

// ---- From money ----

// I is an integer scalar type; its range is [lo, hi] (float_hi concerns float sources only).
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
// The double-to-money routine of destination M answers M's size on success.
template <typename T, typename M>
int32_t float_to_money(const void *src, void *dest, int32_t *destlen) {
    using V = typename M::value;
    constexpr int32_t size = sizeof(V);
    *destlen = size;
    const double v = load<T>(src);
    V m;
    const int32_t rc = M::from_double(&v, 8, &m) == size ? CS_SUCCEED : CS_CONV_OVERFLOW;
    store(dest, m);
    return rc;
}

// ---- Every pair ----

template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *, void *src, DataFormat *, void *dest, int32_t *destlen) {
    if constexpr (!is_money<S>) { // an integer or float into money
        using T = typename S::type;
        if constexpr (S::kind == Kind::Float)
            return float_to_money<T, D>(src, dest, destlen);
        else if constexpr (std::is_same_v<D, T_money>)
            return int_to_money<T>(src, dest, destlen);
        else
            return int_to_mny4<T>(src, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_money>) {
        return money_to_money<S>(src, dest, destlen);
    } else if constexpr (std::is_same_v<D, T_mny4>) {
        return money_to_mny4<S>(src, dest, destlen);
    } else if constexpr (D::kind == Kind::Int) {
        return money_to_int<S, D>(src, dest, destlen);
    } else if constexpr (D::kind == Kind::Bit) {
        return money_to_bit<S>(src, dest, destlen);
    } else {
        return money_to_float<S, typename D::type>(src, dest, destlen);
    }
}

} // namespace
} // namespace comn

COMN_MONEY_SOURCE_PAIRS(COMN_CONV_PAIR)
COMN_INTO_MONEY_PAIRS(COMN_CONV_PAIR)
