// Null substitution values: defaults, shapes, user types, set and reinstall.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "comnlib.h"

namespace {

struct NullCtx {
    ComContext c{};
    NullCtx() { EXPECT_EQ(com_null_init(&c), CS_SUCCEED); }
    ~NullCtx() { com_null_free(&c); }
    int32_t get(int32_t type, void *buf, int32_t dstlen, int32_t maxlength = 0, uint32_t flags = 0,
                int32_t prec = 0, int32_t scale = 0, int32_t *len = nullptr) {
        DataFormat f{};
        f.datatype = type;
        f.maxlength = maxlength ? maxlength : dstlen;
        f.format = flags;
        f.precision = prec;
        f.scale = scale;
        int32_t l = -1;
        int32_t rc = com_null_get(&c, &f, buf, dstlen, &l);
        if (len) *len = l;
        return rc;
    }
};

TEST(NullValues, FixedTypesAreZeroCutToTheDestination) {
    NullCtx n;
    unsigned char buf[8];
    int32_t len;
    std::memset(buf, 0xEE, sizeof buf);
    EXPECT_EQ(n.get(CS_INT, buf, 4, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 4);
    EXPECT_EQ(buf[3], 0);
    EXPECT_EQ(buf[4], 0xEE);
    EXPECT_EQ(n.get(CS_INT, buf, 2, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 2);
    EXPECT_EQ(n.get(CS_MONEY4, buf, 4, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 4);
}

TEST(NullValues, NumericsCarryTheFormatsPrecisionAndScale) {
    NullCtx n;
    unsigned char buf[35];
    std::memset(buf, 0xEE, sizeof buf);
    int32_t len;
    EXPECT_EQ(n.get(CS_NUMERIC, buf, 35, 0, 0, 10, 2, &len), CS_SUCCEED);
    EXPECT_EQ(len, 6);
    EXPECT_EQ(buf[0], 10);
    EXPECT_EQ(buf[1], 2);
    for (int i = 2; i < 6; ++i)
        EXPECT_EQ(buf[i], 0);
    EXPECT_EQ(buf[6], 0xEE);
}

TEST(NullValues, UserTypesComeFromTheList) {
    NullCtx n;
    char buf[8] = {};
    int32_t len = -1;
    EXPECT_EQ(n.get(100, buf, 8, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 0);
    char v[] = "xyz";
    ASSERT_EQ(com_null_set(&n.c, 100, v, 3), CS_SUCCEED);
    ASSERT_EQ(com_null_set(&n.c, 100, v, 2), CS_SUCCEED); // replaces, no second entry
    EXPECT_EQ(n.get(100, buf, 8, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 2);
    EXPECT_EQ(std::string(buf, 2), "xy");
    // A value set for CS_VOID goes to the user list; a fetch for 23 never sees it.
    ASSERT_EQ(com_null_set(&n.c, CS_VOID, v, 3), CS_SUCCEED);
    std::memset(buf, 0, sizeof buf);
    EXPECT_EQ(n.get(CS_VOID, buf, 4, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 4);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(com_null_reinstall(&n.c, 100), CS_SUCCEED);
    EXPECT_EQ(n.get(100, buf, 8, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 0);
    EXPECT_EQ(com_null_reinstall(&n.c, 555), CS_SUCCEED);
}

TEST(NullValues, CharNullIsPaddedLikeText) {
    NullCtx n;
    char v[] = "NUL";
    ASSERT_EQ(com_null_set(&n.c, CS_CHAR, v, 3), CS_SUCCEED);
    char buf[10];
    int32_t len;
    EXPECT_EQ(n.get(CS_CHAR, buf, 10, 10, CS_FMT_PADBLANK, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 10);
    EXPECT_EQ(std::string(buf, 10), "NUL       ");
    // Rows 1 and 2 are crossed: a null CS_BINARY pads like text, a CS_LONGCHAR like binary.
    EXPECT_EQ(n.get(CS_BINARY, buf, 4, 4, CS_FMT_PADBLANK, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(std::string(buf, 4), "    ");
    EXPECT_EQ(n.get(CS_LONGCHAR, buf, 4, 4, CS_FMT_PADBLANK, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 0);
}

TEST(NullValues, ReinstallRestoresTheDefaultAfterShorterOrEmptySets) {
    NullCtx n;
    char v[] = "\x7";
    ASSERT_EQ(com_null_set(&n.c, CS_FLOAT, v, 1), CS_SUCCEED);
    ASSERT_EQ(com_null_reinstall(&n.c, CS_FLOAT), CS_SUCCEED);
    double d = 1.0;
    int32_t len;
    EXPECT_EQ(n.get(CS_FLOAT, &d, 8, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 8);
    EXPECT_EQ(d, 0.0);
    ASSERT_EQ(com_null_set(&n.c, CS_INT, nullptr, 0), CS_SUCCEED);
    int32_t i = 5;
    EXPECT_EQ(n.get(CS_INT, &i, 4, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(len, 0);
    ASSERT_EQ(com_null_reinstall(&n.c, CS_INT), CS_SUCCEED);
    EXPECT_EQ(n.get(CS_INT, &i, 4, 0, 0, 0, 0, &len), CS_SUCCEED);
    EXPECT_EQ(i, 0);
}

TEST(NullValues, VoidConvertsToTheNullOfAnyType) {
    ComContext c{};
    ASSERT_EQ(com_conv_init(&c), CS_SUCCEED);
    ASSERT_EQ(com_null_init(&c), CS_SUCCEED);
    DataFormat sf{}, df{};
    df.datatype = CS_SMALLINT;
    df.maxlength = 2;
    int16_t v = 99;
    int32_t len = -1;
    ComConvFunc f = com_conv_func(&c, CS_VOID, CS_SMALLINT);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f(&c, &sf, nullptr, &df, &v, &len), CS_SUCCEED);
    EXPECT_EQ(v, 0);
    EXPECT_EQ(len, 2);
    len = -1;
    EXPECT_EQ(comn_voidtovoid(&c, &sf, nullptr, &df, &v, &len), CS_SUCCEED);
    EXPECT_EQ(len, -1);
    com_null_free(&c);
    com_conv_free(&c);
}

} // namespace
