// Numbers to text and varchar, against snprintf: "%ld" for the integers and "%.17g" (then the
// leading-zero drop and the ".0" rule) for floats, over boundary and random values, every
// maxlength from 0 to past the text and every combination of the three flag bits. (The
// library's float text takes std::to_chars at precision 17; these values hold it to printf.)
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "output_model.h"

namespace {

std::string printf_float(double v) {
    char b[64];
    std::snprintf(b, sizeof b, "%.17g", v == 0 ? 0.0 : v);
    std::string s = b;
    if (s.rfind("0.", 0) == 0) s.erase(0, 1);
    if (s.find_first_of(".e") == std::string::npos) s += ".0";
    return s;
}

std::string printf_int(long v) {
    char b[32];
    std::snprintf(b, sizeof b, "%ld", v);
    return b;
}

// Every maxlength from -1 to past the text, every flag combination, and the varchar form.
template <typename T>
void check_value(ComConvFunc tochar, ComConvFunc tovarchar, int32_t type, T v,
                 const std::string &text) {
    DataFormat sf = text_format(type, sizeof(T));
    for (int32_t m = -1; m <= static_cast<int32_t>(text.size()) + 3; ++m)
        for (uint32_t flags = 0; flags < 8; ++flags)
            ASSERT_EQ(run_conv(tochar, nullptr, sf, &v, CS_CHAR, m, flags),
                      model_text(text, m, flags, Short::Star))
                << text << " m=" << m << " flags=" << flags;
    ASSERT_EQ(run_conv(tovarchar, nullptr, sf, &v, CS_VARCHAR, 258, 0), framed(text, CS_SUCCEED));
}

TEST(NumberText, IntegersMatchPrintf) {
    std::mt19937_64 rng(17);
    for (int v = 0; v < 256; ++v)
        check_value<uint8_t>(comn_i1tochar, comn_i1tovarchar, CS_TINYINT, static_cast<uint8_t>(v),
                             printf_int(v));
    std::vector<int16_t> i2 = {0, 1, -1, 9, 10, -10, 32767, -32768};
    std::vector<int32_t> i4 = {0, -1, 99999, -100000, INT32_MAX, INT32_MIN};
    for (int i = 0; i < 500; ++i) {
        i2.push_back(static_cast<int16_t>(rng()));
        i4.push_back(static_cast<int32_t>(rng() >> (rng() % 32)));
    }
    for (int16_t v : i2)
        check_value(comn_i2tochar, comn_i2tovarchar, CS_SMALLINT, v, printf_int(v));
    for (int32_t v : i4)
        check_value(comn_i4tochar, comn_i4tovarchar, CS_INT, v, printf_int(v));
}

std::vector<double> float_values() {
    using lim = std::numeric_limits<double>;
    // clang-format off
    std::vector<double> v = {0.0, -0.0, 0.5, 0.25, -0.25, 2, 3, 1e20, 1e16, 1e17, -1e17, 1e-5, 1e-4,
                             0.1, 123456.5, lim::infinity(), -lim::infinity(), NAN, -NAN,
                             lim::max(), lim::min(), lim::denorm_min()};
    // clang-format on
    std::mt19937_64 rng(2026);
    for (int i = 0; i < 1500; ++i) {
        const uint64_t bits = rng();
        double d;
        std::memcpy(&d, &bits, sizeof d);
        v.push_back(d);
        v.push_back(
            std::ldexp(static_cast<double>(rng() % 100000), static_cast<int>(rng() % 80) - 40));
    }
    return v;
}

// The float format setting is kept for callers, but the conversions do not read it.
TEST(NumberText, FloatsMatchPrintf) {
    const int32_t before = com_getfltfmt();
    ASSERT_EQ(com_setfltfmt(42), CS_SUCCEED);
    EXPECT_EQ(com_getfltfmt(), 42);
    EXPECT_EQ(Com__fltfmt, 42);
    for (double d : float_values()) {
        check_value(comn_flt8tochar, comn_flt8tovarchar, CS_FLOAT, d, printf_float(d));
        const auto f = static_cast<float>(d);
        check_value(comn_flt4tochar, comn_flt4tovarchar, CS_REAL, f, printf_float(f));
    }
    // The shapes the rules are about, so the model itself is pinned.
    EXPECT_EQ(printf_float(0.5) + printf_float(-0.0) + printf_float(1e20), ".50.01e+20");
    com_setfltfmt(before);
}

// A bit writes its digit wherever there is room, even where the terminator then takes its place.
TEST(NumberText, BitDigits) {
    DataFormat sf = text_format(CS_BIT, 1);
    for (uint8_t b : {0, 1})
        for (uint32_t flags = 0; flags < 8; ++flags)
            for (int32_t m = 0; m <= 4; ++m) {
                Outcome want =
                    model_text(std::string(1, static_cast<char>('0' + b)), m, flags, Short::Star);
                if (m == 1 && (flags & CS_FMT_NULLTERM)) want.bytes = std::string(1, '\0');
                EXPECT_EQ(run_conv(comn_bittochar, nullptr, sf, &b, CS_CHAR, m, flags), want)
                    << int(b) << " m=" << m << " flags=" << flags;
            }
}

} // namespace
