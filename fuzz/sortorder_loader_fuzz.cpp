// Fuzz target of the sort order loader: any bytes read as a ".srt" file; a loaded table then
// compares slices of the input under every comparison, so special lists are walked.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "intl/ctype/charset_internal.h"
#include "intl/reader/reader_internal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    IntlFile *f = nullptr;
    if (comn::intl_open_buffer(reinterpret_cast<const char *>(data), size, &f) < 0) return 0;
    int32_t st = 0, tsize = 0;
    uint8_t *table = nullptr;
    const int32_t rc = comn::read_sortorder(f, &st, &table, &tsize);
    intl_close(f);
    if (rc != 1) return 0;
    const char *text = reinterpret_cast<const char *>(data);
    const int32_t n = static_cast<int32_t>(size > 256 ? 256 : size);
    int32_t sum = 0;
    for (int32_t cut = 0; cut <= n; cut += 1 + n / 8) {
        sum += com__ps_dl_sqlhilo(table, text, cut, text + cut, n - cut);
        sum += com__ps_dl_sqlhilo(table, text + cut, n - cut, text, cut);
        sum += com__spec_tord(table, text, cut, text + cut, n - cut);
    }
    std::free(table);
    return sum == INT32_MIN;
}
