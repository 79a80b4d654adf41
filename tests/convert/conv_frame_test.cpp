// The conversion frame: per-context table copies, lookups, installs and user conversions.
#include <gtest/gtest.h>

#include "comnlib.h"

namespace {

int32_t user_conv(ComContext *, DataFormat *, void *, DataFormat *, void *, int32_t *) {
    return 42;
}
int32_t other_conv(ComContext *, DataFormat *, void *, DataFormat *, void *, int32_t *) {
    return 43;
}

struct Ctx {
    ComContext c{};
    Ctx() { EXPECT_EQ(com_conv_init(&c), CS_SUCCEED); }
    ~Ctx() { com_conv_free(&c); }
};

TEST(ConvFrame, InstallIsPerContextAndDefaultRestores) {
    Ctx a, b;
    ASSERT_EQ(com_conv_install(&a.c, CS_INT, CS_SMALLINT, user_conv), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(&a.c, CS_INT, CS_SMALLINT), user_conv);
    EXPECT_EQ(com_conv_func(&b.c, CS_INT, CS_SMALLINT), comn_i4toi2);
    EXPECT_EQ(Com__cnvrt_array[CS_INT * 24 + CS_SMALLINT], comn_i4toi2);
    ASSERT_EQ(com_conv_install(&a.c, CS_INT, CS_SMALLINT, nullptr), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(&a.c, CS_INT, CS_SMALLINT), nullptr);
    ASSERT_EQ(com_conv_default(&a.c, CS_INT, CS_SMALLINT), CS_SUCCEED);
    EXPECT_EQ(com_conv_func(&a.c, CS_INT, CS_SMALLINT), comn_i4toi2);
}

TEST(ConvFrame, UserListKeepsTwoLevelsInInstallOrder) {
    Ctx a;
    ASSERT_EQ(com_conv_install(&a.c, 30, 0, user_conv), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(&a.c, 30, 8, user_conv), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(&a.c, 31, 0, other_conv), CS_SUCCEED);
    UserConvEntry *head = a.c.conv.user_convs;
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head->src_type, 30);
    EXPECT_EQ(head->dest_type, 0);
    ASSERT_NE(head->next_dest, nullptr);
    EXPECT_EQ(head->next_dest->dest_type, 8);
    EXPECT_EQ(head->next_dest->next_dest, nullptr);
    ASSERT_NE(head->next_src, nullptr);
    EXPECT_EQ(head->next_src->src_type, 31);
    EXPECT_EQ(head->next_src->next_src, nullptr);

    // Reinstalling replaces the routine without a new entry.
    UserConvEntry *e = com__conv_usr_struct(&a.c, 30, 8);
    ASSERT_EQ(com_conv_install(&a.c, 30, 8, other_conv), CS_SUCCEED);
    EXPECT_EQ(com__conv_usr_struct(&a.c, 30, 8), e);
    EXPECT_EQ(com_conv_func(&a.c, 30, 8), other_conv);
    EXPECT_EQ(com_conv_func(&a.c, 31, 0), other_conv);
    EXPECT_EQ(com_conv_func(&a.c, 31, 8), nullptr);
    EXPECT_EQ(com_conv_func(&a.c, 0, 30), nullptr);

    // Reset to default: the entry stays but looks up as no conversion.
    EXPECT_EQ(com_conv_default(&a.c, 30, 8), CS_SUCCEED);
    EXPECT_EQ(com__conv_usr_struct(&a.c, 30, 8), e);
    EXPECT_EQ(com_conv_func(&a.c, 30, 8), nullptr);
    EXPECT_EQ(com_conv_default(&a.c, 77, 78), CS_SUCCEED);
}

// The header's inline lookup against the routine over every id pair around the table's edge,
// with built-in, replaced and user conversions, and after the table is freed. Ids outside
// the table and empty cells look up as no conversion.
TEST(ConvFrame, InlineLookupAgreesWithTheRoutine) {
    ComContext c{};
    ASSERT_EQ(com_conv_init(&c), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(&c, CS_INT, CS_SMALLINT, user_conv), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(&c, 30, CS_INT, other_conv), CS_SUCCEED);
    ASSERT_EQ(com_conv_install(&c, CS_INT, 31, user_conv), CS_SUCCEED);
    auto check = [&c] {
        for (int32_t s = -3; s < 34; ++s)
            for (int32_t d = -3; d < 34; ++d)
                ASSERT_EQ(com_conv_func(&c, s, d), (com_conv_func)(&c, s, d)) << s << " " << d;
    };
    check();
    for (const auto &[s, d] :
         {std::pair<int32_t, int32_t>{-1, CS_INT}, {CS_INT, -5}, {99, CS_INT}, {CS_LONG, CS_CHAR}})
        EXPECT_EQ(com_conv_func(&c, s, d), nullptr) << s << " " << d;
    EXPECT_EQ(com_conv_func(&c, CS_INT, CS_SMALLINT), user_conv);
    EXPECT_EQ(com_conv_func(&c, 30, CS_INT), other_conv);
    EXPECT_EQ(com_conv_func(&c, CS_INT, 31), user_conv);
    c.conv.conv_dim = 20; // a smaller table: ids 20..23 have no built-in conversion
    check();
    EXPECT_EQ(com_conv_func(&c, 21, CS_INT), nullptr);
    c.conv.conv_dim = COMN_CONV_DIM;
    ASSERT_EQ(com_conv_free(&c), CS_SUCCEED);
    EXPECT_EQ(c.conv.conv_table, nullptr);
    EXPECT_EQ(c.conv.conv_dim, 0u);
    EXPECT_EQ(c.conv.user_convs, nullptr);
    check();
    EXPECT_EQ(com_conv_func(&c, CS_INT, CS_INT), nullptr);
}

TEST(ConvFrame, TypeLengths) {
    struct {
        int32_t id, len, want;
    } cases[] = {
        {CS_CHAR, 10, 10},    {CS_VARCHAR, 3, 258}, {CS_VARBINARY, 0, 258}, {CS_TINYINT, 9, 1},
        {CS_BIT, 9, 1},       {CS_SMALLINT, 9, 2},  {CS_INT, 9, 4},         {CS_REAL, 9, 4},
        {CS_DATETIME4, 9, 4}, {CS_MONEY4, 9, 4},    {CS_FLOAT, 9, 8},       {CS_DATETIME, 9, 8},
        {CS_MONEY, 9, 8},     {CS_NUMERIC, 9, 35},  {CS_DECIMAL, 9, 35},    {CS_LONG, 9, 9},
        {CS_VOID, 6, 6},      {-3, 11, 11},         {100, 12, 12}};
    for (const auto &c : cases)
        EXPECT_EQ(comn_typelen(c.id, c.len), c.want) << c.id;
}

} // namespace
