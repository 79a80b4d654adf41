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
//
// Before timing, every row checks its outputs over the whole operand set against the other
// side's: the library's texts and results against GMP's (quotients rounded half away from
// zero as the library rounds them), and the __int128 results against GMP's.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
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

// ---- Outputs, for the agreement checks ----

// The library's text of v.
std::string text_of(const NumericValue &v) {
    char buf[100];
    const ExactNumericRef r{comn_num_getlen(v.precision), v.precision, v.scale,
                            const_cast<uint8_t *>(v.array)};
    const int32_t at = com__subexctnumetochar(&r, buf, sizeof buf);
    return at < 0 ? "?" : std::string(buf + at, buf + sizeof buf);
}

// The digits of a non-negative text as an integer: the decimal point dropped, then leading
// zeros (a quotient of scale 39 compares with the quotient of the dividend times 10^39).
std::string as_integer(std::string t) {
    t.erase(std::remove(t.begin(), t.end(), '.'), t.end());
    const size_t first = t.find_first_not_of('0');
    return first == std::string::npos ? "0" : t.substr(first);
}

using ClientOp = int32_t (*)(NumericValue *, NumericValue *, NumericValue *);

// The library's result on each operand pair as an integer text, by kind: 0 the sum, 1 the
// product, 2 the integer part of the quotient, 3 the quotient with its point dropped.
std::vector<std::string> library_results(const Operands &o, int kind) {
    const ClientOp op = kind == 0 ? comn_numadd : kind == 1 ? comn_nummul : comn_numdivide;
    std::vector<std::string> out;
    for (size_t k = 0; k < kCount; ++k) {
        NumericValue r{};
        if (op(const_cast<NumericValue *>(&o.na[k]), const_cast<NumericValue *>(&o.nb[k]), &r) !=
            CS_SUCCEED) {
            out.push_back("failed");
            continue;
        }
        const std::string t = text_of(r);
        out.push_back(as_integer(kind == 2 ? t.substr(0, t.find('.')) : t));
    }
    return out;
}

// False, with the row skipped, when any output differs from the other side's.
bool agree(benchmark::State &st, const std::vector<std::string> &got,
           const std::vector<std::string> &want) {
    for (size_t k = 0; k < kCount; ++k)
        if (got[k] != want[k]) {
            st.SkipWithError(("outputs differ at operand pair " + std::to_string(k) + ": " +
                              got[k] + " against " + want[k])
                                 .c_str());
            return false;
        }
    return true;
}

__extension__ typedef __int128 i128;
__extension__ typedef unsigned __int128 u128;

std::string text_of(u128 v) {
    std::string s;
    do {
        s.insert(s.begin(), static_cast<char>('0' + static_cast<int>(v % 10)));
        v /= 10;
    } while (v != 0);
    return s;
}

// A non-negative integer text modulo 2^128.
u128 wrapped(const std::string &t) {
    u128 x = 0;
    for (char c : t)
        x = x * 10 + static_cast<unsigned>(c - '0');
    return x;
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

std::string text_of(const mpz_t z) {
    char *p = mpz_get_str(nullptr, 10, z);
    std::string s(p);
    std::free(p);
    return s;
}

// 10^s, s the scale the library gives a quotient of the set: 39 decimals at precision 38,
// none at 77.
mpz_srcptr quotient_scale(int which) {
    static const struct Pow {
        mpz_t z38, z77;
        Pow() {
            mpz_init(z38);
            mpz_init(z77);
            mpz_ui_pow_ui(z38, 10, 39);
            mpz_set_ui(z77, 1);
        }
    } pow;
    return which == 380 ? pow.z38 : pow.z77;
}

// GMP's results on each pair as the timed loop computes them, by kind: 0 the sum, 1 the
// product, 2 the quotient, 3 the quotient of the dividend scaled as the library scales it.
// With round, quotients are rounded half away from zero from the remainder, as the library
// rounds them.
std::vector<std::string> gmp_results(int which, int kind, bool round) {
    const Mpz &m = mpz_of(which);
    std::vector<std::string> out;
    mpz_t r, rem, twice;
    mpz_inits(r, rem, twice, nullptr);
    for (size_t k = 0; k < kCount; ++k) {
        if (kind == 0) {
            mpz_add(r, &m.a[k], &m.b[k]);
        } else if (kind == 1) {
            mpz_mul(r, &m.a[k], &m.b[k]);
        } else {
            mpz_set(rem, &m.a[k]);
            if (kind == 3) mpz_mul(rem, rem, quotient_scale(which));
            mpz_tdiv_qr(r, rem, rem, &m.b[k]);
            mpz_mul_2exp(twice, rem, 1);
            if (round && mpz_cmp(twice, &m.b[k]) >= 0) mpz_add_ui(r, r, 1);
        }
        out.push_back(text_of(r));
    }
    mpz_clears(r, rem, twice, nullptr);
    return out;
}
#endif

// ---- Library ----

void BM_Parse(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    uint8_t area[33];
    auto parse = [&](const std::string &t) {
        uint8_t *bytes = area;
        int32_t len = comn_num_getlen(o.precision);
        uint8_t p = static_cast<uint8_t>(o.precision), s = 0;
        return com__subchartoexctnume(t.data(), static_cast<int32_t>(t.size()), &bytes, &len, &p,
                                      &s, 1);
    };
    std::vector<std::string> got;
    for (const std::string &t : o.a) {
        NumericValue v{};
        v.precision = static_cast<uint8_t>(o.precision);
        const bool ok = parse(t) == 0;
        static_assert(sizeof v.array == sizeof area, "a value's area");
        std::memcpy(v.array, area, sizeof area);
        got.push_back(ok ? text_of(v) : "failed");
    }
    if (!agree(st, got, o.a)) return;
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(parse(o.a[i++ & (kCount - 1)]));
        benchmark::DoNotOptimize(area);
    }
}

void BM_Print(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    std::vector<std::string> got;
    for (const NumericValue &v : o.na)
        got.push_back(text_of(v));
    if (!agree(st, got, o.a)) return;
    size_t i = 0;
    char buf[80];
    for (auto _ : st) {
        NumericValue &v = const_cast<NumericValue &>(o.na[i++ & (kCount - 1)]);
        const ExactNumericRef r{comn_num_getlen(v.precision), v.precision, v.scale, v.array};
        benchmark::DoNotOptimize(com__subexctnumetochar(&r, buf, sizeof buf));
        benchmark::DoNotOptimize(buf);
    }
}

// Kind is GMP's matching operation, for the agreement check.
template <ClientOp Op, int Kind>
void BM_Client(benchmark::State &st) {
    const int which = static_cast<int>(st.range(0));
    const Operands &o = pick(which);
#ifdef HAVE_GMP
    if (!agree(st, library_results(o, Kind), gmp_results(which, Kind, true))) return;
#endif
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

std::vector<i128> as_int128(const std::vector<std::string> &v) {
    std::vector<i128> out;
    for (const auto &s : v)
        out.push_back(static_cast<i128>(wrapped(s)));
    return out;
}

template <int Kind>
i128 int128_op(i128 a, i128 b) {
    if constexpr (Kind == 0)
        return a + b;
    else if constexpr (Kind == 1)
        return static_cast<i128>(static_cast<u128>(a) * static_cast<u128>(b));
    else
        return a / b;
}

template <int Kind>
void BM_Int128(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    static const std::vector<i128> a = as_int128(o.a), b = as_int128(o.b);
    // Against the library's sum, product modulo 2^128, and integer part of the quotient.
    std::vector<std::string> got, want = library_results(o, Kind);
    for (size_t k = 0; k < kCount; ++k) {
        got.push_back(text_of(static_cast<u128>(int128_op<Kind>(a[k], b[k]))));
        if (Kind == 1) want[k] = text_of(wrapped(want[k]));
    }
    if (!agree(st, got, want)) return;
    size_t i = 0;
    for (auto _ : st) {
        const size_t k = i++ & (kCount - 1);
        benchmark::DoNotOptimize(int128_op<Kind>(a[k], b[k]));
    }
}

#ifdef HAVE_GMP
void BM_GmpParse(benchmark::State &st) {
    const Operands &o = pick(static_cast<int>(st.range(0)));
    mpz_t x;
    mpz_init2(x, 512);
    std::vector<std::string> got;
    for (const std::string &t : o.a)
        got.push_back(mpz_set_str(x, t.c_str(), 10) == 0 ? text_of(x) : "failed");
    size_t i = 0;
    if (agree(st, got, o.a))
        for (auto _ : st) {
            benchmark::DoNotOptimize(mpz_set_str(x, o.a[i++ & (kCount - 1)].c_str(), 10));
        }
    mpz_clear(x);
}

void BM_GmpPrint(benchmark::State &st) {
    const int which = static_cast<int>(st.range(0));
    const Mpz &m = mpz_of(which);
    std::vector<std::string> got;
    for (const __mpz_struct &z : m.a)
        got.push_back(text_of(&z));
    if (!agree(st, got, pick(which).a)) return;
    char buf[200];
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(mpz_get_str(buf, 10, &m.a[i++ & (kCount - 1)]));
    }
}

// The GMP rows check their own operation's outputs against the library's results, quotients
// rounded as the library rounds them; the plain quotient at precision 38, which the library
// does not compute, against the integer part of the library's.
template <int Kind>
void BM_Gmp(benchmark::State &st) {
    const int which = static_cast<int>(st.range(0));
    const bool plain38 = Kind == 2 && which == 380;
    if (!agree(st, gmp_results(which, Kind, Kind >= 2 && !plain38),
               library_results(pick(which), plain38     ? 2
                                            : Kind == 2 ? 3
                                                        : Kind)))
        return;
    const Mpz &m = mpz_of(which);
    mpz_t r;
    mpz_init2(r, 1024);
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
            mpz_mul(r, &m.a[k], quotient_scale(which));
            mpz_tdiv_q(r, r, &m.b[k]);
        }
        benchmark::DoNotOptimize(r);
    }
    mpz_clear(r);
}
#endif

} // namespace

BENCHMARK(BM_Parse)->Arg(38)->Arg(77);
BENCHMARK(BM_Print)->Arg(38)->Arg(77);
BENCHMARK(BM_Client<comn_numadd, 0>)->Name("BM_NumAdd")->Arg(38)->Arg(760);
BENCHMARK(BM_Client<comn_nummul, 1>)->Name("BM_NumMul")->Arg(38)->Arg(770);
BENCHMARK(BM_Client<comn_numdivide, 3>)->Name("BM_NumDivide")->Arg(380)->Arg(771);
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
