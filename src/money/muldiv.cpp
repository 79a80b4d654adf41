// Money multiplication and division, done exactly through exact numerics: each operand is
// carried as a numeric of length 9 (sign byte and eight magnitude bytes), precision 19 and
// scale 4. Product and quotient are formed exactly and rounded to four decimals, half away
// from zero on the first dropped digit.
// The 4-byte forms widen, use the 8-byte routine and narrow.
//
// Overflow or division by zero stores 0 in the destination.
#include "comnlib/numeric.h"
#include "money/money_internal.h"

using comn::mny_set;

namespace {

constexpr int32_t kMoneyNumLen = 9; // sign byte + 8 magnitude bytes
constexpr uint8_t kMoneyPrec = 19;
constexpr uint8_t kMoneyScale = 4;

struct MoneyNum {
    uint8_t bytes[kMoneyNumLen];
    ExactNumericRef ref{kMoneyNumLen, kMoneyPrec, kMoneyScale, bytes};
    explicit MoneyNum(const MoneyValue &m) { com__mny8toexctnume(&m, &ref); }
};

bool is_zero(const MoneyValue &m) {
    return m.high == 0 && m.low == 0;
}

// Numeric back to money; COMN_ARITH_OVERFLOW when it does not fit 64 signed bits of 1/10000
// units.
int32_t to_money(const ExactNumericRef &x, MoneyValue *dst) {
    if (com__exctnumetomny8(&x, dst) != 1) {
        mny_set(dst, 0);
        return COMN_ARITH_OVERFLOW;
    }
    return COMN_ARITH_OK;
}

// Runs an 8-byte operation on widened 4-byte operands and narrows the result.
int32_t via_wide(int32_t (*op)(const MoneyValue *, const MoneyValue *, MoneyValue *),
                 const Money4Value *a, const Money4Value *b, Money4Value *dst) {
    MoneyValue wa, wb, wr;
    com__mny4tomny(a, &wa);
    com__mny4tomny(b, &wb);
    const int32_t code = op(&wa, &wb, &wr);
    if (code != COMN_ARITH_OK) {
        dst->mny4 = 0;
        return code;
    }
    if (com__mnytomny4(&wr, dst) != 4) {
        dst->mny4 = 0;
        return COMN_ARITH_OVERFLOW;
    }
    return COMN_ARITH_OK;
}

} // namespace

extern "C" {

COMN_API int32_t com__mnymul(const MoneyValue *a, const MoneyValue *b, MoneyValue *dst) {
    if (is_zero(*a) || is_zero(*b)) {
        mny_set(dst, 0);
        return COMN_ARITH_OK;
    }
    const MoneyNum x(*a), y(*b);
    // The exact product has scale 8; the numeric multiplication rounds it once, half away
    // from zero on the first dropped digit, to the money scale 4, and refuses a product of
    // more than 19 digits. What remains to test is the 64-bit range.
    uint8_t bytes[kMoneyNumLen];
    ExactNumericRef product{kMoneyNumLen, kMoneyPrec, kMoneyScale, bytes};
    if (const int32_t code = com__exctnume_mul(&x.ref, &y.ref, &product); code != COMN_ARITH_OK) {
        mny_set(dst, 0);
        return code;
    }
    return to_money(product, dst);
}

COMN_API int32_t com__mnydiv(const MoneyValue *a, const MoneyValue *b, MoneyValue *dst) {
    if (is_zero(*b)) {
        mny_set(dst, 0);
        return COMN_ARITH_DIVZERO;
    }
    const MoneyNum x(*a), y(*b);
    uint8_t bytes[kMoneyNumLen];
    ExactNumericRef quotient{kMoneyNumLen, kMoneyPrec, kMoneyScale, bytes};
    if (const int32_t code = com__exctnume_div(&x.ref, &y.ref, &quotient, nullptr);
        code != COMN_ARITH_OK) {
        mny_set(dst, 0);
        return code;
    }
    return to_money(quotient, dst);
}

COMN_API int32_t com__mnymul4(const Money4Value *a, const Money4Value *b, Money4Value *dst) {
    return via_wide(com__mnymul, a, b, dst);
}

COMN_API int32_t com__mnydiv4(const Money4Value *a, const Money4Value *b, Money4Value *dst) {
    return via_wide(com__mnydiv, a, b, dst);
}

} // extern "C"

COMN_MONEY_LAYERED_NUMERIC(COMN_MONEY_DEFINE_MAPPED_)
