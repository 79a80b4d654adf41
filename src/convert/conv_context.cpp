// A context's own copy of the conversion table, and its list of user conversions for
// datatype pairs in which either id is 24 or above. Installs and resets change only the
// context; the default table is never written.
#include <cstdlib>
#include <cstring>

#include "comnlib/convert.h"
#include "core/alloc.h"

namespace {

// Finds the head of the chain for a source id, or null.
UserConvEntry *find_head(ComContext *ctx, int32_t src) {
    for (UserConvEntry *h = ctx->conv.user_convs; h; h = h->next_src)
        if (h->src_type == src) return h;
    return nullptr;
}

} // namespace

extern "C" {

COMN_API int32_t com_conv_init(ComContext *ctx) {
    const ComConvFunc *table;
    uint32_t dim;
    com__get_ctbl(&table, &dim);
    ctx->conv.conv_dim = dim;
    auto *copy = static_cast<ComConvFunc *>(comn::mem_malloc(sizeof(ComConvFunc) * dim * dim));
    if (!copy) return CS_MEM_ERROR;
    std::memcpy(copy, table, sizeof(ComConvFunc) * dim * dim);
    ctx->conv.conv_table = copy;
    ctx->conv.user_convs = nullptr;
    return CS_SUCCEED;
}

COMN_API int32_t com__conv_usr_free(ComContext *ctx) {
    UserConvEntry *head = ctx->conv.user_convs;
    while (head) {
        UserConvEntry *next_head = head->next_src;
        for (UserConvEntry *e = head; e;) {
            UserConvEntry *next = e->next_dest;
            comn::mem_free(e);
            e = next;
        }
        head = next_head;
    }
    ctx->conv.user_convs = nullptr;
    return CS_SUCCEED;
}

COMN_API int32_t com_conv_free(ComContext *ctx) {
    comn::mem_free(ctx->conv.conv_table);
    ctx->conv.conv_table = nullptr;
    ctx->conv.conv_dim = 0;
    return com__conv_usr_free(ctx);
}

COMN_API UserConvEntry *com__conv_usr_struct(ComContext *ctx, int32_t src, int32_t dst) {
    for (UserConvEntry *e = find_head(ctx, src); e; e = e->next_dest)
        if (e->dest_type == dst) return e;
    return nullptr;
}

COMN_API ComConvFunc com__conv_usr_func(ComContext *ctx, int32_t src, int32_t dst) {
    UserConvEntry *e = com__conv_usr_struct(ctx, src, dst);
    return e ? e->func : nullptr;
}

COMN_API ComConvFunc com_conv_func(ComContext *ctx, int32_t src, int32_t dst) {
    // The hot path of every conversion: negative ids wrap to huge unsigned values and so
    // fall through to the test below.
    const auto s = static_cast<uint32_t>(src), d = static_cast<uint32_t>(dst);
    if (s < COMN_CONV_DIM && d < COMN_CONV_DIM) {
        // A context whose table was freed (or never made) has no conversions.
        const uint32_t dim = ctx->conv.conv_dim;
        if (s >= dim || d >= dim || !ctx->conv.conv_table) return nullptr;
        return ctx->conv.conv_table[s * dim + d];
    }
    if (src < 0 || dst < 0) return nullptr;
    return com__conv_usr_func(ctx, src, dst);
}

COMN_API int32_t com__conv_usr_install(ComContext *ctx, int32_t src, int32_t dst,
                                       ComConvFunc func) {
    if (UserConvEntry *e = com__conv_usr_struct(ctx, src, dst)) {
        e->func = func;
        return CS_SUCCEED;
    }
    auto *e = static_cast<UserConvEntry *>(comn::mem_calloc(1, sizeof(UserConvEntry)));
    if (!e) return CS_MEM_ERROR;
    e->src_type = src;
    e->dest_type = dst;
    e->func = func;
    // Append, so that the lists keep the order of installation.
    if (!ctx->conv.user_convs) {
        ctx->conv.user_convs = e;
    } else if (UserConvEntry *head = find_head(ctx, src)) {
        while (head->next_dest)
            head = head->next_dest;
        head->next_dest = e;
    } else {
        UserConvEntry *last = ctx->conv.user_convs;
        while (last->next_src)
            last = last->next_src;
        last->next_src = e;
    }
    return CS_SUCCEED;
}

COMN_API int32_t com_conv_install(ComContext *ctx, int32_t src, int32_t dst, ComConvFunc func) {
    // Built-in pairs overwrite the context's cell; ids are deliberately not tested for
    // being negative here (the caller passes real datatype ids).
    if (src < COMN_CONV_DIM && dst < COMN_CONV_DIM) {
        if (!ctx->conv.conv_table || src < 0 || dst < 0) return CS_FAIL;
        ctx->conv.conv_table[src * ctx->conv.conv_dim + dst] = func;
        return CS_SUCCEED;
    }
    return com__conv_usr_install(ctx, src, dst, func);
}

COMN_API int32_t com_conv_default(ComContext *ctx, int32_t src, int32_t dst) {
    const ComConvFunc *table;
    uint32_t dim;
    com__get_ctbl(&table, &dim);
    if (src < static_cast<int32_t>(dim) && dst < static_cast<int32_t>(dim)) {
        if (src < 0 || dst < 0) return CS_FAIL;
        return com_conv_install(ctx, src, dst, table[src * dim + dst]);
    }
    if (UserConvEntry *e = com__conv_usr_struct(ctx, src, dst)) e->func = nullptr;
    return CS_SUCCEED;
}

// Converting from CS_VOID to CS_VOID produces nothing: not even the result length is set.
COMN_API int32_t comn_voidtovoid(ComContext *, DataFormat *, void *, DataFormat *, void *,
                                 int32_t *) {
    return CS_SUCCEED;
}
}
