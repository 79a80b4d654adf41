// Test helpers: exact numerics built from and read back into 128-bit integers.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "comnlib.h"

namespace numtest {

__extension__ typedef __int128 i128;
__extension__ typedef unsigned __int128 u128;

// A value with its own storage; the descriptor length follows the precision unless given.
struct Num {
    uint8_t buf[35]{};
    ExactNumericRef ref{};
    Num(i128 units, int precision, int scale, int length = 0) {
        ref.length = length ? length : comn_num_getlen(precision);
        ref.precision = static_cast<uint8_t>(precision);
        ref.scale = static_cast<uint8_t>(scale);
        ref.bytes = buf;
        set(units);
    }
    void set(i128 units) {
        std::memset(buf, 0, sizeof buf);
        buf[0] = units < 0;
        u128 m = units < 0 ? -static_cast<u128>(units) : units;
        for (int i = ref.length - 1; i >= 1; --i, m >>= 8)
            buf[i] = static_cast<uint8_t>(m);
    }
    // Signed units (the magnitude must stay below 2^127).
    i128 units() const {
        u128 m = 0;
        for (int i = 1; i < ref.length; ++i)
            m = (m << 8) | buf[i];
        return buf[0] ? -static_cast<i128>(m) : static_cast<i128>(m);
    }
    ExactNumericRef *operator->() { return &ref; }
    ExactNumericRef *get() { return &ref; }
};

inline i128 pow10(int k) {
    i128 v = 1;
    while (k-- > 0)
        v *= 10;
    return v;
}

// A client value holding units at (precision, scale), and the units a client value holds.
inline NumericValue numeric_of(i128 units, int precision, int scale) {
    Num n(units, precision, scale);
    NumericValue v{};
    v.precision = static_cast<uint8_t>(precision);
    v.scale = static_cast<uint8_t>(scale);
    std::memcpy(v.array, n.buf, static_cast<size_t>(n->length));
    return v;
}
inline i128 units_of(const NumericValue &v) {
    Num n(0, v.precision, v.scale);
    std::memcpy(n.buf, v.array, static_cast<size_t>(n->length));
    return n.units();
}

// num / den rounded half away from zero.
inline i128 div_round(i128 num, i128 den) {
    const bool neg = (num < 0) != (den < 0);
    const u128 n = num < 0 ? -static_cast<u128>(num) : num,
               d = den < 0 ? -static_cast<u128>(den) : den;
    const u128 q = n / d + (2 * (n % d) >= d ? 1 : 0);
    return neg ? -static_cast<i128>(q) : static_cast<i128>(q);
}

// Random units of 1 to p digits (the count uniform, so small and large values are both common).
inline i128 random_units(std::mt19937_64 &rng, int p) {
    const int k = 1 + static_cast<int>(rng() % static_cast<uint64_t>(p));
    const u128 m = ((static_cast<u128>(rng()) << 64) | rng()) % static_cast<u128>(pow10(k));
    return rng() & 1 ? -static_cast<i128>(m) : static_cast<i128>(m);
}

// A client value read from text at (precision, scale); mode 1 rounds digits beyond the scale,
// mode 0 refuses them. The parse must succeed.
inline NumericValue value_of(const char *text, int precision, int scale, int mode = 1) {
    NumericValue v{};
    v.precision = static_cast<uint8_t>(precision);
    v.scale = static_cast<uint8_t>(scale);
    uint8_t *bytes = v.array;
    int32_t len = comn_num_getlen(precision);
    EXPECT_EQ(com__subchartoexctnume(text, static_cast<int32_t>(std::strlen(text)), &bytes, &len,
                                     &v.precision, &v.scale, mode),
              0)
        << text;
    return v;
}

// The text of a client value, "?" when it cannot be printed.
inline std::string text_of(const NumericValue &v) {
    const ExactNumericRef r{comn_num_getlen(v.precision), v.precision, v.scale,
                            const_cast<uint8_t *>(v.array)};
    char buf[400];
    const int start = com__subexctnumetochar(&r, buf, sizeof buf);
    return start < 0 ? "?" : std::string(buf + start, buf + sizeof buf);
}

} // namespace numtest
