// A float into a numeric with the source-value marker takes the widest precision and scale the
// value needs. (Values, domain and format errors are checked against Python's decimal by
// cross_oracle.py.)
#include <gtest/gtest.h>

#include <string>

#include "comnlib.h"
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

} // namespace
