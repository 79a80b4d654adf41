// A float into a numeric with the source-value marker takes the widest precision and scale the
// value needs; date styles the formatter does not know become 9; numeric and money text that
// does not fit is cut with overflow. (Values, domain and format errors
// are checked against Python's decimal by cross_oracle.py.)
#include <gtest/gtest.h>

#include <string>

#include "comnlib.h"
#include "convert/output_model.h"
#include "numeric/num_helpers.h"

namespace {

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
    for (int32_t id = -3; id <= 300; ++id) {
        info.dtfmt = id == 300 ? CS_SRC_VALUE : id;
        const bool kept = com__datetochar(&v, out, 64, info.dtfmt, nullptr) != COMN_DATE_NOSTYLE;
        EXPECT_EQ(comn_get_datetochar_fmt(nullptr, &df), kept ? info.dtfmt : 9) << info.dtfmt;
    }
}

TEST(CrossConversions, TextIsCutToTheDestination) {
    MoneyValue money;
    comn__mny_set(&money, -12345678); // -1234.5678
    const NumericValue n = numtest::value_of("-12.340", 9, 3, 0);
    const struct {
        ComConvFunc f;
        int32_t type;
        const void *value;
        int32_t precision;
        std::string text;
    } cases[] = {{comn_numtochar, CS_NUMERIC, &n, 0, "-12.340"},
                 {comn_moneytochar, CS_MONEY, &money, 3, "-1234.568"}};
    for (const auto &c : cases) {
        DataFormat sf = text_format(c.type, 35);
        for (int32_t m = -1; m <= static_cast<int32_t>(c.text.size()) + 1; ++m)
            for (uint32_t flags = 0; flags < 8; ++flags)
                ASSERT_EQ(run_conv(c.f, nullptr, sf, c.value, CS_CHAR, m, flags, c.precision),
                          model_text(c.text, m, flags, Short::Cut))
                    << c.text << " m=" << m << " flags=" << flags;
    }
}

} // namespace
