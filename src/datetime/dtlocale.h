// Where the date code reads locale data. Conversions reach a locale through (context, data
// format); until the locale cache is wired in, every accessor here answers with the
// built-in English defaults. This is the one place to replace: the parser and formatter
// take everything they need as arguments and do not change.
#pragma once

#include <cstdint>

#include "comnlib/datetime.h"

namespace comn::dtloc {

inline const char *const *short_months(ComContext *, const DataFormat *) {
    return com__get_shortmonths();
}
inline const char *const *months(ComContext *, const DataFormat *) {
    return com__get_months();
}
inline int32_t dateorder_id(ComContext *, const DataFormat *) {
    return com__get_date_order_id();
}
inline int32_t dtfmt(ComContext *, const DataFormat *) {
    return com__map_dateorder_id_to_fmt(com__get_date_order_id());
}
// Null: plain ASCII classes with upper-case folding.
inline const CharAttrib *charattr(ComContext *, const DataFormat *) {
    return nullptr;
}

} // namespace comn::dtloc
