// Layout tables of exact numerics, derived at compile time from their defining rule.
//
// Com__Nume_Prec_To_Len[p]: one sign byte plus the number of base-256 bytes of 10^p - 1
// (precision 0 counts like precision 1: two bytes).
#include <array>
#include <cstdint>

#include "comnlib/numeric.h"

namespace comn {
namespace {

// Bytes needed by 10^p - 1, computed on an exact base-256 number (little-endian limbs).
constexpr int bytes_of_pow10_minus_1(int p) {
    std::array<unsigned, 40> n{};
    n[0] = 1;
    for (int i = 0; i < p; ++i) {
        unsigned carry = 0;
        for (auto &limb : n) {
            unsigned v = limb * 10 + carry;
            limb = v & 0xFF;
            carry = v >> 8;
        }
    }
    // subtract 1
    for (auto &limb : n) {
        if (limb) {
            --limb;
            break;
        }
        limb = 0xFF;
    }
    int bytes = 0;
    for (int i = 0; i < 40; ++i)
        if (n[i]) bytes = i + 1;
    return bytes < 1 ? 1 : bytes;
}

constexpr std::array<uint8_t, CS_MAX_PREC + 1> make_prec_to_len() {
    std::array<uint8_t, CS_MAX_PREC + 1> t{};
    for (int p = 0; p <= CS_MAX_PREC; ++p)
        t[p] = static_cast<uint8_t>(1 + bytes_of_pow10_minus_1(p));
    return t;
}

constexpr auto kPrecToLen = make_prec_to_len();
static_assert(kPrecToLen[0] == 2 && kPrecToLen[2] == 2 && kPrecToLen[3] == 3);
static_assert(kPrecToLen[9] == 5 && kPrecToLen[10] == 6 && kPrecToLen[38] == 17);
static_assert(kPrecToLen[77] == 33);

} // namespace
} // namespace comn

extern "C" {
const uint8_t Com__Nume_Prec_To_Len[CS_MAX_PREC + 1] = {
#define R(i) comn::kPrecToLen[i]
    R(0),  R(1),  R(2),  R(3),  R(4),  R(5),  R(6),  R(7),  R(8),  R(9),  R(10), R(11), R(12),
    R(13), R(14), R(15), R(16), R(17), R(18), R(19), R(20), R(21), R(22), R(23), R(24), R(25),
    R(26), R(27), R(28), R(29), R(30), R(31), R(32), R(33), R(34), R(35), R(36), R(37), R(38),
    R(39), R(40), R(41), R(42), R(43), R(44), R(45), R(46), R(47), R(48), R(49), R(50), R(51),
    R(52), R(53), R(54), R(55), R(56), R(57), R(58), R(59), R(60), R(61), R(62), R(63), R(64),
    R(65), R(66), R(67), R(68), R(69), R(70), R(71), R(72), R(73), R(74), R(75), R(76), R(77),
#undef R
};
}
