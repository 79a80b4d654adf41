// Text output through the conversion table (lookup plus call per value, as a client layer
// does), each beside its baseline on the same fixed-seed values:
//   int to text          against std::to_chars plus the copy into the destination;
//   float to text        against snprintf("%.17g") and std::to_chars(general, 17);
//   1 KiB binary to text against a plain table-driven hex loop (bytes of text per second);
//   20-byte text to text in one character set against memcpy.
// Before timing, each benchmark checks that the library and its baseline produce the same
// bytes (for floats, the library's text is the baseline's after its ".0" and "0." rules).
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "comnlib.h"

namespace {

constexpr size_t kValues = 4096;
constexpr int32_t kRoom = 32; // destination size of a number's text

struct Conv {
    ComContext ctx{};
    DataFormat sf{}, df{};
    Conv(int32_t srctype, int32_t srclen, int32_t desttype, int32_t destlen) {
        com_conv_init(&ctx);
        sf.datatype = srctype;
        sf.maxlength = srclen;
        df.datatype = desttype;
        df.maxlength = destlen;
    }
    ~Conv() { com_conv_free(&ctx); }
    // Converts one value into out, returning the result length.
    int32_t operator()(const void *src, char *out) {
        int32_t len = 0;
        com_conv_func(&ctx, sf.datatype, df.datatype)(&ctx, &sf, const_cast<void *>(src), &df, out,
                                                      &len);
        return len;
    }
};

const std::vector<int32_t> &ints() {
    static const std::vector<int32_t> v = [] {
        std::mt19937 rng(7);
        std::vector<int32_t> out(kValues);
        for (auto &x : out)
            x = static_cast<int32_t>(rng()) >> (rng() % 31); // every width
        return out;
    }();
    return v;
}

const std::vector<double> &doubles() {
    static const std::vector<double> v = [] {
        std::mt19937_64 rng(8);
        std::uniform_real_distribution<double> mant(-1.0, 1.0);
        std::vector<double> out(kValues);
        for (auto &x : out)
            x = std::ldexp(mant(rng), static_cast<int>(rng() % 200) - 100);
        return out;
    }();
    return v;
}

// ---- int to text ----

void i4_tochars(const int32_t &v, char *out, int32_t &len) {
    char tmp[16];
    const auto n = static_cast<int32_t>(std::to_chars(tmp, tmp + sizeof tmp, v).ptr - tmp);
    std::memcpy(out, tmp, static_cast<size_t>(n));
    len = n;
}

template <typename Body>
void run_values(benchmark::State &state, size_t count, Body body) {
    for (auto _ : state) {
        for (size_t i = 0; i < count; ++i)
            body(i);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}

void BM_I4ToChar_ToChars(benchmark::State &state) {
    std::vector<char> out(kValues * kRoom);
    std::vector<int32_t> lens(kValues);
    const auto &in = ints();
    run_values(state, kValues, [&](size_t i) { i4_tochars(in[i], &out[i * kRoom], lens[i]); });
    benchmark::DoNotOptimize(out.data());
}

void BM_I4ToChar_Library(benchmark::State &state) {
    Conv conv(CS_INT, 4, CS_CHAR, kRoom);
    std::vector<char> out(kValues * kRoom), want(kValues * kRoom);
    std::vector<int32_t> lens(kValues), wantlens(kValues);
    for (size_t i = 0; i < kValues; ++i) {
        i4_tochars(ints()[i], &want[i * kRoom], wantlens[i]);
        lens[i] = conv(&ints()[i], &out[i * kRoom]);
        if (lens[i] != wantlens[i] ||
            std::memcmp(&out[i * kRoom], &want[i * kRoom], static_cast<size_t>(lens[i])) != 0)
            return state.SkipWithError("library and std::to_chars disagree");
    }
    const auto &in = ints();
    run_values(state, kValues, [&](size_t i) { lens[i] = conv(&in[i], &out[i * kRoom]); });
    benchmark::DoNotOptimize(out.data());
}

// ---- float to text ----

// The library's rules on a "%.17g" text: no leading "0." zero, ".0" when neither point nor
// exponent.
std::string adjusted(std::string s) {
    if (s.rfind("0.", 0) == 0) s.erase(0, 1);
    if (s.find_first_of(".e") == std::string::npos) s += ".0";
    return s;
}

void BM_Flt8ToChar_Snprintf(benchmark::State &state) {
    std::vector<char> out(kValues * kRoom);
    const auto &in = doubles();
    run_values(state, kValues,
               [&](size_t i) { std::snprintf(&out[i * kRoom], kRoom, "%.17g", in[i]); });
    benchmark::DoNotOptimize(out.data());
}

void BM_Flt8ToChar_ToChars(benchmark::State &state) {
    std::vector<char> out(kValues * kRoom);
    const auto &in = doubles();
    run_values(state, kValues, [&](size_t i) {
        char *p = &out[i * kRoom];
        std::to_chars(p, p + kRoom, in[i], std::chars_format::general, 17);
    });
    benchmark::DoNotOptimize(out.data());
}

void BM_Flt8ToChar_Library(benchmark::State &state) {
    Conv conv(CS_FLOAT, 8, CS_CHAR, kRoom);
    std::vector<char> out(kValues * kRoom);
    for (size_t i = 0; i < kValues; ++i) {
        char want[kRoom];
        std::snprintf(want, sizeof want, "%.17g", doubles()[i]);
        const int32_t n = conv(&doubles()[i], &out[i * kRoom]);
        if (std::string(&out[i * kRoom], static_cast<size_t>(n)) != adjusted(want))
            return state.SkipWithError("library and snprintf disagree");
    }
    const auto &in = doubles();
    run_values(state, kValues, [&](size_t i) { conv(&in[i], &out[i * kRoom]); });
    benchmark::DoNotOptimize(out.data());
}

// ---- binary to text ----

constexpr int32_t kBinLen = 1024;
constexpr size_t kBinValues = 64;

const std::vector<uint8_t> &binaries() {
    static const std::vector<uint8_t> v = [] {
        std::mt19937 rng(9);
        std::vector<uint8_t> out(kBinValues * kBinLen);
        for (auto &b : out)
            b = static_cast<uint8_t>(rng());
        return out;
    }();
    return v;
}

void plain_hex(const uint8_t *in, size_t n, char *out) {
    static const char digits[] = "0123456789abcdef";
    for (size_t i = 0; i < n; ++i) {
        out[2 * i] = digits[in[i] >> 4];
        out[2 * i + 1] = digits[in[i] & 15];
    }
}

void BM_BinToChar_PlainHex(benchmark::State &state) {
    std::vector<char> out(kBinValues * 2 * kBinLen);
    run_values(state, kBinValues, [&](size_t i) {
        plain_hex(&binaries()[i * kBinLen], kBinLen, &out[i * 2 * kBinLen]);
    });
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBinValues * 2 * kBinLen));
    benchmark::DoNotOptimize(out.data());
}

void BM_BinToChar_Library(benchmark::State &state) {
    Conv conv(CS_BINARY, kBinLen, CS_CHAR, 2 * kBinLen);
    std::vector<char> out(kBinValues * 2 * kBinLen), want(2 * kBinLen);
    for (size_t i = 0; i < kBinValues; ++i) {
        plain_hex(&binaries()[i * kBinLen], kBinLen, want.data());
        if (conv(&binaries()[i * kBinLen], &out[i * 2 * kBinLen]) != 2 * kBinLen ||
            std::memcmp(&out[i * 2 * kBinLen], want.data(), want.size()) != 0)
            return state.SkipWithError("library and the plain hex loop disagree");
    }
    run_values(state, kBinValues,
               [&](size_t i) { conv(&binaries()[i * kBinLen], &out[i * 2 * kBinLen]); });
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBinValues * 2 * kBinLen));
    benchmark::DoNotOptimize(out.data());
}

// ---- text to text ----

constexpr int32_t kTextLen = 20;

const std::vector<char> &texts() {
    static const std::vector<char> v = [] {
        std::mt19937 rng(10);
        std::vector<char> out(kValues * kTextLen);
        for (auto &c : out)
            c = static_cast<char>(0x20 + rng() % 95);
        return out;
    }();
    return v;
}

void BM_CharToChar_Memcpy(benchmark::State &state) {
    const auto &in = texts();
    std::vector<char> out(kValues * kRoom);
    run_values(state, kValues,
               [&](size_t i) { std::memcpy(&out[i * kRoom], &in[i * kTextLen], kTextLen); });
    benchmark::DoNotOptimize(out.data());
}

void BM_CharToChar_Library(benchmark::State &state) {
    Conv conv(CS_CHAR, kTextLen, CS_CHAR, kRoom);
    std::vector<char> out(kValues * kRoom);
    for (size_t i = 0; i < kValues; ++i)
        if (conv(&texts()[i * kTextLen], &out[i * kRoom]) != kTextLen ||
            std::memcmp(&out[i * kRoom], &texts()[i * kTextLen], kTextLen) != 0)
            return state.SkipWithError("library and memcpy disagree");
    const auto &in = texts();
    run_values(state, kValues, [&](size_t i) { conv(&in[i * kTextLen], &out[i * kRoom]); });
    benchmark::DoNotOptimize(out.data());
}

BENCHMARK(BM_I4ToChar_ToChars);
BENCHMARK(BM_I4ToChar_Library);
BENCHMARK(BM_Flt8ToChar_Snprintf);
BENCHMARK(BM_Flt8ToChar_ToChars);
BENCHMARK(BM_Flt8ToChar_Library);
BENCHMARK(BM_BinToChar_PlainHex);
BENCHMARK(BM_BinToChar_Library);
BENCHMARK(BM_CharToChar_Memcpy);
BENCHMARK(BM_CharToChar_Library);

} // namespace
