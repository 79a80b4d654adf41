// Fuzz target for the client operations on NumericValues: add, subtract, multiply, divide and
// compare, on fixed-width fast paths and general ones alike.
//
// Input: one control byte, then two values. Each value is a precision byte, a scale byte and
// the rest of its bytes. With control bit 0 clear the values are parsed from digit texts made
// of those bytes, so they are proper values of their precision and scale, and the results are
// checked against each other: comparison is antisymmetric, sums and products do not depend on
// the operands' order, a sum less the second operand gives the first back (when no result
// precision is capped), a quotient by one is the dividend, a quotient by zero is refused, and
// a quotient's sign is the product of the operands'. With bit 0 set the bytes go into the
// values raw, precision, scale and magnitude alike (magnitudes past the precision, precisions
// of 0 or above 77, any sign byte): then only the result codes and the shape of each result
// are checked. Either way nothing may read or write outside the values.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "comnlib.h"

namespace {

struct Input {
    const uint8_t *p;
    size_t n;
    uint8_t byte() {
        if (n == 0) return 0;
        --n;
        return *p++;
    }
};

// A proper value: precision 1..77, scale up to the precision, digits from the input.
NumericValue parsed(Input &in) {
    NumericValue v{};
    v.precision = static_cast<uint8_t>(1 + in.byte() % 77);
    v.scale = static_cast<uint8_t>(in.byte() % (v.precision + 1));
    char text[90];
    int len = 0;
    const uint8_t shape = in.byte();
    if (shape & 1) text[len++] = '-';
    // Up to the precision's digits, the last scale of them after the point.
    const int digits = shape / 2 % (v.precision + 1);
    const int before = digits > v.scale ? digits - v.scale : 0;
    for (int i = 0; i < before; ++i)
        text[len++] = static_cast<char>('0' + in.byte() % 10);
    if (before == 0) text[len++] = '0';
    if (digits > before) {
        text[len++] = '.';
        for (int i = before; i < digits; ++i)
            text[len++] = static_cast<char>('0' + in.byte() % 10);
    }
    uint8_t *bytes = v.array;
    int32_t area = comn_num_getlen(v.precision);
    uint8_t p = v.precision, s = v.scale;
    if (com__subchartoexctnume(text, len, &bytes, &area, &p, &s, 1) != 0) std::abort();
    return v;
}

NumericValue raw(Input &in) {
    NumericValue v{};
    v.precision = in.byte();
    v.scale = in.byte();
    for (uint8_t &b : v.array)
        b = in.byte();
    return v;
}

bool is_code(int32_t rc) {
    return rc == CS_SUCCEED || rc == CS_CONV_OVERFLOW || rc == CS_CONV_DIVZERO ||
           rc == CS_CONV_DOMAIN || rc == CS_CONV_SYNTAX;
}

// A result's shape after success: a precision of 1..77, a scale within it, a sign byte of 0
// or 1, and a magnitude that prints within the precision.
void check_shape(const NumericValue &r) {
    if (r.precision < 1 || r.precision > 77 || r.scale > r.precision || r.array[0] > 1)
        std::abort();
    const ExactNumericRef ref{comn_num_getlen(r.precision), r.precision, r.scale,
                              const_cast<uint8_t *>(r.array)};
    char buf[100];
    const int32_t at = com__subexctnumetochar(&ref, buf, sizeof buf);
    if (at < 0) std::abort();
    int digits = 0;
    for (int32_t i = at; i < static_cast<int32_t>(sizeof buf); ++i)
        digits += buf[i] >= '0' && buf[i] <= '9';
    if (digits > r.precision + 1) std::abort(); // a zero before the point of a fraction
}

using Op = int32_t (*)(NumericValue *, NumericValue *, NumericValue *);

int32_t run(Op op, NumericValue a, NumericValue b, NumericValue &r) {
    r = NumericValue{};
    const int32_t rc = op(&a, &b, &r);
    if (!is_code(rc)) std::abort();
    if (rc == CS_SUCCEED) check_shape(r);
    return rc;
}

bool equal(NumericValue a, NumericValue b) {
    return comn_numcmp(&a, &b) == 0;
}

int sign(const NumericValue &v) {
    NumericValue zero{};
    zero.precision = 1;
    NumericValue x = v;
    return comn_numcmp(&x, &zero);
}

void check_algebra(const NumericValue &a, const NumericValue &b) {
    NumericValue x = a, y = b, r1, r2, r3;
    const int32_t c1 = comn_numcmp(&x, &y), c2 = comn_numcmp(&y, &x);
    if (c1 != -c2 || comn_numcmp(&x, &x) != 0) std::abort();

    const int32_t s1 = run(comn_numadd, a, b, r1), s2 = run(comn_numadd, b, a, r2);
    if (s1 != s2 || (s1 == CS_SUCCEED && !equal(r1, r2))) std::abort();
    // Below 77 digits no result precision is capped, so the sum and difference are exact.
    if (s1 == CS_SUCCEED && r1.precision < 77) {
        if (run(comn_numsub, r1, b, r3) != CS_SUCCEED || !equal(r3, a)) std::abort();
    }

    const int32_t m1 = run(comn_nummul, a, b, r1), m2 = run(comn_nummul, b, a, r2);
    if (m1 != m2 || (m1 == CS_SUCCEED && !equal(r1, r2))) std::abort();

    const int sa = sign(a), sb = sign(b);
    const int32_t d = run(comn_numdivide, a, b, r1);
    if (sb == 0 && d != CS_CONV_DIVZERO) std::abort();
    if (d == CS_SUCCEED) {
        const int sq = sign(r1);
        if (sq != 0 && sq != sa * sb) std::abort();
    }

    NumericValue one{};
    one.precision = 1;
    one.array[1] = 1;
    if (run(comn_numdivide, a, one, r1) != CS_SUCCEED || !equal(r1, a)) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 1) return 0;
    Input in{data + 1, size - 1};
    if (data[0] & 1) {
        const NumericValue a = raw(in), b = raw(in);
        NumericValue r;
        for (Op op : {comn_numadd, comn_numsub, comn_nummul, comn_numdivide}) {
            run(op, a, b, r);
            run(op, b, a, r);
        }
        NumericValue x = a, y = b;
        const int32_t c = comn_numcmp(&x, &y);
        if (c != -1 && c != 0 && c != 1 && c != CS_CONV_DOMAIN) std::abort();
        return 0;
    }
    const NumericValue a = parsed(in), b = parsed(in);
    check_algebra(a, b);
    return 0;
}
