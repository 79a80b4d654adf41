// Exact numerics to and from machine numbers and money: 32- and 64-bit integers, doubles and
// the 8-byte money value.
//
// Integers and money convert exactly. A double is converted from its exact binary value
// (mantissa * 2^exponent) and rounded half away from zero at the destination's scale; a
// numeric becomes the nearest double (ties to even), through the runtime's correctly rounded
// strtod when the fast exact path does not apply.
#include <cmath>
#include <cstdlib>

#include "numeric/descriptor.h"

using namespace comn::nume;
namespace wide = comn::wide;

namespace {

int32_t from_u64(wide::u64 magnitude, bool neg, ExactNumericRef *x) {
    Nat v;
    wide::set_u64(v, magnitude);
    return finish(x, v, 0, neg);
}

// Exact powers of ten as doubles (10^22 is the largest that is exact).
constexpr double kExactPow10[23] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

} // namespace

extern "C" {

int32_t com__longtoexctnume(int32_t value, ExactNumericRef *x) {
    const bool neg = value < 0;
    return from_u64(neg ? 0 - static_cast<uint64_t>(static_cast<int64_t>(value))
                        : static_cast<uint64_t>(value),
                    neg, x);
}

int32_t com__longlongtoexctnume(int64_t value, ExactNumericRef *x) {
    const bool neg = value < 0;
    return from_u64(neg ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value), neg, x);
}

int32_t com__doubletoexctnume(double value, ExactNumericRef *x) {
    if (!std::isfinite(value)) return COMN_ARITH_OVERFLOW;
    const bool neg = std::signbit(value) && value != 0;
    int e;
    const double f = std::frexp(std::fabs(value), &e); // value = f * 2^e, f in [0.5, 1)
    const auto m = static_cast<wide::u64>(std::ldexp(f, 53));
    e -= 53; // value = m * 2^e exactly
    Nat v;
    wide::set_u64(v, m);
    if (x->scale > 2 * CS_MAX_PREC) return COMN_ARITH_OVERFLOW;
    wide::mul_pow10(v, x->scale); // m * 10^scale < 2^53 * 10^154
    if (e > 0) {
        // Any non-zero value of 2^300 or more is far beyond 77 digits.
        if (!wide::is_zero(v) && (e > 300 || !wide::shl(v, e))) return COMN_ARITH_OVERFLOW;
    } else if (e < 0) {
        // Half away from zero: the first bit shifted out decides.
        if (wide::shr(v, -e)) {
            Nat one;
            wide::set_u64(one, 1);
            wide::add(v, v, one);
        }
    }
    return store(x, v, neg);
}

int32_t com__subexctnumetoflt8(const ExactNumericRef *x, double *out) {
    Nat v;
    load(x, v);
    const bool neg = negative(x);
    double d;
    if (v.n <= 1 && (v.n == 0 || v.w[0] < (wide::u64{1} << 53)) && x->scale <= 22) {
        // Both operands are exact doubles, so one division rounds correctly.
        d = static_cast<double>(v.n ? v.w[0] : 0) / kExactPow10[x->scale];
    } else {
        char text[wide::kCap * 20 + 8];
        int n = wide::to_digits(v, text);
        text[n++] = 'e';
        text[n++] = '-';
        int s = x->scale, div = 100;
        for (; div > 1 && s < div; div /= 10) {
        }
        for (; div >= 1; div /= 10)
            text[n++] = static_cast<char>('0' + (s / div) % 10);
        text[n] = '\0';
        d = std::strtod(text, nullptr);
    }
    *out = neg ? -d : d;
    return COMN_ARITH_OK;
}

int32_t com__mny8toexctnume(const MoneyValue *money, ExactNumericRef *x) {
    const int64_t units = static_cast<int64_t>(
        (static_cast<uint64_t>(static_cast<uint32_t>(money->high)) << 32) | money->low);
    const bool neg = units < 0;
    const uint64_t m = neg ? 0 - static_cast<uint64_t>(units) : static_cast<uint64_t>(units);
    x->length = 9;
    x->precision = 19;
    x->scale = 4;
    x->bytes[0] = neg ? 1 : 0;
    wide::store_be64(x->bytes + 1, m);
    return COMN_ARITH_OK;
}

int32_t com__exctnumetomny8(const ExactNumericRef *x, MoneyValue *money) {
    Nat v;
    load(x, v);
    const bool neg = negative(x);
    if (x->scale < 4) {
        wide::mul_pow10(v, 4 - x->scale);
    } else if (x->scale > 4) {
        bool inexact;
        wide::div_pow10_round(v, x->scale - 4, inexact);
    }
    // |units| may reach 2^63 only for a negative value.
    if (v.n > 1) return 0;
    const uint64_t m = v.n ? v.w[0] : 0;
    if (m > (neg ? uint64_t{1} << 63 : (uint64_t{1} << 63) - 1)) return 0;
    const uint64_t units = neg ? 0 - m : m;
    money->high = static_cast<int32_t>(static_cast<uint32_t>(units >> 32));
    money->low = static_cast<uint32_t>(units);
    return 1;
}

} // extern "C"
