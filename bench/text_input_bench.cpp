// Text input conversions, called through the conversion table as applications call them,
// beside their baselines on the same fixed-seed data:
//   chartoi4       1- to 10-digit texts            vs std::from_chars<int>
//   chartoflt8     shortest round-trip texts of    vs strtod and std::from_chars<double>
//                  random doubles
//   chartonum      38-digit texts                  vs GMP's mpz_set_str (when GMP is found)
//   chartodatetime "Jan 15 1999 10:30:15.500PM"    vs strptime with the text's fixed format
//   chartobin      2 KiB hexadecimal texts         vs a plain table-driven decoder
// Before timing, each row checks that the library and its baseline agree on every value.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "comnlib.h"

#ifdef HAVE_GMP
#include <gmp.h>
#endif

namespace {

constexpr size_t kCount = 1024;

ComContext *context() {
    static ComContext ctx{};
    static const bool ready = com_conv_init(&ctx) == CS_SUCCEED;
    return ready ? &ctx : nullptr;
}

bool fail(benchmark::State &st, const std::string &what) {
    st.SkipWithError(("outputs differ: " + what).c_str());
    return false;
}

// The conversion from CS_CHAR to dest as the table gives it, with formats set up once the way
// an application keeps them, called once per text.
struct Conv {
    ComContext *ctx = context();
    ComConvFunc f;
    DataFormat sf{}, df{};
    explicit Conv(int32_t dest) : f(com_conv_func(ctx, CS_CHAR, dest)) {}
    int32_t operator()(const std::string &text, void *dest) {
        sf.maxlength = static_cast<int32_t>(text.size());
        int32_t len;
        return f(ctx, &sf, const_cast<char *>(text.data()), &df, dest, &len);
    }
};

// ---- Integers ----

const std::vector<std::string> &int_texts() {
    static const std::vector<std::string> v = [] {
        std::mt19937_64 rng(4);
        std::vector<std::string> out;
        for (size_t i = 0; i < kCount; ++i) {
            const int digits = 1 + static_cast<int>(i % 10);
            std::string s(1, static_cast<char>('1' + rng() % 9));
            for (int k = 1; k < digits; ++k)
                s += static_cast<char>('0' + rng() % 10);
            if (digits == 10) s[0] = '1'; // stay within 32 bits
            out.push_back(s);
        }
        return out;
    }();
    return v;
}

void BM_Int_Library(benchmark::State &st) {
    Conv f(CS_INT);
    for (const auto &t : int_texts()) {
        int32_t a = 0, b = 0;
        if (f(t, &a) != CS_SUCCEED ||
            std::from_chars(t.data(), t.data() + t.size(), b).ec != std::errc() || a != b) {
            fail(st, t);
            return;
        }
    }
    for (auto _ : st)
        for (const auto &t : int_texts()) {
            int32_t v;
            benchmark::DoNotOptimize(f(t, &v));
            benchmark::DoNotOptimize(v);
        }
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}
void BM_Int_FromChars(benchmark::State &st) {
    for (auto _ : st)
        for (const auto &t : int_texts()) {
            int32_t v = 0; // from_chars leaves it alone on a failed parse
            benchmark::DoNotOptimize(std::from_chars(t.data(), t.data() + t.size(), v));
            benchmark::DoNotOptimize(v);
        }
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}

// ---- Floats ----

const std::vector<std::string> &float_texts() {
    static const std::vector<std::string> v = [] {
        std::mt19937_64 rng(8);
        std::vector<std::string> out;
        while (out.size() < kCount) {
            const uint64_t bits = rng();
            double d;
            std::memcpy(&d, &bits, sizeof d);
            if (!std::isfinite(d)) continue;
            char b[64];
            out.emplace_back(b, std::to_chars(b, b + sizeof b, d).ptr);
        }
        return out;
    }();
    return v;
}

void BM_Float_Library(benchmark::State &st) {
    Conv f(CS_FLOAT);
    for (const auto &t : float_texts()) {
        double a = 0;
        if (f(t, &a) != CS_SUCCEED || a != std::strtod(t.c_str(), nullptr)) {
            fail(st, t);
            return;
        }
    }
    for (auto _ : st)
        for (const auto &t : float_texts()) {
            double v;
            benchmark::DoNotOptimize(f(t, &v));
            benchmark::DoNotOptimize(v);
        }
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}
void BM_Float_Strtod(benchmark::State &st) {
    for (auto _ : st)
        for (const auto &t : float_texts())
            benchmark::DoNotOptimize(std::strtod(t.c_str(), nullptr));
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}
void BM_Float_FromChars(benchmark::State &st) {
    for (auto _ : st)
        for (const auto &t : float_texts()) {
            double v;
            benchmark::DoNotOptimize(std::from_chars(t.data(), t.data() + t.size(), v));
            benchmark::DoNotOptimize(v);
        }
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}

// ---- Exact numerics ----

const std::vector<std::string> &num_texts() {
    static const std::vector<std::string> v = [] {
        std::mt19937_64 rng(38);
        std::vector<std::string> out;
        for (size_t i = 0; i < kCount; ++i) {
            std::string s(1, static_cast<char>('1' + rng() % 9));
            for (int k = 1; k < 38; ++k)
                s += static_cast<char>('0' + rng() % 10);
            out.push_back(s);
        }
        return out;
    }();
    return v;
}

void BM_Numeric_Library(benchmark::State &st) {
    Conv f(CS_NUMERIC);
    f.df.precision = 38;
#ifdef HAVE_GMP
    mpz_t z;
    mpz_init(z);
    for (const auto &t : num_texts()) {
        NumericValue v{};
        mpz_set_str(z, t.c_str(), 10);
        uint8_t mag[40] = {};
        size_t count = 0;
        mpz_export(mag, &count, 1, 1, 1, 0, z);
        const int32_t n = comn_num_getlen(38) - 1; // magnitude bytes
        if (f(t, &v) != CS_SUCCEED || count > static_cast<size_t>(n) ||
            std::memcmp(v.array + 1 + n - count, mag, count) != 0) {
            mpz_clear(z);
            fail(st, t);
            return;
        }
    }
    mpz_clear(z);
#endif
    for (auto _ : st)
        for (const auto &t : num_texts()) {
            NumericValue v;
            benchmark::DoNotOptimize(f(t, &v));
            benchmark::DoNotOptimize(v);
        }
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}
#ifdef HAVE_GMP
void BM_Numeric_GmpSetStr(benchmark::State &st) {
    mpz_t z;
    mpz_init2(z, 160);
    for (auto _ : st)
        for (const auto &t : num_texts()) {
            benchmark::DoNotOptimize(mpz_set_str(z, t.c_str(), 10));
            benchmark::ClobberMemory();
        }
    mpz_clear(z);
    st.SetItemsProcessed(static_cast<int64_t>(st.iterations() * kCount));
}
#endif

// ---- Dates ----

const std::string kDate = "Jan 15 1999 10:30:15.500PM";
constexpr char kDateFormat[] = "%b %d %Y %I:%M:%S.500%p";

void BM_Date_Library(benchmark::State &st) {
    Conv f(CS_DATETIME);
    DateTimeValue v{};
    std::tm tm{};
    DateRec r{};
    if (f(kDate, &v) != CS_SUCCEED || !strptime(kDate.c_str(), kDateFormat, &tm)) {
        fail(st, kDate);
        return;
    }
    com__datecrack(&v, &r);
    com__timecrack(&v, &r);
    if (r.year != tm.tm_year + 1900 || r.month != tm.tm_mon || r.day_of_month != tm.tm_mday ||
        r.hour != tm.tm_hour || r.minute != tm.tm_min || r.second != tm.tm_sec) {
        fail(st, "date fields");
        return;
    }
    for (auto _ : st) {
        benchmark::DoNotOptimize(f(kDate, &v));
        benchmark::DoNotOptimize(v);
    }
}
void BM_Date_Strptime(benchmark::State &st) {
    for (auto _ : st) {
        std::tm tm{};
        benchmark::DoNotOptimize(strptime(kDate.c_str(), kDateFormat, &tm));
        benchmark::DoNotOptimize(tm);
    }
}

// ---- Binary ----

const std::vector<std::string> &hex_texts() {
    static const std::vector<std::string> v = [] {
        std::mt19937_64 rng(16);
        static const char digits[] = "0123456789abcdefABCDEF";
        std::vector<std::string> out;
        for (int i = 0; i < 64; ++i) {
            std::string s;
            for (int k = 0; k < 2048; ++k)
                s += digits[rng() % 22];
            out.push_back(s);
        }
        return out;
    }();
    return v;
}

int nibble(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// A plain decoder: two nibbles per byte, each checked.
bool plain_decode(const std::string &t, uint8_t *out) {
    for (size_t i = 0; i + 1 < t.size(); i += 2) {
        const int hi = nibble(t[i]), lo = nibble(t[i + 1]);
        if ((hi | lo) < 0) return false;
        out[i / 2] = static_cast<uint8_t>(hi << 4 | lo);
    }
    return true;
}

void BM_Binary_Library(benchmark::State &st) {
    Conv f(CS_BINARY);
    f.df.maxlength = 1024;
    std::vector<uint8_t> a(1024), b(1024);
    for (const auto &t : hex_texts())
        if (f(t, a.data()) != CS_SUCCEED || !plain_decode(t, b.data()) || a != b) {
            fail(st, "hex text");
            return;
        }
    for (auto _ : st)
        for (const auto &t : hex_texts()) {
            benchmark::DoNotOptimize(f(t, a.data()));
            benchmark::ClobberMemory();
        }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * hex_texts().size() * 2048));
}
void BM_Binary_PlainDecoder(benchmark::State &st) {
    std::vector<uint8_t> b(1024);
    for (auto _ : st)
        for (const auto &t : hex_texts()) {
            benchmark::DoNotOptimize(plain_decode(t, b.data()));
            benchmark::ClobberMemory();
        }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * hex_texts().size() * 2048));
}

} // namespace

BENCHMARK(BM_Int_Library);
BENCHMARK(BM_Int_FromChars);
BENCHMARK(BM_Float_Library);
BENCHMARK(BM_Float_Strtod);
BENCHMARK(BM_Float_FromChars);
BENCHMARK(BM_Numeric_Library);
#ifdef HAVE_GMP
BENCHMARK(BM_Numeric_GmpSetStr);
#endif
BENCHMARK(BM_Date_Library);
BENCHMARK(BM_Date_Strptime);
BENCHMARK(BM_Binary_Library);
BENCHMARK(BM_Binary_PlainDecoder);
