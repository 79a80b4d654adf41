// Exact numerics against GMP's mpz and __int128 on the same magnitudes (fixed-seed data):
// parse and print 38- and 77-digit numbers, add, multiply and divide precision-38 and
// precision-77 values.
//
// Operand sets (1024 each), selected by the benchmark argument: 38 are 38-digit integers at
// precision 38, scale 0; 77 are 77-digit integers at precision 77; 760 has 76-digit operands
// at precision 77 (so that sums fit) and 770 38-digit ones at precision 77 (so that products
// fit); 380 and 771 are the division sets. Divisors have a random number of
// digits (1 up to the operands' size). The library divides as comn_numdivide does: a
// precision-38 quotient carries 39 decimals, so its dividend is scaled by 10^39 first; the
// "scaled" GMP rows do the same work, the plain rows only the integer division.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "comnlib.h"

#ifdef HAVE_GMP
#include <gmp.h>
#endif

namespace {

constexpr size_t kCount = 1024;

struct Operands {
    std::vector<std::string> a, b; // decimal texts
    std::vector<NumericValue> na, nb;
    int precision;
};

std::string digits(std::mt19937_64 &rng, int n) {
    std::string s(static_cast<size_t>(n), '0');
    s[0] = static_cast<char>('1' + rng() % 9);
    for (int i = 1; i < n; ++i)
        s[static_cast<size_t>(i)] = static_cast<char>('0' + rng() % 10);
    return s;
}

NumericValue to_numeric(const std::string &text, int precision) {
    NumericValue v{};
    v.precision = static_cast<uint8_t>(precision);
    uint8_t *bytes = v.array;
    int32_t len = comn_num_getlen(precision);
    if (com__subchartoexctnume(text.data(), static_cast<int32_t>(text.size()), &bytes, &len,
                               &v.precision, &v.scale, 0) != 0)
        std::abort();
    return v;
}

// a_digits: digits of the first operands; b_digits 0 means random 1..a_digits.
Operands make(int precision, int a_digits, int b_digits, uint64_t seed) {
    std::mt19937_64 rng(seed);
    Operands o;
    o.precision = precision;
    for (size_t i = 0; i < kCount; ++i) {
        o.a.push_back(digits(rng, a_digits));
        o.b.push_back(digits(rng, b_digits ? b_digits : 1 + static_cast<int>(rng() % a_digits)));
        o.na.push_back(to_numeric(o.a.back(), precision));
        o.nb.push_back(to_numeric(o.b.back(), precision));
    }
    return o;
}

const Operands &set38() {
    static const Operands o = make(38, 38, 38, 1);
    return o;
}
const Operands &set77() {
    static const Operands o = make(77, 77, 77, 2);
    return o;
}
const Operands &add77() {
    static const Operands o = make(77, 76, 76, 6);
    return o;
}
const Operands &mul77() {
    static const Operands o = make(77, 38, 38, 3);
    return o;
}
const Operands &div38() {
    static const Operands o = make(38, 38, 0, 4);
    return o;
}
const Operands &div77() {
    static const Operands o = make(77, 77, 0, 5);
    return o;
}

const Operands &pick(int which) {
    switch (which) {
    case 38:
        return set38();
    case 77:
        return set77();
    case 760:
        return add77();
    case 770:
        return mul77();
    case 380:
        return div38();
    default:
        return div77();
    }
}

// ---- Library ----

void BM_Parse(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    size_t i = 0;
    uint8_t area[33];
    for (auto _ : st) {
        const std::string &t = o.a[i++ & (kCount - 1)];
        uint8_t *bytes = area;
        int32_t len = comn_num_getlen(o.precision);
        uint8_t p = static_cast<uint8_t>(o.precision), s = 0;
        benchmark::DoNotOptimize(com__subchartoexctnume(t.data(), static_cast<int32_t>(t.size()),
                                                        &bytes, &len, &p, &s, 1));
        benchmark::DoNotOptimize(area);
    }
}

void BM_Print(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    size_t i = 0;
    char buf[80];
    for (auto _ : st) {
        NumericValue &v = const_cast<NumericValue &>(o.na[i++ & (kCount - 1)]);
        const ExactNumericRef r{comn_num_getlen(v.precision), v.precision, v.scale, v.array};
        benchmark::DoNotOptimize(com__subexctnumetochar(&r, buf, sizeof buf));
        benchmark::DoNotOptimize(buf);
    }
}

template <int32_t (*Op)(NumericValue *, NumericValue *, NumericValue *)>
void BM_Client(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    size_t i = 0;
    NumericValue r{};
    int failures = 0;
    for (auto _ : st) {
        const size_t k = i++ & (kCount - 1);
        failures += Op(const_cast<NumericValue *>(&o.na[k]), const_cast<NumericValue *>(&o.nb[k]),
                       &r) != CS_SUCCEED;
        benchmark::DoNotOptimize(r);
    }
    if (failures) st.SetLabel("failures: " + std::to_string(failures));
}

// ---- __int128 (precision 38 only; the product wraps) ----

__extension__ typedef __int128 i128;

std::vector<i128> as_int128(const std::vector<std::string> &v) {
    std::vector<i128> out;
    for (const auto &s : v) {
        i128 x = 0;
        for (char c : s)
            x = x * 10 + (c - '0');
        out.push_back(x);
    }
    return out;
}

template <int Kind>
void BM_Int128(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    static const std::vector<i128> a = as_int128(o.a), b = as_int128(o.b);
    size_t i = 0;
    for (auto _ : st) {
        const size_t k = i++ & (kCount - 1);
        i128 r;
        if constexpr (Kind == 0)
            r = a[k] + b[k];
        else if constexpr (Kind == 1)
            r = static_cast<i128>(static_cast<unsigned __int128>(a[k]) * b[k]);
        else
            r = a[k] / b[k];
        benchmark::DoNotOptimize(r);
    }
}

#ifdef HAVE_GMP
struct Mpz {
    std::vector<__mpz_struct> a, b;
    explicit Mpz(const Operands &o) : a(kCount), b(kCount) {
        for (size_t i = 0; i < kCount; ++i) {
            mpz_init_set_str(&a[i], o.a[i].c_str(), 10);
            mpz_init_set_str(&b[i], o.b[i].c_str(), 10);
        }
    }
};

const Mpz &mpz_of(int which) {
    static const Mpz m38(set38()), m77(set77()), ma77(add77()), mm77(mul77()), d38(div38()),
        d77(div77());
    switch (which) {
    case 38:
        return m38;
    case 77:
        return m77;
    case 760:
        return ma77;
    case 770:
        return mm77;
    case 380:
        return d38;
    default:
        return d77;
    }
}

void BM_GmpParse(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    mpz_t x;
    mpz_init2(x, 512);
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(mpz_set_str(x, o.a[i++ & (kCount - 1)].c_str(), 10));
    }
    mpz_clear(x);
}

void BM_GmpPrint(benchmark::State &st) {
    const Mpz &m = mpz_of(static_cast<int>(st.range(0)));
    char buf[200];
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(mpz_get_str(buf, 10, &m.a[i++ & (kCount - 1)]));
    }
}

template <int Kind>
void BM_Gmp(benchmark::State &st) {
    const int which = static_cast<int>(st.range(0));
    const Mpz &m = mpz_of(which);
    mpz_t r, scale;
    mpz_init2(r, 1024);
    mpz_init(scale);
    mpz_ui_pow_ui(scale, 10, which == 380 ? 39 : 0);
    size_t i = 0;
    for (auto _ : st) {
        const size_t k = i++ & (kCount - 1);
        if constexpr (Kind == 0) {
            mpz_add(r, &m.a[k], &m.b[k]);
        } else if constexpr (Kind == 1) {
            mpz_mul(r, &m.a[k], &m.b[k]);
        } else if constexpr (Kind == 2) {
            mpz_tdiv_q(r, &m.a[k], &m.b[k]);
        } else { // the scaled division the library performs
            mpz_mul(r, &m.a[k], scale);
            mpz_tdiv_q(r, r, &m.b[k]);
        }
        benchmark::DoNotOptimize(r);
    }
    mpz_clear(r);
    mpz_clear(scale);
}
#endif

} // namespace

BENCHMARK(BM_Parse)->Arg(38)->Arg(77);
BENCHMARK(BM_Print)->Arg(38)->Arg(77);
BENCHMARK(BM_Client<comn_numadd>)->Name("BM_NumAdd")->Arg(38)->Arg(760);
BENCHMARK(BM_Client<comn_nummul>)->Name("BM_NumMul")->Arg(38)->Arg(770);
BENCHMARK(BM_Client<comn_numdivide>)->Name("BM_NumDivide")->Arg(380)->Arg(771);
BENCHMARK(BM_Int128<0>)->Name("BM_Int128Add")->Arg(38);
BENCHMARK(BM_Int128<1>)->Name("BM_Int128MulWrapping")->Arg(38);
BENCHMARK(BM_Int128<2>)->Name("BM_Int128Div")->Arg(380);
#ifdef HAVE_GMP
BENCHMARK(BM_GmpParse)->Arg(38)->Arg(77);
BENCHMARK(BM_GmpPrint)->Arg(38)->Arg(77);
BENCHMARK(BM_Gmp<0>)->Name("BM_GmpAdd")->Arg(38)->Arg(760);
BENCHMARK(BM_Gmp<1>)->Name("BM_GmpMul")->Arg(38)->Arg(770);
BENCHMARK(BM_Gmp<2>)->Name("BM_GmpDivide")->Arg(380)->Arg(771);
BENCHMARK(BM_Gmp<3>)->Name("BM_GmpDivideScaled")->Arg(380);
#endif
