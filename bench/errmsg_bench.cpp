// Building a cached three-value error message with com_build_errmsg, against snprintf of the
// same joined text (prefix, layer and origin names and the filled message) in one run.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "comnlib.h"

namespace {

const ComErrSection kSections[] = {
    {1, "fallback"}, {2, "layers"}, {3, "origins"}, {7, "conversion"}};
const ComErrKey kPreloads[] = {{2, 4}, {3, 4}, {7, 101}};
constexpr uint32_t kNumber = COM_ERRNUM(COM_LAYER_COMMON, COM_ORIGIN_CONVERT, 7, 101);

// A message file in a scratch home, loaded once for all benchmarks.
struct Fixture {
    std::string home;
    ComContext ctx{};
    LocaleRecord loc{};
    ComErrCtx ec{&loc, "cslib.loc"};
    Fixture() {
        char tmpl[] = "/tmp/comn_bench_XXXXXX";
        home = mkdtemp(tmpl);
        const std::string dir = home + "/locales/us_english/iso_1";
        std::filesystem::create_directories(dir);
        std::ofstream(dir + "/cslib.loc")
            << "[fallback]\n1 = HY000, \"no memory\"\n[layers]\n4 = 00000, \"common library\"\n"
               "[origins]\n4 = 00000, \"conversion error\"\n[conversion]\n"
               "101 = 22003, \"The %1! value %2! lies outside the range of the destination "
               "datatype.\"\n";
        setenv("VELDAR", home.c_str(), 1);
        loc.language = const_cast<char *>("us_english");
        loc.charset = const_cast<char *>("iso_1");
        if (com_err_init(&ctx, &ec, kSections, 4, kPreloads, 3) != CS_SUCCEED) std::abort();
    }
    ~Fixture() {
        com__msgcache_drop(loc.msgcache);
        std::filesystem::remove_all(home);
    }
};

Fixture &fixture() {
    static Fixture f;
    return f;
}

void BM_com_build_errmsg(benchmark::State &state) {
    Fixture &f = fixture();
    long value = 123456;
    ComErrParams p;
    char buf[512];
    int32_t len = 0;
    // Three values: the prefix, then a string and a long that fill the template.
    com_ep_ssd(&p, "ct_convert()", "numeric", &value);
    // Both sides must produce the same text.
    char want[512];
    const int wlen = std::snprintf(want, sizeof want,
                                   "ct_convert(): common library: conversion error: The numeric "
                                   "value %ld lies outside the range of the destination datatype.",
                                   value);
    com_build_errmsg(&f.ctx, &f.ec, kNumber, &p, nullptr, 0, 7, buf, sizeof buf, &len);
    if (std::string(buf, static_cast<size_t>(len)) != std::string(want, static_cast<size_t>(wlen)))
        state.SkipWithError("com_build_errmsg and snprintf disagree");
    for (auto _ : state) {
        com_build_errmsg(&f.ctx, &f.ec, kNumber, &p, nullptr, 0, 7, buf, sizeof buf, &len);
        benchmark::DoNotOptimize(buf);
        benchmark::DoNotOptimize(len);
    }
    state.SetLabel(std::string(buf, static_cast<size_t>(len)).substr(0, 60));
}

void BM_snprintf_same_text(benchmark::State &state) {
    long value = 123456;
    const char *prefix = "ct_convert()", *layer = "common library", *origin = "conversion error";
    const char *type = "numeric";
    char buf[512];
    int len = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(prefix);
        len = std::snprintf(buf, sizeof buf,
                            "%s: %s: %s: The %s value %ld lies outside the range of the "
                            "destination datatype.",
                            prefix, layer, origin, type, value);
        benchmark::DoNotOptimize(buf);
        benchmark::DoNotOptimize(len);
    }
    state.SetLabel(std::string(buf, static_cast<size_t>(len)).substr(0, 60));
}

BENCHMARK(BM_com_build_errmsg);
BENCHMARK(BM_snprintf_same_text);

} // namespace
