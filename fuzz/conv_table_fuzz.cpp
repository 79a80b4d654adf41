// Fuzz target for the whole conversion table: arbitrary bytes through arbitrary cells.
//
// Run it with VELDAR naming an installation home (the bundled home/ in the tests) so that the
// formats can carry locales of several character sets.
//
// Input: source id, destination id, flag byte (bits 0-2 the destination's text flags, bit 3
// the source's null-terminate flag), two bytes of destination maxlength (-8..503), a locale
// pick for each side, a precision and a scale pick for the destination; the rest is the
// source value. Empty cells are skipped.
//
// Buffers are exactly as large as the routines may use, on the heap, so the sanitizer sees
// any access past them: the source holds the input bytes, grown with zeros to its type's
// storage length when that is longer (a fixed type, or the 258-byte varchar frame); the
// destination is its type's storage length, or maxlength bytes for the text and binary
// types. Every call must return a known status or conversion code and a result length
// within the destination's size.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "comnlib.h"

namespace {

struct Setup {
    ComContext ctx{};
    static constexpr const char *kSets[] = {"iso_1", "cp850", "ascii8", "roman8", "sjis", "eucjis"};
    LocaleRecord records[std::size(kSets)]{};
    LocaleHandle handles[std::size(kSets)]{};
    int nhandles = 0;

    Setup() {
        if (comn_ctx_setup(&ctx) != CS_SUCCEED) {
            ctx = ComContext{};
            if (com_conv_init(&ctx) != CS_SUCCEED || com_null_init(&ctx) != CS_SUCCEED)
                std::abort();
        }
        for (const char *set : kSets) {
            ComCharsetDesc *d = nullptr;
            if (com__charset_desc_get(&ctx, set, "binary", &d) != 1) continue;
            LocaleRecord &r = records[nhandles];
            r.name = r.charset = const_cast<char *>(set);
            r.language = const_cast<char *>("us_english");
            r.sortorder = const_cast<char *>("binary");
            r.charset_desc = d;
            r.dateorder_id = 1;
            handles[nhandles++] = LocaleHandle{&r, &r, &r, &r, &r, &r, nullptr};
        }
    }
    LocaleHandle *pick(uint8_t b) {
        const int i = b % (nhandles + 1);
        return i == nhandles ? nullptr : &handles[i];
    }
};

bool known_code(int32_t rc) {
#define COMN_KNOWN_(name, value) (rc == (value)) ||
    return COMN_STATUS_CODES(COMN_KNOWN_) COMN_CONV_CODES(COMN_KNOWN_) false;
#undef COMN_KNOWN_
}

int32_t storage(int32_t type, int32_t maxlength) {
    const int32_t n = comn_typelen(type, maxlength);
    return n < 0 ? 0 : n;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static Setup setup;
    constexpr size_t kHeader = 9;
    if (size < kHeader) return 0;
    const int32_t srctype = data[0] % COMN_CONV_DIM, desttype = data[1] % COMN_CONV_DIM;
    ComConvFunc f = com_conv_func(&setup.ctx, srctype, desttype);
    if (!f) return 0;

    static const int32_t kPrec[] = {CS_SRC_VALUE, 0, 1, 5, 10, 18, 38, 77, 78, 255, -1};
    static const int32_t kScale[] = {CS_SRC_VALUE, 0, 1, 2, 10, 38, 77, 78, -1};
    DataFormat sf{}, df{};
    sf.datatype = srctype;
    sf.format = (data[2] & 8) ? CS_FMT_NULLTERM : 0;
    sf.locale = setup.pick(data[5]);
    sf.precision = sf.scale = CS_SRC_VALUE;
    df.datatype = desttype;
    df.format = data[2] & 7;
    df.maxlength = static_cast<int32_t>((data[3] | data[4] << 8) % 512) - 8;
    df.locale = setup.pick(data[6]);
    df.precision = kPrec[data[7] % std::size(kPrec)];
    df.scale = kScale[data[8] % std::size(kScale)];

    const auto n = static_cast<int32_t>(size - kHeader);
    sf.maxlength = n;
    const size_t srcsize = static_cast<size_t>(std::max(n, storage(srctype, n)));
    std::unique_ptr<uint8_t[]> src(new uint8_t[std::max<size_t>(srcsize, 1)]());
    std::memcpy(src.get(), data + kHeader, static_cast<size_t>(n));
    const int32_t room = storage(desttype, std::max(df.maxlength, 0));
    std::unique_ptr<uint8_t[]> dest(new uint8_t[static_cast<size_t>(std::max(room, 1))]);

    int32_t len = 0;
    const int32_t rc = f(&setup.ctx, &sf, src.get(), &df, dest.get(), &len);
    if (!known_code(rc)) std::abort();
    if (len < 0 || len > room) std::abort();
    return 0;
}
