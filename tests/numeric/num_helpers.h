// Test helpers: exact numerics built from and read back into 128-bit integers.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

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

} // namespace numtest
