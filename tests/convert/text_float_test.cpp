// Text to real and float against a model built on strtod and errno, over a million generated
// texts (long mantissas, halfway cases, limits, subnormals, hexadecimal, infinity and NaN
// spellings, blanks and junk); and the scanner ignores a process locale with a decimal comma.
#include <gtest/gtest.h>

#include <cerrno>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "comnlib.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int kCases = 100000;
#else
constexpr int kCases = 1000000;
#endif

struct Out {
    int32_t rc;
    int32_t len;
    uint64_t bits; // destination bytes
    bool operator==(const Out &) const = default;
};

// The conversion as the C library does it: reduce, trim, strtod, then the range rules.
template <typename F>
Out model(const std::string &text) {
    Out o{0, -7, 0x5a5a5a5a5a5a5a5aull};
    if (text.size() > 1023) return {CS_CONV_SYNTAX, 0, o.bits};
    char buf[1024];
    int32_t n = com__conv2ascii(text.data(), static_cast<int32_t>(text.size()), buf, 1023,
                                com_get_charattrib());
    while (n > 0 && com_isspace(static_cast<uint8_t>(buf[n - 1])))
        --n;
    buf[n] = '\0';
    o.len = sizeof(F);
    errno = 0;
    char *end;
    const double v = std::strtod(buf, &end);
    const bool range = errno == ERANGE;
    auto put = [&](F f) { std::memcpy(&o.bits, &f, sizeof f); };
    const double fmax = std::numeric_limits<float>::max();
    if (v == 0 && range) {
        put(std::numeric_limits<F>::lowest());
        o.rc = CS_CONV_UNDERFLOW;
    } else if (v == fmax && range) {
        put(std::numeric_limits<F>::max());
        o.rc = CS_CONV_OVERFLOW;
    } else if (end != buf + n) {
        o.len = 0;
        o.rc = CS_CONV_SYNTAX;
    } else if (sizeof(F) == 4 && v > fmax) {
        put(std::numeric_limits<F>::max());
        o.rc = CS_CONV_OVERFLOW;
    } else if (sizeof(F) == 4 && v < -fmax) {
        put(std::numeric_limits<F>::lowest());
        o.rc = CS_CONV_OVERFLOW;
    } else {
        put(static_cast<F>(v));
        o.rc = CS_SUCCEED;
    }
    return o;
}

template <typename F>
Out library(ComConvFunc f, const std::string &text) {
    DataFormat sf{}, df{};
    sf.maxlength = static_cast<int32_t>(text.size());
    Out o{0, -7, 0x5a5a5a5a5a5a5a5aull};
    o.rc = f(nullptr, &sf, const_cast<char *>(text.data()), &df, &o.bits, &o.len);
    return o;
}

// Generated texts, one family per call of next().
struct Gen {
    std::mt19937_64 rng{20261123};
    std::string digits(int n) {
        std::string s;
        for (int i = 0; i < n; ++i)
            s += static_cast<char>('0' + rng() % 10);
        return s;
    }
    int pick(int n) { return static_cast<int>(rng() % static_cast<uint64_t>(n)); }
    double random_double() {
        double d;
        uint64_t b = rng();
        std::memcpy(&d, &b, sizeof d);
        return std::isfinite(d) ? d : 1.5;
    }
    std::string shortest(double d) {
        char b[64];
        return std::string(b, std::to_chars(b, b + sizeof b, d).ptr);
    }
    std::string exact(long double d, int prec) {
        char b[1200];
        std::snprintf(b, sizeof b, "%.*Le", prec, d);
        return b;
    }
    std::string number() {
        switch (pick(12)) {
        case 0:
            return shortest(random_double());
        case 1: { // random mantissa and exponent, with or without a point
            std::string m = digits(1 + pick(25));
            if (pick(2)) m.insert(static_cast<size_t>(pick(static_cast<int>(m.size()) + 1)), ".");
            return m + (pick(3) ? "e" + std::to_string(pick(700) - 350) : "");
        }
        case 2:
            return "0." + digits(1 + pick(800)) + "e" + std::to_string(pick(40) - 20);
        case 3: { // halfway between two doubles, exactly, or cut and nudged
            const double d = std::abs(random_double());
            const long double mid = (static_cast<long double>(d) + std::nextafter(d, INFINITY)) / 2;
            std::string s = exact(mid, pick(2) ? 780 : 17 + pick(6));
            return s;
        }
        case 4: { // near the double and single limits, and degenerate texts
            // clang-format off
            static const char *const edges[] = {
                "1.7976931348623157e308", "1.7976931348623158e308", "1.797693134862315807e308",
                "1.7976931348623159e308", "2e308", "1e309", "1e400", "4.9406564584124654e-324",
                "2.4703282292062327e-324", "2.4703282292062328e-324", "2.47e-324", "1e-324",
                "2.2250738585072014e-308", "2.2250738585072011e-308", "3.4028234663852886e38",
                "3.4028235677973366e38", "3.4028236e38", "1.401298464324817e-45",
                "7.006492321624085e-46", "1.1754943508222875e-38", "1e-400", "1e39", "-1e39",
                "1e-50", "0e-400", "0x1p-1075", "0x1p1024", "0x1.fffffffffffffp1023", "", "   ",
                " -", "1.5x"};
            // clang-format on
            return edges[pick(static_cast<int>(std::size(edges)))];
        }
        case 5: { // subnormals, single and double
            const double d = std::ldexp(static_cast<double>(rng() >> 12),
                                        -1074 - pick(60) + (pick(2) ? 0 : 900));
            return pick(2) ? shortest(d) : exact(d, 5 + pick(25));
        }
        case 6: { // hexadecimal floats
            std::string s = pick(2) ? "0x" : "0X";
            static const char hex[] = "0123456789abcdefABCDEF";
            for (int i = pick(18); i >= 0; --i)
                s += hex[pick(22)];
            if (pick(2)) s += ".";
            for (int i = pick(6); i > 0; --i)
                s += hex[pick(22)];
            if (pick(4)) s += (pick(2) ? "p" : "P") + std::to_string(pick(2300) - 1150);
            return s;
        }
        case 7: {
            static const char *const words[] = {
                "inf",        "INF",  "Inf",      "infinity", "INFINITY", "infinit",  "infx",
                "in",         "nan",  "NaN",      "NAN",      "nan()",    "nan(123)", "nan(0x7ff)",
                "nan(abc_1)", "nan(", "nan(1 2)", "nanx",     "na",       "i",        "n"};
            return words[pick(static_cast<int>(std::size(words)))];
        }
        case 8:
            return std::to_string(static_cast<int64_t>(rng()) >> pick(64));
        case 9:
            return std::string(pick(3), '0') + "." + digits(pick(30));
        case 10:
            return digits(pick(3)) + (pick(2) ? "." : "") + digits(pick(3)) + "e" +
                   (pick(2) ? "+" : "-") + digits(pick(4));
        default: { // a float value printed shortest
            float f = static_cast<float>(random_double());
            if (!std::isfinite(f)) f = 0.25f;
            char b[64];
            return std::string(b, std::to_chars(b, b + sizeof b, f).ptr);
        }
        }
    }
    std::string next() {
        static const char *const lead[] = {"", "", "", " ", "  ", "\t", "\n \r\v\f", "\x0e"};
        static const char *const sign[] = {"", "", "", "-", "+", "--", "+-", "- "};
        static const char *const tail[] = {"",  "",  "",   "",  " ",  "   ", "\t", "\x0e", "\xa0",
                                           "x", "e", "e+", ".", ".5", "d",   "f",  "L",    "1 1"};
        std::string s = number();
        if (pick(4) == 0) s = std::string(lead[pick(8)]) + sign[pick(8)] + s;
        if (pick(4) == 0) s += pick(19) == 18 ? std::string(1, '\0') + "9" : tail[pick(18)];
        // Blanks up to either side of the longest text that is scanned (1023 bytes).
        if (pick(64) == 0 && s.size() < 1016) s.resize(static_cast<size_t>(1016 + pick(16)), ' ');
        return s;
    }
};

TEST(TextToFloat, AgreesWithTheCLibraryOverGeneratedTexts) {
    Gen g;
    int failures = 0;
    for (int i = 0; i < kCases && failures < 10; ++i) {
        const std::string t = g.next();
        const Out m8 = model<double>(t), l8 = library<double>(comn_chartoflt8, t);
        const Out m4 = model<float>(t), l4 = library<float>(comn_chartoflt4, t);
        if (!(m8 == l8) || !(m4 == l4)) {
            ++failures;
            ADD_FAILURE() << "text \"" << t << "\": flt8 rc " << l8.rc << " vs " << m8.rc << " len "
                          << l8.len << " vs " << m8.len << " bits " << std::hex << l8.bits << " vs "
                          << m8.bits << std::dec << "; flt4 rc " << l4.rc << " vs " << m4.rc
                          << " bits " << std::hex << l4.bits << " vs " << m4.bits;
        }
    }
}

// A locale with a decimal comma: an installed one, else one compiled for the test.
const char *comma_locale() {
    for (const char *n : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"})
        if (std::setlocale(LC_NUMERIC, n) != nullptr) return n;
    const std::string dir = testing::TempDir() + "comn_locales";
    const std::string cmd = "mkdir -p " + dir + " && localedef -i de_DE -f UTF-8 " + dir +
                            "/de_DE.UTF-8 >/dev/null 2>&1";
    if (std::system(cmd.c_str()) != 0) return nullptr;
    setenv("LOCPATH", dir.c_str(), 1);
    return std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
}

TEST(TextToFloat, IgnoresTheProcessLocale) {
    if (comma_locale() == nullptr) GTEST_SKIP() << "no locale with a decimal comma";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    const Out o = library<double>(comn_chartoflt8, "0x1.8p1");
    const Out p = library<double>(comn_chartoflt8, "123456.5e-3");
    const Out q = library<double>(comn_chartoflt8, "1,5");
    std::setlocale(LC_NUMERIC, "C");
    double d;
    std::memcpy(&d, &o.bits, 8);
    EXPECT_EQ(d, 3.0);
    std::memcpy(&d, &p.bits, 8);
    EXPECT_EQ(d, 123.4565);
    EXPECT_EQ(q.rc, CS_CONV_SYNTAX);
}

} // namespace
