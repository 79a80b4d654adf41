// Internal seams of character set translation: the cell lookup over Com_fou_xlt_map and the
// driver once the pair's mode and converter are known, so both can be exercised without
// locales.
#ifndef COMN_INTL_XLATE_DISPATCH_H
#define COMN_INTL_XLATE_DISPATCH_H

#include <comnlib/intl.h>

namespace comn {

// The cell of (source id, destination id), or null when the table has none.
const ComXltCell *xlate_cell(int32_t src_id, int32_t dst_id);

// Translates one value with the given mode and converter (see com_intl_xlate).
int32_t xlate_run(int32_t mode, ComXlateFunc func, const DataFormat *srcfmt, const void *src,
                  const DataFormat *destfmt, void *dest, int32_t *outlen, int32_t *state);

} // namespace comn

#endif
