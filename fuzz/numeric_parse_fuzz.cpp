// Fuzz target for the exact-numeric text parser and printer.
//
// Input: three control bytes (requested precision, requested scale, area length and mode),
// then the text. Whatever the text, the parser must stay inside its area; when it succeeds
// with an ordinary precision and scale, the printed value must parse back (refusing any lost
// digit, into an area of the precision's own length) to the same value, and printing into a
// shorter buffer must fail cleanly.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "comnlib.h"

namespace {

uint8_t pick(uint8_t b) {
    const int v = b % 80;
    return static_cast<uint8_t>(v >= 78 ? 255 : v);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 3) return 0;
    uint8_t p = pick(data[0]), s = pick(data[1]);
    const int32_t arealen0 = data[2] % 36;
    const int mode = data[2] & 0x80 ? 1 : 0;
    const char *text = reinterpret_cast<const char *>(data + 3);
    const auto textlen = static_cast<int32_t>(size - 3);

    uint8_t area[35];
    uint8_t *bytes = area;
    int32_t len = arealen0;
    const int rc = com__subchartoexctnume(text, textlen, &bytes, &len, &p, &s, mode);
    if (rc != 0 || p < 1 || p > 77 || s > 77) return 0;
    if (bytes < area || bytes + len > area + 33) std::abort();

    const ExactNumericRef value{len, p, s, bytes};
    char buf[120];
    const int start = com__subexctnumetochar(&value, buf, sizeof buf);
    if (start < 0) std::abort(); // 77 digits, a sign and a point always fit
    const int32_t n = static_cast<int32_t>(sizeof buf) - start;
    if (com__subexctnumetochar(&value, buf, n - 1) != -1) std::abort();

    uint8_t again[35];
    uint8_t *bytes2 = again;
    int32_t len2 = comn_num_getlen(p); // an area that holds every value of the precision
    uint8_t p2 = p, s2 = s;
    const int rc2 = com__subchartoexctnume(buf + start, n, &bytes2, &len2, &p2, &s2, 0);
    if (rc2 != 0) std::abort();
    const ExactNumericRef back{len2, p2, s2, bytes2};
    if (com__exctnume_cmp(&value, &back, COMN_NUME_CMP_SIGNED | COMN_NUME_CMP_ALIGN) != 0)
        std::abort();
    return 0;
}
