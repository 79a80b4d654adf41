// Locale cache speed: loading a locale that is already cached (a cache scan by name), and a
// date accessor on a data format that carries a locale, each beside a plain pointer read.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "comnlib.h"

namespace {

// A context with "fr_FR" and a few other locales cached (the wanted one is not the newest),
// and a data format whose locale is French.
struct Fixture {
    ComContext ctx{};
    LocaleHandle handle{};
    DataFormat fmt{};
    bool ok = true;
    Fixture() {
        if (!std::getenv("VELDAR")) setenv("VELDAR", COMN_SOURCE_DIR "/home", 1);
        LocaleRecord *r = nullptr;
        for (const char *name : {"fr_FR", "de_DE", "default", "french"})
            ok = ok && com_intl_load(&ctx, name, -1, &r) == 1;
        r = ctx.loc_cache->next->next->next; // fr_FR
        handle = {r, r, r, r, r, r, nullptr};
        fmt.locale = &handle;
    }
    ~Fixture() {
        com_intl_loccache_drop(&ctx);
        com__charset_drop_all(&ctx);
    }
};

Fixture &fixture() {
    static Fixture f;
    return f;
}

void BM_CachedLoad(benchmark::State &state) {
    Fixture &f = fixture();
    if (!f.ok) return state.SkipWithError("locales could not be loaded");
    LocaleRecord *r = nullptr;
    for (auto _ : state) {
        benchmark::DoNotOptimize(com_intl_load(&f.ctx, "fr_FR", 5, &r));
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_CachedLoad);

void BM_ShortMonthsAccessor(benchmark::State &state) {
    Fixture &f = fixture();
    if (!f.ok) return state.SkipWithError("locales could not be loaded");
    DataFormat *fmt = &f.fmt;
    for (auto _ : state) {
        benchmark::DoNotOptimize(fmt);
        benchmark::DoNotOptimize(com_intl_shortmonths(&f.ctx, fmt));
    }
}
BENCHMARK(BM_ShortMonthsAccessor);

// Baseline: the same answer read through the pointers directly.
void BM_PlainPointerRead(benchmark::State &state) {
    Fixture &f = fixture();
    if (!f.ok) return state.SkipWithError("locales could not be loaded");
    DataFormat *fmt = &f.fmt;
    for (auto _ : state) {
        benchmark::DoNotOptimize(fmt);
        benchmark::DoNotOptimize(fmt->locale->time->common->shortmonths);
    }
}
BENCHMARK(BM_PlainPointerRead);

} // namespace
