// Where the date code reads locale data. Conversions reach a locale through (context, data
// format): the format's locale when it carries one, else the context's default locale, else
// the built-in English values (the locale cache's accessors decide the last step). The parser
// and formatter take everything they need as arguments and do not change.
#pragma once

#include <cstdint>

#include "comnlib/datetime.h"

namespace comn::dtloc {

// A format without a locale is passed on as no format, so that the accessors read the
// context's default locale rather than the built-in values.
inline const DataFormat *with_locale(const DataFormat *fmt) {
    return fmt != nullptr && fmt->locale != nullptr ? fmt : nullptr;
}

inline const char *const *short_months(ComContext *ctx, const DataFormat *fmt) {
    return com_intl_shortmonths(ctx, with_locale(fmt));
}
inline const char *const *months(ComContext *ctx, const DataFormat *fmt) {
    return com_intl_months(ctx, with_locale(fmt));
}
inline int32_t dateorder_id(ComContext *ctx, const DataFormat *fmt) {
    return com_intl_dateorder_id(ctx, with_locale(fmt));
}
inline int32_t is12hour(ComContext *ctx, const DataFormat *fmt) {
    return com_intl_is12hour(ctx, with_locale(fmt));
}
inline int32_t dtfmt(ComContext *ctx, const DataFormat *fmt) {
    return com_intl_get_dtfmt(ctx, fmt);
}
// The locale's character attributes; the built-in "iso_1" record without a locale.
inline const CharAttrib *charattr(ComContext *ctx, const DataFormat *fmt) {
    return com_intl_charattr(ctx, fmt);
}

} // namespace comn::dtloc
