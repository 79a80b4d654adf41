// Text to exact numeric.
//
// Grammar: blanks, at most one sign, blanks, digits with at most one ".", optionally "e" or
// "E" with a signed decimal exponent, then only white space. The rules that shape the value:
//  - A digit goes into the magnitude while no more than `scale` fraction digits have been
//    taken before it and fewer significant digits than the area can hold (its "limit")
//    have been taken; so with a requested scale s, s + 1 fraction digits are read and the
//    final rescaling rounds the last one away.
//  - Any other digit is refused (6) unless mode 1 asked for rounding: then the first such
//    fraction digit of 5 or more adds one to the magnitude, once.
//  - The exponent needs one digit; a second digit is optional; white space may follow only
//    from the third exponent character on, so "1e5 " is a syntax error while "1e05 " is not.
//  - A precision or scale of 255 is taken from the text. A scale from the text is the count
//    of fraction digits; the exponent is applied only to a whole mantissa, and a negative
//    exponent on a whole mantissa leaves its low byte as the scale.
//
// Runs of digits are converted eight at a time (SWAR) and folded into a wide magnitude
// nineteen at a time, so a long number costs a few limb multiplications rather than one
// pass over the area per digit. The magnitude cannot outgrow the area: at most `limit`
// significant digits are taken, and 10^limit itself still fits.
#include <algorithm>
#include <cstring>

#include "numeric/descriptor.h"

using namespace comn::nume;
namespace wide = comn::wide;

namespace {

bool is_digit(unsigned char c) {
    return static_cast<unsigned>(c - '0') < 10u;
}

// White space of the text's tail: blank, tab, newline, vertical tab, form feed, return.
bool is_space(unsigned char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool rest_is_space(const unsigned char *t, int32_t i, int32_t n) {
    for (; i < n; ++i)
        if (!is_space(t[i])) return false;
    return true;
}

constexpr int32_t kExponentCap = 100000000; // far beyond any exponent that can matter

wide::u64 load_le64(const unsigned char *p) {
    wide::u64 v;
    std::memcpy(&v, p, 8);
    return v; // little-endian: the first character lands in the low byte
}

// True when all eight bytes are ASCII digits.
bool eight_digits(wide::u64 v) {
    return ((v & 0xF0F0F0F0F0F0F0F0ull) |
            (((v + 0x0606060606060606ull) & 0xF0F0F0F0F0F0F0F0ull) >> 4)) == 0x3333333333333333ull;
}

// The value of eight ASCII digits, first byte most significant (three multiplications).
wide::u64 eight_digit_value(wide::u64 v) {
    v = (v & 0x0F0F0F0F0F0F0F0Full) * 2561 >> 8;
    v = (v & 0x00FF00FF00FF00FFull) * 6553601 >> 16;
    return (v & 0x0000FFFF0000FFFFull) * 42949672960001ull >> 32;
}

int32_t digit_run_end(const unsigned char *t, int32_t i, int32_t n) {
    while (i + 8 <= n && eight_digits(load_le64(t + i)))
        i += 8;
    while (i < n && is_digit(t[i]))
        ++i;
    return i;
}

// mag = mag * 10^count + the value of count digits (nineteen at a time).
void accumulate(Nat &mag, const unsigned char *p, int32_t count) {
    while (count > 0) {
        const int k = count > 19 ? 19 : count;
        wide::u64 v = 0;
        int j = 0;
        for (; j + 8 <= k; j += 8)
            v = v * 100000000 + eight_digit_value(load_le64(p + j));
        for (; j < k; ++j)
            v = v * 10 + (p[j] - '0');
        wide::mul_small_add(mag, wide::kPow10[k], v);
        p += k;
        count -= k;
    }
}

// Trims the value's leading zero bytes for precisions of 39 and above: the area is moved on
// while it is longer than the integer digits need, its second byte is zero (so a zero
// sign byte still leads) and the value still fits the precision of the shorter length,
// which must also hold the scale. Returns the precision of the length that remains.
int trim_wide_value(uint8_t *&area, int32_t &len, int precision, int scale) {
    const int floor_len = Com__Nume_Prec_To_Len[precision - scale];
    while (len > floor_len && area[1] == 0) {
        const int shorter = Com__Nume_Len_To_Prec[len - 1 - 2];
        if (shorter < scale || shorter < 1) break;
        const ExactNumericRef probe{len - 1, static_cast<uint8_t>(shorter), 0, area + 1};
        if (com__exctnume_checkprecision(&probe)) break;
        ++area;
        --len;
    }
    return Com__Nume_Len_To_Prec[len - 2];
}

} // namespace

extern "C" int32_t com__subchartoexctnume(const char *text, int32_t textlen, uint8_t **bytes,
                                          int32_t *length, uint8_t *precision, uint8_t *scale,
                                          int32_t mode) {
    if (*length == 0) *length = CS_MAX_NUMLEN;
    const int32_t arealen = *length;
    if (arealen < 2 || arealen > CS_MAX_NUMLEN) return COMN_ARITH_OVERFLOW;
    uint8_t *area = *bytes;
    std::memset(area, 0, static_cast<size_t>(arealen));
    const int limit = Com__Nume_Len_To_Prec[arealen - 2];
    const int req_prec = *precision, req_scale = *scale;
    if (req_prec == 0 || (req_prec > CS_MAX_PREC && req_prec != 255)) return COMN_ARITH_OVERFLOW;
    if (req_scale > CS_MAX_SCALE && req_scale != 255) return COMN_ARITH_OVERFLOW;

    const auto *t = reinterpret_cast<const unsigned char *>(text);
    const int32_t n = text && textlen > 0 ? textlen : 0;
    int32_t i = 0;

    // Blanks and one sign before the number.
    int sign = 0;
    for (; i < n; ++i) {
        const unsigned char c = t[i];
        if (c == ' ') continue;
        if (c == '+' || c == '-') {
            if (sign != 0) return COMN_ARITH_SYNTAX;
            sign = c == '+' ? 1 : -1;
            continue;
        }
        break;
    }

    // Mantissa. A run of digits is measured first; as many of them as the scale and the
    // area allow go into the magnitude in bulk, the rest one by one through the refusal and
    // rounding rule.
    Nat mag;
    mag.n = 0;
    int32_t frac = -1, total = 0, significant = 0, dropped = 0;
    bool rounded = false, any_digit = false, exponent_mark = false;
    while (i < n) {
        const unsigned char c = t[i];
        if (is_digit(c)) {
            any_digit = true;
            const int32_t run_end = digit_run_end(t, i, n);
            while (i < run_end) {
                if (frac <= req_scale && significant < limit) {
                    if (significant == 0 && t[i] == '0') { // a leading zero: no value
                        ++total;
                        if (frac >= 0) ++frac;
                        ++i;
                        continue;
                    }
                    int32_t take = std::min(run_end - i, limit - significant);
                    if (frac >= 0) take = std::min(take, req_scale - frac + 1);
                    accumulate(mag, t + i, take);
                    total += take;
                    significant += take;
                    if (frac >= 0) frac += take;
                    i += take;
                    continue;
                }
                if (mode != 1) return COMN_ARITH_DROPPED;
                if (frac >= req_scale && t[i] >= '5' && !rounded) {
                    Nat one;
                    wide::set_u64(one, 1);
                    wide::add(mag, mag, one);
                    rounded = true;
                }
                if (frac >= 0) ++frac;
                ++dropped;
                ++i;
            }
            continue;
        }
        if (c == '.' && frac < 0) {
            frac = 0;
            ++i;
            continue;
        }
        if (c == 'e' || c == 'E') {
            exponent_mark = true;
            ++i;
            break;
        }
        // Anything else ends the number: only white space may follow.
        if (!rest_is_space(t, i, n)) return COMN_ARITH_SYNTAX;
        i = n;
    }
    if (!any_digit) return COMN_ARITH_SYNTAX;

    // Exponent.
    int32_t exponent = 0;
    if (exponent_mark) {
        int exp_sign = 1;
        if (i < n && (t[i] == '-' || t[i] == '+')) {
            if (t[i] == '-') exp_sign = -1;
            ++i;
        }
        int taken = 0; // exponent characters after the sign
        for (; i < n; ++i, ++taken) {
            const unsigned char c = t[i];
            if (taken >= 2 && is_space(c)) {
                if (!rest_is_space(t, i, n)) return COMN_ARITH_SYNTAX;
                break;
            }
            if (!is_digit(c)) return COMN_ARITH_SYNTAX;
            exponent = exponent >= kExponentCap ? kExponentCap : exponent * 10 + (c - '0');
        }
        if (taken == 0) return COMN_ARITH_SYNTAX;
        exponent *= exp_sign;
    }

    ExactNumericRef x{arealen, static_cast<uint8_t>(limit), 0, area};
    if (!wide::to_be(mag, area + 1, arealen - 1)) return COMN_ARITH_OVERFLOW;

    if (frac < 0) frac = 0;
    const int64_t e = static_cast<int64_t>(exponent) + dropped - frac; // value = mag * 10^e
    auto clamp = [](int64_t k) {
        return static_cast<int32_t>(k > 100000 ? 100000 : k < -100000 ? -100000 : k);
    };

    if (req_scale <= CS_MAX_SCALE) {
        const int64_t k = req_scale + e;
        if (total >= -k) {
            const int32_t rc = com__exctnume_scale(&x, nullptr, clamp(k));
            if (rc != COMN_ARITH_OK && !(rc == COMN_ARITH_DROPPED && mode == 1)) return rc;
        } else {
            // The whole value lies below the last digit the scale keeps.
            if (mode != 1) return COMN_ARITH_DROPPED;
            std::memset(area, 0, static_cast<size_t>(arealen));
        }
    } else if (e > 0) {
        *scale = 0;
        const int32_t rc = com__exctnume_scale(&x, nullptr, clamp(e));
        if (rc != COMN_ARITH_OK) return rc;
    } else {
        *scale = static_cast<uint8_t>(frac > 0 ? frac : e);
    }

    if (area[0] != 0) return COMN_ARITH_OVERFLOW;

    if (req_prec != 255) {
        if (sign < 0 && significant >= 1 && (arealen != 2 || area[1] != 0)) area[0] = 1;
        x.precision = static_cast<uint8_t>(req_prec);
        return com__exctnume_checkprecision(&x) ? COMN_ARITH_OVERFLOW : COMN_ARITH_OK;
    }

    // Precision from the text: the digits taken, and the area shrinks to its length.
    int prec = total > 1 ? total : 1;
    if (prec > CS_MAX_PREC) return COMN_ARITH_OVERFLOW;
    const int32_t want = Com__Nume_Prec_To_Len[prec];
    uint8_t *start = area;
    int32_t len = arealen;
    while (len > want && start[0] == 0)
        ++start, --len;
    if (start[0] != 0) --start, ++len;
    if (len != want) return COMN_ARITH_OVERFLOW;
    if (prec >= 39 && *scale < prec) prec = trim_wide_value(start, len, prec, *scale);
    // Dropped digits may have multiplied the value beyond the digits that were read.
    const ExactNumericRef fitted{len, static_cast<uint8_t>(prec), *scale, start};
    if (com__exctnume_checkprecision(&fitted)) return COMN_ARITH_OVERFLOW;
    if (sign < 0 && significant >= 1) start[0] = 1;
    *bytes = start;
    *length = len;
    *precision = static_cast<uint8_t>(prec);
    return COMN_ARITH_OK;
}
