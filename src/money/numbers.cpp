// Money to and from 32-bit integers and floating point, and between the two money widths.
//
// Result conventions differ on purpose and callers rely on them: the integer routines return
// internal codes (0 success, 1 overflow); the floating-point routines return the destination
// length (8 or 4) on success and -1 on overflow; widening returns nothing and narrowing
// returns 4 or -1.
#include <cmath>
#include <cstring>

#include "money/money_internal.h"

using comn::mny_get;
using comn::mny_set;

namespace {

// 922337203685477.6 as a double is 922337203685477.625, the first double above the largest
// money value. A rounded magnitude equal to it is taken as the largest value; above it, overflow.
constexpr double kFloatLimit = 922337203685477.6;

// Units of 1/10000 in |x| rounded half away from zero at the fourth decimal: x plus half a
// unit (in double arithmetic), then times 10000 truncated toward zero. The product is formed
// exactly from the double's significand, so no intermediate rounding can carry it over an
// integer boundary. Returns false on overflow (or NaN); x is a finite non-negative double.
bool units_from_double(double value, int64_t *units) {
    const double x = std::fabs(value) + 0.00005;
    if (!(x <= kFloatLimit)) return false; // also catches NaN and infinities
    if (x == kFloatLimit) {
        *units = comn::kMoneyMax;
        return true;
    }
    int exp;
    const double frac = std::frexp(x, &exp); // x = frac * 2^exp, frac in [0.5, 1)
    const auto mant = static_cast<uint64_t>(std::ldexp(frac, 53)); // exact, < 2^53
    const int shift = exp - 53;                                    // x = mant * 2^shift
    comn::u128 p = static_cast<comn::u128>(mant) * 10000;
    if (shift >= 0)
        p <<= shift; // x < 2^50, so shift <= -3 in practice; kept for completeness
    else
        p = shift <= -120 ? 0 : p >> -shift;
    *units = static_cast<int64_t>(p); // < 2^63 by the limit test
    return true;
}

int32_t double_to_money(const double *value, int32_t len, MoneyValue *dst) {
    mny_set(dst, 0);
    if (value == nullptr || len == 0) return 8;
    int64_t units;
    if (!units_from_double(*value, &units)) return -1;
    // The limit case yields the largest value whatever the sign: it is not negated.
    if (units != comn::kMoneyMax && std::signbit(*value)) units = -units;
    mny_set(dst, units);
    return 8;
}

int32_t double_to_money4(const double *value, int32_t len, Money4Value *dst) {
    dst->mny4 = 0;
    if (value == nullptr || len == 0) return 4;
    MoneyValue wide;
    if (double_to_money(value, len, &wide) != 8) return -1;
    return com__mnytomny4(&wide, dst) == 4 ? 4 : -1;
}

// A float source goes through the double routine To at its exact widened value.
template <auto To, typename M>
int32_t from_float(const float *value, int32_t len, M *dst) {
    if (value == nullptr) return To(nullptr, len, dst);
    const double wide = *value;
    return To(&wide, len, dst);
}

// The money value in currency units: (high * 2^32 + low) / 10000. It is computed as one
// division of the exact 64-bit count rather than as low / 10000 + high * 429496.7296, which
// denotes the same number but loses up to hundreds of ulps to cancellation when a small
// negative value pairs a high word of -1 with a large low word. Below 2^53 units the double
// division is exact-then-rounded once; above, the extended division keeps 64 bits.
double money_to_double(const MoneyValue &m) {
    const int64_t v = mny_get(m);
    constexpr int64_t kExact = int64_t{1} << 53;
    if (v > -kExact && v < kExact) return static_cast<double>(v) / 10000.0;
    return static_cast<double>(static_cast<long double>(v) / 10000.0L);
}

float money_to_float(const MoneyValue &m) {
    return static_cast<float>(static_cast<long double>(mny_get(m)) / 10000.0L);
}

} // namespace

extern "C" {

COMN_API void com__mny4tomny(const Money4Value *value, MoneyValue *dst) {
    mny_set(dst, value->mny4); // sign-extends: high is 0 or -1
}

COMN_API int32_t com__mnytomny4(const MoneyValue *value, Money4Value *dst) {
    const int64_t v = mny_get(*value);
    if (!comn::mny_fits4(v)) return -1; // destination not written
    dst->mny4 = static_cast<int32_t>(v);
    return 4;
}

COMN_API int32_t com__inttomny(MoneyValue *dst, int32_t value) {
    mny_set(dst, value);
    return com__mnyscale(dst, 10000, 0); // |value| * 10000 < 2^46: always 0
}

// Whole units, rounded half away from zero: 2.5000 gives 3, -2.5000 gives -3.
COMN_API int32_t com__mnytoint(const MoneyValue *value, int32_t *dst) {
    MoneyValue q = *value;
    const int32_t rem = com__mnydown(&q, 10000); // remainder of the magnitude
    int64_t whole = mny_get(q);
    if (rem > 4999) whole += value->high < 0 ? -1 : 1;
    if (whole < INT32_MIN || whole > INT32_MAX) {
        *dst = 0;
        return COMN_ARITH_OVERFLOW;
    }
    *dst = static_cast<int32_t>(whole);
    return COMN_ARITH_OK;
}

COMN_API int32_t com__mny4toint(const Money4Value *value, int32_t *dst) {
    MoneyValue wide;
    com__mny4tomny(value, &wide);
    return com__mnytoint(&wide, dst);
}

COMN_API int32_t com__inttomny4(Money4Value *dst, int32_t value) {
    MoneyValue wide;
    com__inttomny(&wide, value);
    if (com__mnytomny4(&wide, dst) != 4) {
        dst->mny4 = 0;
        return COMN_ARITH_OVERFLOW;
    }
    return COMN_ARITH_OK;
}

COMN_API int32_t com__mnytoflt8(const MoneyValue *value, int32_t, double *dst) {
    *dst = money_to_double(*value);
    return 8;
}

COMN_API int32_t com__mnytoflt4(const MoneyValue *value, int32_t, float *dst) {
    *dst = money_to_float(*value);
    return 4;
}

COMN_API int32_t com__mny4toflt8(const Money4Value *value, double *dst) {
    *dst = value->mny4 / 10000.0;
    return 8;
}

COMN_API int32_t com__mny4toflt4(const Money4Value *value, float *dst) {
    *dst = static_cast<float>(value->mny4 / 10000.0);
    return 4;
}

COMN_API int32_t com__flt8tomny(const double *value, int32_t len, MoneyValue *dst) {
    return double_to_money(value, len, dst);
}

COMN_API int32_t com__flt4tomny(const float *value, int32_t len, MoneyValue *dst) {
    return from_float<double_to_money>(value, len, dst);
}

COMN_API int32_t com__flt8tomny4(const double *value, int32_t len, Money4Value *dst) {
    return double_to_money4(value, len, dst);
}

COMN_API int32_t com__flt4tomny4(const float *value, int32_t len, Money4Value *dst) {
    return from_float<double_to_money4>(value, len, dst);
}

} // extern "C"
