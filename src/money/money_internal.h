// Private helpers shared by the money sources: moving between the two-word MoneyValue and a
// native 64-bit integer, the client and old entry points generated from the internal ones,
// and the built-in character rules the text parser falls back on.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "comnlib/intl.h"
#include "comnlib/money.h"

namespace comn {

// 128-bit intermediates for exact overflow tests on products of 64-bit magnitudes.
__extension__ typedef unsigned __int128 u128;
__extension__ typedef __int128 i128;

// The value as the 64-bit two's-complement integer it denotes (upper word first), and back.
static_assert(sizeof(MoneyValue) == 8 && offsetof(MoneyValue, low) == 4);
inline int64_t mny_get(const MoneyValue &m) {
    return comn__mny_get(&m);
}

inline void mny_set(MoneyValue *m, int64_t v) {
    comn__mny_set(m, v);
}

inline MoneyValue mny_make(int64_t v) {
    MoneyValue m;
    mny_set(&m, v);
    return m;
}

// |v| as an unsigned number; the smallest value gives 2^63.
constexpr uint64_t mny_magnitude(int64_t v) {
    return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
}

constexpr int64_t kMoneyMax = INT64_MAX; // 922337203685477.5807
constexpr int64_t kMoneyMin = INT64_MIN; // -922337203685477.5808

// Narrowing to 4-byte money: fits when the value is within 32 signed bits.
constexpr bool mny_fits4(int64_t v) {
    return v >= INT32_MIN && v <= INT32_MAX;
}

} // namespace comn

// Client and old entry points of one layered operation, defined next to its internal form.
#define COMN_MONEY_DEFINE_MAPPED_(internal, client, old, params, args)                             \
    extern "C" COMN_API int32_t client params {                                                    \
        return comn__arith_to_conv(internal args);                                                 \
    }                                                                                              \
    extern "C" COMN_API int32_t old params {                                                       \
        return internal args;                                                                      \
    }
#define COMN_MONEY_DEFINE_UNMAPPED_(internal, client, old, params, args)                           \
    extern "C" COMN_API int32_t client params {                                                    \
        return internal args;                                                                      \
    }                                                                                              \
    extern "C" COMN_API int32_t old params {                                                       \
        return internal args;                                                                      \
    }
#define COMN_MONEY_DEFINE_VOID_(internal, client, old, params, args)                               \
    extern "C" COMN_API void client params {                                                       \
        internal args;                                                                             \
    }                                                                                              \
    extern "C" COMN_API void old params {                                                          \
        internal args;                                                                             \
    }
