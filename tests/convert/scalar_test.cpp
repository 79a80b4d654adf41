// The integer, bit and float family, every pair against a model written from the rules: out of
// range writes the nearest end with overflow, floats truncate toward zero, the "i8" bound for
// floats is 2^31 (which wraps), NaN gives 0 with overflow, a bit source above 1 writes nothing.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "comnlib.h"

namespace {

enum class Kind { Int, Bit, Float };
struct TypeRule {
    Kind kind;
    int size;
    long double lo, hi, float_hi; // inclusive range; float_hi is tested for float sources
};
const long double k31 = 2147483648.0L;
const TypeRule r_i1{Kind::Int, 1, 0, 255, 255}, r_i2{Kind::Int, 2, -32768, 32767, 32767},
    r_i4{Kind::Int, 4, -k31, k31 - 1, k31 - 1}, r_i8{Kind::Int, 4, -k31, k31 - 1, k31},
    r_bit{Kind::Bit, 1, 0, 1, 1}, r_flt4{Kind::Float, 4, 0, 0, 0}, r_flt8{Kind::Float, 8, 0, 0, 0};

template <typename T>
T get(const unsigned char *b) {
    T v;
    std::memcpy(&v, b, sizeof v);
    return v;
}

// A source value as its exact number, read from size bytes of its kind.
long double value_of(const TypeRule &t, const unsigned char *b) {
    if (t.kind == Kind::Float) return t.size == 4 ? get<float>(b) : get<double>(b);
    return t.size == 1 ? b[0] : t.size == 2 ? get<int16_t>(b) : get<int32_t>(b);
}

// The bytes the model stores for the finite value v in a destination of rule d: a float
// rounded once from the double, an integer's low bits.
std::vector<unsigned char> image(const TypeRule &d, long double v) {
    std::vector<unsigned char> b(static_cast<size_t>(d.size));
    if (d.kind == Kind::Float) {
        const double x = static_cast<double>(v);
        const float f = static_cast<float>(x);
        d.size == 4 ? std::memcpy(b.data(), &f, 4) : std::memcpy(b.data(), &x, 8);
    } else {
        long double w = std::fmod(std::trunc(v), 4294967296.0L);
        const auto u = static_cast<uint32_t>(w < 0 ? w + 4294967296.0L : w);
        std::memcpy(b.data(), &u, b.size());
    }
    return b;
}

struct Result {
    int32_t rc, len;
    std::vector<unsigned char> bytes;
    bool operator==(const Result &) const = default;
};

Result model(const TypeRule &s, const TypeRule &d, const unsigned char *src) {
    const long double v = value_of(s, src);
    if (s.kind == Kind::Bit && src[0] > 1) return {CS_CONV_DOMAIN, -7, {}};
    if (d.kind == Kind::Bit) return {CS_SUCCEED, 1, {static_cast<unsigned char>(v != 0)}};
    if (d.kind == Kind::Float) {
        const long double fmax = std::numeric_limits<float>::max();
        if (d.size == 4 && s.size == 8 && std::fabs(v) > fmax)
            return {CS_CONV_OVERFLOW, 4, image(d, std::copysign(fmax, v))};
        return {CS_SUCCEED, d.size, image(d, v)};
    }
    if (std::isnan(v)) return {CS_CONV_OVERFLOW, d.size, image(d, 0)};
    const long double hi = s.kind == Kind::Float ? d.float_hi : d.hi;
    if (v < d.lo) return {CS_CONV_OVERFLOW, d.size, image(d, d.lo)};
    if (v > hi) return {CS_CONV_OVERFLOW, d.size, image(d, d.hi)};
    return {CS_SUCCEED, d.size, image(d, std::trunc(v))};
}

// Source values: every byte for one-byte types; edges, random values and (for floats)
// values at every bound, just inside and outside, NaN and infinities.
std::vector<std::vector<unsigned char>> sources(const TypeRule &s, std::mt19937_64 &rng) {
    std::vector<std::vector<unsigned char>> out;
    auto add = [&](const void *p) {
        const auto *c = static_cast<const unsigned char *>(p);
        out.emplace_back(c, c + s.size);
    };
    if (s.size == 1) {
        for (int b = 0; b < 256; ++b)
            out.push_back({static_cast<unsigned char>(b)});
        return out;
    }
    std::vector<long double> values = {0, -0.0L, 0.5, -0.5, -0.9, 1e-300, 1e39, -1e39};
    for (long double b : {255.0L, 32767.0L, -32768.0L, k31 - 1, k31, -k31, 65535.0L})
        for (long double e : {-1.0L, -0.5L, 0.0L, 0.5L, 1.0L})
            values.push_back(b + e);
    for (int i = 0; i < 3000; ++i)
        values.push_back(std::ldexp(static_cast<long double>(static_cast<int64_t>(rng())),
                                    -static_cast<int>(rng() % 64) - 1));
    if (s.kind == Kind::Float)
        for (double special : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1.7976931348623157e308})
            values.push_back(special);
    for (long double v : values) {
        const double d = static_cast<double>(v);
        const float f = static_cast<float>(d);
        if (s.kind != Kind::Float)
            out.push_back(image(s, v));
        else
            add(s.size == 8 ? static_cast<const void *>(&d) : &f);
    }
    return out;
}

TEST(ScalarConversions, EveryPairAgreesWithTheModel) {
    struct Pair {
        const char *name;
        ComConvFunc f;
        const TypeRule &s, &d;
    };
#define COMN_TEST_PAIR_(a, b) Pair{#a " to " #b, comn_##a##to##b, r_##a, r_##b},
    const Pair pairs[] = {COMN_SCALAR_PAIRS(COMN_TEST_PAIR_)};
#undef COMN_TEST_PAIR_
    std::mt19937_64 rng(7);
    for (const Pair &p : pairs)
        for (const auto &src : sources(p.s, rng)) {
            const Result want = model(p.s, p.d, src.data());
            std::vector<unsigned char> out(8, 0x5A);
            DataFormat sf{}, df{};
            int32_t len = -7;
            Result got{
                p.f(nullptr, &sf, const_cast<unsigned char *>(src.data()), &df, out.data(), &len),
                len,
                {}};
            if (got.rc != CS_CONV_DOMAIN)
                got.bytes.assign(out.begin(), out.begin() + p.d.size);
            else
                ASSERT_EQ(out, std::vector<unsigned char>(8, 0x5A)) << p.name;
            ASSERT_EQ(got, want) << p.name << " from "
                                 << static_cast<double>(value_of(p.s, src.data()));
        }
}

} // namespace
