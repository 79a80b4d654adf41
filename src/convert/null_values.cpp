// Null substitution values: per context, one entry per built-in datatype id (0..23) plus a
// list for user types. A fetch hands the value back shaped like a converted value of the
// destination format: padded as text or binary, or with precision and scale filled in.
//
// The default table keeps two quirks on purpose: rows 1 and 2 carry the character and binary
// statics in that order (so a null CS_BINARY pads like text and a null CS_LONGCHAR like
// binary), and CS_DATETIME4 and CS_MONEY4 are listed with length 8 (the copy is cut to the
// destination length, so callers receive 4 zero bytes).
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "comnlib/convert.h"
#include "comnlib/numeric.h"
#include "core/alloc.h"

namespace {

enum PadKind : int32_t { kPadChar = 1, kPadBinary = 2, kFixed = 3 };

constexpr uint8_t Comp_CS_CHAR[1] = {}, Comp_CS_LONGCHAR[1] = {}, Comp_CS_BINARY[1] = {},
                  Comp_CS_LONGBINARY[1] = {}, Comp_CS_TEXT[1] = {}, Comp_CS_IMAGE[1] = {},
                  Comp_CS_SENSITIVITY[1] = {}, Comp_CS_BOUNDARY[1] = {};
constexpr uint8_t Comv_CS_TINYINT[1] = {}, Comv_CS_SMALLINT[2] = {}, Comv_CS_INT[4] = {},
                  Comv_CS_REAL[4] = {}, Comv_CS_FLOAT[8] = {}, Comv_CS_BIT[1] = {},
                  Comv_CS_DATETIME[8] = {}, Comv_CS_DATETIME4[8] = {}, Comv_CS_MONEY[8] = {},
                  Comv_CS_MONEY4[8] = {}, Comv_CS_VARBINARY[258] = {}, Comv_CS_VARCHAR[258] = {},
                  Comv_CS_LONG[4] = {}, Comv_CS_VOID[4] = {};
constexpr uint8_t Comv_CS_NUMERIC[35] = {18, 0};
constexpr uint8_t Comv_CS_DECIMAL[35] = {18, 0};

struct DefaultNull {
    const uint8_t *value;
    int32_t length;
    int32_t pad;
};

// clang-format off
constexpr DefaultNull Comv_values[COMN_CONV_DIM] = {
    {Comp_CS_CHAR, 0, kPadChar},          {Comp_CS_LONGCHAR, 0, kPadChar},
    {Comp_CS_BINARY, 0, kPadBinary},      {Comp_CS_LONGBINARY, 0, kPadBinary},
    {Comp_CS_TEXT, 0, kPadChar},          {Comp_CS_IMAGE, 0, kPadBinary},
    {Comv_CS_TINYINT, 1, kFixed},         {Comv_CS_SMALLINT, 2, kFixed},
    {Comv_CS_INT, 4, kFixed},             {Comv_CS_REAL, 4, kFixed},
    {Comv_CS_FLOAT, 8, kFixed},           {Comv_CS_BIT, 1, kFixed},
    {Comv_CS_DATETIME, 8, kFixed},        {Comv_CS_DATETIME4, 8, kFixed},
    {Comv_CS_MONEY, 8, kFixed},           {Comv_CS_MONEY4, 8, kFixed},
    {Comv_CS_NUMERIC, 35, kFixed},        {Comv_CS_DECIMAL, 35, kFixed},
    {Comv_CS_VARBINARY, 258, kFixed},     {Comv_CS_VARCHAR, 258, kFixed},
    {Comv_CS_LONG, 4, kFixed},            {Comp_CS_SENSITIVITY, 0, kPadChar},
    {Comp_CS_BOUNDARY, 0, kPadChar},      {Comv_CS_VOID, 4, kFixed},
};
// clang-format on

NullEntry *entry(ComContext *ctx, int32_t t) {
    return &ctx->conv.null_values[t];
}

int32_t copy_value(void **dst, const void *src, int32_t len) {
    *dst = nullptr;
    if (len <= 0) return CS_SUCCEED;
    void *p = comn::mem_malloc(static_cast<size_t>(len));
    if (!p) return CS_MEM_ERROR;
    std::memcpy(p, src, static_cast<size_t>(len));
    *dst = p;
    return CS_SUCCEED;
}

} // namespace

extern "C" {

COMN_API int32_t com_null_init(ComContext *ctx) {
    ctx->null_count = COMN_CONV_DIM;
    ctx->user_nulls = nullptr;
    auto *arr = static_cast<NullEntry *>(comn::mem_calloc(COMN_CONV_DIM, sizeof(NullEntry)));
    ctx->conv.null_values = arr;
    if (!arr) return CS_MEM_ERROR;
    for (int t = 0; t < COMN_CONV_DIM; ++t) {
        const DefaultNull &d = Comv_values[t];
        arr[t].length = d.length;
        arr[t].padkind = d.pad;
        arr[t].value = comn::mem_malloc(static_cast<size_t>(std::max(d.length, 1)));
        if (!arr[t].value) return CS_MEM_ERROR;
        std::memcpy(arr[t].value, d.value, static_cast<size_t>(std::max(d.length, 1)));
    }
    return CS_SUCCEED;
}

COMN_API int32_t com__null_usr_free(ComContext *ctx) {
    for (UserNullEntry *e = ctx->user_nulls; e;) {
        UserNullEntry *next = e->next;
        comn::mem_free(e->value);
        comn::mem_free(e);
        e = next;
    }
    ctx->user_nulls = nullptr;
    return CS_SUCCEED;
}

COMN_API int32_t com_null_free(ComContext *ctx) {
    if (NullEntry *arr = ctx->conv.null_values) {
        for (int t = 0; t < ctx->null_count; ++t)
            comn::mem_free(arr[t].value);
        comn::mem_free(arr);
        ctx->conv.null_values = nullptr;
    }
    ctx->null_count = 0;
    // User entries are freed with their values: a context owns every copy it made.
    return com__null_usr_free(ctx);
}

COMN_API int32_t com__null_usr_get(ComContext *ctx, DataFormat *fmt, void *dest, int32_t dstlen,
                                   int32_t *outlen) {
    for (UserNullEntry *e = ctx->user_nulls; e; e = e->next) {
        if (e->type != fmt->datatype) continue;
        int32_t n = std::min(dstlen, e->length);
        if (n > 0) std::memcpy(dest, e->value, static_cast<size_t>(n));
        *outlen = std::max(n, 0);
        return CS_SUCCEED;
    }
    *outlen = 0;
    return CS_SUCCEED;
}

COMN_API int32_t com_null_get(ComContext *ctx, DataFormat *fmt, void *dest, int32_t dstlen,
                              int32_t *outlen) {
    int32_t t = fmt->datatype;
    if (t >= COMN_CONV_DIM) return com__null_usr_get(ctx, fmt, dest, dstlen, outlen);
    if (t < 0 || !ctx->conv.null_values || t >= ctx->null_count) {
        *outlen = 0;
        return CS_FAIL;
    }
    const NullEntry *e = entry(ctx, t);
    bool numeric = t == CS_NUMERIC || t == CS_DECIMAL;
    int32_t n = std::min(dstlen, e->length);
    // For a precision-specific exact numeric the count is that precision's stored length,
    // applied to the whole record (header bytes included).
    if (numeric && fmt->precision >= 1 && fmt->precision <= CS_MAX_PREC)
        n = std::min(dstlen, static_cast<int32_t>(Com__Nume_Prec_To_Len[fmt->precision]));
    n = std::max(n, 0);
    if (n > 0 && e->value) std::memcpy(dest, e->value, static_cast<size_t>(n));
    *outlen = n;
    switch (e->padkind) {
    case kPadBinary:
        return comn__padbin(n, fmt, dest, outlen);
    case kPadChar:
        return comn__padchar(n, fmt, dest, outlen);
    default:
        if (numeric && dstlen >= 2) {
            static_cast<uint8_t *>(dest)[0] = static_cast<uint8_t>(fmt->precision);
            static_cast<uint8_t *>(dest)[1] = static_cast<uint8_t>(fmt->scale);
        }
        return CS_SUCCEED;
    }
}

COMN_API int32_t com__null_usr_set(ComContext *ctx, int32_t t, void *value, int32_t len) {
    for (UserNullEntry *e = ctx->user_nulls; e; e = e->next) {
        if (e->type != t) continue;
        comn::mem_free(e->value);
        e->length = 0;
        int32_t rc = copy_value(&e->value, value, len);
        if (rc == CS_SUCCEED) e->length = std::max(len, 0);
        return rc;
    }
    auto *e = static_cast<UserNullEntry *>(comn::mem_calloc(1, sizeof(UserNullEntry)));
    if (!e) return CS_MEM_ERROR;
    if (copy_value(&e->value, value, len) != CS_SUCCEED) {
        comn::mem_free(e);
        return CS_MEM_ERROR;
    }
    e->type = t;
    e->length = std::max(len, 0);
    e->next = ctx->user_nulls;
    ctx->user_nulls = e;
    return CS_SUCCEED;
}

COMN_API int32_t com_null_set(ComContext *ctx, int32_t t, void *value, int32_t len) {
    if (t >= CS_VOID) return com__null_usr_set(ctx, t, value, len);
    if (t < 0 || !ctx->conv.null_values) return CS_FAIL;
    NullEntry *e = entry(ctx, t);
    comn::mem_free(e->value);
    e->length = 0;
    int32_t rc = copy_value(&e->value, value, len);
    if (rc == CS_SUCCEED) e->length = std::max(len, 0);
    return rc;
}

COMN_API int32_t com__null_usr_reinstall(ComContext *ctx, int32_t t) {
    for (UserNullEntry **link = &ctx->user_nulls; *link; link = &(*link)->next) {
        if ((*link)->type != t) continue;
        UserNullEntry *e = *link;
        *link = e->next;
        comn::mem_free(e->value);
        comn::mem_free(e);
        break;
    }
    return CS_SUCCEED;
}

COMN_API int32_t com_null_reinstall(ComContext *ctx, int32_t t) {
    if (t >= CS_VOID) return com__null_usr_reinstall(ctx, t);
    if (t < 0 || !ctx->conv.null_values) return CS_FAIL;
    NullEntry *e = entry(ctx, t);
    const DefaultNull &d = Comv_values[t];
    // The set value may have been shorter than the default, or absent: the buffer is
    // replaced by one of the default's size rather than overrun.
    void *buf = comn::mem_realloc(e->value, static_cast<size_t>(std::max(d.length, 1)));
    if (!buf) return CS_MEM_ERROR;
    std::memcpy(buf, d.value, static_cast<size_t>(std::max(d.length, 1)));
    e->value = buf;
    e->length = d.length;
    e->padkind = d.pad;
    return CS_SUCCEED;
}

// CS_VOID to any type: the destination type's null substitution value.
COMN_API int32_t comn_voidtoany(ComContext *ctx, DataFormat *, void *, DataFormat *destfmt,
                                void *dest, int32_t *destlen) {
    return com_null_get(ctx, destfmt, dest, comn_typelen(destfmt->datatype, destfmt->maxlength),
                        destlen);
}
}
