// Fuzz target of the date and time section reader: any bytes read as a "common.loc", its
// section "datetime" handed to intl_datetime. A success must leave every name terminated in
// its slot, a first day in 1..7 and a 12-hour flag of 0 or 1.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "intl/reader/reader_internal.h"

namespace {

void check_slots(const char *base, int count, size_t slot) {
    for (int i = 0; i < count; ++i) {
        const char *s = base + i * slot;
        if (!std::memchr(s, '\0', slot) || s[0] == '\0') std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    IntlFile *f = nullptr;
    if (comn::intl_open_buffer(reinterpret_cast<const char *>(data), size, &f) < 0) return 0;
    int32_t st = 0;
    const char *name;
    while ((name = intl_nextsection(f, &st)) && std::strcmp(name, "datetime") != 0) {
    }
    IntlDateTime rec{};
    if (name && intl_datetime(f, &rec) >= 0) {
        check_slots(rec.months[0], 12, COM_DT_MONTH_SLOT);
        check_slots(rec.shortmonths[0], 12, COM_DT_SHORTMONTH_SLOT);
        check_slots(rec.days[0], 7, COM_DT_DAY_SLOT);
        if (rec.firstday < 1 || rec.firstday > 7 || (rec.is12hour != 0 && rec.is12hour != 1) ||
            !std::memchr(rec.dateorder, '\0', sizeof rec.dateorder))
            std::abort();
    }
    intl_close(f);
    return 0;
}
