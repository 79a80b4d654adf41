// Single-byte translation: the ASCII converter, the case-swap converter of the test set and
// the twenty converters between iso_1, cp850, cp437, roman8 and mac.
//
// Each set-to-set converter has a table of destination bytes for source bytes 80-FF
// (0 = no counterpart, written as "?"), generated into xlate_single_tables.h by
// tools/gen/gen_xlate_tables.py, which lists where the tables depart from the usual code page
// correspondences (cp437 DE gives iso_1 DF, for instance). Bytes below 80 always pass
// unchanged.
//
// At compile time each table is widened to 256 16-bit entries: low byte the output, bit 8 set
// when the output is a substituted "?". The loop then needs one load per byte and reports the
// substitution bit by OR-ing the entries together.
#include "xlate_internal.h"
#include "xlate_single_tables.h"

#include <array>

namespace comn {
namespace {

using Wide = std::array<uint16_t, 256>;
constexpr uint16_t k_bad = 0x100 | '?';

constexpr Wide widen(const uint8_t (&bytes)[128]) {
    Wide w{};
    for (unsigned b = 0; b < 256; ++b)
        w[b] = b < 0x80 ? static_cast<uint16_t>(b) : bytes[b - 0x80] ? bytes[b - 0x80] : k_bad;
    return w;
}

constexpr Wide ascii_only() {
    Wide w{};
    for (unsigned b = 0; b < 256; ++b)
        w[b] = b < 0x80 ? static_cast<uint16_t>(b) : k_bad;
    return w;
}

// from, to: the table Xlt_<from>_to_<to>
#define COMN_SB_CONVERTERS(X)                                                                      \
    X(iso1, cp850)                                                                                 \
    X(iso1, cp437)                                                                                 \
    X(iso1, roman8)                                                                                \
    X(iso1, mac)                                                                                   \
    X(cp850, iso1)                                                                                 \
    X(cp850, cp437)                                                                                \
    X(cp850, roman8)                                                                               \
    X(cp850, mac)                                                                                  \
    X(cp437, iso1)                                                                                 \
    X(cp437, cp850)                                                                                \
    X(cp437, roman8)                                                                               \
    X(cp437, mac)                                                                                  \
    X(roman8, iso1)                                                                                \
    X(roman8, cp850)                                                                               \
    X(roman8, cp437)                                                                               \
    X(roman8, mac)                                                                                 \
    X(mac, iso1)                                                                                   \
    X(mac, cp850)                                                                                  \
    X(mac, cp437)                                                                                  \
    X(mac, roman8)

#define COMN_SB_WIDE(from, to) constexpr Wide w_##from##_to_##to = widen(Xlt_##from##_to_##to);
COMN_SB_CONVERTERS(COMN_SB_WIDE)
#undef COMN_SB_WIDE
constexpr Wide w_ascii = ascii_only();

// Inlined into each converter so that a short value costs one call, not two.
[[gnu::always_inline]] inline int32_t translate(const Wide &w, const uint8_t *src, int32_t srclen,
                                                uint8_t *dst, int32_t dstlen, int32_t *consumed,
                                                int32_t *produced) {
    const XlateSpan span = xlate_span(srclen, dstlen);
    unsigned seen = 0; // OR of the entries used: bit 8 tells of a substitution
#pragma GCC unroll 4
    for (int32_t i = 0; i < span.n; ++i) {
        const uint16_t v = w[src[i]];
        dst[i] = static_cast<uint8_t>(v);
        seen |= v;
    }
    *consumed = span.n;
    *produced = span.n;
    return span.bits | (seen & 0x100 ? COM_XLT_BADCHAR : 0);
}

} // namespace
} // namespace comn

extern "C" {

#define COMN_SB_ENTRY(from, to)                                                                    \
    COMN_API int32_t com__fou_##from##_to_##to(const uint8_t *src, int32_t srclen, uint8_t *dst,   \
                                               int32_t dstlen, int32_t *consumed,                  \
                                               int32_t *produced) {                                \
        return comn::translate(comn::w_##from##_to_##to, src, srclen, dst, dstlen, consumed,       \
                               produced);                                                          \
    }
COMN_SB_CONVERTERS(COMN_SB_ENTRY)
#undef COMN_SB_ENTRY

COMN_API int32_t com__fou_ascii8_tofrom_1byte(const uint8_t *src, int32_t srclen, uint8_t *dst,
                                              int32_t dstlen, int32_t *consumed,
                                              int32_t *produced) {
    return comn::translate(comn::w_ascii, src, srclen, dst, dstlen, consumed, produced);
}

// The case-swapped set exists to exercise the dispatch: its converter writes nothing and
// reports the text up to its first NUL as translated. The scan never reads past the source,
// and the written count never exceeds the destination.
COMN_API int32_t com__fou_caseswap(const uint8_t *src, int32_t srclen, uint8_t *dst, int32_t dstlen,
                                   int32_t *consumed, int32_t *produced) {
    (void)dst;
    const int32_t len = std::max(srclen, 0);
    const int32_t room = std::max(dstlen, 0);
    int32_t count = 0;
    while (count < len && src[count] != 0)
        ++count;
    *consumed = count;
    *produced = std::min(count, room);
    return room < len ? COM_XLT_TRUNCATED : 0;
}

} // extern "C"
