// Money arithmetic that needs no exact numerics: copy, zero, extremes, comparison, negation,
// increment and decrement by one unit (0.0001), addition and subtraction, for 8-byte and
// 4-byte money, with the client and old entry points of each.
//
// An 8-byte value is handled as the 64-bit integer its two words denote. Overflow policy,
// decided per operation and relied on by callers (the code is COMN_ARITH_OVERFLOW):
//   add / subtract      destination 0;
//   negate              8-byte: destination keeps the smallest value;
//                       4-byte: destination left as it was;
//   increment/decrement the wrapped value stays in place.
#include "money/money_internal.h"

using comn::mny_get;
using comn::mny_set;

namespace {

// Two's-complement sum or difference with the sign rule of the hardware: overflow exactly
// when the true result leaves the type's range.
template <typename T>
int32_t add_checked(T a, T b, T *out) {
    return __builtin_add_overflow(a, b, out) ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}
template <typename T>
int32_t sub_checked(T a, T b, T *out) {
    return __builtin_sub_overflow(a, b, out) ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}

template <typename T>
int32_t compare(T a, T b) {
    return a < b ? -1 : (a > b ? 1 : 0);
}

} // namespace

extern "C" {

COMN_API int32_t com__mnycopy(const MoneyValue *src, MoneyValue *dst) {
    *dst = *src;
    return COMN_ARITH_OK;
}

COMN_API void comn_mnyzero(MoneyValue *dst) {
    mny_set(dst, 0);
}
COMN_API void com_mnyzero(MoneyValue *dst) {
    mny_set(dst, 0);
}
COMN_API void com__maxposmny(MoneyValue *dst) {
    mny_set(dst, comn::kMoneyMax);
}
COMN_API void com__maxnegmny(MoneyValue *dst) {
    mny_set(dst, comn::kMoneyMin);
}

// Upper words compare signed, lower words unsigned: the same order as the 64-bit value.
COMN_API int32_t comn_mnycmp(const MoneyValue *a, const MoneyValue *b) {
    return compare(mny_get(*a), mny_get(*b));
}
COMN_API int32_t com_mnycmp(const MoneyValue *a, const MoneyValue *b) {
    return comn_mnycmp(a, b);
}

COMN_API int32_t com__mnyminus(const MoneyValue *src, MoneyValue *dst) {
    const int64_t v = mny_get(*src);
    if (v == comn::kMoneyMin) { // -(-2^63) does not exist; the smallest value stays
        mny_set(dst, v);
        return COMN_ARITH_OVERFLOW;
    }
    mny_set(dst, -v);
    return COMN_ARITH_OK;
}

COMN_API int32_t com__mnyinc(MoneyValue *value) {
    const int64_t v = mny_get(*value);
    mny_set(value, static_cast<int64_t>(static_cast<uint64_t>(v) + 1)); // wraps at the top
    return v == comn::kMoneyMax ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}

COMN_API int32_t com__mnydec(MoneyValue *value) {
    const int64_t v = mny_get(*value);
    mny_set(value, static_cast<int64_t>(static_cast<uint64_t>(v) - 1)); // wraps at the bottom
    return v == comn::kMoneyMin ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}

COMN_API int32_t com__mnyadd(const MoneyValue *a, const MoneyValue *b, MoneyValue *dst) {
    int64_t r;
    const int32_t code = add_checked(mny_get(*a), mny_get(*b), &r);
    mny_set(dst, code == COMN_ARITH_OK ? r : 0);
    return code;
}

COMN_API int32_t com__mnysub(const MoneyValue *a, const MoneyValue *b, MoneyValue *dst) {
    int64_t r;
    const int32_t code = sub_checked(mny_get(*a), mny_get(*b), &r);
    mny_set(dst, code == COMN_ARITH_OK ? r : 0);
    return code;
}

// ---- 4-byte money ----

COMN_API int32_t comn_mny4copy(const Money4Value *src, Money4Value *dst) {
    *dst = *src;
    return CS_SUCCEED;
}
COMN_API int32_t com_mny4copy(const Money4Value *src, Money4Value *dst) {
    *dst = *src;
    return COMN_ARITH_OK;
}
COMN_API void comn_mny4zero(Money4Value *dst) {
    dst->mny4 = 0;
}
COMN_API void com_mny4zero(Money4Value *dst) {
    dst->mny4 = 0;
}
COMN_API int32_t comn_mny4cmp(const Money4Value *a, const Money4Value *b) {
    return compare(a->mny4, b->mny4);
}
COMN_API int32_t com_mny4cmp(const Money4Value *a, const Money4Value *b) {
    return compare(a->mny4, b->mny4);
}

COMN_API int32_t com__mnyminus4(const Money4Value *src, Money4Value *dst) {
    if (src->mny4 == INT32_MIN) return COMN_ARITH_OVERFLOW; // destination deliberately untouched
    dst->mny4 = -src->mny4;
    return COMN_ARITH_OK;
}

COMN_API int32_t com__mnyadd4(const Money4Value *a, const Money4Value *b, Money4Value *dst) {
    int32_t r;
    const int32_t code = add_checked(a->mny4, b->mny4, &r);
    dst->mny4 = code == COMN_ARITH_OK ? r : 0;
    return code;
}

COMN_API int32_t com__mnysub4(const Money4Value *a, const Money4Value *b, Money4Value *dst) {
    int32_t r;
    const int32_t code = sub_checked(a->mny4, b->mny4, &r);
    dst->mny4 = code == COMN_ARITH_OK ? r : 0;
    return code;
}

// Money has no remainder: these exist so that callers dispatching on an operator find a
// routine, and they always report overflow.
COMN_API int32_t com__mnyrem(const MoneyValue *, const MoneyValue *, MoneyValue *) {
    return COMN_ARITH_OVERFLOW;
}
COMN_API int32_t com__mnyrem4(const Money4Value *, const Money4Value *, Money4Value *) {
    return COMN_ARITH_OVERFLOW;
}

} // extern "C"

COMN_MONEY_LAYERED(COMN_MONEY_DEFINE_MAPPED_)
COMN_MONEY_VOID(COMN_MONEY_DEFINE_VOID_)
