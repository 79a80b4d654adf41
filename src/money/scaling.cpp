// Money scaling by small integers: multiply-and-add (com__mnyscale, the digit accumulator of
// the text parser), divide down by a 16-bit divisor (com__mnydown), the long divisions
// comn_mnyxdiv / comn__mny16div, the logical right shift com__mnyshift, and decimal digit
// extraction (com__mnyinit, com__mnyndigit).
//
// Magnitudes run from 0 to 2^63 (the smallest value's); they are held in uint64_t, and
// products in unsigned __int128 so that every overflow test is exact.
#include <bit>

#include "money/money_internal.h"

using comn::mny_get;
using comn::mny_magnitude;
using comn::mny_set;

namespace {

using comn::i128;
using comn::u128;

constexpr int64_t with_sign(uint64_t magnitude, bool negative) {
    return static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
}

// The four base-65536 digits of a dividend, most significant first; the first one is read
// as a signed 16-bit digit, so a negative dividend is carried by its leading digit.
struct Digits16 {
    int64_t d[4];
};

Digits16 split16(const MoneyValue &m) {
    const auto h = static_cast<uint32_t>(m.high);
    return {{static_cast<int16_t>(h >> 16), h & 0xFFFF, m.low >> 16, m.low & 0xFFFF}};
}

// Reassembles quotient digits (which may be negative for a negative dividend) modulo 2^64.
void join16(const int64_t q[4], MoneyValue *dst) {
    uint64_t r = 0;
    for (int i = 0; i < 4; ++i)
        r = (r << 16) + static_cast<uint64_t>(q[i]);
    mny_set(dst, static_cast<int64_t>(r));
}

} // namespace

extern "C" {

// value = value * multiplier + addend. The addend is added to the magnitude, so for a negative
// value it moves the result away from zero: the parser accumulates digits this way.
COMN_API int32_t com__mnyscale(MoneyValue *value, uint32_t multiplier, int32_t addend) {
    if (multiplier == 0) {
        mny_set(value, addend);
        return COMN_ARITH_OK;
    }
    const int64_t v = mny_get(*value);
    const u128 product = static_cast<u128>(mny_magnitude(v)) * multiplier; // < 2^96
    if (product >> 64) return COMN_ARITH_OVERFLOW; // a partial product ran past bit 63
    const i128 r = static_cast<i128>(product) + addend;
    if (r < 0 || r > comn::kMoneyMax) return COMN_ARITH_OVERFLOW; // the sign bit would be set
    mny_set(value, with_sign(static_cast<uint64_t>(r), v < 0));
    return COMN_ARITH_OK;
}

// value = value / divisor, truncating toward zero; returns the remainder of the magnitude.
// Only the low 16 bits of the divisor count. A divisor whose low 16 bits are all zero leaves
// the value unchanged and returns 0, as a divisor of 0 does.
COMN_API int32_t com__mnydown(MoneyValue *value, int32_t divisor) {
    const uint32_t d = static_cast<uint32_t>(divisor) & 0xFFFF;
    if (d == 0) return 0;
    const int64_t v = mny_get(*value);
    const uint64_t m = mny_magnitude(v);
    mny_set(value, with_sign(m / d, v < 0));
    return static_cast<int32_t>(m % d); // [0, 65534]
}

// Division by a divisor below 65536, digit by digit in base 65536 from the signed leading
// digit; each partial remainder is carried, shifted up 16 bits, into the next digit. For a
// non-negative dividend this is exact truncating division.
COMN_API void comn__mny16div(const MoneyValue *dividend, const MoneyValue *divisor,
                             MoneyValue *dst) {
    const int64_t dv = divisor->low & 0xFFFF;
    if (dv == 0) return; // not a divisor: the destination is left alone
    const Digits16 u = split16(*dividend);
    int64_t q[4];
    int64_t carry = 0;
    for (int i = 0; i < 4; ++i) {
        const int64_t partial = carry * 65536 + u.d[i]; // |partial| < 2^32
        q[i] = partial / dv;
        carry = partial - q[i] * dv;
    }
    join16(q, dst);
}
COMN_API void com__mny16div(const MoneyValue *dividend, const MoneyValue *divisor,
                            MoneyValue *dst) {
    comn__mny16div(dividend, divisor, dst);
}

// Long division by the unsigned 32-bit low word of divisor. A divisor of two base-65536
// digits (v1 v2) is handled as schoolbook division: at each of the three leading positions
// the quotient digit is estimated as partial / v1 and lowered while estimate * v the
// two-digit partial exceeds, never below 0. The lowering loop is computed in one step: the
// final estimate is min(estimate, U / v), which is what repeated lowering reaches.
COMN_API void comn_mnyxdiv(const MoneyValue *dividend, const MoneyValue *divisor, MoneyValue *dst) {
    const uint32_t v = divisor->low;
    if (v == 0) return; // not a divisor: the destination is left alone
    if ((v >> 16) == 0) {
        comn__mny16div(dividend, divisor, dst);
        return;
    }
    const i128 v1 = v >> 16;
    const Digits16 u = split16(*dividend);
    int64_t q[4] = {0, 0, 0, 0};
    i128 partial = u.d[0];
    for (int j = 0; j < 3; ++j) {
        const i128 joined = partial * 65536 + u.d[j + 1]; // the two-digit partial
        i128 estimate = partial / v1;
        if (estimate > 0) {
            const i128 exact = joined / v; // joined >= 0 here
            if (exact < estimate) estimate = exact;
        }
        q[j + 1] = static_cast<int64_t>(estimate);
        partial = joined - estimate * v;
    }
    join16(q, dst);
}
COMN_API void com_mnyxdiv(const MoneyValue *dividend, const MoneyValue *divisor, MoneyValue *dst) {
    comn_mnyxdiv(dividend, divisor, dst);
}

// Shifts right by one bit for every significant bit of count (1 -> 1, 2..3 -> 2, 4..7 -> 3),
// filling with zeros from the top: the sign is not kept.
COMN_API void com__mnyshift(MoneyValue *value, int32_t count) {
    const int shifts = std::bit_width(static_cast<uint32_t>(count)); // [0, 32]
    if (shifts == 0) return;
    mny_set(value, static_cast<int64_t>(static_cast<uint64_t>(mny_get(*value)) >> shifts));
}

// Prepares digit extraction: value becomes |value| / 10^digits, rounded half away from zero on
// the last digit dropped; returns -1 for a negative input, else 0.
COMN_API int32_t com__mnyinit(MoneyValue *value, int32_t digits) {
    const int64_t v = mny_get(*value);
    uint64_t m = mny_magnitude(v);
    uint64_t last = 0;
    // After 20 divisions every magnitude is 0 and every further remainder 0 as well.
    for (int32_t i = 0; i < digits && i < 21; ++i) {
        last = m % 10;
        m /= 10;
    }
    if (last > 4) ++m;
    mny_set(value, static_cast<int64_t>(m)); // 2^63 (digits <= 0) keeps its bit pattern
    return v < 0 ? -1 : 0;
}

// Takes off the lowest decimal digit into out; returns 1 while digits remain, else 0.
COMN_API int32_t com__mnyndigit(MoneyValue *value, char *out) {
    const int32_t digit = com__mnydown(value, 10);
    *out = static_cast<char>('0' + digit);
    return (value->high | static_cast<int32_t>(value->low)) != 0 ? 1 : 0;
}

} // extern "C"

COMN_MONEY_UNMAPPED(COMN_MONEY_DEFINE_UNMAPPED_)
