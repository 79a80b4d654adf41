// Conversions from text into every non-text type, for char sources (CS_CHAR and its kin,
// the bytes of the source format's maxlength) and CS_VARCHAR sources (a 16-bit length word,
// then that many of 256 bytes). Each kind of destination has one template over the source kind;
// the comn_charto<dst> and comn_varcharto<dst> entry points are generated from the single list
// COMN_TEXT_INPUT_DESTS.
//
// The character attributes come from the source format's locale, else the context's default
// locale, else the built-in "iso_1" record. Integers are scanned a character at a time;
// floats and exact numerics are first reduced to ASCII in a 1024-byte buffer; money and date
// text goes to its own parser with the attributes. Plain ASCII number text reads the same
// before and after the reduction (every set keeps ASCII, at most folding letter case), so the
// integer, float and numeric paths scan it in place, without the copy or the attributes. Every
// routine writes its result length before its range tests, and resets it to 0 on a syntax error.
//
// The varchar twin of the exact numeric conversion differs on purpose: it takes no -2562
// marker in the precision (the 1..77 test fails) and treats a marker scale as an ordinary
// value; it reports the parser's overflow, syntax and lost-digit outcomes alike as
// CS_CONV_OVERFLOW with the result length left at 35; and without character attributes it
// reads its text from the length word on rather than after it.
#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "comnlib/numeric.h"
#include "convert/float_scan.h"
#include "convert/int_scan.h"
#include "datetime/dtlocale.h"
#include "convert/buffers.h"
#include "convert/entry.h"

namespace comn {
namespace {

// ---- Sources ----

struct Text {
    const char *p;
    int32_t n; // >= 0
};

struct CharSource {
    static constexpr bool varchar = false;
    static Text text(const DataFormat *fmt, const void *src) {
        const int32_t n = src != nullptr && fmt->maxlength > 0 ? fmt->maxlength : 0;
        return {static_cast<const char *>(src), n};
    }
};

struct VarcharSource {
    static constexpr bool varchar = true;
    static constexpr int32_t kMax = 256;
    static Text text(const DataFormat *, const void *src) {
        if (src == nullptr) return {nullptr, 0};
        int16_t word;
        std::memcpy(&word, src, sizeof word);
        return {static_cast<const char *>(src) + 2, std::clamp<int32_t>(word, 0, kMax)};
    }
};

// ---- Integers and bit ----

// What a 32-bit scan result becomes in each destination; rc is the scanner's outcome.
struct T_i4 {
    static constexpr int32_t size = 4;
    static int32_t finish(int32_t rc, int32_t v, void *dest) {
        if (rc != intscan::kSyntax) store<int32_t>(dest, v);
        return rc;
    }
};
using T_i8 = T_i4; // the platform long is 32 bits
// Tinyint and smallint keep the wrapped low bits of an out-of-range value (see int_scan.h).
template <typename T, int32_t (*Narrow)(int32_t, int32_t, T *)>
struct D_narrow {
    static constexpr int32_t size = sizeof(T);
    static int32_t finish(int32_t rc, int32_t v, void *dest) {
        T n;
        rc = Narrow(rc, v, &n);
        store(dest, n);
        return rc;
    }
};
using T_i2 = D_narrow<int16_t, intscan::narrow_i2>;
using T_i1 = D_narrow<uint8_t, intscan::narrow_i1>;
struct T_bit {
    static constexpr int32_t size = 1;
    static int32_t finish(int32_t rc, int32_t v, void *dest) {
        if (rc == intscan::kNumber || rc == intscan::kEmpty) store<uint8_t>(dest, v != 0);
        return rc;
    }
};

// Text that is not plain ASCII: the full scan through the source's character set, kept out
// of line so that the plain path stays small.
[[gnu::noinline]] int32_t scan_with_attributes(ComContext *ctx, DataFormat *srcfmt, const Text &t,
                                               int32_t *v) {
    return com__chtoi4_mb(t.p, t.n, v, com_intl_charattr(ctx, srcfmt));
}

template <typename S, typename D>
int32_t to_integer(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *, void *dest,
                   int32_t *destlen) {
    const Text t = S::text(srcfmt, src);
    *destlen = D::size;
    const auto *p = reinterpret_cast<const uint8_t *>(t.p);
    int32_t v = 0;
    int32_t rc = intscan::scan_ascii(p, p + t.n, &v);
    if (rc == intscan::kUndecided) [[unlikely]]
        rc = scan_with_attributes(ctx, srcfmt, t, &v);
    rc = D::finish(rc, v, dest);
    if (rc == intscan::kSyntax) {
        *destlen = 0;
        return CS_CONV_SYNTAX;
    }
    return rc == intscan::kOverflow ? CS_CONV_OVERFLOW : CS_SUCCEED;
}

// ---- Text reduced to ASCII ----

constexpr int32_t kBuf = 1024;

// Reduces the text to ASCII in buf (at most kBuf - 1 bytes, then a zero byte); the length.
int32_t reduce(const Text &t, char *buf, const CharAttrib *attr) {
    int32_t n;
    if (attr != nullptr) {
        n = com__conv2ascii(t.p, t.n, buf, kBuf - 1, attr);
    } else {
        n = std::min(t.n, kBuf - 1);
        if (n > 0) std::memcpy(buf, t.p, static_cast<size_t>(n));
    }
    buf[n] = '\0';
    return n;
}

// Whether the n bytes at p are all below 0x80.
bool is_ascii(const char *p, int32_t n) {
    uint64_t acc = 0;
    int32_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t w;
        std::memcpy(&w, p + i, 8);
        acc |= w;
    }
    for (; i < n; ++i)
        acc |= static_cast<uint8_t>(p[i]);
    return (acc & 0x8080808080808080ull) == 0;
}

// ---- Floats ----

// Stores a scanned double in a real or float destination; a real is range-tested first.
template <typename F>
int32_t store_float(double v, void *dest) {
    if constexpr (sizeof(F) == 4) {
        constexpr double kFltMax = std::numeric_limits<float>::max();
        if (v > kFltMax) {
            store<float>(dest, std::numeric_limits<float>::max());
            return CS_CONV_OVERFLOW;
        }
        if (v < -kFltMax) {
            store<float>(dest, std::numeric_limits<float>::lowest());
            return CS_CONV_OVERFLOW;
        }
    }
    // A text beyond the double range scans as an infinity, which a double destination
    // stores with CS_SUCCEED.
    store<F>(dest, static_cast<F>(v));
    return CS_SUCCEED;
}

template <typename S, typename F>
int32_t to_float(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *, void *dest,
                 int32_t *destlen) {
    const Text t = S::text(srcfmt, src);
    constexpr double kFltMax = std::numeric_limits<float>::max();
    if (t.n > kBuf - 1) {
        *destlen = 0;
        return CS_CONV_SYNTAX;
    }
    // Plain ASCII number text reads the same before and after the reduction to ASCII, so the
    // common case is scanned in place.
    double v;
    if (fltscan::scan_plain(t.p, t.p + t.n, &v)) {
        *destlen = sizeof(F);
        return store_float<F>(v, dest);
    }
    char buf[kBuf];
    int32_t n = reduce(t, buf, com_intl_charattr(ctx, srcfmt));
    while (n > 0 && com_isspace(static_cast<uint8_t>(buf[n - 1])))
        --n;
    buf[n] = '\0';

    *destlen = sizeof(F);
    const fltscan::Result r = fltscan::scan(buf, static_cast<size_t>(n));
    // An underflow writes the most negative finite value, on purpose.
    if (r.value == 0 && r.range_error) {
        store<F>(dest, std::numeric_limits<F>::lowest());
        return CS_CONV_UNDERFLOW;
    }
    if (r.value == kFltMax && r.range_error) {
        store<F>(dest, std::numeric_limits<F>::max());
        return CS_CONV_OVERFLOW;
    }
    if (r.end != buf + n) {
        *destlen = 0;
        return CS_CONV_SYNTAX;
    }
    return store_float<F>(r.value, dest);
}

// ---- Exact numerics ----

template <typename S>
int32_t to_num(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
               int32_t *destlen) {
    constexpr uint8_t kFromText = 255;
    *destlen = sizeof(NumericValue);
    const bool marker = !S::varchar;
    uint8_t prec, scale;
    if (marker && destfmt->precision == CS_SRC_VALUE)
        prec = kFromText;
    else if (destfmt->precision < 1 || destfmt->precision > CS_MAX_PREC)
        return CS_CONV_PRECISION;
    else
        prec = static_cast<uint8_t>(destfmt->precision);
    if (marker && destfmt->scale == CS_SRC_VALUE)
        scale = kFromText;
    else if (destfmt->scale > CS_MAX_SCALE)
        return CS_CONV_SCALE;
    else
        scale = static_cast<uint8_t>(destfmt->scale); // a negative scale keeps its low byte

    const CharAttrib *attr = com_intl_charattr(ctx, srcfmt);
    Text t = S::text(srcfmt, src);
    if (S::varchar && attr == nullptr) t.p = static_cast<const char *>(src);
    // Plain ASCII text is its own reduction (the sets fold at most the case of ASCII letters,
    // which the parser does not mind), so it is parsed in place.
    char buf[kBuf];
    const char *text = t.p;
    int32_t n = std::min(t.n, kBuf - 1);
    if (!is_ascii(t.p, n)) {
        n = reduce(t, buf, attr);
        text = buf;
    }
    if ((srcfmt->format & CS_FMT_NULLTERM) && n > 0)
        n = static_cast<int32_t>(strnlen(text, static_cast<size_t>(n)));

    auto *out = static_cast<uint8_t *>(dest);
    out[0] = prec;
    out[1] = scale;
    uint8_t *bytes = out + 2;
    int32_t length = prec == kFromText ? 0 : comn_num_getlen(prec);
    const int32_t rc = com__subchartoexctnume(text, n, &bytes, &length, &out[0], &out[1], 0);
    // A precision taken from the text leaves the value right-aligned in the area.
    if (bytes != out + 2 && length > 0) std::memmove(out + 2, bytes, static_cast<size_t>(length));
    const int32_t conv = comn__arith_to_conv_trunc(rc);
    if (S::varchar) return conv == CS_SUCCEED ? CS_SUCCEED : CS_CONV_OVERFLOW;
    if (conv == CS_CONV_SYNTAX) *destlen = 0;
    return conv;
}

// ---- Money and dates: each parser has a wide and a narrow form ----

template <typename Value, auto Parse>
struct P_money_of {
    using V = Value;
    static constexpr bool money = true;
    static int32_t parse(V *v, const Text &t, ComContext *, DataFormat *, const CharAttrib *a) {
        return Parse(v, t.p, t.n, 0, a);
    }
};
// Month names and the date order come from the source's locale, else the context's.
template <typename Value, auto Parse>
struct P_date_of {
    using V = Value;
    static constexpr bool money = false;
    static int32_t parse(V *v, const Text &t, ComContext *ctx, DataFormat *fmt,
                         const CharAttrib *a) {
        return Parse(v, t.p, t.n, 0, dtloc::dateorder_id(ctx, fmt), dtloc::months(ctx, fmt),
                     dtloc::short_months(ctx, fmt), a);
    }
};
using T_money = P_money_of<MoneyValue, com__mnyfromchar_mb>;
using T_mny4 = P_money_of<Money4Value, com__mny4fromchar_mb>;
using T_datetime = P_date_of<DateTimeValue, com__datefromchar_mb>;
using T_date4 = P_date_of<DateTime4Value, com__date4fromchar_mb>;

// Money parsers answer arithmetic codes; date parsers a negative code for text they cannot
// read and a positive one for a value out of range.
template <typename S, typename P>
int32_t to_parsed(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *, void *dest,
                  int32_t *destlen) {
    const Text t = S::text(srcfmt, src);
    *destlen = sizeof(typename P::V);
    typename P::V v{};
    const int32_t rc = P::parse(&v, t, ctx, srcfmt, com_intl_charattr(ctx, srcfmt));
    if (P::money ? rc == COMN_ARITH_SYNTAX : rc < COMN_DATE_OK) {
        *destlen = 0;
        return CS_CONV_SYNTAX;
    }
    store(dest, v);
    if (P::money ? rc == COMN_ARITH_OVERFLOW : rc > COMN_DATE_OK) return CS_CONV_OVERFLOW;
    return CS_SUCCEED;
}

// ---- Binary ----

template <typename S>
int32_t to_bin(ComContext *, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
               int32_t *destlen) {
    const Text t = S::text(srcfmt, src);
    int32_t n = 0;
    const int32_t rc =
        comn__hex2binbytes(t.p, t.n, static_cast<uint8_t *>(dest), destfmt->maxlength, &n);
    *destlen = n;
    if (rc != CS_SUCCEED) return rc;
    return comn__padbin(n, destfmt, dest, destlen);
}

template <typename S>
int32_t to_varbin(ComContext *, DataFormat *srcfmt, void *src, DataFormat *, void *dest,
                  int32_t *destlen) {
    constexpr int32_t kVarMax = 256;
    const Text t = S::text(srcfmt, src);
    auto *out = static_cast<uint8_t *>(dest);
    int32_t n = 0;
    const int32_t rc = comn__hex2binbytes(t.p, t.n, out + 2, kVarMax, &n);
    store<int16_t>(out, static_cast<int16_t>(n));
    if (rc == CS_CONV_SYNTAX) {
        *destlen = 0;
        return rc;
    }
    *destlen = 2 + kVarMax;
    return rc;
}

// ---- Every pair ----

using T_flt4 = float;
using T_flt8 = double;

// The source kind of a char or varchar source.
template <typename S>
using Source = std::conditional_t<std::is_same_v<S, T_char>, CharSource, VarcharSource>;

// The algorithm for destination D.
template <typename S, typename D>
constexpr ComConvFunc routine() {
    if constexpr (std::is_floating_point_v<D>)
        return to_float<S, D>;
    else if constexpr (std::is_same_v<D, T_num>)
        return to_num<S>;
    else if constexpr (std::is_same_v<D, T_bin>)
        return to_bin<S>;
    else if constexpr (std::is_same_v<D, T_varbin>)
        return to_varbin<S>;
    else if constexpr (requires { &D::parse; })
        return to_parsed<S, D>; // money and dates
    else
        return to_integer<S, D>;
}

template <typename S, typename D>
int32_t convert(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    return routine<Source<S>, D>()(ctx, srcfmt, src, destfmt, dest, destlen);
}

} // namespace
} // namespace comn

#define COMN_TEXT_INPUT_(d) COMN_CONV_PAIR(char, d) COMN_CONV_PAIR(varchar, d)
COMN_TEXT_INPUT_DESTS(COMN_TEXT_INPUT_)
