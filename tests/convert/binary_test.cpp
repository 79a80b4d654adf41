// Binary destinations and binary sources: hexadecimal text against a plain model, copies into
// binary and varbinary, round trips of every fixed type through binary and varbinary, and
// binary sources of every length into every fixed type.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "output_model.h"

namespace {

using Bytes = std::vector<uint8_t>;

std::string hex(const Bytes &b) {
    static const char d[] = "0123456789abcdef";
    std::string s;
    for (uint8_t x : b) {
        s += d[x >> 4];
        s += d[x & 15];
    }
    return s;
}

// A varbinary record holding b (at most 256 bytes).
std::vector<uint8_t> varbin(const Bytes &b, int16_t word) {
    std::vector<uint8_t> v(258, 0xEE);
    std::memcpy(v.data(), &word, 2);
    if (!b.empty()) std::memcpy(v.data() + 2, b.data(), std::min<size_t>(b.size(), 256));
    return v;
}

Outcome model_bintochar(const Bytes &b, int32_t m, uint32_t flags) {
    const std::string text = hex(b);
    const auto full = static_cast<int32_t>(text.size());
    std::string out(static_cast<size_t>(std::max(m, 0)), kUntouched);
    const int32_t r = std::max(std::min(m, full), 0);
    out.replace(0, static_cast<size_t>(r / 2 * 2), text, 0, static_cast<size_t>(r / 2 * 2));
    if (r < full) return {CS_CONV_TRUNCATED, out, r};
    int32_t len;
    const int32_t rc = model_pad(out, full, m, flags, len);
    return {rc, out, len};
}

// (A negative maxlength is a destination of no bytes.)
Outcome model_bintobin(const Bytes &b, int32_t m, uint32_t flags) {
    const auto s = static_cast<int32_t>(b.size());
    m = std::max(m, 0);
    std::string out(static_cast<size_t>(m), kUntouched);
    const int32_t n = std::min(m, s);
    out.replace(0, static_cast<size_t>(n), reinterpret_cast<const char *>(b.data()),
                static_cast<size_t>(n));
    if (s > m) return {CS_CONV_TRUNCATED, out, n};
    if ((flags & CS_FMT_PADNULL) && m > s) {
        out.replace(static_cast<size_t>(s), static_cast<size_t>(m - s), static_cast<size_t>(m - s),
                    '\0');
        return {CS_SUCCEED, out, m};
    }
    return {CS_SUCCEED, out, s};
}

TEST(BinaryOutput, TextAndBinaryDestinationsMatchTheModel) {
    std::mt19937 rng(5);
    for (int s = 0; s <= 40; ++s) {
        Bytes b(static_cast<size_t>(s));
        for (auto &x : b)
            x = static_cast<uint8_t>(rng());
        DataFormat bf = text_format(CS_BINARY, s);
        const auto vb = varbin(b, static_cast<int16_t>(s));
        DataFormat vf = text_format(CS_VARBINARY, 258);
        for (int32_t m = -1; m <= 2 * s + 3; ++m)
            for (uint32_t flags = 0; flags < 8; ++flags) {
                const Outcome hexed = model_bintochar(b, m, flags);
                ASSERT_EQ(run_conv(comn_bintochar, nullptr, bf, b.data(), CS_CHAR, m, flags), hexed)
                    << s << " " << m << " " << flags;
                ASSERT_EQ(run_conv(comn_varbintochar, nullptr, vf, vb.data(), CS_CHAR, m, flags),
                          hexed);
                const Outcome copied = model_bintobin(b, m, flags);
                ASSERT_EQ(run_conv(comn_bintobin, nullptr, bf, b.data(), CS_BINARY, m, flags),
                          copied);
                ASSERT_EQ(run_conv(comn_varbintobin, nullptr, vf, vb.data(), CS_BINARY, m, flags),
                          copied);
            }
    }
    EXPECT_EQ(hex({0x0a, 0xff}), "0aff");
}

TEST(BinaryOutput, VarcharAndVarbinaryDestinationsKeepTheFrame) {
    for (int s : {0, 1, 127, 128, 129, 256, 300}) {
        Bytes b(static_cast<size_t>(s));
        for (int i = 0; i < s; ++i)
            b[static_cast<size_t>(i)] = static_cast<uint8_t>(i * 7);
        DataFormat bf = text_format(CS_BINARY, s);
        const Outcome vc = run_conv(comn_bintovarchar, nullptr, bf, b.data(), CS_VARCHAR, 258, 0);
        const Outcome vb = run_conv(comn_bintovarbin, nullptr, bf, b.data(), CS_VARBINARY, 258, 0);
        const std::string text = hex(b).substr(0, 256);
        int16_t w;
        std::memcpy(&w, vc.bytes.data(), 2);
        EXPECT_EQ(w, static_cast<int16_t>(text.size()));
        EXPECT_EQ(vc.bytes.substr(2, text.size()), text);
        EXPECT_EQ(vc.rc, s > 128 ? CS_CONV_TRUNCATED : CS_SUCCEED);
        std::memcpy(&w, vb.bytes.data(), 2);
        EXPECT_EQ(w, std::min(s, 256));
        EXPECT_EQ(vb.bytes.substr(2, static_cast<size_t>(w)),
                  std::string(b.begin(), b.begin() + w));
        EXPECT_EQ(vb.rc, s > 256 ? CS_CONV_TRUNCATED : CS_SUCCEED);
        EXPECT_EQ(vc.len, 258);
        EXPECT_EQ(vb.len, 258);
    }
    // A damaged length word is taken within 0..256.
    for (int16_t word : {int16_t{-5}, int16_t{257}, int16_t{32767}}) {
        const auto v = varbin(Bytes(256, 0xAB), word);
        DataFormat vf = text_format(CS_VARBINARY, 258);
        const Outcome o =
            run_conv(comn_varbintovarbin, nullptr, vf, v.data(), CS_VARBINARY, 258, 0);
        int16_t w;
        std::memcpy(&w, o.bytes.data(), 2);
        EXPECT_EQ(w, word < 0 ? 0 : 256);
    }
}

// One fixed type: its id, size, and sample values as bytes.
struct Fixed {
    int32_t type;
    int32_t size;
    std::vector<Bytes> values;
};

template <typename T>
Bytes image(T v) {
    Bytes b(sizeof v);
    std::memcpy(b.data(), &v, sizeof v);
    return b;
}

std::vector<Fixed> fixed_types() {
    NumericValue n{};
    n.precision = 10;
    n.scale = 2;
    n.array[0] = 1;
    n.array[4] = 0x7b;
    return {
        {CS_TINYINT, 1, {image<uint8_t>(0), image<uint8_t>(255)}},
        {CS_SMALLINT, 2, {image<int16_t>(-32768), image<int16_t>(12345)}},
        {CS_INT, 4, {image<int32_t>(INT32_MIN), image<int32_t>(-7)}},
        {CS_REAL, 4, {image<float>(0.1f), image<float>(-3e38f)}},
        {CS_FLOAT, 8, {image<double>(-0.0), image<double>(1e300)}},
        {CS_BIT, 1, {image<uint8_t>(0), image<uint8_t>(1)}},
        {CS_DATETIME, 8, {image(DateTimeValue{-53690, 25919999}), image(DateTimeValue{40000, 1})}},
        {CS_DATETIME4, 4, {image(DateTime4Value{65535, 1439})}},
        {CS_MONEY, 8, {image(MoneyValue{-1, 5}), image(MoneyValue{INT32_MAX, 0xffffffffu})}},
        {CS_MONEY4, 4, {image(Money4Value{INT32_MIN})}},
        {CS_NUMERIC, 35, {image(n)}},
        {CS_DECIMAL, 35, {image(n)}},
    };
}

TEST(BinarySources, FixedValuesSurviveBinaryAndVarbinary) {
    ComContext ctx{};
    ASSERT_EQ(com_conv_init(&ctx), CS_SUCCEED);
    for (const Fixed &t : fixed_types()) {
        ComConvFunc to_bin = com_conv_func(&ctx, t.type, CS_BINARY);
        ComConvFunc to_varbin = com_conv_func(&ctx, t.type, CS_VARBINARY);
        ComConvFunc back = com_conv_func(&ctx, CS_BINARY, t.type);
        ComConvFunc back_var = com_conv_func(&ctx, CS_VARBINARY, t.type);
        ASSERT_TRUE(back && back_var) << t.type;
        for (const Bytes &v : t.values) {
            DataFormat sf = text_format(t.type, t.size);
            sf.precision = sf.scale = CS_SRC_VALUE;
            // Through binary, also zero-padded past the value; the table has no binary cell
            // for the date types, whose images are made by the shared helper instead.
            for (uint32_t flags : {0u, static_cast<uint32_t>(CS_FMT_PADNULL)}) {
                const int32_t m = t.size + (flags ? 9 : 0);
                Dest bin(m);
                DataFormat bf = text_format(CS_BINARY, m, flags);
                int32_t len = 0;
                if (to_bin)
                    ASSERT_EQ(to_bin(&ctx, &sf, const_cast<uint8_t *>(v.data()), &bf, bin.buf.get(),
                                     &len),
                              CS_SUCCEED);
                else
                    ASSERT_EQ(comn_fixedtobin(v.data(), t.size, &bf, bin.buf.get(), &len),
                              CS_SUCCEED);
                ASSERT_EQ(len, m);
                DataFormat src = text_format(CS_BINARY, len);
                DataFormat df = text_format(t.type, t.size);
                df.precision = df.scale = CS_SRC_VALUE;
                Bytes out(static_cast<size_t>(t.size), t.size == 35 ? 0 : 0xCD);
                ASSERT_EQ(back(&ctx, &src, bin.buf.get(), &df, out.data(), &len), CS_SUCCEED);
                EXPECT_EQ(out, v) << t.type;
                EXPECT_EQ(len, t.size);
            }
            if (!to_varbin) continue;
            std::vector<uint8_t> vb(258);
            DataFormat vf = text_format(CS_VARBINARY, 258);
            int32_t len = 0;
            ASSERT_EQ(to_varbin(&ctx, &sf, const_cast<uint8_t *>(v.data()), &vf, vb.data(), &len),
                      CS_SUCCEED);
            DataFormat df = text_format(t.type, t.size);
            df.precision = df.scale = CS_SRC_VALUE;
            Bytes out(static_cast<size_t>(t.size), t.size == 35 ? 0 : 0xCD);
            ASSERT_EQ(back_var(&ctx, &vf, vb.data(), &df, out.data(), &len), CS_SUCCEED);
            EXPECT_EQ(out, v) << t.type;
        }
    }
    com_conv_free(&ctx);
}

// Every length from 0 to 300 into every fixed type: too short is no value, longer needs a
// zero tail, a bit must be 0 or 1, a numeric's precision and scale must be valid.
TEST(BinarySources, EveryLengthIntoEveryFixedType) {
    ComContext ctx{};
    ASSERT_EQ(com_conv_init(&ctx), CS_SUCCEED);
    std::mt19937 rng(9);
    for (const Fixed &t : fixed_types()) {
        ComConvFunc f = com_conv_func(&ctx, CS_BINARY, t.type);
        const bool num = t.size == 35;
        for (int s = 0; s <= 300; ++s)
            for (int tail : {0, 1}) {
                Bytes b(static_cast<size_t>(s), 0);
                for (int i = 0; i < std::min(s, t.size); ++i)
                    b[static_cast<size_t>(i)] = static_cast<uint8_t>(rng());
                if (num) { // the value 0 or -0, at a precision and scale from 0 to 79
                    std::fill(b.begin(), b.end(), 0);
                    if (s >= 1) b[0] = static_cast<uint8_t>(rng() % 80);
                    if (s >= 2) b[1] = static_cast<uint8_t>(rng() % 2 ? rng() % 80 : 0);
                    if (s >= 3) b[2] = static_cast<uint8_t>(rng() % 2);
                }
                if (tail && s > t.size) b[static_cast<size_t>(s - 1)] = 1;
                DataFormat sf = text_format(CS_BINARY, s);
                DataFormat df = text_format(t.type, t.size);
                df.precision = df.scale = CS_SRC_VALUE;
                std::unique_ptr<uint8_t[]> out(new uint8_t[static_cast<size_t>(t.size)]);
                int32_t len = -7;
                const int32_t rc = f(&ctx, &sf, b.data(), &df, out.get(), &len);

                int32_t want;
                if (s < (num ? 2 : t.size))
                    want = CS_CONV_SYNTAX;
                else if (num && (b[0] == 0 || b[0] > 77 || b[1] > 77))
                    want = CS_CONV_DOMAIN;
                else if (num && s < 2 + comn_num_getlen(b[0]))
                    want = CS_CONV_SYNTAX;
                else if (tail && s > t.size)
                    want = CS_CONV_OVERFLOW;
                else if (t.type == CS_BIT && b[0] > 1)
                    want = CS_CONV_DOMAIN;
                else
                    want = CS_SUCCEED;
                ASSERT_EQ(rc, want) << t.type << " s=" << s << " tail=" << tail;
                if (want == CS_CONV_SYNTAX) {
                    EXPECT_EQ(len, 0);
                }
                if (want == CS_SUCCEED || want == CS_CONV_OVERFLOW) {
                    EXPECT_EQ(len, t.size);
                }
            }
    }
    com_conv_free(&ctx);
}

} // namespace
