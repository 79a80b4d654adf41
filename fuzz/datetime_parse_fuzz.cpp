// Fuzzes the date parser. The first byte picks the style and date order; the rest is the
// text. Whatever parses is printed in style 109 (millisecond precision, every field) and must
// parse back to the same value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "comnlib/datetime.h"

namespace {
constexpr int32_t kStyles[] = {0, 1, 2, 3, 4, 5, 10, 11, 101, 102, 103, 104, 105, 110, 111, 42};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0 || size > 4096) return 0;
    const int32_t style = kStyles[data[0] & 15];
    const int32_t order = (data[0] >> 4) % 7;
    // An exact-size copy, so that any read past the length is caught.
    std::vector<char> text(data + 1, data + size);
    const auto len = static_cast<int32_t>(text.size());
    const char *const *months = com__get_months();
    const char *const *shorts = com__get_shortmonths();

    DateTimeValue dt;
    const int32_t rc = com__datefromchar_mb(&dt, text.data(), len, style, order, months, shorts,
                                            nullptr);
    const bool known = rc == 0 || rc == -1 || rc == -2 || rc == 1 || rc == 2 || rc == 3 || rc == 9;
    if (!known) std::abort();
    DateTimeValue t;
    const int32_t trc = com__timefromchar_mb(&t, text.data(), len, style, nullptr);
    if (trc == 0 && t.days != 0) std::abort();
    DateTime4Value d4;
    com__date4fromchar_mb(&d4, text.data(), len, style, order, months, shorts, nullptr);
    if (rc != 0) return 0;

    char out[64];
    const int32_t n = com__datetochar(&dt, out, sizeof out, 109, shorts);
    if (n <= 0) std::abort();
    DateTimeValue back;
    if (com__datefromchar_mb(&back, out, n, 0, 1, months, shorts, nullptr) != 0) std::abort();
    if (back.days != dt.days || back.ticks != dt.ticks) std::abort();
    return 0;
}
