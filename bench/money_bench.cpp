// Money arithmetic and text against native baselines on the same fixed-seed values:
// add against int64_t addition with an overflow check, multiply and divide against __int128
// arithmetic with the same rounding and range test, print against snprintf of the integer
// and of the double, parse against strtoll and strtod. BM_LibraryCallFloor measures a call
// into the shared library that does nothing, the part of every figure the baselines lack.
// Before timing, each library row and its integer baseline are checked to agree on every
// value; the double rows (snprintf of a double, strtod) are for orientation only, as a double
// does not hold every amount exactly.
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "comnlib/money.h"

namespace {

constexpr size_t kCount = 1024;

__extension__ typedef __int128 i128;

struct Data {
    std::vector<MoneyValue> a, b;
    std::vector<int64_t> ia, ib;
    std::vector<double> da;
    std::vector<std::string> text;

    Data() {
        std::mt19937_64 rng(7);
        for (size_t i = 0; i < kCount; ++i) {
            // Values up to about 10^11 currency units, so products stay mostly in range.
            const int64_t x = static_cast<int64_t>(rng() % 1000000000000000) - 500000000000000;
            const int64_t y = (static_cast<int64_t>(rng() % 100000000) - 50000000) | 1;
            ia.push_back(x);
            ib.push_back(y);
            a.push_back(MoneyValue{static_cast<int32_t>(static_cast<uint64_t>(x) >> 32),
                                   static_cast<uint32_t>(x)});
            b.push_back(MoneyValue{static_cast<int32_t>(static_cast<uint64_t>(y) >> 32),
                                   static_cast<uint32_t>(y)});
            da.push_back(static_cast<double>(x) / 10000.0);
            char buf[40];
            const char *p = com__mnytochar(&a.back(), buf, sizeof buf, 0x0400);
            text.emplace_back(p, static_cast<size_t>(buf + sizeof buf - p));
        }
    }
};

const Data &data() {
    static const Data d;
    return d;
}

i128 round_div(i128 n, i128 d) { // half away from zero, d > 0
    const i128 q = n / d, r = n % d;
    if ((r < 0 ? -r : r) * 2 >= d) return n < 0 ? q - 1 : q + 1;
    return q;
}

bool fits(i128 v) {
    return v >= INT64_MIN && v <= INT64_MAX;
}

int64_t as_int64(const MoneyValue &m) {
    return static_cast<int64_t>((static_cast<uint64_t>(static_cast<uint32_t>(m.high)) << 32) |
                                m.low);
}

// False, with the row skipped, when the library and the native operation differ on a pair:
// the native side gives 0 where the library reports overflow.
template <typename Op, typename F>
bool agree(benchmark::State &state, Op op, F f) {
    const Data &d = data();
    for (size_t i = 0; i < kCount; ++i) {
        MoneyValue r{};
        const int64_t got = op(&d.a[i], &d.b[i], &r) == 0 ? as_int64(r) : 0;
        if (got != f(d.ia[i], d.ib[i])) {
            state.SkipWithError(("results differ at pair " + std::to_string(i)).c_str());
            return false;
        }
    }
    return true;
}

// A money operation over every pair of values, its code and result's low word summed so the
// work stays. Op is a lambda so that an add written in it takes the header's inline form.
template <typename Op>
void money_loop(benchmark::State &state, Op op) {
    const Data &d = data();
    MoneyValue r{};
    int64_t sum = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i) {
            sum += op(&d.a[i], &d.b[i], &r);
            sum += r.low;
        }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * kCount);
}

// The native equivalent: f(a, b) gives the 64-bit result for the same pair of values.
template <typename F>
void native_loop(benchmark::State &state, F f) {
    const Data &d = data();
    int64_t sum = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i) {
            const int64_t r = f(d.ia[i], d.ib[i]);
            benchmark::DoNotOptimize(r);
            sum += r;
        }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * kCount);
}

using M = const MoneyValue *;

// The library's operations and their native equivalents, which each row checks against the
// other before timing (lambdas, so that the loops inline them).
const auto money_add = [](M a, M b, MoneyValue *r) { return com__mnyadd(a, b, r); };
const auto money_mul = [](M a, M b, MoneyValue *r) { return com__mnymul(a, b, r); };
const auto money_div = [](M a, M b, MoneyValue *r) { return com__mnydiv(a, b, r); };

const auto native_add = [](int64_t a, int64_t b) -> int64_t {
    int64_t r;
    return __builtin_add_overflow(a, b, &r) ? int64_t{0} : r;
};

const auto native_mul = [](int64_t a, int64_t b) -> int64_t {
    const i128 p = round_div(static_cast<i128>(a) * b, 10000);
    return fits(p) ? static_cast<int64_t>(p) : int64_t{0};
};

const auto native_div = [](int64_t a, int64_t b) -> int64_t {
    const i128 y = b;
    const i128 q = round_div(static_cast<i128>(a) * 10000 * (y < 0 ? -1 : 1), y < 0 ? -y : y);
    return fits(q) ? static_cast<int64_t>(q) : int64_t{0};
};

// com__mnyadd as a loop over values compiles it: the header's inline form. The _Call row
// calls the exported routine for each value.
void BM_MoneyAdd(benchmark::State &state) {
    if (agree(state, money_add, native_add)) money_loop(state, money_add);
}
void BM_MoneyAdd_Call(benchmark::State &state) {
    const auto call = [](M a, M b, MoneyValue *r) { return (com__mnyadd)(a, b, r); };
    if (agree(state, call, native_add)) money_loop(state, call);
}

void BM_Int64AddChecked(benchmark::State &state) {
    if (agree(state, money_add, native_add)) native_loop(state, native_add);
}

// The cost of one call into the shared library and back, with the same operands and
// result handling as BM_MoneyAdd_Call: com__mnyrem does no work at all. It is the floor
// under every called money routine measured here, which the native baselines do not pay.
void BM_LibraryCallFloor(benchmark::State &state) {
    money_loop(state, [](M a, M b, MoneyValue *r) { return com__mnyrem(a, b, r); });
}

void BM_MoneyMul(benchmark::State &state) {
    if (agree(state, money_mul, native_mul)) money_loop(state, money_mul);
}

void BM_Int128Mul(benchmark::State &state) {
    if (agree(state, money_mul, native_mul)) native_loop(state, native_mul);
}

void BM_MoneyDiv(benchmark::State &state) {
    if (agree(state, money_div, native_div)) money_loop(state, money_div);
}

void BM_Int128Div(benchmark::State &state) {
    if (agree(state, money_div, native_div)) native_loop(state, native_div);
}

// The library's text of each value with its point dropped, against the integer's text.
bool texts_agree(benchmark::State &state) {
    const Data &d = data();
    for (size_t i = 0; i < kCount; ++i) {
        std::string digits;
        for (char c : d.text[i])
            if (c != '.' && !(c == '0' && (digits.empty() || digits == "-"))) digits += c;
        if (digits.empty() || digits == "-") digits += '0';
        if (digits != std::to_string(d.ia[i])) {
            state.SkipWithError(("texts differ at value " + std::to_string(i)).c_str());
            return false;
        }
    }
    return true;
}

// The library's parse of each text against strtoll of the integer's text.
bool parses_agree(benchmark::State &state) {
    const Data &d = data();
    for (size_t i = 0; i < kCount; ++i) {
        MoneyValue r{};
        const std::string &t = d.text[i];
        if (com__mnyfromchar_mb(&r, t.data(), static_cast<int32_t>(t.size()), 0, nullptr) != 0 ||
            as_int64(r) != std::strtoll(std::to_string(d.ia[i]).c_str(), nullptr, 10)) {
            state.SkipWithError(("parses differ at value " + std::to_string(i)).c_str());
            return false;
        }
    }
    return true;
}

void BM_MoneyPrint(benchmark::State &state) {
    if (!texts_agree(state)) return;
    const Data &d = data();
    char buf[32];
    size_t total = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i) {
            const char *p = com__mnytochar(&d.a[i], buf, sizeof buf, 0x0400);
            total += static_cast<size_t>(buf + sizeof buf - p) + static_cast<size_t>(*p);
        }
    benchmark::DoNotOptimize(total);
    state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_SnprintfInt64(benchmark::State &state) {
    if (!texts_agree(state)) return;
    const Data &d = data();
    char buf[32];
    size_t total = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i)
            total += static_cast<size_t>(
                std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(d.ia[i])) + buf[0]);
    benchmark::DoNotOptimize(total);
    state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_SnprintfDouble(benchmark::State &state) {
    const Data &d = data();
    char buf[40];
    size_t total = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i)
            total += static_cast<size_t>(std::snprintf(buf, sizeof buf, "%.4f", d.da[i]) + buf[0]);
    benchmark::DoNotOptimize(total);
    state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_MoneyParse(benchmark::State &state) {
    if (!parses_agree(state)) return;
    const Data &d = data();
    MoneyValue r;
    int64_t sum = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i) {
            const std::string &t = d.text[i];
            sum += com__mnyfromchar_mb(&r, t.data(), static_cast<int32_t>(t.size()), 0, nullptr);
            sum += r.low;
        }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_Strtoll(benchmark::State &state) {
    if (!parses_agree(state)) return;
    const Data &d = data();
    std::vector<std::string> ints;
    for (int64_t v : d.ia)
        ints.push_back(std::to_string(v));
    int64_t sum = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i)
            sum += std::strtoll(ints[i].c_str(), nullptr, 10);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_Strtod(benchmark::State &state) {
    const Data &d = data();
    double sum = 0;
    for (auto _ : state)
        for (size_t i = 0; i < kCount; ++i)
            sum += std::strtod(d.text[i].c_str(), nullptr);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * kCount);
}

} // namespace

BENCHMARK(BM_MoneyAdd);
BENCHMARK(BM_MoneyAdd_Call);
BENCHMARK(BM_Int64AddChecked);
BENCHMARK(BM_LibraryCallFloor);
BENCHMARK(BM_MoneyMul);
BENCHMARK(BM_Int128Mul);
BENCHMARK(BM_MoneyDiv);
BENCHMARK(BM_Int128Div);
BENCHMARK(BM_MoneyPrint);
BENCHMARK(BM_SnprintfInt64);
BENCHMARK(BM_SnprintfDouble);
BENCHMARK(BM_MoneyParse);
BENCHMARK(BM_Strtoll);
BENCHMARK(BM_Strtod);
