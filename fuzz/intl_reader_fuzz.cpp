// Fuzz target of the platform reader: any bytes read as a sectioned file, every section,
// entry and value walked, with a few entries left half-read to exercise the skipping paths.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "intl/reader/reader_internal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    IntlFile *f = nullptr;
    if (comn::intl_open_buffer(reinterpret_cast<const char *>(data), size, &f) < 0) return 0;
    int32_t st = 0;
    size_t n = 0;
    do {
        while (char *key = intl_nextentry(f, &st)) {
            n += std::strlen(key);
            int32_t take = static_cast<int32_t>(n % 3); // 0, 1 or 2 values, then skip the rest
            for (char *v; take-- > 0 && (v = intl_nextvalue(f, &st));)
                n += std::strlen(v);
        }
    } while (st >= 0 && intl_nextsection(f, &st));
    intl_close(f);
    return n == SIZE_MAX;
}
