// The translation driver: frames a value's text (a CS_VARCHAR carries a 16-bit length before
// up to 256 bytes; any other type is maxlength bytes), copies or converts it, fills the
// caller's state words (bytes taken, bytes written) and maps the converter's result bits to a
// conversion status. The public entry points resolve the pair of formats and run it.
#include "xlate_dispatch.h"

#include <algorithm>
#include <cstring>

namespace comn {
namespace {

constexpr int32_t k_varchar_room = 256;

// The status of a converter's result bits: a character without counterpart outweighs a short
// destination.
constexpr int32_t k_status[4] = {CS_SUCCEED, CS_CONV_BADXLT, CS_CONV_OVERFLOW, CS_CONV_BADXLT};
static_assert(COM_XLT_BADCHAR == 1 && COM_XLT_TRUNCATED == 2);

struct Text {
    uint8_t *p;
    int32_t len;
};

// The text of a value: a CS_VARCHAR's text follows its length word, whose value is taken
// within 0..256 so that a damaged length cannot send the translation past the record.
Text source_text(const DataFormat *fmt, const void *v) {
    auto *p = static_cast<uint8_t *>(const_cast<void *>(v));
    if (fmt->datatype != CS_VARCHAR) return {p, std::max(fmt->maxlength, 0)};
    int16_t len;
    std::memcpy(&len, p, sizeof len);
    return {p + sizeof len, std::clamp<int32_t>(len, 0, k_varchar_room)};
}

Text dest_text(const DataFormat *fmt, void *v) {
    auto *p = static_cast<uint8_t *>(v);
    if (fmt->datatype != CS_VARCHAR) return {p, std::max(fmt->maxlength, 0)};
    return {p + sizeof(int16_t), k_varchar_room};
}

void set_varchar_len(const DataFormat *fmt, void *v, int32_t len) {
    if (fmt->datatype != CS_VARCHAR) return;
    const auto l16 = static_cast<int16_t>(len); // len <= 256
    std::memcpy(v, &l16, sizeof l16);
}

// A value through its converter: the path of every value whose sets differ. The public entry
// point resolves the pair without a call and jumps here, so that only this routine's few
// registers (the state words, the length and the varchar length word, kept across the
// converter's call) are saved per value.
[[gnu::noinline]] int32_t convert(ComXlateFunc func, const DataFormat *srcfmt, const void *src,
                                  const DataFormat *destfmt, void *dest, int32_t *outlen,
                                  int32_t *state) {
    const Text in = source_text(srcfmt, src);
    const Text out = dest_text(destfmt, dest);
    // The length word tells the bytes written, which is what the destination holds; they
    // differ from the bytes taken for the test set's converter and for translation to or
    // from utf8.
    auto *len_word = destfmt->datatype == CS_VARCHAR ? static_cast<int16_t *>(dest) : nullptr;
    const int32_t bits = func(in.p, in.len, out.p, out.len, &state[0], &state[1]);
    const int32_t made = state[1];
    *outlen = made;
    if (len_word != nullptr) {
        const auto l16 = static_cast<int16_t>(made); // made <= 256
        std::memcpy(len_word, &l16, sizeof l16);
    }
    return k_status[bits & (COM_XLT_BADCHAR | COM_XLT_TRUNCATED)];
}

} // namespace

// Any mode: no translation, a copy (the sets are the same), or a converter.
int32_t xlate_run(int32_t mode, ComXlateFunc func, const DataFormat *srcfmt, const void *src,
                  const DataFormat *destfmt, void *dest, int32_t *outlen, int32_t *state) {
    if (mode == COM_XLT_MODE_NONE || (mode != COM_XLT_MODE_COPY && func == nullptr)) {
        state[0] = state[1] = 0;
        *outlen = 0;
        return CS_CONV_NOXLT;
    }
    if (mode != COM_XLT_MODE_COPY) [[likely]]
        return convert(func, srcfmt, src, destfmt, dest, outlen, state);
    const Text in = source_text(srcfmt, src);
    const Text out = dest_text(destfmt, dest);
    const int32_t count = std::min(in.len, out.len);
    *outlen = count;
    state[0] = count;
    // The copy starts at the source address as given, so a CS_VARCHAR source is copied from
    // its length word on, not from its text. Callers rely on that offset being kept.
    if (in.p != out.p) std::memmove(out.p, src, static_cast<size_t>(count));
    set_varchar_len(destfmt, dest, state[0]);
    return count < in.len ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

} // namespace comn

extern "C" {

COMN_API int32_t com_intl_xlate(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt,
                                void *dest, int32_t *outlen, int32_t *state) {
    if (srcfmt == nullptr || destfmt == nullptr || outlen == nullptr || state == nullptr)
        return CS_FAIL;
    const comn::XltPair p = comn::xlate_resolve(ctx, srcfmt, destfmt);
    if (p.mode > COM_XLT_MODE_COPY && p.func != nullptr) [[likely]]
        return comn::convert(p.func, srcfmt, src, destfmt, dest, outlen, state);
    return comn::xlate_run(p.mode, p.func, srcfmt, src, destfmt, dest, outlen, state);
}

COMN_API int32_t comb__intl_xlate(ComContext *ctx, DataFormat *srcfmt, void *src,
                                  DataFormat *destfmt, void *dest, int32_t *outlen,
                                  int32_t *state) {
    return com_intl_xlate(ctx, srcfmt, src, destfmt, dest, outlen, state);
}

} // extern "C"
