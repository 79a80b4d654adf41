// Collation and classification. Collation: the primary comparison of two 64-byte iso_1
// strings equal up to their last 8 bytes under the nocase and dictionary orders, beside ICU's
// ucol_strcoll at secondary strength (case ignored, accents counted) on the same text in
// UTF-16, and strcasecmp. Classification: counting letters, digits and spaces in a 4 KiB
// buffer through the attribute record and the global map, beside <ctype.h>.
#include <benchmark/benchmark.h>
#include <strings.h>

#include <cctype>
#include <clocale>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "comnlib.h"

#ifdef HAVE_ICU
#include <unicode/ucol.h>
#endif

namespace {

constexpr int Pairs = 64;

// Fixed-seed pairs of 64-byte iso_1 strings (letters, some accented, and blanks) that differ
// only in their last 8 bytes.
struct Data {
    std::vector<std::string> a, b;
    Data() {
        std::mt19937 rng(1234);
        const std::string alphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJ \xe9\xe8\xe0\xfc\xf6";
        auto pick = [&] { return alphabet[rng() % alphabet.size()]; };
        for (int i = 0; i < Pairs; ++i) {
            std::string s(64, ' ');
            for (auto &c : s)
                c = pick();
            std::string t = s;
            for (int k = 56; k < 64; ++k)
                t[k] = pick();
            a.push_back(s);
            b.push_back(t);
        }
    }
};
const Data &data() {
    static Data d;
    return d;
}

struct Order {
    ComContext ctx{};
    const uint8_t *table = nullptr;
    explicit Order(const char *name) {
        if (!std::getenv("VELDAR")) setenv("VELDAR", COMN_HOME, 1);
        ComCharsetDesc *d = nullptr;
        if (com__charset_desc_get(&ctx, "iso_1", name, &d) == 1) table = d->sort_table;
    }
    ~Order() { com__charset_drop_all(&ctx); }
};

void compare_order(benchmark::State &state, const char *name) {
    Order o(name);
    if (!o.table) {
        state.SkipWithError("sort order not found (set VELDAR)");
        return;
    }
    const Data &d = data();
    int64_t sum = 0;
    for (auto _ : state)
        for (int i = 0; i < Pairs; ++i)
            sum += com_ps_dl_sqlhilo(o.table, d.a[i].data(), 64, d.b[i].data(), 64);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * Pairs);
}
void BM_comn_nocase(benchmark::State &s) {
    compare_order(s, "nocase");
}
void BM_comn_dict(benchmark::State &s) {
    compare_order(s, "dict");
}
BENCHMARK(BM_comn_nocase);
BENCHMARK(BM_comn_dict);

void BM_strcasecmp(benchmark::State &state) {
    const Data &d = data();
    int64_t sum = 0;
    for (auto _ : state)
        for (int i = 0; i < Pairs; ++i)
            sum += strcasecmp(d.a[i].c_str(), d.b[i].c_str()) > 0;
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * Pairs);
}
BENCHMARK(BM_strcasecmp);

#ifdef HAVE_ICU
void BM_icu_ucol_strcoll_secondary(benchmark::State &state) {
    UErrorCode err = U_ZERO_ERROR;
    UCollator *coll = ucol_open("en", &err);
    if (U_FAILURE(err)) {
        state.SkipWithError("ucol_open failed");
        return;
    }
    ucol_setStrength(coll, UCOL_SECONDARY);
    const Data &d = data();
    std::vector<std::u16string> a, b; // iso_1 bytes are their own code points
    for (int i = 0; i < Pairs; ++i) {
        a.emplace_back(d.a[i].begin(), d.a[i].end());
        b.emplace_back(d.b[i].begin(), d.b[i].end());
        for (auto *s : {&a.back(), &b.back()})
            for (auto &c : *s)
                c = static_cast<unsigned char>(c);
    }
    int64_t sum = 0;
    for (auto _ : state)
        for (int i = 0; i < Pairs; ++i)
            sum += ucol_strcoll(coll, reinterpret_cast<const UChar *>(a[i].data()), 64,
                                reinterpret_cast<const UChar *>(b[i].data()), 64);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * Pairs);
    ucol_close(coll);
}
BENCHMARK(BM_icu_ucol_strcoll_secondary);
#endif

// 4 KiB of fixed-seed iso_1 text.
const std::string &buffer() {
    static const std::string buf = [] {
        std::mt19937 rng(99);
        std::string s(4096, ' ');
        for (auto &c : s)
            c = static_cast<char>(rng() % 256);
        return s;
    }();
    return buf;
}

// The header's inline forms (what a per-byte loop compiles to) and, in the _call rows, the
// exported routines reached through a call each.
#define COMN_CLASSIFY_BENCH(name, setup, alpha, digit, space)                                      \
    void name(benchmark::State &state) {                                                           \
        const std::string &buf = buffer();                                                         \
        setup;                                                                                     \
        int64_t n = 0;                                                                             \
        for (auto _ : state)                                                                       \
            for (const char &c : buf)                                                              \
                n += ((alpha) != 0) + ((digit) != 0) + ((space) != 0);                             \
        benchmark::DoNotOptimize(n);                                                               \
        state.SetBytesProcessed(state.iterations() * 4096);                                        \
    }                                                                                              \
    BENCHMARK(name);

COMN_CLASSIFY_BENCH(BM_classify_comn_attr, const CharAttrib *attr = com_get_charattrib(),
                    comn_isalpha(attr, &c), comn_isdigit(attr, &c), comn_isspace(attr, &c))
COMN_CLASSIFY_BENCH(BM_classify_comn_attr_call, const CharAttrib *attr = com_get_charattrib(),
                    (comn_isalpha)(attr, &c), (comn_isdigit)(attr, &c), (comn_isspace)(attr, &c))
COMN_CLASSIFY_BENCH(BM_classify_com_global, (void)0, com_isalpha(c), com_isdigit(c), com_isspace(c))
COMN_CLASSIFY_BENCH(BM_classify_com_global_call, (void)0, (com_isalpha)(c), (com_isdigit)(c),
                    (com_isspace)(c))

void BM_classify_ctype(benchmark::State &state) {
    std::setlocale(LC_CTYPE, "C");
    const std::string &buf = buffer();
    int64_t n = 0;
    for (auto _ : state)
        for (const char c : buf) {
            const int u = static_cast<unsigned char>(c);
            n += (std::isalpha(u) != 0) + (std::isdigit(u) != 0) + (std::isspace(u) != 0);
        }
    benchmark::DoNotOptimize(n);
    state.SetBytesProcessed(state.iterations() * 4096);
}
BENCHMARK(BM_classify_ctype);

} // namespace
