// Layout tables of exact numerics, derived at compile time from their defining rules.
//
// Com__Nume_Prec_To_Len[p]: one sign byte plus the number of base-256 bytes of 10^p - 1
// (precision 0 counts like precision 1: two bytes).
// Com__Nume_Len_To_Prec[L - 2]: the largest precision p with Com__Nume_Prec_To_Len[p] <= L,
// 255 for the lengths 34 and 35, which no precision needs.
// Com__Nume_Byte_Power_Array[p]: 10^p as a length byte L (the shortest sign-and-magnitude
// length that holds it) followed by its L-byte positive image, zero-filled to 34 bytes.
#include <array>
#include <cstdint>

#include "comnlib/numeric.h"
#include "numeric/descriptor.h"

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

} // namespace

// The library's own reference to the lengths: reached at a fixed offset rather than through
// the symbol table as the exported copy is (declared in numeric/descriptor.h).
constexpr std::array<uint8_t, CS_MAX_PREC + 1> kPrecToLen = make_prec_to_len();

namespace {
static_assert(kPrecToLen[0] == 2 && kPrecToLen[2] == 2 && kPrecToLen[3] == 3);
static_assert(kPrecToLen[9] == 5 && kPrecToLen[10] == 6 && kPrecToLen[38] == 17);
static_assert(kPrecToLen[77] == 33);

constexpr std::array<uint8_t, 34> make_len_to_prec() {
    std::array<uint8_t, 34> t{};
    for (int len = 2; len <= 35; ++len) {
        int best = 255;
        for (int p = 0; p <= CS_MAX_PREC; ++p)
            if (kPrecToLen[p] <= len) best = p;
        t[len - 2] = static_cast<uint8_t>(len <= CS_MAX_NUMLEN ? best : 255);
    }
    return t;
}

constexpr auto kLenToPrec = make_len_to_prec();
static_assert(kLenToPrec[0] == 2 && kLenToPrec[7] == 19 && kLenToPrec[15] == 38);
static_assert(kLenToPrec[31] == 77 && kLenToPrec[32] == 255 && kLenToPrec[33] == 255);

using PowerEntry = std::array<uint8_t, COMN_NUME_POWER_ENTRY>;

constexpr std::array<PowerEntry, CS_MAX_PREC + 1> make_power_array() {
    std::array<PowerEntry, CS_MAX_PREC + 1> t{};
    std::array<unsigned, 33> n{}; // little-endian base-256 digits of 10^p
    n[0] = 1;
    for (int p = 0; p <= CS_MAX_PREC; ++p) {
        int bytes = 1;
        for (int i = 0; i < 33; ++i)
            if (n[i]) bytes = i + 1;
        const int len = bytes + 1; // with the sign byte
        t[p][0] = static_cast<uint8_t>(len);
        t[p][1] = 0;
        for (int i = 0; i < bytes; ++i)
            t[p][1 + len - 1 - i] = static_cast<uint8_t>(n[i]);
        unsigned carry = 0;
        for (auto &limb : n) {
            unsigned v = limb * 10 + carry;
            limb = v & 0xFF;
            carry = v >> 8;
        }
    }
    return t;
}

constexpr auto kPower = make_power_array();
static_assert(kPower[0][0] == 2 && kPower[0][2] == 1);
static_assert(kPower[3][0] == 3 && kPower[3][1] == 0 && kPower[3][2] == 0x03 &&
              kPower[3][3] == 0xE8);
static_assert(kPower[19][0] == 9 && kPower[77][0] == 33);

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

const uint8_t Com__Nume_Len_To_Prec[34] = {
#define R(i) comn::kLenToPrec[i]
    R(0),  R(1),  R(2),  R(3),  R(4),  R(5),  R(6),  R(7),  R(8),  R(9),  R(10), R(11),
    R(12), R(13), R(14), R(15), R(16), R(17), R(18), R(19), R(20), R(21), R(22), R(23),
    R(24), R(25), R(26), R(27), R(28), R(29), R(30), R(31), R(32), R(33),
#undef R
};

// One row per power: the 34 bytes of kPower[p].
#define B(p, j) comn::kPower[p][j]
#define ROW(p)                                                                                     \
    {                                                                                              \
        B(p, 0), B(p, 1), B(p, 2), B(p, 3), B(p, 4), B(p, 5), B(p, 6), B(p, 7), B(p, 8), B(p, 9),  \
            B(p, 10), B(p, 11), B(p, 12), B(p, 13), B(p, 14), B(p, 15), B(p, 16), B(p, 17),        \
            B(p, 18), B(p, 19), B(p, 20), B(p, 21), B(p, 22), B(p, 23), B(p, 24), B(p, 25),        \
            B(p, 26), B(p, 27), B(p, 28), B(p, 29), B(p, 30), B(p, 31), B(p, 32), B(p, 33)         \
    }
const uint8_t Com__Nume_Byte_Power_Array[CS_MAX_PREC + 1][COMN_NUME_POWER_ENTRY] = {
    ROW(0),  ROW(1),  ROW(2),  ROW(3),  ROW(4),  ROW(5),  ROW(6),  ROW(7),  ROW(8),  ROW(9),
    ROW(10), ROW(11), ROW(12), ROW(13), ROW(14), ROW(15), ROW(16), ROW(17), ROW(18), ROW(19),
    ROW(20), ROW(21), ROW(22), ROW(23), ROW(24), ROW(25), ROW(26), ROW(27), ROW(28), ROW(29),
    ROW(30), ROW(31), ROW(32), ROW(33), ROW(34), ROW(35), ROW(36), ROW(37), ROW(38), ROW(39),
    ROW(40), ROW(41), ROW(42), ROW(43), ROW(44), ROW(45), ROW(46), ROW(47), ROW(48), ROW(49),
    ROW(50), ROW(51), ROW(52), ROW(53), ROW(54), ROW(55), ROW(56), ROW(57), ROW(58), ROW(59),
    ROW(60), ROW(61), ROW(62), ROW(63), ROW(64), ROW(65), ROW(66), ROW(67), ROW(68), ROW(69),
    ROW(70), ROW(71), ROW(72), ROW(73), ROW(74), ROW(75), ROW(76), ROW(77),
};
#undef ROW
#undef B

int32_t comn_num_getlen(int32_t precision) {
    return Com__Nume_Prec_To_Len[precision];
}
int32_t comn_num_getprec(int32_t length) {
    return Com__Nume_Len_To_Prec[length - 2];
}
}
