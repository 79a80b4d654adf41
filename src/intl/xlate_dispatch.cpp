// Locale dispatch of translation: the character set id of a locale, the mode and converter of
// a (source format, destination format) pair, and the public driver entry points.
//
// A format without a locale takes the context's default handle; a handle without a ctype
// record, or a record without a character set description, stands for the built-in iso_1
// attributes, as everywhere else in the library.
#include "xlate_dispatch.h"

namespace {

const LocaleHandle *handle_of(const ComContext *ctx, const DataFormat *fmt) {
    if (fmt->locale != nullptr) return fmt->locale;
    return ctx != nullptr ? ctx->conv.default_locale : nullptr;
}

int32_t record_csid(const LocaleRecord *rec) {
    if (rec != nullptr && rec->charset_desc != nullptr && rec->charset_desc->attr != nullptr)
        return rec->charset_desc->attr->xlate_id;
    return com_get_charattrib()->xlate_id;
}

int32_t handle_csid(const LocaleHandle *h) {
    return record_csid(h != nullptr ? h->ctype : nullptr);
}

struct Pair {
    int32_t mode;
    ComXlateFunc func;
};

Pair resolve(const ComContext *ctx, const DataFormat *srcfmt, const DataFormat *destfmt) {
    const LocaleHandle *from = handle_of(ctx, srcfmt), *to = handle_of(ctx, destfmt);
    if (from == to) return {COM_XLT_MODE_COPY, nullptr};
    const int32_t src_id = handle_csid(from), dst_id = handle_csid(to);
    if (src_id == dst_id) return {COM_XLT_MODE_COPY, nullptr};
    const ComXltCell *cell = comn::xlate_cell(src_id, dst_id);
    if (cell == nullptr) return {COM_XLT_MODE_NONE, nullptr};
    return {cell->mode, cell->func};
}

} // namespace

extern "C" {

COMN_API int32_t com__intl_get_csid(LocaleRecord *rec) {
    return record_csid(rec);
}

COMN_API int32_t com_intl_will_xlate(ComContext *ctx, DataFormat *srcfmt, DataFormat *destfmt,
                                     int32_t *mode) {
    if (srcfmt == nullptr || destfmt == nullptr || mode == nullptr) return CS_FAIL;
    *mode = resolve(ctx, srcfmt, destfmt).mode;
    return CS_SUCCEED;
}

COMN_API ComXlateFunc com__intl_get_xlate(ComContext *ctx, DataFormat *srcfmt,
                                          DataFormat *destfmt) {
    if (srcfmt == nullptr || destfmt == nullptr) return nullptr;
    return resolve(ctx, srcfmt, destfmt).func;
}

COMN_API int32_t com_intl_xlate(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt,
                                void *dest, int32_t *outlen, int32_t *state) {
    if (srcfmt == nullptr || destfmt == nullptr || outlen == nullptr || state == nullptr)
        return CS_FAIL;
    const Pair p = resolve(ctx, srcfmt, destfmt);
    return comn::xlate_run(p.mode, p.func, srcfmt, src, destfmt, dest, outlen, state);
}

COMN_API int32_t comb__intl_xlate(ComContext *ctx, DataFormat *srcfmt, void *src,
                                  DataFormat *destfmt, void *dest, int32_t *outlen,
                                  int32_t *state) {
    return com_intl_xlate(ctx, srcfmt, src, destfmt, dest, outlen, state);
}

} // extern "C"
