// The Latin-1 character rules the money parser applies when it is handed no attribute record:
// a single-byte type map that marks the currency symbols ("$", 0xA3 pound, 0xA4 currency
// sign, 0xA5 yen) in the lexical class byte and the white-space bytes (0x09-0x0F, blank,
// 0x8E, 0x8F, no-break space, soft hyphen) in the type bits, exactly as the built-in "iso_1"
// record classifies them. Only those two properties are filled in: this record stands in
// for the library's built-in "iso_1" attribute record until the parser can be handed that.
#include <array>

#include "money/money_internal.h"

namespace comn {
namespace {

constexpr bool is_currency(int b) {
    return b == 0x24 || (b >= 0xA3 && b <= 0xA5);
}
constexpr bool is_space(int b) {
    return (b >= 0x09 && b <= 0x0F) || b == 0x20 || b == 0x8E || b == 0x8F || b == 0xA0 ||
           b == 0xAD;
}

constexpr std::array<uint8_t, 1024> make_typemap() {
    std::array<uint8_t, 1024> map{};
    for (int b = 0; b < 256; ++b) {
        map[4 * b + 2] = is_currency(b) ? 0x40 : 0;
        map[4 * b + 3] = is_space(b) ? COM_CT_SPACE : 0;
    }
    return map;
}

constexpr std::array<uint8_t, 1024> kTypemap = make_typemap();

} // namespace

const CharAttrib &mny_iso1_charattrib() {
    static const CharAttrib record = {0,
                                      1,
                                      0,
                                      5,
                                      {'i', 's', 'o', '_', '1'},
                                      {1, 1, 0, 1, 1},
                                      nullptr,
                                      nullptr,
                                      kTypemap.data(),
                                      nullptr};
    return record;
}

} // namespace comn
