// Binary destinations and binary sources: hexadecimal text against a plain model, copies into
// binary and varbinary, round trips of every fixed type through text and binary, and binary
// sources of every length into every fixed type.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "numeric/num_helpers.h"
#include "output_model.h"

namespace {

using Bytes = std::vector<uint8_t>;

std::string varbin(const Bytes &b, int16_t word) {
    return length_record(std::string(b.begin(), b.end()), word);
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
                const Outcome hexed = model_text(to_hex(b), m, flags, Short::HexPairs);
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
    EXPECT_EQ(to_hex(Bytes{0x0a, 0xff}), "0aff");
}

// A varchar holds the hexadecimal text of at most 128 bytes, a varbinary at most 256 bytes.
TEST(BinaryOutput, VarcharAndVarbinaryDestinationsKeepTheFrame) {
    for (int s : {128, 129, 256, 300}) {
        Bytes b(static_cast<size_t>(s));
        for (int i = 0; i < s; ++i)
            b[static_cast<size_t>(i)] = static_cast<uint8_t>(i * 7);
        DataFormat bf = text_format(CS_BINARY, s);
        EXPECT_EQ(run_conv(comn_bintovarchar, nullptr, bf, b.data(), CS_VARCHAR, 258, 0),
                  framed(to_hex(b), s > 128 ? CS_CONV_TRUNCATED : CS_SUCCEED));
        EXPECT_EQ(
            run_conv(comn_bintovarbin, nullptr, bf, b.data(), CS_VARBINARY, 258, 0),
            framed(std::string(b.begin(), b.end()), s > 256 ? CS_CONV_TRUNCATED : CS_SUCCEED));
    }
}

// One fixed type: its id, size, and a source of random values as bytes.
struct Fixed {
    int32_t type;
    int32_t size;
};
const Fixed kFixed[] = {{CS_TINYINT, 1}, {CS_SMALLINT, 2}, {CS_INT, 4},      {CS_REAL, 4},
                        {CS_FLOAT, 8},   {CS_BIT, 1},      {CS_DATETIME, 8}, {CS_DATETIME4, 4},
                        {CS_MONEY, 8},   {CS_MONEY4, 4},   {CS_NUMERIC, 35}, {CS_DECIMAL, 35}};

template <typename T>
Bytes image(T v) {
    Bytes b(sizeof v);
    std::memcpy(b.data(), &v, sizeof v);
    return b;
}

// A random valid value of the type: any bits for integers and money, any non-NaN float,
// any day and tick of the range, and exact numerics of random precision, scale and digits.
Bytes random_value(const Fixed &t, std::mt19937_64 &rng) {
    const uint64_t r = rng();
    switch (t.type) {
    case CS_BIT:
        return {static_cast<uint8_t>(r & 1)};
    case CS_REAL: {
        float f;
        std::memcpy(&f, &r, 4);
        return image(std::isnan(f) ? 0.5f : f);
    }
    case CS_FLOAT: {
        double d;
        std::memcpy(&d, &r, 8);
        return image(std::isnan(d) ? 0.5 : d);
    }
    case CS_DATETIME:
        return image(DateTimeValue{static_cast<int32_t>(r % 2958464) - 53690,
                                   static_cast<uint32_t>((r >> 32) % 25920000)});
    case CS_DATETIME4:
        return image(
            DateTime4Value{static_cast<uint16_t>(r), static_cast<uint16_t>((r >> 16) % 1440)});
    case CS_NUMERIC:
    case CS_DECIMAL: {
        // A magnitude below 10^precision, its digits with the point scale places from the
        // right; negative only when it is not zero.
        const auto p = static_cast<int>(1 + r % 77), scale = static_cast<int>((r >> 8) % (p + 1u));
        std::string text(static_cast<size_t>(scale + 1), '0');
        for (int d = static_cast<int>((r >> 16) % (p + 1u)); d > 0; --d)
            text += static_cast<char>('0' + rng() % 10);
        if (scale > 0) text.insert(text.size() - static_cast<size_t>(scale), ".");
        if ((r >> 40) % 2 && text.find_first_of("123456789") != std::string::npos)
            text.insert(0, "-");
        const NumericValue n = numtest::value_of(text.c_str(), p, scale, 0);
        return image(n);
    }
    default: {
        Bytes b = image(r);
        b.resize(static_cast<size_t>(t.size));
        return b;
    }
    }
}

// value -> text, varchar, binary, varbinary -> value gives the value back for every fixed
// type. (The table has no binary cell for the date types; their images come from the
// shared fixed-to-binary copy.) Money text is asked for four places.
TEST(RoundTrips, EveryFixedTypeThroughTextAndBinary) {
    ComContext ctx{};
    ASSERT_EQ(com_conv_init(&ctx), CS_SUCCEED);
    std::mt19937_64 rng(9);
    for (const Fixed &t : kFixed) {
        ASSERT_EQ(comn_typelen(t.type, 9), t.size);
        for (int i = 0; i < 400; ++i) {
            const Bytes v = random_value(t, rng);
            NumericValue num;
            std::memcpy(&num, v.data(), std::min<size_t>(v.size(), sizeof num));
            for (int32_t mid : {CS_CHAR, CS_VARCHAR, CS_BINARY, CS_VARBINARY}) {
                // Text and binary keep the length given; the varying types have a frame.
                ASSERT_EQ(comn_typelen(mid, 100), mid == CS_CHAR || mid == CS_BINARY ? 100 : 258);
                const ComConvFunc there = com_conv_func(&ctx, t.type, mid);
                const ComConvFunc back = com_conv_func(&ctx, mid, t.type);
                ASSERT_NE(back, nullptr) << t.type << " " << mid;
                DataFormat sf = text_format(t.type, t.size);
                DataFormat mf = text_format(mid, mid == CS_BINARY ? t.size
                                                 : mid == CS_CHAR ? 100
                                                                  : 258);
                mf.precision = 4;
                uint8_t between[300];
                int32_t len = 0;
                const int32_t rc =
                    there ? there(&ctx, &sf, const_cast<uint8_t *>(v.data()), &mf, between, &len)
                    : mid == CS_BINARY ? comn_fixedtobin(v.data(), t.size, &mf, between, &len)
                                       : comn_fixedtovarbin(v.data(), t.size, &mf, between, &len);
                ASSERT_EQ(rc, CS_SUCCEED) << t.type << " to " << mid;
                DataFormat bf = text_format(mid, len);
                DataFormat df = text_format(t.type, t.size);
                df.precision = t.size == 35 ? num.precision : 0;
                df.scale = t.size == 35 ? num.scale : 0;
                // (A numeric fills only the bytes its precision needs.)
                Bytes out(static_cast<size_t>(t.size), t.size == 35 ? 0 : 0xCD);
                ASSERT_EQ(back(&ctx, &bf, between, &df, out.data(), &len), CS_SUCCEED)
                    << t.type << " from " << mid << " \"" << std::string(between, between + 40)
                    << "\"";
                ASSERT_EQ(out, v) << t.type << " through " << mid;
                EXPECT_EQ(len, t.size);
            }
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
    for (const Fixed &t : kFixed) {
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
