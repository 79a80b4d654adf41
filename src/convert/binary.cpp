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

#include "comnlib/convert.h"
#include "comnlib/numeric.h"
#include "convert/buffers.h"
#include "convert/entry.h"

namespace comn {
namespace {

using Bytes = Span;

Bytes bin_source(const DataFormat *fmt, const void *src) {
    return {static_cast<const uint8_t *>(src), std::max(fmt->maxlength, 0)};
}

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

// A fixed type's image: its size and a test of the bytes' validity for the type.
template <int32_t Size>
struct Image {
    static constexpr int32_t size = Size;
    static constexpr bool valid(const uint8_t *) { return true; }
};
struct BitImage {
    static constexpr int32_t size = 1;
    static constexpr bool valid(const uint8_t *p) { return p[0] <= 1; }
};

using Img_i1 = Image<1>;
using Img_i2 = Image<2>;
using Img_i4 = Image<4>;
using Img_flt4 = Image<4>;
using Img_flt8 = Image<8>;
using Img_bit = BitImage;
using Img_datetime = Image<sizeof(DateTimeValue)>;
using Img_date4 = Image<sizeof(DateTime4Value)>;
using Img_money = Image<sizeof(MoneyValue)>;
using Img_mny4 = Image<sizeof(Money4Value)>;

bool zero_from(Bytes s, int32_t from) {
    for (int32_t i = from; i < s.len; ++i)
        if (s.p[i] != 0) return false;
    return true;
}

template <typename I>
int32_t to_fixed(Bytes s, DataFormat *, void *dest, int32_t *destlen) {
    if (s.len < I::size) {
        *destlen = 0;
        return CS_CONV_SYNTAX;
    }
    *destlen = I::size;
    if (!zero_from(s, I::size)) return CS_CONV_OVERFLOW;
    if (!I::valid(s.p)) return CS_CONV_DOMAIN;
    std::memcpy(dest, s.p, I::size);
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

// Routines of a binary source kind, d_<destination short name>.
template <Bytes (*Source)(const DataFormat *, const void *)>
struct From {
    template <int32_t (*F)(Bytes, DataFormat *, void *, int32_t *)>
    static int32_t run(DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                       int32_t *destlen) {
        return F(Source(srcfmt, src), destfmt, dest, destlen);
    }
    static constexpr auto d_char = run<to_char>;
    static constexpr auto d_varchar = run<to_varchar>;
    static constexpr auto d_bin = run<to_bin>;
    static constexpr auto d_varbin = run<to_varbin>;
    static constexpr auto d_i1 = run<to_fixed<Img_i1>>;
    static constexpr auto d_i2 = run<to_fixed<Img_i2>>;
    static constexpr auto d_i4 = run<to_fixed<Img_i4>>;
    static constexpr auto d_flt4 = run<to_fixed<Img_flt4>>;
    static constexpr auto d_flt8 = run<to_fixed<Img_flt8>>;
    static constexpr auto d_bit = run<to_fixed<Img_bit>>;
    static constexpr auto d_datetime = run<to_fixed<Img_datetime>>;
    static constexpr auto d_date4 = run<to_fixed<Img_date4>>;
    static constexpr auto d_money = run<to_fixed<Img_money>>;
    static constexpr auto d_mny4 = run<to_fixed<Img_mny4>>;
    static constexpr auto d_num = run<to_num>;
};
using From_bin = From<bin_source>;
using From_varbin = From<var_source>;

// ---- Fixed-length numbers to binary ----

template <typename T, bool Bit = false>
struct Fixed {
    static int32_t tobin(void *src, DataFormat *destfmt, void *dest, int32_t *destlen) {
        if (Bit && *static_cast<const uint8_t *>(src) > 1) return CS_CONV_DOMAIN;
        return comn_fixedtobin(src, sizeof(T), destfmt, dest, destlen);
    }
    static int32_t tovarbin(void *src, DataFormat *destfmt, void *dest, int32_t *destlen) {
        if (Bit && *static_cast<const uint8_t *>(src) > 1) return CS_CONV_DOMAIN;
        return comn_fixedtovarbin(src, sizeof(T), destfmt, dest, destlen);
    }
};
using Fixed_i1 = Fixed<uint8_t>;
using Fixed_i2 = Fixed<int16_t>;
using Fixed_i4 = Fixed<int32_t>;
using Fixed_flt4 = Fixed<float>;
using Fixed_flt8 = Fixed<double>;
using Fixed_bit = Fixed<uint8_t, true>;

} // namespace
} // namespace comn

#define COMN_DEFINE_BIN_(d)                                                                        \
    COMN_CONV_ROUTINE(comn_binto##d) {                                                             \
        return comn::From_bin::d_##d(srcfmt, src, destfmt, dest, destlen);                         \
    }
#define COMN_DEFINE_VARBIN_(d)                                                                     \
    COMN_CONV_ROUTINE(comn_varbinto##d) {                                                          \
        return comn::From_varbin::d_##d(srcfmt, src, destfmt, dest, destlen);                      \
    }
COMN_BINARY_DESTS(COMN_DEFINE_BIN_)
COMN_BINARY_DESTS(COMN_DEFINE_VARBIN_)

#define COMN_DEFINE_FIXED_TOBIN_(s)                                                                \
    COMN_CONV_ROUTINE(comn_##s##tobin) {                                                           \
        return comn::Fixed_##s::tobin(src, destfmt, dest, destlen);                                \
    }                                                                                              \
    COMN_CONV_ROUTINE(comn_##s##tovarbin) {                                                        \
        return comn::Fixed_##s::tovarbin(src, destfmt, dest, destlen);                             \
    }
COMN_NUMBER_OUTPUT_SOURCES(COMN_DEFINE_FIXED_TOBIN_)
