// The head of an exported conversion routine's definition: C linkage and the ComConvFunc
// signature, with the parameters named ctx, srcfmt, src, destfmt, dest and destlen. The
// families write their entry points through it, each body using the parameters it needs.
#pragma once

#include "comnlib/convert.h"

#define COMN_CONV_ROUTINE(name)                                                                    \
    extern "C" COMN_API int32_t name(                                                              \
        [[maybe_unused]] ComContext *ctx, [[maybe_unused]] DataFormat *srcfmt, void *src,          \
        [[maybe_unused]] DataFormat *destfmt, void *dest, int32_t *destlen)
