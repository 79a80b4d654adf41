// Binary output and binary sources: the fixed-length numbers (tinyint, smallint, int, real,
// float, bit) to binary and varbinary, and every conversion from CS_BINARY and CS_VARBINARY.
//
// A binary source is maxlength bytes; a varbinary is a 16-bit length word and up to 256
// bytes, its length taken within 0..256 so a damaged word never sends a read past the record.
//
//  - To text: two lowercase hexadecimal digits per byte, high nibble first. Only whole pairs
//    are written; a cut value gives CS_CONV_TRUNCATED without padding.
//  - To binary: the bytes, as many as fit; to varbinary: at most 256 after the length word.
//  - Into a fixed type: the bytes are the value's host-order image, the exact inverse of the
//    "tobin" direction, so value -> binary -> value is the identity. A source shorter than the
//    type's size is no value at all (CS_CONV_SYNTAX, result length 0, nothing written); bytes
//    past the size are accepted only when all zero, the fill that zero padding adds
//    (otherwise CS_CONV_OVERFLOW, result length the size, nothing written). A bit image
//    above 1 is CS_CONV_DOMAIN. A numeric image is its precision and scale bytes and at least
//    the magnitude bytes that precision uses (2 + Com__Nume_Prec_To_Len[p], up to the 35-byte
//    record): an invalid precision or scale is CS_CONV_DOMAIN, and the value then goes into
//    the destination's precision and scale as numeric-to-numeric does.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

#include "comnlib/convert.h"
#include "comnlib/numeric.h"
#include "convert/buffers.h"
#include "convert/entry.h"
#include "convert/scalar.h"

namespace comn {
namespace {

using Bytes = Span;
// A conversion of a binary source's bytes into one destination.
using BytesRoutine = int32_t (*)(Bytes, DataFormat *destfmt, void *dest, int32_t *destlen);

Bytes bin_source(const DataFormat *fmt, const void *src) {
    return {static_cast<const uint8_t *>(src), std::max(fmt->maxlength, 0)};
}

// A binary source: runs a routine of its bytes.
template <Bytes (*Source)(const DataFormat *, const void *)>
struct Binary {
    template <BytesRoutine F>
    static int32_t run(DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                       int32_t *destlen) {
        return F(Source(srcfmt, src), destfmt, dest, destlen);
    }
};
template <typename S>
constexpr bool is_binary = std::is_same_v<S, T_bin> || std::is_same_v<S, T_varbin>;
template <typename S>
using From = std::conditional_t<std::is_same_v<S, T_bin>, Binary<bin_source>, Binary<var_source>>;

// ---- To text ----

constexpr std::array<uint16_t, 256> make_hex_pairs() {
    constexpr char digits[] = "0123456789abcdef";
    std::array<uint16_t, 256> t{};
    for (int b = 0; b < 256; ++b) {
        // Stored so that a byte-wise copy of the pair puts the high digit first.
        const auto hi = static_cast<uint8_t>(digits[b >> 4]);
        const auto lo = static_cast<uint8_t>(digits[b & 15]);
        t[b] = std::endian::native == std::endian::little ? static_cast<uint16_t>(hi | lo << 8)
                                                          : static_cast<uint16_t>(hi << 8 | lo);
    }
    return t;
}
constexpr auto kHexPairs = make_hex_pairs();

void write_hex(const uint8_t *in, int32_t n, char *out) {
    for (int32_t i = 0; i < n; ++i)
        std::memcpy(out + 2 * i, &kHexPairs[in[i]], 2);
}

int32_t to_char(Bytes s, DataFormat *destfmt, void *dest, int32_t *destlen) {
    const int64_t full = 2 * static_cast<int64_t>(s.len);
    const auto r = static_cast<int32_t>(std::min<int64_t>(std::max(destfmt->maxlength, 0), full));
    write_hex(s.p, r / 2, static_cast<char *>(dest));
    *destlen = r; // an odd room counts its last, unwritten, position
    if (r < full) return CS_CONV_TRUNCATED;
    return comn__padchar(r, destfmt, dest, destlen);
}

int32_t to_varchar(Bytes s, DataFormat *, void *dest, int32_t *destlen) {
    const int32_t n = std::min(s.len, kVarRoom / 2);
    write_hex(s.p, n, static_cast<char *>(dest) + 2);
    put_length_word(dest, 2 * n);
    *destlen = kVarFrame;
    return n < s.len ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

// ---- To binary ----

int32_t to_bin(Bytes s, DataFormat *destfmt, void *dest, int32_t *destlen) {
    const int32_t m = std::max(destfmt->maxlength, 0);
    const int32_t n = std::min(m, s.len);
    if (n > 0) std::memcpy(dest, s.p, static_cast<size_t>(n)); // an empty value may be null
    *destlen = n;
    if (s.len > m) return CS_CONV_TRUNCATED;
    return comn__padbin(s.len, destfmt, dest, destlen);
}

int32_t to_varbin(Bytes s, DataFormat *, void *dest, int32_t *destlen) {
    const int32_t n = std::min(s.len, kVarRoom);
    if (n > 0) std::memcpy(static_cast<uint8_t *>(dest) + 2, s.p, static_cast<size_t>(n));
    put_length_word(dest, n);
    *destlen = kVarFrame;
    return n < s.len ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

// ---- Into fixed types ----

// The fixed types are the scalar ones of convert/scalar.h and these records; they are sources
// too, of their image. A type's image is its value's sizeof(type) bytes; a bit's holds 0 or 1.
template <typename T>
struct Record {
    using type = T;
};
using T_datetime = Record<DateTimeValue>;
using T_date4 = Record<DateTime4Value>;
using T_money = Record<MoneyValue>;
using T_mny4 = Record<Money4Value>;

template <typename F>
constexpr int32_t image_size = sizeof(typename F::type);

template <typename F>
bool valid_image(const uint8_t *p) {
    return !std::is_same_v<F, T_bit> || p[0] <= 1;
}

bool zero_from(Bytes s, int32_t from) {
    for (int32_t i = from; i < s.len; ++i)
        if (s.p[i] != 0) return false;
    return true;
}

template <typename F>
int32_t to_fixed(Bytes s, DataFormat *, void *dest, int32_t *destlen) {
    constexpr int32_t size = image_size<F>;
    if (s.len < size) {
        *destlen = 0;
        return CS_CONV_SYNTAX;
    }
    *destlen = size;
    if (!zero_from(s, size)) return CS_CONV_OVERFLOW;
    if (!valid_image<F>(s.p)) return CS_CONV_DOMAIN;
    std::memcpy(dest, s.p, size);
    return CS_SUCCEED;
}

int32_t to_num(Bytes s, DataFormat *destfmt, void *dest, int32_t *destlen) {
    constexpr auto kRecord = static_cast<int32_t>(sizeof(NumericValue));
    *destlen = 0;
    if (s.len < 2) return CS_CONV_SYNTAX;
    const uint8_t prec = s.p[0], scale = s.p[1];
    if (prec < 1 || prec > CS_MAX_PREC || scale > CS_MAX_SCALE) return CS_CONV_DOMAIN;
    if (s.len < 2 + Com__Nume_Prec_To_Len[prec]) return CS_CONV_SYNTAX;
    if (!zero_from(s, kRecord)) {
        *destlen = kRecord;
        return CS_CONV_OVERFLOW;
    }
    NumericValue v{};
    std::memcpy(&v, s.p, static_cast<size_t>(std::min(s.len, kRecord)));
    return comn_numtonum(nullptr, nullptr, &v, destfmt, dest, destlen);
}

// ---- Every pair ----

// The algorithm for destination D of a binary source.
template <typename D>
constexpr BytesRoutine routine() {
    if constexpr (std::is_same_v<D, T_char>)
        return to_char;
    else if constexpr (std::is_same_v<D, T_varchar>)
        return to_varchar;
    else if constexpr (std::is_same_v<D, T_bin>)
        return to_bin;
    else if constexpr (std::is_same_v<D, T_varbin>)
        return to_varbin;
    else if constexpr (std::is_same_v<D, T_num>)
        return to_num;
    else
        return to_fixed<D>;
}

template <typename S, typename D>
int32_t convert(ComContext *, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    if constexpr (is_binary<S>) {
        return From<S>::template run<routine<D>()>(srcfmt, src, destfmt, dest, destlen);
    } else { // a fixed-length number's image into binary or varbinary
        if (!valid_image<S>(static_cast<const uint8_t *>(src))) return CS_CONV_DOMAIN;
        if constexpr (std::is_same_v<D, T_bin>)
            return comn_fixedtobin(src, image_size<S>, destfmt, dest, destlen);
        else
            return comn_fixedtovarbin(src, image_size<S>, destfmt, dest, destlen);
    }
}

} // namespace
} // namespace comn

#define COMN_BIN_(d) COMN_CONV_PAIR(bin, d)
#define COMN_VARBIN_(d) COMN_CONV_PAIR(varbin, d)
#define COMN_FIXED_TOBIN_(s) COMN_CONV_PAIR(s, bin) COMN_CONV_PAIR(s, varbin)
COMN_BINARY_DESTS(COMN_BIN_)
COMN_BINARY_DESTS(COMN_VARBIN_)
COMN_NUMBER_OUTPUT_SOURCES(COMN_FIXED_TOBIN_)
