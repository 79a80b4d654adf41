// Money, numeric and cross conversions: domain and format errors, every maxlength and flag
// combination for text destinations, the varchar frame, the source-value marker, and round
// trips through binary. Values themselves are checked against Python's decimal by
// cross_oracle.py.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "comnlib.h"
#include "numeric/num_helpers.h"

namespace {

constexpr unsigned char kCanary = 0xA5;

struct Ctx {
    ComContext c{};
    Ctx() { EXPECT_EQ(com_conv_init(&c), CS_SUCCEED); }
    ~Ctx() { com_conv_free(&c); }
};

const ComConvFunc kNumericSources[] = {
    comn_numtobit,    comn_numtoi1,   comn_numtoi2,    comn_numtoi4,   comn_numtoi8,
    comn_numtoflt4,   comn_numtoflt8, comn_numtochar,  comn_numtobin,  comn_numtovarchar,
    comn_numtovarbin, comn_numtonum,  comn_numtomoney, comn_numtomny4,
};

TEST(CrossConversions, NumericSourceOutsideItsDomainWritesNothing) {
    struct {
        uint8_t precision, scale;
    } bad[] = {{0, 0}, {78, 0}, {255, 0}, {10, 78}, {77, 255}};
    for (const auto &b : bad) {
        NumericValue v{};
        v.precision = b.precision;
        v.scale = b.scale;
        for (const ComConvFunc f : kNumericSources) {
            DataFormat sf{}, df{};
            df.maxlength = 300;
            df.precision = 10;
            unsigned char out[300];
            std::memset(out, kCanary, sizeof out);
            int32_t len = -7;
            EXPECT_EQ(f(nullptr, &sf, &v, &df, out, &len), CS_CONV_DOMAIN)
                << int(b.precision) << "," << int(b.scale);
            EXPECT_EQ(len, -7);
            EXPECT_EQ(out[0], kCanary);
        }
    }
}

// Checks a text conversion into every maxlength from 0 to a few bytes past the text, with
// every combination of the flags 1, 2 and 4, against the padding contract; the destination
// buffer is guarded so that any write past maxlength is caught.
void sweep(ComConvFunc f, void *src, DataFormat base, const std::string &text) {
    const auto n = static_cast<int32_t>(text.size());
    for (int32_t m = -1; m <= n + 3; ++m) {
        for (uint32_t flags = 0; flags < 8; ++flags) {
            SCOPED_TRACE("maxlength " + std::to_string(m) + " flags " + std::to_string(flags));
            DataFormat df = base;
            df.maxlength = m;
            df.format = flags;
            std::vector<unsigned char> out(static_cast<size_t>(n) + 16, kCanary);
            int32_t len = -7;
            const int32_t rc = f(nullptr, nullptr, src, &df, out.data(), &len);
            const int32_t room = std::max(m, 0);
            for (size_t i = static_cast<size_t>(room); i < out.size(); ++i)
                ASSERT_EQ(out[i], kCanary) << "written past maxlength at " << i;
            const bool nullterm = flags & CS_FMT_NULLTERM;
            const std::string got(out.begin(), out.begin() + std::clamp(len, 0, room));
            if (m < n || (nullterm && m == n)) {
                EXPECT_EQ(rc, CS_CONV_OVERFLOW);
                EXPECT_EQ(len, room);
                std::string want = text.substr(0, static_cast<size_t>(room));
                if (nullterm && room > 0) want.back() = '\0';
                EXPECT_EQ(got, want);
                continue;
            }
            if ((flags & CS_FMT_PADNULL) && (flags & CS_FMT_PADBLANK)) {
                EXPECT_EQ(rc, CS_CONV_FORMAT);
                continue;
            }
            EXPECT_EQ(rc, CS_SUCCEED);
            std::string want = text;
            if (flags & CS_FMT_PADNULL) {
                want.resize(static_cast<size_t>(m), '\0');
            } else if (flags & CS_FMT_PADBLANK) {
                want.resize(static_cast<size_t>(m), ' ');
                if (nullterm) want.back() = '\0';
            } else if (nullterm) {
                want.push_back('\0');
            }
            EXPECT_EQ(got, want);
            EXPECT_EQ(len, static_cast<int32_t>(want.size()));
        }
    }
}

TEST(CrossConversions, NumericTextHonoursEveryMaxlengthAndFlag) {
    for (const auto &[text, p, s] :
         {std::tuple{"-12.340", 9, 3}, std::tuple{"0", 1, 0}, std::tuple{"0.05", 5, 2}}) {
        NumericValue v = numtest::value_of(text, p, s, 0);
        sweep(comn_numtochar, &v, DataFormat{}, text);
    }
}

TEST(CrossConversions, MoneyTextHonoursEveryMaxlengthAndFlag) {
    MoneyValue m;
    comn__mny_set(&m, -12345678); // -1234.5678
    DataFormat df{};
    df.precision = 3;
    sweep(comn_moneytochar, &m, df, "-1234.568");
    const Money4Value m4{5}; // 0.0005
    df.precision = 0;
    sweep(comn_mny4tochar, const_cast<Money4Value *>(&m4), df, "0.00");
}

TEST(CrossConversions, NegativeMoneyPrecisionIsWrittenBackAsZero) {
    MoneyValue m;
    comn__mny_set(&m, 15000); // 1.5
    for (const ComConvFunc f : {comn_moneytochar, comn_moneytovarchar}) {
        DataFormat df{};
        df.maxlength = 40;
        df.precision = -5;
        char out[258];
        int32_t len = 0;
        EXPECT_EQ(f(nullptr, nullptr, &m, &df, out, &len), CS_SUCCEED);
        EXPECT_EQ(df.precision, 0);
        const bool var = f == comn_moneytovarchar;
        EXPECT_EQ(std::string(out + (var ? 2 : 0), 4), "1.50");
        EXPECT_EQ(len, var ? 258 : 4);
    }
}

TEST(CrossConversions, LongestNumericTextFitsTheVarcharFrame) {
    // A negative value with 77 decimals: "-0." and 77 digits.
    std::string text = "-0.";
    for (int i = 0; i < 77; ++i)
        text += static_cast<char>('1' + i % 9);
    NumericValue v = numtest::value_of(text.c_str(), 77, 77, 0);
    unsigned char out[258 + 8];
    std::memset(out, kCanary, sizeof out);
    DataFormat df{};
    int32_t len = 0;
    ASSERT_EQ(comn_numtovarchar(nullptr, nullptr, &v, &df, out, &len), CS_SUCCEED);
    int16_t count;
    std::memcpy(&count, out, 2);
    EXPECT_EQ(len, 258);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out) + 2, static_cast<size_t>(count)), text);
    EXPECT_EQ(out[258], kCanary);
    char buf[100];
    df.maxlength = sizeof buf;
    ASSERT_EQ(comn_numtochar(nullptr, nullptr, &v, &df, buf, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(buf, static_cast<size_t>(len)), text);
}

TEST(CrossConversions, IntoNumericChecksTheDestinationFormat) {
    const int32_t i = 7;
    struct {
        int32_t precision, scale, rc;
    } cases[] = {
        {0, 0, CS_CONV_PRECISION},
        {78, 0, CS_CONV_PRECISION},
        {-1, 0, CS_CONV_PRECISION},
        {10, 78, CS_CONV_SCALE},
        {10, -1, CS_CONV_SCALE},
        {77, 77, CS_CONV_OVERFLOW},
        {1, 0, CS_SUCCEED},
        {CS_SRC_VALUE, 0, CS_SUCCEED},
        {CS_SRC_VALUE, CS_SRC_VALUE, CS_SUCCEED},
    };
    for (const auto &c : cases) {
        DataFormat df{};
        df.precision = c.precision;
        df.scale = c.scale;
        NumericValue out{};
        int32_t len = 0;
        EXPECT_EQ(comn_i4tonum(nullptr, nullptr, const_cast<int32_t *>(&i), &df, &out, &len), c.rc)
            << c.precision << "," << c.scale;
        EXPECT_EQ(len, 35);
        EXPECT_EQ(df.precision, c.precision); // the caller's record is never changed
        if (c.rc == CS_SUCCEED) {
            EXPECT_EQ(out.precision, c.precision == CS_SRC_VALUE ? 77 : c.precision);
            EXPECT_EQ(out.scale, c.scale == CS_SRC_VALUE ? 0 : c.scale);
            EXPECT_EQ(numtest::text_of(out), "7");
        }
    }
}

TEST(CrossConversions, SourceValueMarkerTakesTheWidestTheValueNeeds) {
    struct {
        double value;
        int32_t precision, scale;
        int want_p, want_s;
        const char *text;
    } cases[] = {
        {12345, CS_SRC_VALUE, CS_SRC_VALUE, 77, 72, nullptr},
        {0.5, CS_SRC_VALUE, CS_SRC_VALUE, 77, 76, nullptr},
        {1234.5, 10, CS_SRC_VALUE, 10, 6, "1234.500000"},
        {-1234.5, CS_SRC_VALUE, 2, 77, 2, "-1234.50"},
        {1e20, CS_SRC_VALUE, CS_SRC_VALUE, 77, 55, nullptr},
    };
    for (const auto &c : cases) {
        DataFormat df{};
        df.precision = c.precision;
        df.scale = c.scale;
        NumericValue out{};
        int32_t len = 0;
        double v = c.value;
        ASSERT_EQ(comn_flt8tonum(nullptr, nullptr, &v, &df, &out, &len), CS_SUCCEED) << v;
        EXPECT_EQ(out.precision, c.want_p);
        EXPECT_EQ(out.scale, c.want_s);
        if (c.text) {
            EXPECT_EQ(numtest::text_of(out), c.text);
        }
        EXPECT_EQ(df.precision, c.precision);
        EXPECT_EQ(df.scale, c.scale);
    }
}

TEST(CrossConversions, NonFiniteFloatsAndBadBitsIntoNumeric) {
    DataFormat df{};
    df.precision = 10;
    df.scale = 2;
    for (const double v : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        NumericValue out;
        std::memset(&out, 0xEE, sizeof out);
        int32_t len = 0;
        double d = v;
        EXPECT_EQ(comn_flt8tonum(nullptr, nullptr, &d, &df, &out, &len), CS_CONV_OVERFLOW);
        EXPECT_EQ(len, 35);
        EXPECT_EQ(numtest::text_of(out), "0.00"); // never a half-written magnitude
        float f = static_cast<float>(v);
        EXPECT_EQ(comn_flt4tonum(nullptr, nullptr, &f, &df, &out, &len), CS_CONV_OVERFLOW);
    }
    for (int byte = 0; byte < 256; ++byte) {
        uint8_t b = static_cast<uint8_t>(byte);
        NumericValue out{};
        int32_t len = -7;
        const int32_t rc = comn_bittonum(nullptr, nullptr, &b, &df, &out, &len);
        if (byte > 1) {
            ASSERT_EQ(rc, CS_CONV_DOMAIN);
            ASSERT_EQ(len, -7);
        } else {
            EXPECT_EQ(rc, CS_SUCCEED);
            EXPECT_EQ(numtest::text_of(out), byte ? "1.00" : "0.00");
        }
    }
}

// value -> binary / varbinary -> value, where the reverse conversion exists in the table.
TEST(CrossConversions, RoundTripsThroughBinary) {
    Ctx ctx;
    NumericValue num = numtest::value_of("-98765432109876543210.123456789", 38, 9, 0);
    MoneyValue money;
    comn__mny_set(&money, -922337203685477LL);
    Money4Value mny4{-2147483647};
    struct {
        int32_t type;
        void *value;
        size_t size;
    } values[] = {{CS_NUMERIC, &num, sizeof num},
                  {CS_DECIMAL, &num, sizeof num},
                  {CS_MONEY, &money, sizeof money},
                  {CS_MONEY4, &mny4, sizeof mny4}};
    int tried = 0;
    for (const auto &v : values) {
        for (const int32_t mid : {CS_BINARY, CS_VARBINARY}) {
            ComConvFunc there = com_conv_func(&ctx.c, v.type, mid);
            ASSERT_NE(there, nullptr);
            DataFormat sf{}, mf{}, bf{}, df{};
            sf.datatype = v.type;
            sf.maxlength = static_cast<int32_t>(v.size);
            mf.datatype = mid;
            mf.maxlength = 258;
            unsigned char bytes[258];
            int32_t len = 0;
            ASSERT_EQ(there(&ctx.c, &sf, v.value, &mf, bytes, &len), CS_SUCCEED);
            EXPECT_EQ(len, mid == CS_BINARY ? static_cast<int32_t>(v.size) : 258);
            ComConvFunc back = com_conv_func(&ctx.c, mid, v.type);
            if (!back) continue; // the binary sources are not part of this library build yet
            ++tried;
            bf.datatype = mid;
            bf.maxlength = len;
            df.datatype = v.type;
            df.maxlength = static_cast<int32_t>(v.size);
            df.precision = df.scale = CS_SRC_VALUE;
            unsigned char again[64] = {};
            ASSERT_EQ(back(&ctx.c, &bf, bytes, &df, again, &len), CS_SUCCEED);
            EXPECT_EQ(std::memcmp(again, v.value, v.size), 0);
        }
    }
    if (tried == 0) GTEST_SKIP() << "no binary-source conversions in the table";
}

TEST(CrossConversions, DateStylesTheFormatterDoesNotKnowBecomeNine) {
    const int32_t known[] = {0, 1, 8, 10, 12, 15, 100, 105, 112};
    const int32_t unknown[] = {-1, 9, 16, 20, 99, 113, 200, CS_SRC_VALUE};
    CommonInfo info{};
    LocaleRecord rec{};
    rec.common = &info;
    LocaleHandle loc{};
    loc.time = &rec;
    DataFormat df{};
    df.locale = &loc;
    for (const int32_t id : known) {
        info.dtfmt = id;
        EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &df), id);
    }
    for (const int32_t id : unknown) {
        info.dtfmt = id;
        EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &df), 9) << id;
    }
}

} // namespace
