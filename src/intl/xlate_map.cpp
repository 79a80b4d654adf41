// The translation dispatch table Com_fou_xlt_map and the lookups over it: which mode and
// which converter carry text from one character set to another.
//
// A locale's set is named by the translation id of its ctype record's character attributes.
// Rows and cells are both in the order ascii8, iso_1, cp850, cp437, roman8, mac, eucjis, sjis,
// deckanji, test set. Mode 2 cells name the byte-wise ASCII converter even from the Japanese
// sets, whose character-wise ASCII converters exist beside it.
#include "xlate_internal.h"
#include "xlate_dispatch.h"

#include <array>

namespace {

constexpr uint8_t NONE = COM_XLT_MODE_NONE, COPY = COM_XLT_MODE_COPY, ASC = COM_XLT_MODE_ASCII,
                  CONV = COM_XLT_MODE_CONVERT;
constexpr ComXlateFunc ascii = com__fou_ascii8_tofrom_1byte;
constexpr ComXlateFunc swap = com__fou_caseswap;

// Cell constructors, one per destination column.
constexpr ComXltCell a8(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_ASCII8, m, f};
}
constexpr ComXltCell i1(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_ISO1, m, f};
}
constexpr ComXltCell c850(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_CP850, m, f};
}
constexpr ComXltCell c437(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_CP437, m, f};
}
constexpr ComXltCell r8(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_ROMAN8, m, f};
}
constexpr ComXltCell mac(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_MAC, m, f};
}
constexpr ComXltCell euc(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_EUCJIS, m, f};
}
constexpr ComXltCell sjis(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_SJIS, m, f};
}
constexpr ComXltCell dec(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_DECKANJI, m, f};
}
constexpr ComXltCell cs(uint8_t m, ComXlateFunc f = nullptr) {
    return {COM_XLT_CASESWAP, m, f};
}

} // namespace

// clang-format off
extern "C" COMN_API constexpr ComXltRow Com_fou_xlt_map[COM_XLT_NSETS] = {
    {COM_XLT_ASCII8, {a8(COPY), i1(ASC, ascii), c850(ASC, ascii), c437(ASC, ascii), r8(ASC, ascii),
                      mac(ASC, ascii), euc(ASC, ascii), sjis(ASC, ascii), dec(ASC, ascii),
                      cs(CONV, swap)}},
    {COM_XLT_ISO1, {a8(ASC, ascii), i1(COPY), c850(CONV, com__fou_iso1_to_cp850),
                    c437(CONV, com__fou_iso1_to_cp437), r8(CONV, com__fou_iso1_to_roman8),
                    mac(CONV, com__fou_iso1_to_mac), euc(ASC, ascii), sjis(ASC, ascii),
                    dec(ASC, ascii), cs(CONV, swap)}},
    {COM_XLT_CP850, {a8(ASC, ascii), i1(CONV, com__fou_cp850_to_iso1), c850(COPY),
                     c437(CONV, com__fou_cp850_to_cp437), r8(CONV, com__fou_cp850_to_roman8),
                     mac(CONV, com__fou_cp850_to_mac), euc(ASC, ascii), sjis(ASC, ascii),
                     dec(ASC, ascii), cs(NONE)}},
    {COM_XLT_CP437, {a8(ASC, ascii), i1(CONV, com__fou_cp437_to_iso1),
                     c850(CONV, com__fou_cp437_to_cp850), c437(COPY),
                     r8(CONV, com__fou_cp437_to_roman8), mac(CONV, com__fou_cp437_to_mac),
                     euc(ASC, ascii), sjis(ASC, ascii), dec(ASC, ascii), cs(NONE)}},
    {COM_XLT_ROMAN8, {a8(ASC, ascii), i1(CONV, com__fou_roman8_to_iso1),
                      c850(CONV, com__fou_roman8_to_cp850), c437(CONV, com__fou_roman8_to_cp437),
                      r8(COPY), mac(CONV, com__fou_roman8_to_mac), euc(ASC, ascii),
                      sjis(ASC, ascii), dec(ASC, ascii), cs(NONE)}},
    {COM_XLT_MAC, {a8(ASC, ascii), i1(CONV, com__fou_mac_to_iso1),
                   c850(CONV, com__fou_mac_to_cp850), c437(CONV, com__fou_mac_to_cp437),
                   r8(CONV, com__fou_mac_to_roman8), mac(COPY), euc(ASC, ascii), sjis(ASC, ascii),
                   dec(ASC, ascii), cs(NONE)}},
    {COM_XLT_EUCJIS, {a8(ASC, ascii), i1(ASC, ascii), c850(ASC, ascii), c437(ASC, ascii),
                      r8(ASC, ascii), mac(ASC, ascii), euc(COPY),
                      sjis(CONV, com__fou_eucjis_to_sjis), dec(CONV, com__fou_eucjis_to_deckanji),
                      cs(NONE)}},
    {COM_XLT_SJIS, {a8(ASC, ascii), i1(ASC, ascii), c850(ASC, ascii), c437(ASC, ascii),
                    r8(ASC, ascii), mac(ASC, ascii), euc(CONV, com__fou_sjis_to_eucjis_deckanj),
                    sjis(COPY), dec(CONV, com__fou_sjis_to_eucjis_deckanj), cs(NONE)}},
    {COM_XLT_DECKANJI, {a8(ASC, ascii), i1(ASC, ascii), c850(ASC, ascii), c437(ASC, ascii),
                        r8(ASC, ascii), mac(ASC, ascii), euc(CONV, com__fou_deckanji_to_eucjis),
                        sjis(CONV, com__fou_deckanji_to_sjis), dec(COPY), cs(NONE)}},
    {COM_XLT_CASESWAP, {a8(ASC, ascii), i1(ASC, ascii), c850(NONE), c437(NONE), r8(NONE),
                        mac(NONE), euc(NONE), sjis(NONE), dec(NONE), cs(COPY)}},
};
// clang-format on

namespace comn {
namespace {

constexpr uint8_t k_ids[COM_XLT_NSETS] = {
    COM_XLT_ASCII8, COM_XLT_ISO1,   COM_XLT_CP850, COM_XLT_CP437,    COM_XLT_ROMAN8,
    COM_XLT_MAC,    COM_XLT_EUCJIS, COM_XLT_SJIS,  COM_XLT_DECKANJI, COM_XLT_CASESWAP};

// Rows and cells must stand in id order for the position lookup below to find them.
constexpr bool in_id_order() {
    for (int r = 0; r < COM_XLT_NSETS; ++r) {
        if (Com_fou_xlt_map[r].src_id != k_ids[r]) return false;
        for (int c = 0; c < COM_XLT_NSETS; ++c)
            if (Com_fou_xlt_map[r].cells[c].dest_id != k_ids[c]) return false;
    }
    return true;
}
static_assert(in_id_order(), "translation rows and cells out of id order");

} // namespace

constexpr std::array<int8_t, 256> xlt_position = [] {
    std::array<int8_t, 256> pos{};
    pos.fill(-1);
    for (int i = 0; i < COM_XLT_NSETS; ++i)
        pos[k_ids[i]] = static_cast<int8_t>(i);
    return pos;
}();

// The exported table is reached through the symbol table on every access, this copy at a
// fixed offset.
constexpr std::array<std::array<ComXltCell, COM_XLT_NSETS>, COM_XLT_NSETS> xlt_cells = [] {
    std::array<std::array<ComXltCell, COM_XLT_NSETS>, COM_XLT_NSETS> cells{};
    for (int r = 0; r < COM_XLT_NSETS; ++r)
        for (int c = 0; c < COM_XLT_NSETS; ++c)
            cells[r][c] = Com_fou_xlt_map[r].cells[c];
    return cells;
}();

} // namespace comn
