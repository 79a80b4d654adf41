// Internal seams of character set translation: the cell lookup over the dispatch table, the
// resolution of a (source format, destination format) pair to a mode and converter, and the
// driver once those are known, so each can be exercised without locales.
//
// The lookup and the resolution are inline: the public driver runs them once per value, and
// for a value of a few bytes their cost is of the order of the translation itself.
#pragma once

#include <comnlib/intl.h>

#include "intl/ctype/charattr_internal.h"

#include <array>
#include <cstddef>

namespace comn {

// The sets translation knows: those of Com_fou_xlt_map and utf8.
constexpr int xlt_sets = COM_XLT_NSETS + 1;

// Position of each set id among the rows and cells of the translation table, -1 for an
// unknown id, and the table by position: Com_fou_xlt_map's cells with utf8's row and column
// added (both built in xlate_map.cpp). Declared hidden so that other files of the library
// reach them directly rather than through the symbol table.
[[gnu::visibility("hidden")]] extern const std::array<int8_t, 256> xlt_position;
[[gnu::visibility("hidden")]] extern const std::array<std::array<ComXltCell, xlt_sets>, xlt_sets>
    xlt_cells;

// The cell of (source id, destination id), or null when the table has none.
inline const ComXltCell *xlate_cell(int32_t src_id, int32_t dst_id) {
    if (static_cast<uint32_t>(src_id | dst_id) > 255) return nullptr;
    const int r = xlt_position[static_cast<size_t>(src_id)];
    const int c = xlt_position[static_cast<size_t>(dst_id)];
    if ((r | c) < 0) return nullptr;
    return &xlt_cells[static_cast<size_t>(r)][static_cast<size_t>(c)];
}

// The translation id of a locale record: that of its character set description's attributes,
// else the built-in iso_1 record's.
inline int32_t record_csid(const LocaleRecord *rec) {
    if (rec != nullptr && rec->charset_desc != nullptr && rec->charset_desc->attr != nullptr)
        return rec->charset_desc->attr->xlate_id;
    return Iso1_attrib.xlate_id;
}

struct XltPair {
    int32_t mode;
    ComXlateFunc func;
};

// Mode and converter of a pair of formats. A format without a locale takes the context's
// default handle; a handle without a ctype record, or a record without a character set
// description, stands for the built-in iso_1 attributes, as everywhere else in the library.
inline XltPair xlate_resolve(const ComContext *ctx, const DataFormat *srcfmt,
                             const DataFormat *destfmt) {
    const LocaleHandle *dflt = ctx != nullptr ? ctx->conv.default_locale : nullptr;
    const LocaleHandle *from = srcfmt->locale != nullptr ? srcfmt->locale : dflt;
    const LocaleHandle *to = destfmt->locale != nullptr ? destfmt->locale : dflt;
    if (from == to) return {COM_XLT_MODE_COPY, nullptr};
    const int32_t src_id = record_csid(from != nullptr ? from->ctype : nullptr);
    const int32_t dst_id = record_csid(to != nullptr ? to->ctype : nullptr);
    if (src_id == dst_id) return {COM_XLT_MODE_COPY, nullptr};
    const ComXltCell *cell = xlate_cell(src_id, dst_id);
    if (cell == nullptr) return {COM_XLT_MODE_NONE, nullptr};
    return {cell->mode, cell->func};
}

// Translates one value with the given mode and converter (see com_intl_xlate).
int32_t xlate_run(int32_t mode, ComXlateFunc func, const DataFormat *srcfmt, const void *src,
                  const DataFormat *destfmt, void *dest, int32_t *outlen, int32_t *state);

} // namespace comn
