// Exact numeric to text: optional "-", integer digits (at least one), and for a scale above
// 0 a "." followed by exactly scale digits. Zero never carries a sign.
//
// The text is written right-aligned so that it ends at the buffer's last byte and its start
// index is returned. The digits come from base-10^19 chunks of the magnitude (one
// reciprocal multiplication per limb and chunk) rather than from repeated division by ten.
#include <cstring>

#include "numeric/descriptor.h"

using namespace comn::nume;
namespace wide = comn::wide;

extern "C" int32_t com__subexctnumetochar(const ExactNumericRef *value, char *buf, int32_t buflen) {
    if (!buf || buflen <= 0) return -1;
    Nat v;
    load(value, v);
    const int scale = value->scale;
    if (wide::is_zero(v)) {
        const int need = scale > 0 ? scale + 2 : 1;
        if (need > buflen) return -1;
        char *p = buf + buflen - need;
        p[0] = '0';
        if (scale > 0) {
            p[1] = '.';
            std::memset(p + 2, '0', static_cast<size_t>(scale));
        }
        return buflen - need;
    }
    char digits[wide::kCap * 20];
    const int nd = wide::to_digits(v, digits);
    const bool neg = negative(value);
    const int int_digits = nd > scale ? nd - scale : 1;
    const int need = neg + int_digits + (scale > 0 ? 1 + scale : 0);
    if (need > buflen) return -1;
    char *p = buf + buflen - need;
    if (neg) *p++ = '-';
    if (nd > scale) {
        std::memcpy(p, digits, static_cast<size_t>(int_digits));
        p += int_digits;
    } else {
        *p++ = '0';
    }
    if (scale > 0) {
        *p++ = '.';
        if (nd >= scale) {
            std::memcpy(p, digits + nd - scale, static_cast<size_t>(scale));
        } else {
            std::memset(p, '0', static_cast<size_t>(scale - nd));
            std::memcpy(p + scale - nd, digits, static_cast<size_t>(nd));
        }
    }
    return buflen - need;
}
