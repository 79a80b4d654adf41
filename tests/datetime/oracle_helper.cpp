// Answers the Python calendar oracle (calendar_oracle.py) with the library's results.
//   days   every day of the valid range, cracked, as fixed binary records
//   make   every (year, month, day 1..31) of the valid years, made, as binary records
//   ops    one line per query on stdin ("op days arg"), one "rc value" line per answer
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "comnlib/datetime.h"

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

// Per (year, month, day 1..31): result code u8, then days i32 (0 unless made).
void dump_make() {
    std::vector<uint8_t> out;
    for (int32_t y = 1753; y <= 9999; ++y)
        for (int32_t m = 0; m < 12; ++m)
            for (int32_t d = 1; d <= 31; ++d) {
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

void answer_ops() {
    char op;
    long days, arg;
    while (std::scanf(" %c %ld %ld", &op, &days, &arg) == 3) {
        DateTimeValue dt{static_cast<int32_t>(days), 0};
        int32_t rc, value = 0;
        switch (op) {
        case 'D':
        case 'M':
        case 'Y': {
            const DateTimeValue to{static_cast<int32_t>(arg), 0};
            const int32_t part = op == 'D'   ? DATEPART_DAY
                                 : op == 'M' ? DATEPART_MONTH
                                             : DATEPART_YEAR;
            rc = com__datediff(part, &dt, &to, &value);
            break;
        }
        default: {
            const int32_t part = op == 'd'   ? DATEPART_DAY
                                 : op == 'm' ? DATEPART_MONTH
                                             : DATEPART_YEAR;
            rc = com__date_add(part, static_cast<int32_t>(arg), &dt);
            value = dt.days;
            break;
        }
        }
        std::printf("%d %d\n", rc, value);
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
