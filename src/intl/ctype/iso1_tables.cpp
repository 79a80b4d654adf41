// The built-in "iso_1" character tables: the type map of the attribute record used when no
// locale is at hand, its soundex table, the older global map Com_Iso1_charmap (the same case
// pairs and classes, plus the graphic bit for printable bytes), and the built-in record.
//
// The type bits and lexical classes are written below as byte ranges, row by row as the
// character classes are defined; the maps are computed from these rows at compile time. The
// odd members are deliberate: sharp s (DF) counts as upper case, 0E, 0F, 8E, 8F and the soft
// hyphen AD count as space, and the type map sets the graphic bit for no byte.
#include <array>
#include <cstdint>

#include "intl/ctype/charattr_internal.h"

namespace comn {
namespace {

struct Range {
    uint8_t lo, hi, value;
};

// Type bits of the record's map.
constexpr Range Type_rows[] = {
    {0x41, 0x5A, COM_CT_UPPER},  {0xC0, 0xD6, COM_CT_UPPER},  {0xD8, 0xDF, COM_CT_UPPER},
    {0x61, 0x7A, COM_CT_LOWER},  {0xE0, 0xF6, COM_CT_LOWER},  {0xF8, 0xFF, COM_CT_LOWER},
    {0x30, 0x39, COM_CT_DIGIT},  {0x09, 0x0F, COM_CT_SPACE},  {0x20, 0x20, COM_CT_SPACE},
    {0x8E, 0x8F, COM_CT_SPACE},  {0xA0, 0xA0, COM_CT_SPACE},  {0xAD, 0xAD, COM_CT_SPACE},
    {0x30, 0x39, COM_CT_XDIGIT}, {0x41, 0x46, COM_CT_XDIGIT}, {0x61, 0x66, COM_CT_XDIGIT},
    {0x21, 0x2F, COM_CT_PUNCT},  {0x3A, 0x40, COM_CT_PUNCT},  {0x5B, 0x60, COM_CT_PUNCT},
    {0x7B, 0x7E, COM_CT_PUNCT},  {0xA1, 0xAC, COM_CT_PUNCT},  {0xAE, 0xBF, COM_CT_PUNCT},
    {0xD7, 0xD7, COM_CT_PUNCT},  {0xF7, 0xF7, COM_CT_PUNCT},
};

// Lexical classes: 1 word character, 2 digit, 8 blank or control, 16 quote, 32 operator or
// other punctuation, 64 currency sign.
constexpr Range Lex_rows[] = {
    {0x23, 0x23, 1},  {0x40, 0x5A, 1},  {0x5F, 0x5F, 1},  {0x61, 0x7A, 1},  {0x80, 0xA2, 1},
    {0xA6, 0xFF, 1},  {0x30, 0x39, 2},  {0x00, 0x20, 8},  {0x22, 0x22, 16}, {0x27, 0x27, 16},
    {0x21, 0x21, 32}, {0x25, 0x26, 32}, {0x28, 0x2F, 32}, {0x3A, 0x3F, 32}, {0x5B, 0x5E, 32},
    {0x60, 0x60, 32}, {0x7B, 0x7F, 32}, {0x24, 0x24, 64}, {0xA3, 0xA5, 64},
};

// Case pairs (upper range, lower range of the same length). DF and FF map to themselves.
constexpr Range Case_rows[] = {{0x41, 0x5A, 0x61}, {0xC0, 0xD6, 0xE0}, {0xD8, 0xDE, 0xF8}};

// American Soundex digits of the letters A..Z.
constexpr char Soundex_letters[] = "01230120022455012623010202";

// The built-in map, a 4-byte gap, then the soundex table: the record's second table lies
// 1028 bytes past the start of its type map.
struct Iso1Block {
    std::array<uint8_t, 1024> typemap;
    std::array<uint8_t, 4> gap;
    std::array<uint8_t, 256> soundex;
};

constexpr std::array<uint8_t, 1024> make_map(bool graphic_printables) {
    std::array<uint8_t, 1024> m{};
    for (int c = 0; c < 256; ++c)
        m[4 * c] = m[4 * c + 1] = static_cast<uint8_t>(c);
    for (const auto &r : Case_rows)
        for (int c = r.lo; c <= r.hi; ++c) {
            const int lower = r.value + (c - r.lo);
            m[4 * c + 1] = m[4 * lower + 1] = static_cast<uint8_t>(lower);
            m[4 * c] = m[4 * lower] = static_cast<uint8_t>(c);
        }
    for (const auto &r : Type_rows)
        for (int c = r.lo; c <= r.hi; ++c)
            m[4 * c + 3] |= r.value;
    if (graphic_printables) {
        // The older map has no lexical classes and marks every printable byte as graphic.
        for (int c = 0; c < 256; ++c)
            if (m[4 * c + 3] & (COM_CT_UPPER | COM_CT_LOWER | COM_CT_DIGIT | COM_CT_PUNCT))
                m[4 * c + 3] |= COM_CT_GRAPH;
    } else {
        for (const auto &r : Lex_rows)
            for (int c = r.lo; c <= r.hi; ++c)
                m[4 * c + 2] = r.value;
    }
    return m;
}

constexpr Iso1Block make_block() {
    Iso1Block b{make_map(false), {}, {}};
    for (int i = 0; i < 26; ++i)
        b.soundex['A' + i] = b.soundex['a' + i] = static_cast<uint8_t>(Soundex_letters[i]);
    return b;
}

constexpr Iso1Block Iso1 = make_block();

static_assert(Iso1.typemap[4 * 0xDF + 3] == COM_CT_UPPER, "sharp s counts as upper case");
static_assert(Iso1.typemap[4 * 0xFF] == 0xFF && Iso1.typemap[4 * 0xE9] == 0xC9);

constexpr std::array<uint8_t, 1024> Iso1_charmap = make_map(true);

} // namespace

// The built-in record, reached directly by the classification routines.
constinit const CharAttrib Iso1_attrib = {0,
                                          1,
                                          1,
                                          5,
                                          {'i', 's', 'o', '_', '1'},
                                          {1, 1, 0, 1, 1},
                                          nullptr,
                                          nullptr,
                                          Iso1.typemap.data(),
                                          Iso1.soundex.data()};

} // namespace comn

extern "C" {

COMN_API extern const uint8_t *const Com_Iso1_charmap;
const uint8_t *const Com_Iso1_charmap = comn::Iso1_charmap.data();
COMN_API const uint8_t *Com_charmap = comn::Iso1_charmap.data();

COMN_API const uint8_t *com_get_typemap(void) {
    return comn::Iso1.typemap.data();
}

COMN_API const CharAttrib *com_get_charattrib(void) {
    return &comn::Iso1_attrib;
}
}
