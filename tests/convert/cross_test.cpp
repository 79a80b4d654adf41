// Money, numeric and cross conversions: every maxlength and flag combination for text
// destinations, the varchar frame, the source-value marker with float sources and the date
// styles. Values, domain and format errors are checked against Python's decimal by
// cross_oracle.py.
#include <gtest/gtest.h>

#include <string>

#include "comnlib.h"
#include "convert/output_model.h"
#include "numeric/num_helpers.h"

namespace {

// Numeric and money text into every maxlength from -1 to past the text with every flag
// combination: a text that does not fit is cut with overflow.
TEST(CrossConversions, TextHonoursEveryMaxlengthAndFlag) {
    MoneyValue money;
    comn__mny_set(&money, -12345678); // -1234.5678
    const Money4Value mny4{5};        // 0.0005
    NumericValue n[3] = {numtest::value_of("-12.340", 9, 3, 0), numtest::value_of("0", 1, 0, 0),
                         numtest::value_of("0.05", 5, 2, 0)};
    const struct {
        ComConvFunc f;
        int32_t type;
        const void *value;
        int32_t precision;
        std::string text;
    } cases[] = {{comn_numtochar, CS_NUMERIC, &n[0], 0, "-12.340"},
                 {comn_numtochar, CS_NUMERIC, &n[1], 0, "0"},
                 {comn_numtochar, CS_NUMERIC, &n[2], 0, "0.05"},
                 {comn_moneytochar, CS_MONEY, &money, 3, "-1234.568"},
                 {comn_mny4tochar, CS_MONEY4, &mny4, 0, "0.00"}};
    for (const auto &c : cases) {
        DataFormat sf = text_format(c.type, 35);
        for (int32_t m = -1; m <= static_cast<int32_t>(c.text.size()) + 3; ++m)
            for (uint32_t flags = 0; flags < 8; ++flags)
                ASSERT_EQ(run_conv(c.f, nullptr, sf, c.value, CS_CHAR, m, flags, c.precision),
                          model_text(c.text, m, flags, Short::Cut))
                    << c.text << " m=" << m << " flags=" << flags;
    }
    // The longest text, a negative value with 77 decimals, fits the varchar frame.
    std::string text = "-0.";
    for (int i = 0; i < 77; ++i)
        text += static_cast<char>('1' + i % 9);
    NumericValue v = numtest::value_of(text.c_str(), 77, 77, 0);
    DataFormat sf = text_format(CS_NUMERIC, 35);
    const Outcome o = run_conv(comn_numtovarchar, nullptr, sf, &v, CS_VARCHAR, 258, 0);
    EXPECT_EQ(o.rc, CS_SUCCEED);
    EXPECT_EQ(o.bytes.substr(0, 2 + text.size()), std::string("\x50\0", 2) + text);
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

// The date formatter is the oracle: a style it knows is kept, any other becomes 9.
TEST(CrossConversions, DateStylesTheFormatterDoesNotKnowBecomeNine) {
    CommonInfo info{};
    LocaleRecord rec{};
    rec.common = &info;
    LocaleHandle loc{};
    loc.time = &rec;
    DataFormat df{};
    df.locale = &loc;
    const DateTimeValue v{};
    char out[64];
    int known = 0;
    for (int32_t id = -3; id <= 300; ++id) {
        info.dtfmt = id == 300 ? CS_SRC_VALUE : id;
        const bool kept = com__datetochar(&v, out, 64, info.dtfmt, nullptr) != COMN_DATE_NOSTYLE;
        EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &df), kept ? info.dtfmt : 9) << info.dtfmt;
        known += kept;
    }
    EXPECT_GT(known, 20);
}

} // namespace
