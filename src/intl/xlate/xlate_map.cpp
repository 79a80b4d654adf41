// The translation dispatch table Com_fou_xlt_map and the lookups over it: which mode and
// which converter carry text from one character set to another.
//
// A locale's set is named by the translation id of its ctype record's character attributes.
// Rows and cells are both in the order ascii8, iso_1, cp850, cp437, roman8, mac, eucjis, sjis,
// deckanji, test set. Mode 2 cells name the byte-wise ASCII converter even from the Japanese
// sets, whose character-wise ASCII converters exist beside it.
//
// utf8 stands outside the exported table, which keeps its ten rows: its row and column are
// added to the library's own copy. It translates to and from every set but the test set
// through its dedicated converters; from ascii8 the ASCII converter does.
#include "xlate_internal.h"
#include "xlate_dispatch.h"

#include <array>

namespace {

constexpr uint8_t NONE = COM_XLT_MODE_NONE, COPY = COM_XLT_MODE_COPY, ASC = COM_XLT_MODE_ASCII,
                  CONV = COM_XLT_MODE_CONVERT;
constexpr ComXlateFunc ascii = com__fou_ascii8_tofrom_1byte;
constexpr ComXlateFunc swap = com__fou_caseswap;

// Cell constructors, one per destination column: a8(COPY), i1(CONV, func), ...
struct Column {
    uint8_t set;
    constexpr ComXltCell operator()(uint8_t m, ComXlateFunc f = nullptr) const {
        return {set, m, f};
    }
};
constexpr Column a8{COM_XLT_ASCII8}, i1{COM_XLT_ISO1}, c850{COM_XLT_CP850}, c437{COM_XLT_CP437},
    r8{COM_XLT_ROMAN8}, mac{COM_XLT_MAC}, euc{COM_XLT_EUCJIS}, sjis{COM_XLT_SJIS},
    dec{COM_XLT_DECKANJI}, cs{COM_XLT_CASESWAP};

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

constexpr uint8_t k_ids[xlt_sets] = {
    COM_XLT_ASCII8, COM_XLT_ISO1, COM_XLT_CP850,    COM_XLT_CP437,    COM_XLT_ROMAN8, COM_XLT_MAC,
    COM_XLT_EUCJIS, COM_XLT_SJIS, COM_XLT_DECKANJI, COM_XLT_CASESWAP, COM_XLT_UTF8};

// utf8's cells, by position of the other set: the utf8 -> set converters, and the set ->
// utf8 converters (mode 2 with the ASCII converter from ascii8).
constexpr ComXltCell k_from_utf8[COM_XLT_NSETS] = {
    {COM_XLT_ASCII8, CONV, com__fou_utf8_to_ascii8},
    {COM_XLT_ISO1, CONV, com__fou_utf8_to_iso1},
    {COM_XLT_CP850, CONV, com__fou_utf8_to_cp850},
    {COM_XLT_CP437, CONV, com__fou_utf8_to_cp437},
    {COM_XLT_ROMAN8, CONV, com__fou_utf8_to_roman8},
    {COM_XLT_MAC, CONV, com__fou_utf8_to_mac},
    {COM_XLT_EUCJIS, CONV, com__fou_utf8_to_eucjis},
    {COM_XLT_SJIS, CONV, com__fou_utf8_to_sjis},
    {COM_XLT_DECKANJI, CONV, com__fou_utf8_to_deckanji},
    {COM_XLT_CASESWAP, NONE, nullptr}};
constexpr ComXltCell k_to_utf8[COM_XLT_NSETS] = {{COM_XLT_UTF8, ASC, ascii},
                                                 {COM_XLT_UTF8, CONV, com__fou_iso1_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_cp850_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_cp437_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_roman8_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_mac_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_eucjis_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_sjis_to_utf8},
                                                 {COM_XLT_UTF8, CONV, com__fou_deckanji_to_utf8},
                                                 {COM_XLT_UTF8, NONE, nullptr}};

// Rows and cells must stand in id order for the position lookup below to find them.
constexpr bool in_id_order() {
    for (int r = 0; r < COM_XLT_NSETS; ++r) {
        if (Com_fou_xlt_map[r].src_id != k_ids[r]) return false;
        if (k_from_utf8[r].dest_id != k_ids[r] || k_to_utf8[r].dest_id != COM_XLT_UTF8)
            return false;
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
    for (int i = 0; i < xlt_sets; ++i)
        pos[k_ids[i]] = static_cast<int8_t>(i);
    return pos;
}();

// The exported table is reached through the symbol table on every access, this copy at a
// fixed offset.
constexpr std::array<std::array<ComXltCell, xlt_sets>, xlt_sets> xlt_cells = [] {
    std::array<std::array<ComXltCell, xlt_sets>, xlt_sets> cells{};
    constexpr int u = COM_XLT_NSETS; // utf8's position
    for (int r = 0; r < COM_XLT_NSETS; ++r) {
        for (int c = 0; c < COM_XLT_NSETS; ++c)
            cells[r][c] = Com_fou_xlt_map[r].cells[c];
        cells[r][u] = k_to_utf8[r];
        cells[u][r] = k_from_utf8[r];
    }
    cells[u][u] = {COM_XLT_UTF8, COPY, nullptr};
    return cells;
}();

} // namespace comn
