// Unsigned magnitude routines of exact numerics: compare, copy, divide and multiply by ten,
// increment, power-of-ten scaling, the precision test and base-256 add, subtract, multiply
// and divide.
//
// A magnitude is the byte string after the sign byte, most significant first; routines that
// combine two magnitudes of different lengths line them up at the least significant end.
// The single-byte-step routines (divby10, mulby10_add, inc) work byte by byte because their
// byte-level effect is their contract; the others compute on 64-bit limbs and reproduce the
// same bytes and result codes as a byte-by-byte walk would.
#include <cstring>

#include "numeric/descriptor.h"

namespace comn::nume {
namespace {

// Compares two big-endian magnitudes of any lengths; leading zero bytes do not count.
int cmp_bytes(const uint8_t *a, int an, const uint8_t *b, int bn) {
    while (an > 0 && *a == 0)
        ++a, --an;
    while (bn > 0 && *b == 0)
        ++b, --bn;
    if (an != bn) return an < bn ? -1 : 1;
    const int c = std::memcmp(a, b, static_cast<size_t>(an));
    return (c > 0) - (c < 0);
}

bool mag_is_zero(const ExactNumericRef *x) {
    const uint8_t *p = mag(x);
    for (int i = 0, n = mag_len(x); i < n; ++i)
        if (p[i]) return false;
    return true;
}

// Loads a into x and b into y, b read at a's byte positions only (any longer high part of b
// is ignored, as a byte walk over a's length would). Answers a's magnitude length.
int load_aligned(const ExactNumericRef *a, const ExactNumericRef *b, Nat &x, Nat &y) {
    const int an = mag_len(a), bn = mag_len(b);
    const int bt = bn < an ? bn : an;
    load(a, x);
    wide::from_be(y, mag(b) + (bn - bt), bt);
    return an;
}

// A descriptor over the power-of-ten table entry for 10^k (k = 0..77).
ExactNumericRef power_ref(int k) {
    const uint8_t *e = Com__Nume_Byte_Power_Array[k];
    return {e[0], static_cast<uint8_t>(k + 1), 0, const_cast<uint8_t *>(e + 1)};
}

} // namespace
} // namespace comn::nume

using namespace comn::nume;
namespace wide = comn::wide;

extern "C" {

int32_t com__exctnume_cmp(const ExactNumericRef *a, const ExactNumericRef *b, int32_t flags) {
    int s = 1;
    if (flags & COMN_NUME_CMP_SIGNED) {
        s = negative(a) ? -1 : 1;
        if (negative(a) != negative(b)) return mag_is_zero(a) && mag_is_zero(b) ? 0 : s;
    }
    int c;
    if ((flags & COMN_NUME_CMP_ALIGN) && a->scale != b->scale) {
        // Bring the operand with the smaller scale up to the larger one; the limbs are wide
        // enough for any pair of scales, so the comparison is exact.
        Nat x, y;
        load(a, x);
        load(b, y);
        if (a->scale < b->scale)
            wide::mul_pow10(x, b->scale - a->scale);
        else
            wide::mul_pow10(y, a->scale - b->scale);
        c = wide::cmp(x, y);
    } else {
        c = cmp_bytes(mag(a), mag_len(a), mag(b), mag_len(b));
    }
    return c * s;
}

int32_t com__exctnume_intcmp(const ExactNumericRef *x, int32_t k) {
    const int n = mag_len(x);
    if (n == 0) return 0;
    const uint8_t *p = mag(x);
    for (int i = 0; i < n - 1; ++i)
        if (p[i]) return 0;
    return p[n - 1] == k ? 1 : 0;
}

int32_t com__exctnume_copy(const ExactNumericRef *src, ExactNumericRef *dst) {
    const int sn = mag_len(src), dn = mag_len(dst);
    const uint8_t *sp = mag(src);
    uint8_t *dp = mag(dst);
    const int n = sn < dn ? sn : dn;
    bool lost = false;
    for (int i = 0; i < sn - n; ++i)
        lost |= sp[i] != 0;
    const bool neg = negative(src);
    std::memmove(dp + dn - n, sp + sn - n, static_cast<size_t>(n));
    if (dn > n) std::memset(dp, 0, static_cast<size_t>(dn - n));
    if (lost) return COMN_ARITH_OVERFLOW;
    dst->bytes[0] = neg ? 1 : 0;
    return COMN_ARITH_OK;
}

int32_t com__exctnume_divby10(uint8_t **bytes, int32_t *length) {
    uint8_t *p = *bytes;
    const int32_t len = *length;
    unsigned r = 0; // [0, 9]
    for (int32_t i = 0; i < len; ++i) {
        const unsigned v = (r << 8) | p[i]; // [0, 2559]
        p[i] = static_cast<uint8_t>(v / 10);
        r = v % 10;
    }
    // Drop a leading zero byte so that repeated division gets cheaper; a value whose last
    // byte is 0xFF keeps at least three bytes.
    if (len >= 3 && p[1] == 0 && (p[len - 1] != 0xFF || len - 1 >= 3)) {
        *bytes = p + 1;
        *length = len - 1;
    }
    return static_cast<int32_t>(r);
}

int32_t com__exctnume_mulby10_add(ExactNumericRef *x, int32_t digit) {
    uint8_t *p = x->bytes;
    unsigned c = static_cast<unsigned>(digit);
    for (int32_t i = x->length - 1; i >= 1; --i) {
        const unsigned v = p[i] * 10u + c; // [0, 2550 + c]
        p[i] = static_cast<uint8_t>(v);
        c = v >> 8;
    }
    return c != 0 ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
}

int32_t com__exctnume_inc(ExactNumericRef *x) {
    uint8_t *p = x->bytes;
    for (int32_t i = x->length - 1; i >= 1; --i)
        if (++p[i] != 0) return COMN_ARITH_OK;
    return COMN_ARITH_OVERFLOW;
}

int32_t com__exctnume_needsbyte(const ExactNumericRef *x) {
    const uint8_t *p = mag(x);
    for (int i = 0, n = mag_len(x); i < n; ++i)
        if (p[i] != 0xFF) return 0;
    return 1;
}

int32_t com__exctnume_checkprecision(const ExactNumericRef *x) {
    if (x->precision > CS_MAX_PREC) return 1;
    const uint8_t *e = Com__Nume_Byte_Power_Array[x->precision];
    if (x->length < e[0]) return 0;
    return cmp_bytes(e + 2, e[0] - 1, mag(x), mag_len(x)) <= 0 ? 1 : 0;
}

int32_t com__exctnume_scale(ExactNumericRef *x, ExactNumericRef *dst, int32_t k) {
    if (k == 0) return dst ? com__exctnume_copy(x, dst) : COMN_ARITH_OK;
    ExactNumericRef *out = dst ? dst : x;
    if (k > 0 && k <= CS_MAX_PREC) {
        const ExactNumericRef p = power_ref(k);
        if (dst) return com__exctnume_intmul(x, &p, dst) ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
        uint8_t scratch[CS_MAX_NUMLEN + 2];
        ExactNumericRef tmp{x->length, x->precision, x->scale, scratch};
        if (mag_len(x) + 1 > static_cast<int>(sizeof scratch)) return COMN_ARITH_OVERFLOW;
        if (com__exctnume_intmul(x, &p, &tmp)) return COMN_ARITH_OVERFLOW;
        return com__exctnume_copy(&tmp, x) ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
    }
    // Downward scaling divides by 10^-k rounding half away from zero (the same rule as the
    // signed division); a non-zero remainder means digits were dropped. Powers beyond the
    // table are handled the same way on the limbs: upward they overflow any non-zero value.
    Nat v;
    load(x, v);
    const bool neg = negative(x);
    bool inexact = false;
    if (k > 0) {
        if (!wide::is_zero(v)) return COMN_ARITH_OVERFLOW;
    } else {
        wide::div_pow10_round(v, -k, inexact);
    }
    if (out->length < 1 || !wide::to_be(v, mag(out), mag_len(out))) return COMN_ARITH_OVERFLOW;
    out->bytes[0] = neg && !wide::is_zero(v) ? 1 : 0;
    return inexact ? COMN_ARITH_DROPPED : COMN_ARITH_OK;
}

int32_t com__exctnume_intadd(const ExactNumericRef *a, const ExactNumericRef *b,
                             ExactNumericRef *r) {
    Nat x, y;
    load_aligned(a, b, x, y);
    wide::add(x, x, y);
    return wide::to_be(x, mag(r), mag_len(r)) ? COMN_ARITH_OK : COMN_ARITH_OVERFLOW;
}

int32_t com__exctnume_intsub(const ExactNumericRef *a, const ExactNumericRef *b,
                             ExactNumericRef *r) {
    Nat x, y;
    const int an = load_aligned(a, b, x, y);
    if (wide::cmp(x, y) >= 0) {
        wide::sub(x, x, y);
    } else {
        // a < b breaks the precondition; the byte walk then wraps modulo 256^an.
        Nat m;
        m.n = (8 * an) / 64 + 1;
        for (int i = 0; i < m.n; ++i)
            m.w[i] = 0;
        m.w[m.n - 1] = wide::u64{1} << ((8 * an) % 64);
        wide::sub(y, y, x);
        wide::sub(x, m, y);
    }
    return wide::to_be(x, mag(r), mag_len(r)) ? COMN_ARITH_OK : COMN_ARITH_OVERFLOW;
}

int32_t com__exctnume_intmul(const ExactNumericRef *a, const ExactNumericRef *b,
                             ExactNumericRef *r) {
    const uint8_t sign = negative(a) != negative(b) ? 1 : 0;
    if (mag_is_zero(a) || mag_is_zero(b)) {
        std::memset(r->bytes, 0, static_cast<size_t>(mag_len(r) + 1));
        return COMN_ARITH_OK;
    }
    if (com__exctnume_intcmp(a, 1) || com__exctnume_intcmp(b, 1)) {
        const int32_t rc = com__exctnume_copy(com__exctnume_intcmp(a, 1) ? b : a, r);
        r->bytes[0] = sign;
        return rc;
    }
    Nat x, y, p;
    load(a, x);
    load(b, y);
    if (!wide::mul(p, x, y)) return COMN_ARITH_OVERFLOW;
    if (!wide::to_be(p, mag(r), mag_len(r))) return COMN_ARITH_OVERFLOW;
    r->bytes[0] = sign;
    return COMN_ARITH_OK;
}

int32_t com__exctnume_intdiv(const ExactNumericRef *dividend, const ExactNumericRef *divisor,
                             ExactNumericRef *quotient, ExactNumericRef *remainder) {
    Nat a, b, q, r;
    load(dividend, a);
    load(divisor, b);
    if (wide::is_zero(b)) return COMN_ARITH_DIVZERO;
    wide::divmod(a, b, q, r);
    if (!wide::to_be(q, mag(quotient), mag_len(quotient))) return COMN_ARITH_OVERFLOW;
    if (remainder && !wide::to_be(r, mag(remainder), mag_len(remainder)))
        return COMN_ARITH_OVERFLOW;
    return COMN_ARITH_OK;
}

} // extern "C"
