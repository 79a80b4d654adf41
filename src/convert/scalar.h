// The scalar types by short name, T_i1, T_i2, T_i4, T_i8 (the platform long, stored in 32
// bits), T_bit, T_flt4 and T_flt8: the value type, kind and range of each, shared by every
// conversion family that handles them (money, exact numerics, binary, number text). And
// scalar_convert, the one conversion among them: scalar.cpp instantiates it for every pair of
// COMN_SCALAR_PAIRS, and the exact numerics run it on the double their value becomes.
//
//  1. A bit source other than 0 or 1 is out of its domain: CS_CONV_DOMAIN, nothing written,
//     not even the result length.
//  2. The result length is the destination's size (4 for "i8").
//  3. A value outside the destination's range writes the nearest end of that range and gives
//     CS_CONV_OVERFLOW. A value equal to a bound is in range.
//  4. Floats go to integers by truncation toward zero. The upper bound for "i8" is one above
//     the largest 32-bit value on purpose: 2147483648.0 passes the test and the 32-bit
//     truncating conversion then yields -2147483648 with CS_SUCCEED.
//  5. A bit destination receives 1 for any non-zero source (no range test), 0 for zero.
//
// A NaN source has no nearest end: integer destinations receive 0 and CS_CONV_OVERFLOW;
// float destinations receive the NaN; a bit destination receives 1 (NaN is non-zero).
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "comnlib/convert.h"
#include "convert/buffers.h"

namespace comn {

enum class Kind { Int, Bit, Float };

template <typename T, Kind K, long long Lo = 0, long long Hi = 0, long long FloatHi = Hi>
struct Scalar {
    using type = T;
    static constexpr Kind kind = K;
    static constexpr long long lo = Lo;
    static constexpr long long hi = Hi;
    static constexpr long long float_hi = FloatHi; // upper bound tested for float sources
};

using T_i1 = Scalar<uint8_t, Kind::Int, 0, 255>;
using T_i2 = Scalar<int16_t, Kind::Int, -32768, 32767>;
using T_i4 = Scalar<int32_t, Kind::Int, -2147483648LL, 2147483647LL>;
using T_i8 = Scalar<int32_t, Kind::Int, -2147483648LL, 2147483647LL, 2147483648LL>;
using T_bit = Scalar<uint8_t, Kind::Bit, 0, 1>;
using T_flt4 = Scalar<float, Kind::Float>;
using T_flt8 = Scalar<double, Kind::Float>;

// Float source to integer destination: bounds compared, then truncation toward zero.
// [lo, float_hi] is the accepted range. Every bound is an integer of at most 2^31 in
// magnitude, exact in a double, and a single widens to double exactly, so comparing in
// double is as exact as comparing in extended precision.
template <typename D, typename F>
inline int32_t float_to_int(F x, void *dest) {
    using T = typename D::type;
    const double v = x;
    if (std::isnan(v)) {
        store<T>(dest, 0);
        return CS_CONV_OVERFLOW;
    }
    if (v < static_cast<double>(D::lo)) {
        store<T>(dest, static_cast<T>(D::lo));
        return CS_CONV_OVERFLOW;
    }
    if (v > static_cast<double>(D::float_hi)) {
        store<T>(dest, static_cast<T>(D::hi));
        return CS_CONV_OVERFLOW;
    }
    // In range: |v| < 2^31 + 1, so the 64-bit truncation is exact; narrowing to 32 bits
    // wraps the single value 2^31 of the "i8" bound to -2^31.
    const auto t = static_cast<long long>(v);
    store<T>(dest, static_cast<T>(static_cast<uint64_t>(t)));
    return CS_SUCCEED;
}

template <typename S, typename D>
inline int32_t scalar_convert(const void *src, void *dest, int32_t *destlen) {
    using ST = typename S::type;
    using DT = typename D::type;
    const ST v = load<ST>(src);
    if constexpr (S::kind == Kind::Bit) {
        if (v > 1) return CS_CONV_DOMAIN;
    }
    *destlen = static_cast<int32_t>(sizeof(DT));

    if constexpr (D::kind == Kind::Bit) {
        store<DT>(dest, v != 0 ? 1 : 0);
        return CS_SUCCEED;
    } else if constexpr (D::kind == Kind::Float) {
        if constexpr (std::is_same_v<ST, double> && std::is_same_v<DT, float>) {
            constexpr double kMax = std::numeric_limits<float>::max();
            if (v > kMax) {
                store<float>(dest, std::numeric_limits<float>::max());
                return CS_CONV_OVERFLOW;
            }
            if (v < -kMax) {
                store<float>(dest, -std::numeric_limits<float>::max());
                return CS_CONV_OVERFLOW;
            }
        }
        store<DT>(dest, static_cast<DT>(v));
        return CS_SUCCEED;
    } else if constexpr (S::kind == Kind::Float) {
        return float_to_int<D>(v, dest);
    } else {
        return store_clamped<D>(dest, v);
    }
}

} // namespace comn
