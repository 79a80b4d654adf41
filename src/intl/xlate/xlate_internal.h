// Shared frame of the translation converters: every converter works over the shorter of the
// source length and the destination size (negative lengths count as 0) and reports a short
// destination with COM_XLT_TRUNCATED.
#pragma once

#include <comnlib/intl.h>

#include <algorithm>
#include <cstdint>

namespace comn {

struct XlateSpan {
    int32_t n;    // bytes to translate: [0, min(srclen, dstlen)]
    int32_t bits; // COM_XLT_TRUNCATED when the destination is the shorter
};

constexpr XlateSpan xlate_span(int32_t srclen, int32_t dstlen) {
    srclen = std::max(srclen, 0);
    dstlen = std::max(dstlen, 0);
    return {std::min(srclen, dstlen), dstlen < srclen ? COM_XLT_TRUNCATED : 0};
}

} // namespace comn
