// Fuzz target for every conversion of the table whose source is text (ids 0, 2, 4, 18, 21, 22).
//
// Input: six control bytes, then the text.
//   0: source type;  1: destination type (0..23; pairs without a routine are skipped)
//   2: flag bits of the destination format (null-terminate, zero pad, blank pad) and, in bit 3,
//      the null-terminated flag of the source
//   3: destination maxlength (small values, negative ones, or large)
//   4: precision and scale, among ordinary values, the -2562 marker and invalid ones
//   5: the source locale: none, French, or one of the three Japanese sets
// A char source is exactly the text's bytes in a buffer of their size; a varchar source takes
// its length word from the text's first two bytes. The destination is a buffer of exactly the
// destination's size. The routine must stay inside both, report a length within the
// destination, and leave the caller's precision and scale as they were.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "comnlib.h"

namespace {

struct Locales {
    ComContext ctx{};
    LocaleHandle handles[5]{};
    Locales() {
        const char *names[] = {"fr_FR", "ja_JP.eucJP", "ja_JP.SJIS", "ja_JP.deckanji"};
        for (int i = 0; i < 4; ++i) {
            LocaleRecord *r = nullptr;
            if (com_intl_load(&ctx, names[i], -1, &r) != 1) continue;
            LocaleHandle &h = handles[i + 1];
            h.collate = h.ctype = h.message = h.monetary = h.numeric = h.time = r;
        }
    }
    LocaleHandle *get(uint8_t b) {
        LocaleHandle *h = &handles[b % 5];
        return h->ctype != nullptr ? h : nullptr;
    }
};

int32_t pick_maxlength(uint8_t b) {
    switch (b >> 6) {
    case 0:
        return b & 0x3F;
    case 1:
        return -(b & 0x3F);
    case 2:
        return 256 + (b & 0x3F);
    default:
        return 1024 + (b & 0x3F) * 17;
    }
}

int32_t pick_prec(uint8_t b) {
    static const int32_t values[] = {1, 5, 10, 18, 38, 77, 0, 78, -1, CS_SRC_VALUE, 255, 2};
    return values[b % 12];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static Locales locales;
    if (size < 6) return 0;
    static const int32_t sources[] = {CS_CHAR, CS_LONGCHAR, CS_TEXT, CS_VARCHAR, 21, 22};
    const int32_t st = sources[data[0] % 6];
    const int32_t dt = data[1] % COMN_CONV_DIM;
    const ComConvFunc f = Com__cnvrt_array[st * COMN_CONV_DIM + dt];
    if (f == nullptr) return 0;

    DataFormat sf{}, df{};
    sf.datatype = st;
    sf.format = data[2] & 8 ? CS_FMT_NULLTERM : 0;
    sf.locale = locales.get(data[5]);
    df.datatype = dt;
    df.format = data[2] & 7;
    df.maxlength = pick_maxlength(data[3]);
    df.precision = pick_prec(data[4]);
    df.scale = pick_prec(static_cast<uint8_t>(data[4] >> 4));
    const int32_t prec = df.precision, scale = df.scale;

    const uint8_t *text = data + 6;
    const size_t n = size - 6;
    std::vector<uint8_t> src;
    if (st == CS_VARCHAR) {
        src.assign(258, 0);
        std::memcpy(src.data(), text, n < 258 ? n : 258);
    } else {
        src.assign(text, text + n);
        sf.maxlength = static_cast<int32_t>(n);
    }
    const int32_t destsize = comn_typelen(dt, df.maxlength > 0 ? df.maxlength : 0);
    std::vector<uint8_t> dest(static_cast<size_t>(destsize) + (destsize == 0));
    int32_t len = -12345;
    f(sf.locale ? &locales.ctx : nullptr, &sf, src.empty() ? nullptr : src.data(), &df, dest.data(),
      &len);
    if (len != -12345 && (len < 0 || len > destsize)) std::abort();
    if (df.precision != prec || df.scale != scale) std::abort();
    return 0;
}
