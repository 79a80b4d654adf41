// Date and time: the library beside the usual C and civil-date baselines, on the same
// fixed-seed data.
//   crack / make     com__datecrack+timecrack, com__datemake+timemake
//                    vs civil_from_days / days_from_civil (the well-known public-domain
//                    civil-date algorithms, written out below) plus the time split
//   parse            com__datefromchar_mb vs strptime with the one fixed format of the text
//   format           com__datetochar styles 0 and 109 vs strftime of the same layout
// Before timing, each row checks that the library and its baseline agree on every value
// (strftime has no milliseconds: style 109's are compared as 000).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "comnlib/datetime.h"

namespace {

constexpr int kN = 4096;

std::vector<DateTimeValue> values() {
    std::mt19937 rng(1999);
    std::uniform_int_distribution<int32_t> day(COM_DT_MIN_DAYS, COM_DT_MAX_DAYS);
    std::uniform_int_distribution<uint32_t> tick(0, COM_DT_TICKS_PER_DAY - 1);
    std::vector<DateTimeValue> v(kN);
    for (auto &x : v)
        x = {day(rng), tick(rng)};
    return v;
}

// Civil-date baselines: days since 1970-01-01 to and from (y, m, d), proleptic Gregorian.
struct Civil {
    int32_t y;
    uint32_t m, d;
};
constexpr Civil civil_from_days(int32_t z) {
    z += 719468;
    const int32_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<uint32_t>(z - era * 146097);                   // [0, 146096]
    const uint32_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365; // [0, 399]
    const int32_t y = static_cast<int32_t>(yoe) + era * 400;
    const uint32_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100); // [0, 365]
    const uint32_t mp = (5 * doy + 2) / 153;                      // [0, 11]
    const uint32_t d = doy - (153 * mp + 2) / 5 + 1;              // [1, 31]
    const uint32_t m = mp < 10 ? mp + 3 : mp - 9;                 // [1, 12]
    return {y + (m <= 2), m, d};
}
constexpr int32_t days_from_civil(int32_t y, uint32_t m, uint32_t d) {
    y -= m <= 2;
    const int32_t era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<uint32_t>(y - era * 400);                // [0, 399]
    const uint32_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1; // [0, 365]
    const uint32_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;           // [0, 146096]
    return era * 146097 + static_cast<int32_t>(doe) - 719468;
}

// 1900-01-01, the library's day 0, in days since 1970-01-01.
constexpr int32_t kEpoch1900 = -25567;

// The time of day split as the baselines split it: hours, minutes, seconds, milliseconds.
struct Clock {
    uint32_t h, mi, s, ms;
};
constexpr Clock split_ticks(uint32_t t) {
    return {t / 1080000, t / 18000 % 60, t / 300 % 60, t % 300 * 10 / 3};
}

bool fail(benchmark::State &st, const char *what, size_t i) {
    st.SkipWithError((std::string(what) + " differ at value " + std::to_string(i)).c_str());
    return false;
}

// The library's cracked fields against civil_from_days and the tick split.
bool cracks_agree(benchmark::State &st) {
    const auto v = values();
    for (size_t i = 0; i < kN; ++i) {
        DateRec r{};
        com__datecrack(&v[i], &r);
        com__timecrack(&v[i], &r);
        const Civil c = civil_from_days(v[i].days + kEpoch1900);
        const Clock k = split_ticks(v[i].ticks);
        if (r.year != c.y || r.month + 1 != static_cast<int32_t>(c.m) ||
            r.day_of_month != static_cast<int32_t>(c.d) || r.hour != static_cast<int32_t>(k.h) ||
            r.minute != static_cast<int32_t>(k.mi) || r.second != static_cast<int32_t>(k.s) ||
            r.millisecond != static_cast<int32_t>(k.ms))
            return fail(st, "cracked fields", i);
    }
    return true;
}

void BM_Crack_Library(benchmark::State &st) {
    if (!cracks_agree(st)) return;
    const auto v = values();
    size_t i = 0;
    for (auto _ : st) {
        DateRec r;
        com__datecrack(&v[i], &r);
        com__timecrack(&v[i], &r);
        benchmark::DoNotOptimize(r);
        i = (i + 1) % kN;
    }
}
void BM_Crack_CivilFromDays(benchmark::State &st) {
    if (!cracks_agree(st)) return;
    const auto v = values();
    size_t i = 0;
    for (auto _ : st) {
        const Civil c = civil_from_days(v[i].days + kEpoch1900);
        const Clock k = split_ticks(v[i].ticks);
        benchmark::DoNotOptimize(c);
        benchmark::DoNotOptimize(k);
        i = (i + 1) % kN;
    }
}

std::vector<DateRec> records() {
    std::vector<DateRec> recs(kN);
    const auto v = values();
    for (int i = 0; i < kN; ++i) {
        com__datecrack(&v[i], &recs[i]);
        com__timecrack(&v[i], &recs[i]);
    }
    return recs;
}
// The baseline's day count and ticks from a record.
int64_t ticks_of(const DateRec &r) {
    return r.hour * 1080000LL + r.minute * 18000 + r.second * 300 + (r.millisecond * 3 + 5) / 10;
}
int32_t days_of(const DateRec &r) {
    return days_from_civil(r.year, static_cast<uint32_t>(r.month + 1),
                           static_cast<uint32_t>(r.day_of_month));
}

// The library's values made from the records against days_from_civil and the ticks sum.
bool makes_agree(benchmark::State &st) {
    const auto recs = records();
    for (size_t i = 0; i < kN; ++i) {
        DateTimeValue dt{};
        if (com__datemake(&dt, &recs[i]) != 0 || com__timemake(&dt, &recs[i]) != 0 ||
            dt.days != days_of(recs[i]) - kEpoch1900 || dt.ticks != ticks_of(recs[i]))
            return fail(st, "made values", i);
    }
    return true;
}

void BM_Make_Library(benchmark::State &st) {
    if (!makes_agree(st)) return;
    const auto recs = records();
    size_t i = 0;
    for (auto _ : st) {
        DateTimeValue dt;
        benchmark::DoNotOptimize(com__datemake(&dt, &recs[i]) + com__timemake(&dt, &recs[i]));
        benchmark::DoNotOptimize(dt);
        i = (i + 1) % kN;
    }
}
void BM_Make_DaysFromCivil(benchmark::State &st) {
    if (!makes_agree(st)) return;
    const auto recs = records();
    size_t i = 0;
    for (auto _ : st) {
        benchmark::DoNotOptimize(days_of(recs[i]));
        benchmark::DoNotOptimize(ticks_of(recs[i]));
        i = (i + 1) % kN;
    }
}

constexpr char kNamed[] = "Jan 15 1999 10:30:15.500PM";
constexpr char kPacked[] = "19990115";

// The library's value for the text, cracked, against strptime's fields.
bool parses_agree(benchmark::State &st, const char *text, const char *format) {
    const auto len = static_cast<int32_t>(std::strlen(text));
    DateTimeValue dt{};
    DateRec r{};
    std::tm tm{};
    if (com__datefromchar_mb(&dt, text, len, 0, 1, com__get_months(), com__get_shortmonths(),
                             nullptr) != 0 ||
        !strptime(text, format, &tm))
        return fail(st, "parses", 0);
    com__datecrack(&dt, &r);
    com__timecrack(&dt, &r);
    if (r.year != tm.tm_year + 1900 || r.month != tm.tm_mon || r.day_of_month != tm.tm_mday ||
        r.hour != tm.tm_hour || r.minute != tm.tm_min || r.second != tm.tm_sec)
        return fail(st, "parsed fields", 0);
    return true;
}

void parse_library(benchmark::State &st, const char *text, const char *format) {
    if (!parses_agree(st, text, format)) return;
    const auto len = static_cast<int32_t>(std::strlen(text));
    const char *const *months = com__get_months();
    const char *const *shorts = com__get_shortmonths();
    for (auto _ : st) {
        DateTimeValue dt;
        benchmark::DoNotOptimize(
            com__datefromchar_mb(&dt, text, len, 0, 1, months, shorts, nullptr));
        benchmark::DoNotOptimize(dt);
    }
}
void parse_strptime(benchmark::State &st, const char *text, const char *format) {
    if (!parses_agree(st, text, format)) return;
    for (auto _ : st) {
        std::tm tm{};
        benchmark::DoNotOptimize(strptime(text, format, &tm));
        benchmark::DoNotOptimize(tm);
    }
}
constexpr char kNamedFormat[] = "%b %d %Y %I:%M:%S.500%p";
constexpr char kPackedFormat[] = "%Y%m%d";

void BM_Parse_Library_Named(benchmark::State &st) {
    parse_library(st, kNamed, kNamedFormat);
}
void BM_Parse_Strptime_Named(benchmark::State &st) {
    parse_strptime(st, kNamed, kNamedFormat);
}
void BM_Parse_Library_Packed(benchmark::State &st) {
    parse_library(st, kPacked, kPackedFormat);
}
void BM_Parse_Strptime_Packed(benchmark::State &st) {
    parse_strptime(st, kPacked, kPackedFormat);
}

std::vector<std::tm> tms_of(const std::vector<DateRec> &recs) {
    std::vector<std::tm> tms(kN);
    for (size_t i = 0; i < kN; ++i) {
        tms[i].tm_year = recs[i].year - 1900;
        tms[i].tm_mon = recs[i].month;
        tms[i].tm_mday = recs[i].day_of_month;
        tms[i].tm_hour = recs[i].hour;
        tms[i].tm_min = recs[i].minute;
        tms[i].tm_sec = recs[i].second;
    }
    return tms;
}

// The library's text of every value against strftime's, milliseconds (the three digits
// before AM or PM in style 109) taken as 000.
bool formats_agree(benchmark::State &st, int32_t style, const char *format) {
    const auto v = values();
    const auto tms = tms_of(records());
    for (size_t i = 0; i < kN; ++i) {
        char lib[64], base[64];
        const int32_t n = com__datetochar(&v[i], lib, sizeof lib, style, com__get_shortmonths());
        const size_t m = std::strftime(base, sizeof base, format, &tms[i]);
        std::string got(lib, n > 0 ? static_cast<size_t>(n) : 0);
        if (style == 109 && got.size() >= 5) got.replace(got.size() - 5, 3, "000");
        if (got != std::string(base, m)) return fail(st, "texts", i);
    }
    return true;
}

void format_library(benchmark::State &st, int32_t style, const char *format) {
    if (!formats_agree(st, style, format)) return;
    const auto v = values();
    const char *const *shorts = com__get_shortmonths();
    size_t i = 0;
    char out[64];
    for (auto _ : st) {
        benchmark::DoNotOptimize(com__datetochar(&v[i], out, sizeof out, style, shorts));
        benchmark::ClobberMemory();
        i = (i + 1) % kN;
    }
}
void format_strftime(benchmark::State &st, int32_t style, const char *format) {
    if (!formats_agree(st, style, format)) return;
    const auto tms = tms_of(records());
    size_t i = 0;
    char out[64];
    for (auto _ : st) {
        benchmark::DoNotOptimize(std::strftime(out, sizeof out, format, &tms[i]));
        benchmark::ClobberMemory();
        i = (i + 1) % kN;
    }
}
constexpr char kStyle0[] = "%b %e %Y %l:%M%p";
constexpr char kStyle109[] = "%b %e %Y %l:%M:%S:000%p";

void BM_Format_Library_Style0(benchmark::State &st) {
    format_library(st, 0, kStyle0);
}
void BM_Format_Strftime_Style0(benchmark::State &st) {
    format_strftime(st, 0, kStyle0);
}
void BM_Format_Library_Style109(benchmark::State &st) {
    format_library(st, 109, kStyle109);
}
void BM_Format_Strftime_Style109(benchmark::State &st) {
    format_strftime(st, 109, kStyle109);
}

} // namespace

BENCHMARK(BM_Crack_Library);
BENCHMARK(BM_Crack_CivilFromDays);
BENCHMARK(BM_Make_Library);
BENCHMARK(BM_Make_DaysFromCivil);
BENCHMARK(BM_Parse_Library_Named);
BENCHMARK(BM_Parse_Strptime_Named);
BENCHMARK(BM_Parse_Library_Packed);
BENCHMARK(BM_Parse_Strptime_Packed);
BENCHMARK(BM_Format_Library_Style0);
BENCHMARK(BM_Format_Strftime_Style0);
BENCHMARK(BM_Format_Library_Style109);
BENCHMARK(BM_Format_Strftime_Style109);
