// Answers the Python calendar oracle (calendar_oracle.py) with the library's results.
//   days   every day of the valid range, cracked, as fixed binary records
//   make   every (year 1752..10000, month -1..12, day 0..31), made, as binary records
//   ops    one line per query on stdin, one answer line each (listed at answer_ops)
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "comnlib.h"

namespace {

template <typename T>
void put(std::vector<uint8_t> &out, T v) {
    const auto *p = reinterpret_cast<const uint8_t *>(&v);
    out.insert(out.end(), p, p + sizeof v);
}

void flush(std::vector<uint8_t> &out) {
    std::fwrite(out.data(), 1, out.size(), stdout);
    out.clear();
}

// Per day: year u16, month 1..12 u8, day u8, day of year u16, weekday (0 Sunday) u8,
// ISO year u16, ISO week u8, ISO weekday u8, quarter u8, Sunday-based week u8, weekday
// counted from Sunday u8 and from Monday u8.
void dump_days() {
    std::vector<uint8_t> out;
    for (int32_t d = COM_DT_MIN_DAYS; d <= COM_DT_MAX_DAYS; ++d) {
        const DateTimeValue dt{d, 0};
        DateRec r;
        com__datecrack(&dt, &r);
        put<uint16_t>(out, static_cast<uint16_t>(r.year));
        put<uint8_t>(out, static_cast<uint8_t>(r.month + 1));
        put<uint8_t>(out, static_cast<uint8_t>(r.day_of_month));
        put<uint16_t>(out, static_cast<uint16_t>(r.day_of_year));
        put<uint8_t>(out, static_cast<uint8_t>(r.weekday));
        put<uint16_t>(out, static_cast<uint16_t>(com__datepart(DATEPART_ISOYEAR, &dt, 0)));
        put<uint8_t>(out, static_cast<uint8_t>(com__datepart(DATEPART_ISOWEEK, &dt, 0)));
        put<uint8_t>(out, static_cast<uint8_t>(com__datepart(DATEPART_ISOWEEKDAY, &dt, 0)));
        for (const int32_t part : {DATEPART_QUARTER, DATEPART_WEEK, DATEPART_WEEKDAY})
            put<uint8_t>(out, static_cast<uint8_t>(com_datepart(part, &dt, 0)));
        put<uint8_t>(out, static_cast<uint8_t>(com_datepart(DATEPART_WEEKDAY, &dt, 1)));
        if (out.size() > (1 << 20)) flush(out);
    }
    flush(out);
}

// Per (year, month, day): result code u8, then days i32 (0 unless made).
void dump_make() {
    std::vector<uint8_t> out;
    for (int32_t y = 1752; y <= 10000; ++y)
        for (int32_t m = -1; m <= 12; ++m)
            for (int32_t d = 0; d <= 31; ++d) {
                DateRec r{};
                r.year = y;
                r.month = m;
                r.day_of_month = d;
                DateTimeValue dt{};
                const int32_t rc = com__datemake(&dt, &r);
                put<uint8_t>(out, static_cast<uint8_t>(rc));
                put<int32_t>(out, rc == 0 ? dt.days : 0);
            }
    flush(out);
}

// One query per line, one answer line each:
//   D|M|Y|Q|W|K from to            day-based difference by part: "rc value"
//   d|m|y|q|w add days amount      date addition by part: "rc days"
//   H|N|S|L d1 t1 d2 t2            time-part difference: "rc value"
//   h|n|s|l days ticks amount      time-part addition: "rc days ticks"
//   c ticks                        time crack: "hour minute second millisecond"
//   t hour minute second ms        time make: "rc ticks"
//   r days ticks                   narrowing to the small datetime: "rc days minutes"
//   F days ticks style             formatted text (or "<rc>")
//   P style order text             parse of the rest of the line: "rc days ticks"
void answer_ops() {
    static const char kParts[] = "YQMKD?HNSLW";
    char line[256];
    while (std::fgets(line, sizeof line, stdin) != nullptr) {
        const char op = line[0];
        long v[4] = {};
        int used = 0;
        std::sscanf(line + 1, "%ld %ld %ld %ld%n", &v[0], &v[1], &v[2], &v[3], &used);
        const char *part_at = std::strchr(kParts, op >= 'a' ? op - 32 : op);
        const int32_t part = part_at ? static_cast<int32_t>(part_at - kParts) : -1;
        DateTimeValue a{static_cast<int32_t>(v[0]), 0};
        DateRec r{};
        int32_t value = 0;
        if (std::strchr("DMYQWK", op)) {
            const DateTimeValue to{static_cast<int32_t>(v[1]), 0};
            const int32_t rc = com__datediff(part, &a, &to, &value);
            std::printf("%d %d\n", rc, value);
        } else if (std::strchr("dmyqw", op)) {
            const int32_t rc = com__date_add(part, static_cast<int32_t>(v[1]), &a);
            std::printf("%d %d\n", rc, a.days);
        } else if (std::strchr("HNSL", op)) {
            a.ticks = static_cast<uint32_t>(v[1]);
            const DateTimeValue to{static_cast<int32_t>(v[2]), static_cast<uint32_t>(v[3])};
            const int32_t rc = com__datediff(part, &a, &to, &value);
            std::printf("%d %d\n", rc, value);
        } else if (std::strchr("hnsl", op)) {
            a.ticks = static_cast<uint32_t>(v[1]);
            const int32_t rc = com__date_add(part, static_cast<int32_t>(v[2]), &a);
            std::printf("%d %d %u\n", rc, a.days, a.ticks);
        } else if (op == 'c') {
            a.ticks = static_cast<uint32_t>(v[0]);
            com__timecrack(&a, &r);
            std::printf("%d %d %d %d\n", r.hour, r.minute, r.second, r.millisecond);
        } else if (op == 't') {
            r.hour = static_cast<int32_t>(v[0]), r.minute = static_cast<int32_t>(v[1]);
            r.second = static_cast<int32_t>(v[2]), r.millisecond = static_cast<int32_t>(v[3]);
            const int32_t rc = com__timemake(&a, &r);
            std::printf("%d %u\n", rc, a.ticks);
        } else if (op == 'r') {
            a.ticks = static_cast<uint32_t>(v[1]);
            DateTime4Value small{};
            const int32_t rc = com__dttodate4(&a, &small);
            std::printf("%d %u %u\n", rc, small.days, small.minutes);
        } else if (op == 'F') {
            a.ticks = static_cast<uint32_t>(v[1]);
            char out[64];
            const int32_t n =
                com__datetochar(&a, out, -1, static_cast<int32_t>(v[2]), com__get_shortmonths());
            std::printf(n > 0 ? "%.*s\n" : "<%d>\n", n, out);
        } else if (op == 'P') {
            // "P style order " then the text up to the newline.
            int at = 0;
            std::sscanf(line + 1, "%ld %ld %n", &v[0], &v[1], &at);
            const char *text = line + 1 + at;
            const auto len = static_cast<int32_t>(std::strcspn(text, "\n"));
            // Without an attribute record bare packed digits skip the tokenizer; with the
            // built-in record everything goes through it. Both must agree.
            DateTimeValue out[2] = {{7, 7}, {8, 8}};
            int32_t rc[2];
            for (int k = 0; k < 2; ++k)
                rc[k] = com__datefromchar_mb(
                    &out[k], text, len, static_cast<int32_t>(v[0]), static_cast<int32_t>(v[1]),
                    com__get_months(), com__get_shortmonths(), k ? com_get_charattrib() : nullptr);
            if (rc[0] != rc[1] || (rc[0] <= 0 && std::memcmp(&out[0], &out[1], sizeof out[0])))
                std::printf("paths differ: %d %d %u, %d %d %u\n", rc[0], out[0].days, out[0].ticks,
                            rc[1], out[1].days, out[1].ticks);
            else
                std::printf("%d %d %u\n", rc[0], out[0].days, out[0].ticks);
        } else {
            std::printf("?\n");
        }
    }
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) return 2;
    if (std::strcmp(argv[1], "days") == 0)
        dump_days();
    else if (std::strcmp(argv[1], "make") == 0)
        dump_make();
    else if (std::strcmp(argv[1], "ops") == 0)
        answer_ops();
    else
        return 2;
    return 0;
}
