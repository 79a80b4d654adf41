// Output conversions of exact numerics and dates, called as applications call them: the
// routine is looked up once with com_conv_func and called per value.
//   numeric to text   comn_numtochar on 38-digit values (precision 38, scale 0)
//                     vs GMP's mpz_get_str on the same integers
//   date to text      comn_datetochar in style 109 (the destination's locale asks for it)
//                     vs strftime of the same layout on the same dates
// Before timing, each row checks that the library and its baseline agree on every value
// (strftime has no milliseconds: style 109's are compared as 000).
#include <benchmark/benchmark.h>

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

constexpr size_t kN = 1024;

bool fail(benchmark::State &st, const char *what, size_t i) {
    st.SkipWithError((std::string(what) + " differ at value " + std::to_string(i)).c_str());
    return false;
}

// A context whose conversion table the rows look their routines up in.
struct Ctx {
    ComContext c{};
    Ctx() {
        if (com_conv_init(&c) != CS_SUCCEED) std::abort();
    }
    ~Ctx() { com_conv_free(&c); }
};

// ---- Numeric to text ----

// 38-digit texts, first digit non-zero, a third of them negative.
const std::vector<std::string> &numeric_texts() {
    static const std::vector<std::string> texts = [] {
        std::mt19937_64 rng(38);
        std::vector<std::string> v(kN);
        for (auto &s : v) {
            if (rng() % 3 == 0) s += '-';
            s += static_cast<char>('1' + rng() % 9);
            for (int i = 1; i < 38; ++i)
                s += static_cast<char>('0' + rng() % 10);
        }
        return v;
    }();
    return texts;
}

std::vector<NumericValue> numerics() {
    std::vector<NumericValue> out;
    for (const auto &t : numeric_texts()) {
        NumericValue v{};
        v.precision = 38;
        uint8_t *bytes = v.array;
        int32_t len = comn_num_getlen(38);
        if (com__subchartoexctnume(t.data(), static_cast<int32_t>(t.size()), &bytes, &len,
                                   &v.precision, &v.scale, 0) != 0)
            std::abort();
        out.push_back(v);
    }
    return out;
}

void BM_NumToChar_Library(benchmark::State &st) {
    Ctx ctx;
    const ComConvFunc f = com_conv_func(&ctx.c, CS_NUMERIC, CS_CHAR);
    if (!f) {
        st.SkipWithError("no numeric-to-text conversion in the table");
        return;
    }
    auto values = numerics();
    DataFormat sf{}, df{};
    sf.datatype = CS_NUMERIC;
    sf.maxlength = sizeof(NumericValue);
    df.datatype = CS_CHAR;
    df.maxlength = 80;
    char out[80];
    int32_t len = 0;
    for (size_t i = 0; i < kN; ++i) {
        if (f(&ctx.c, &sf, &values[i], &df, out, &len) != CS_SUCCEED ||
            std::string(out, static_cast<size_t>(len)) != numeric_texts()[i])
            return void(fail(st, "texts", i));
    }
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(f(&ctx.c, &sf, &values[i], &df, out, &len));
        benchmark::ClobberMemory();
        i = (i + 1) & (kN - 1);
    }
}

#ifdef HAVE_GMP
void BM_NumToChar_GmpGetStr(benchmark::State &st) {
    std::vector<mpz_t> z(kN);
    char out[80];
    for (size_t i = 0; i < kN; ++i) {
        mpz_init_set_str(z[i], numeric_texts()[i].c_str(), 10);
        if (numeric_texts()[i] != mpz_get_str(out, 10, z[i])) return void(fail(st, "texts", i));
    }
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(mpz_get_str(out, 10, z[i]));
        benchmark::ClobberMemory();
        i = (i + 1) & (kN - 1);
    }
    for (auto &x : z)
        mpz_clear(x);
}
#endif

// ---- Date to text ----

std::vector<DateTimeValue> dates() {
    std::mt19937 rng(109);
    std::uniform_int_distribution<int32_t> day(COM_DT_MIN_DAYS, COM_DT_MAX_DAYS);
    std::uniform_int_distribution<uint32_t> tick(0, COM_DT_TICKS_PER_DAY - 1);
    std::vector<DateTimeValue> v(kN);
    for (auto &x : v)
        x = {day(rng), tick(rng)};
    return v;
}

// The same dates as struct tm, from the library's own calendar (taken once, untimed).
std::vector<std::tm> tms(const std::vector<DateTimeValue> &v) {
    std::vector<std::tm> out(kN);
    for (size_t i = 0; i < kN; ++i) {
        DateRec r{};
        com__datecrack(&v[i], &r);
        com__timecrack(&v[i], &r);
        out[i].tm_year = r.year - 1900;
        out[i].tm_mon = r.month;
        out[i].tm_mday = r.day_of_month;
        out[i].tm_hour = r.hour;
        out[i].tm_min = r.minute;
        out[i].tm_sec = r.second;
    }
    return out;
}

constexpr char kStyle109[] = "%b %e %Y %l:%M:%S:000%p";

std::string strftime_text(const std::tm &t) {
    char buf[64];
    return std::string(buf, std::strftime(buf, sizeof buf, kStyle109, &t));
}

void BM_DateToChar109_Library(benchmark::State &st) {
    Ctx ctx;
    const ComConvFunc f = com_conv_func(&ctx.c, CS_DATETIME, CS_CHAR);
    // A destination locale whose date style is 109.
    CommonInfo info{};
    info.dtfmt = 109;
    LocaleRecord rec{};
    rec.common = &info;
    LocaleHandle loc{};
    loc.time = &rec;
    DataFormat sf{}, df{};
    sf.datatype = CS_DATETIME;
    sf.maxlength = 8;
    df.datatype = CS_CHAR;
    df.maxlength = 64;
    df.locale = &loc;
    auto v = dates();
    const auto t = tms(v);
    char out[64];
    int32_t len = 0;
    for (size_t i = 0; i < kN; ++i) {
        if (f(&ctx.c, &sf, &v[i], &df, out, &len) != CS_SUCCEED) return void(fail(st, "codes", i));
        std::string got(out, static_cast<size_t>(len));
        if (got.size() >= 5) got.replace(got.size() - 5, 3, "000");
        if (got != strftime_text(t[i])) return void(fail(st, "texts", i));
    }
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(f(&ctx.c, &sf, &v[i], &df, out, &len));
        benchmark::ClobberMemory();
        i = (i + 1) & (kN - 1);
    }
}

void BM_DateToChar109_Strftime(benchmark::State &st) {
    const auto t = tms(dates());
    char out[64];
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(std::strftime(out, sizeof out, kStyle109, &t[i]));
        benchmark::ClobberMemory();
        i = (i + 1) & (kN - 1);
    }
}

} // namespace

BENCHMARK(BM_NumToChar_Library);
#ifdef HAVE_GMP
BENCHMARK(BM_NumToChar_GmpGetStr);
#endif
BENCHMARK(BM_DateToChar109_Library);
BENCHMARK(BM_DateToChar109_Strftime);
