// Comparisons under a sort order's weight table (see the sort order loader for its layout).
// Both strings are walked one weight at a time: a plain character gives its weight word; a
// special one (tertiary order 0) is resolved through the special list, where a ligature may
// swallow the following byte and an expansion leaves a second weight pending.
//
// The primary comparison treats the shorter string as padded with blanks, and its two ends
// are deliberately unlike: at the end of a, a pending expansion weight of b counts as a
// difference; at the end of b, a's pending weight is not looked at, and the blank test
// starts from a's last consumed byte.
#include <algorithm>
#include <cstring>

#include "comnlib/intl.h"

namespace comn {
namespace {

constexpr uint32_t primary(uint32_t w) {
    return w & 0xFF;
}
constexpr uint32_t secondary(uint32_t w) {
    return (w >> 8) & 0xFF;
}
constexpr uint32_t tertiary(uint32_t w) {
    return (w >> 16) & 0xFF;
}
constexpr uint32_t special_index(uint32_t w) {
    return w >> 24;
}

inline uint32_t load32(const uint8_t *p) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}

struct Cursor {
    const uint8_t *p;
    const uint8_t *end;
    uint32_t pending;
    bool has_pending;
};

// The next weight of a string; false when it is used up.
inline bool next_weight(const uint8_t *table, Cursor &c, uint32_t &w) {
    if (c.has_pending) {
        c.has_pending = false;
        w = c.pending;
        return true;
    }
    if (c.p >= c.end) return false;
    const uint8_t *slot = table + COM_SORT_HEADER + 4 * static_cast<size_t>(*c.p++);
    w = load32(slot);
    if (tertiary(w) != 0) return true;
    uint32_t second = 0;
    const uint8_t *nodes = table + COM_SORT_HEADER + 4 * 256;
    const uint8_t *pos = c.p;
    if (com__smel_lsc(nodes, static_cast<int32_t>(special_index(w)), &pos, c.end, &w, &second) ==
        2) {
        c.pending = second;
        c.has_pending = true;
    }
    c.p = pos;
    return true;
}

Cursor cursor(const char *s, int32_t len) {
    auto *p = reinterpret_cast<const uint8_t *>(s);
    return {p, p + (len > 0 ? len : 0), 0, false};
}

bool all_blanks(const uint8_t *p, const uint8_t *end) {
    for (; p < end; ++p)
        if (*p != ' ') return false;
    return true;
}

int32_t sign(int32_t v) {
    return (v > 0) - (v < 0);
}

// Both cursors moved past the longest common prefix that cannot change the outcome: identical
// bytes weigh identically (primary, secondary and tertiary alike) unless the last of them is
// special, whose weight may depend on the byte after it (a ligature), so the prefix is cut
// back to end on a plain character.
void skip_common_prefix(const uint8_t *table, Cursor &a, Cursor &b) {
    const size_t limit = static_cast<size_t>(std::min(a.end - a.p, b.end - b.p));
    size_t n = 0;
    while (n < limit && a.p[n] == b.p[n])
        ++n;
    while (n > 0 &&
           tertiary(load32(table + COM_SORT_HEADER + 4 * static_cast<size_t>(a.p[n - 1]))) == 0)
        --n;
    a.p += n;
    b.p += n;
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t com__smel_lsc(const uint8_t *list, int32_t start, const uint8_t **pos,
                               const uint8_t *end, uint32_t *weight, uint32_t *second) {
    // Sort orders never point a special character at node 255; if one did, no weight results
    // and the outputs stay as they were. The step bound keeps a looping list from hanging.
    int32_t node = start;
    for (int steps = 0; node >= 0 && node < 255 && steps < 255; ++steps) {
        const uint8_t *n = list + COM_SORT_NODE * static_cast<size_t>(node);
        const uint32_t first = comn::load32(n + 4);
        switch (n[1]) {
        case 1: // ligature: the next byte must match the first weight's low byte
            if ((!end || *pos < end) && **pos == (first & 0xFF)) {
                ++*pos;
                *weight = comn::load32(n + 8);
                *second = 0;
                return 1;
            }
            break;
        case 0:
            *weight = first;
            *second = 0;
            return 1;
        case 3: // expansion: two weights, the second left pending
            *weight = first;
            *second = comn::load32(n + 8);
            return 2;
        default:
            break;
        }
        node = n[0];
    }
    return 0;
}

COMN_API int32_t com__ps_dl_sqlhilo(const uint8_t *table, const char *a, int32_t alen,
                                    const char *b, int32_t blen) {
    comn::Cursor ca = comn::cursor(a, alen), cb = comn::cursor(b, blen);
    comn::skip_common_prefix(table, ca, cb);
    int32_t tie = 0;
    uint32_t wa = 0, wb = 0;
    for (;;) {
        if (!comn::next_weight(table, ca, wa)) {
            if (cb.has_pending || !comn::all_blanks(cb.p, cb.end)) return -1;
            return tie;
        }
        if (!comn::next_weight(table, cb, wb)) return comn::all_blanks(ca.p - 1, ca.end) ? tie : 1;
        if (comn::primary(wa) != comn::primary(wb))
            return static_cast<int32_t>(comn::primary(wa)) -
                   static_cast<int32_t>(comn::primary(wb));
        if (tie == 0 && comn::secondary(wa) != comn::secondary(wb))
            tie = static_cast<int32_t>(comn::secondary(wa)) -
                  static_cast<int32_t>(comn::secondary(wb));
    }
}

COMN_API int32_t com_ps_dl_sqlhilo(const uint8_t *table, const char *a, int32_t alen, const char *b,
                                   int32_t blen) {
    return comn::sign(com__ps_dl_sqlhilo(table, a, alen, b, blen));
}

COMN_API int32_t com__spec_tord(const uint8_t *table, const char *a, int32_t alen, const char *b,
                                int32_t blen) {
    comn::Cursor ca = comn::cursor(a, alen), cb = comn::cursor(b, blen);
    comn::skip_common_prefix(table, ca, cb);
    uint32_t wa = 0, wb = 0;
    while (comn::next_weight(table, ca, wa) && comn::next_weight(table, cb, wb))
        if (comn::tertiary(wa) != comn::tertiary(wb))
            return static_cast<int32_t>(comn::tertiary(wa)) -
                   static_cast<int32_t>(comn::tertiary(wb));
    return 0;
}

COMN_API int32_t com_spec_tord(const uint8_t *table, const char *a, int32_t alen, const char *b,
                               int32_t blen) {
    return comn::sign(com__spec_tord(table, a, alen, b, blen));
}
}
