// Fuzz target of the template filler: the first byte picks the format and the output size,
// the rest is the template. Whatever it holds, the filler answers a length that matches the
// terminated text it wrote, or a negative status.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "comnlib/intl.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const std::string tmpl(reinterpret_cast<const char *>(data + 1), size - 1);
    const int32_t out_size = 1 + (data[0] & 0x3f);
    char *buf = static_cast<char *>(std::malloc(static_cast<size_t>(out_size)));
    int32_t rc;
    switch (data[0] >> 6) {
    case 0:
        rc = intl_strbuild(buf, out_size, tmpl.c_str(), "");
        break;
    case 1:
        rc = intl_strbuild(buf, out_size, tmpl.c_str(), "%s", "value");
        break;
    case 2:
        rc = intl_strbuild(buf, out_size, tmpl.c_str(), "%ld %s", -123456789L, "x");
        break;
    default:
        rc = intl_strbuild(buf, out_size, tmpl.c_str(), "%d %ld %s", 7, 8L, "");
        break;
    }
    if (rc >= 0 && (rc >= out_size || std::strlen(buf) != static_cast<size_t>(rc))) std::abort();
    std::free(buf);
    return 0;
}
