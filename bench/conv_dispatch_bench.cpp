// A scalar conversion reached through the conversion table (lookup plus call, as a client
// layer does once per value), against a plain C cast of the same values. The lookup is the
// header's inline form of com_conv_func; the _Call row calls the exported routine.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "comnlib.h"

namespace {

constexpr size_t kValues = 4096;

const std::vector<double> &values() {
    static const std::vector<double> v = [] {
        std::mt19937_64 rng(42);
        std::uniform_real_distribution<double> d(-2e9, 2e9);
        std::vector<double> out(kValues);
        for (auto &x : out)
            x = d(rng);
        return out;
    }();
    return v;
}

void BM_PlainCast(benchmark::State &state) {
    const auto &in = values();
    std::vector<int32_t> out(in.size());
    for (auto _ : state) {
        for (size_t i = 0; i < in.size(); ++i)
            out[i] = static_cast<int32_t>(in[i]);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * in.size()));
}

template <bool Call>
void dispatched(benchmark::State &state) {
    const auto &in = values();
    std::vector<int32_t> out(in.size());
    ComContext ctx{};
    com_conv_init(&ctx);
    DataFormat sf{}, df{};
    sf.datatype = CS_FLOAT;
    sf.maxlength = 8;
    df.datatype = CS_INT;
    df.maxlength = 4;
    for (auto _ : state) {
        for (size_t i = 0; i < in.size(); ++i) {
            int32_t len;
            ComConvFunc f = Call ? (com_conv_func)(&ctx, CS_FLOAT, CS_INT)
                                 : com_conv_func(&ctx, CS_FLOAT, CS_INT);
            f(&ctx, &sf, const_cast<double *>(&in[i]), &df, &out[i], &len);
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * in.size()));
    // Both sides must agree on every in-range value.
    for (size_t i = 0; i < in.size(); ++i)
        if (out[i] != static_cast<int32_t>(in[i])) state.SkipWithError("results differ");
    com_conv_free(&ctx);
}

void BM_DispatchedConversion(benchmark::State &state) {
    dispatched<false>(state);
}
void BM_DispatchedConversion_Call(benchmark::State &state) {
    dispatched<true>(state);
}

BENCHMARK(BM_PlainCast);
BENCHMARK(BM_DispatchedConversion);
BENCHMARK(BM_DispatchedConversion_Call);

} // namespace
