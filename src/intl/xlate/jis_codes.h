// The byte arithmetic of the Japanese sets over JIS X 0208's grid of 94 rows by 94 cells
// (see xlate_japanese.cpp for the three encodings), shared by the converters between the
// Japanese sets and those between them and utf8.
#pragma once

#include <array>
#include <cstdint>

namespace comn::jis {

constexpr bool in(unsigned b, unsigned lo, unsigned hi) {
    return b >= lo && b <= hi;
}

// A 256-entry byte table of f over every byte, so that the fast loop takes no branch on the
// character it translates.
template <class F>
constexpr std::array<uint8_t, 256> table(F f) {
    std::array<uint8_t, 256> t{};
    for (unsigned b = 0; b < 256; ++b)
        t[b] = static_cast<uint8_t>(f(b));
    return t;
}

constexpr bool euc_byte(unsigned b) {
    return in(b, 0xA1, 0xFE);
}

// Shift-JIS leads F0-FC (user-defined) are not JIS X 0208: no character of another set.
constexpr bool sjis_lead(unsigned b) {
    return in(b, 0x81, 0x9F) || in(b, 0xE0, 0xEF);
}
constexpr bool sjis_trail(unsigned b) {
    return in(b, 0x40, 0x7E) || in(b, 0x80, 0xFC);
}
// Row pair of a lead byte: 81-9F hold pairs 1..31, E0-EF pairs 32..47.
constexpr unsigned sjis_row_pair(unsigned s1) {
    return s1 <= 0x9F ? s1 - 0x80 : s1 - 0xC0;
}
// A second byte from 9F is in the even row of the pair, cells numbered from 9F; below it the
// odd row, cells numbered from 40 skipping 7F.
constexpr unsigned sjis_cell(unsigned s2) {
    return s2 >= 0x9F ? s2 - 0x9E : s2 - (s2 < 0x80 ? 0x3F : 0x40); // [1, 94]
}
// The other way: h = (c1 + 1) / 2 plus 30, or plus 70 from h = 70 on; an odd row's cells go to
// 40-7E and 80-9E, an even row's to 9F-FC.
constexpr unsigned sjis_lead_of(unsigned c1) {
    const unsigned h = (c1 + 1) / 2; // [51, 7F]
    return h < 0x70 ? h + 0x30 : h + 0x70;
}
constexpr unsigned sjis_trail_of(unsigned odd, unsigned c2) {
    return odd ? (c2 < 0xE0 ? c2 - 0x61 : c2 - 0x60) : c2 - 2;
}

constexpr auto Sjis_pairs = table([](unsigned b) { return sjis_lead(b) ? sjis_row_pair(b) : 0; });
constexpr auto Sjis_cells =
    table([](unsigned b) { return sjis_trail(b) ? 0xA0 + sjis_cell(b) : 0; });
constexpr auto Sjis_leads_of = table(sjis_lead_of);
// Second bytes of even rows (0-FF), then of odd rows (100-1FF).
constexpr auto Sjis_trails_of = [] {
    std::array<uint8_t, 512> t{};
    for (unsigned b = 0; b < 512; ++b)
        t[b] = static_cast<uint8_t>(sjis_trail_of(b >> 8, b & 0xFF));
    return t;
}();

// A Shift-JIS pair (sjis_lead, sjis_trail) as A0 + row, A0 + cell.
constexpr void sjis_to_jis(unsigned s1, unsigned s2, unsigned &c1, unsigned &c2) {
    const unsigned even = s2 >= 0x9F;
    c1 = 0xA0 + 2 * Sjis_pairs[s1] - 1 + even; // A0 + [1, 94]
    c2 = Sjis_cells[s2];
}

// A0 + row, A0 + cell as a Shift-JIS pair.
constexpr void jis_to_sjis(unsigned &c1, unsigned &c2) {
    c2 = Sjis_trails_of[(c1 & 1) << 8 | (c2 & 0xFF)];
    c1 = Sjis_leads_of[c1 & 0xFF];
}

} // namespace comn::jis
