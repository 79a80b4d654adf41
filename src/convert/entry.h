// How the conversion families define their exported routines.
//
// COMN_CONV_PAIR(a, b) defines the routine comn_<a>to<b> (C linkage, the ComConvFunc signature)
// for the short names a of a source type and b of a destination type (i4, money, char, ...). A
// family names every type it handles comn::T_<short name> (T_i4, T_money, T_char), as a source, a
// destination or both, and writes its conversions as one template, comn::convert<S, D>, with the
// ComConvFunc parameters: it picks the family's algorithm for the pair at compile time and hands
// each the parameters it uses. The family's pair list then yields every entry point through
// COMN_CONV_PAIR. An entry point only forwards its parameters, so the instance is inlined into it
// and its machine code is the algorithm's.
//
// The text, binary and exact numeric types are named here, once, as plain tags; a family that
// reads such a source keeps what it knows of it in its own template keyed on the tag. The
// scalar types are named in convert/scalar.h; the money and datetime types, whose handling
// differs from family to family, by each family.
#pragma once

#include "comnlib/convert.h"

namespace comn {
struct T_char {};
struct T_varchar {};
struct T_bin {};
struct T_varbin {};
struct T_num {};
} // namespace comn

#define COMN_CONV_PAIR(a, b)                                                                       \
    extern "C" COMN_API int32_t comn_##a##to##b(ComContext *ctx, DataFormat *srcfmt, void *src,    \
                                                DataFormat *destfmt, void *dest,                   \
                                                int32_t *destlen) {                                \
        return comn::convert<comn::T_##a, comn::T_##b>(ctx, srcfmt, src, destfmt, dest, destlen);  \
    }
