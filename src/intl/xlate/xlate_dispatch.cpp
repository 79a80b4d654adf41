// Locale dispatch of translation: the character set id of a locale record, and the mode and
// converter of a (source format, destination format) pair.
#include "xlate_dispatch.h"

extern "C" {

COMN_API int32_t com__intl_get_csid(LocaleRecord *rec) {
    return comn::record_csid(rec);
}

COMN_API int32_t com_intl_will_xlate(ComContext *ctx, DataFormat *srcfmt, DataFormat *destfmt,
                                     int32_t *mode) {
    if (srcfmt == nullptr || destfmt == nullptr || mode == nullptr) return CS_FAIL;
    *mode = comn::xlate_resolve(ctx, srcfmt, destfmt).mode;
    return CS_SUCCEED;
}

COMN_API ComXlateFunc com__intl_get_xlate(ComContext *ctx, DataFormat *srcfmt,
                                          DataFormat *destfmt) {
    if (srcfmt == nullptr || destfmt == nullptr) return nullptr;
    return comn::xlate_resolve(ctx, srcfmt, destfmt).func;
}

} // extern "C"
