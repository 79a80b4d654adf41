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
    // The null of type into a destination of dstlen bytes (pre-filled with 0xEE): status,
    // length and the destination bytes.
    std::string get(int32_t type, int32_t dstlen, uint32_t flags = 0, int32_t prec = 0,
                    int32_t scale = 0) {
        DataFormat f{};
        f.datatype = type;
        f.maxlength = dstlen;
        f.format = flags;
        f.precision = prec;
        f.scale = scale;
        std::string buf(static_cast<size_t>(dstlen) + 1, '\xEE');
        int32_t len = -1;
        const int32_t rc = com_null_get(&c, &f, buf.data(), dstlen, &len);
        return std::to_string(rc) + " " + std::to_string(len) + " " + buf;
    }
};

std::string want(int32_t len, const std::string &bytes, size_t dstlen) {
    std::string b = bytes;
    b.resize(dstlen + 1, '\xEE');
    return std::to_string(CS_SUCCEED) + " " + std::to_string(len) + " " + b;
}

// Defaults are zeros cut to the destination; exact numerics carry the format's precision and
// scale; a user type has no value; rows 1 and 2 are crossed: a null CS_BINARY pads like text, a
// CS_LONGCHAR like binary.
TEST(NullValues, DefaultsAndPadding) {
    NullCtx n;
    const std::string zeros(8, '\0');
    EXPECT_EQ(n.get(CS_INT, 2), want(2, zeros.substr(0, 2), 2));
    EXPECT_EQ(n.get(CS_MONEY4, 4), want(4, zeros.substr(0, 4), 4));
    EXPECT_EQ(n.get(CS_NUMERIC, 35, 0, 10, 2), want(6, std::string("\x0a\x02\0\0\0\0", 6), 35));
    EXPECT_EQ(n.get(100, 8), want(0, "", 8));
    char v[] = "NUL";
    ASSERT_EQ(com_null_set(&n.c, CS_CHAR, v, 3), CS_SUCCEED);
    EXPECT_EQ(n.get(CS_CHAR, 10, CS_FMT_PADBLANK), want(10, "NUL       ", 10));
    EXPECT_EQ(n.get(CS_BINARY, 4, CS_FMT_PADBLANK), want(4, "    ", 4));
    EXPECT_EQ(n.get(CS_LONGCHAR, 4, CS_FMT_PADBLANK), want(0, "", 4));
}

TEST(NullValues, SetReplacesAndReinstallRestores) {
    NullCtx n;
    char v[] = "xyz";
    ASSERT_EQ(com_null_set(&n.c, 100, v, 3), CS_SUCCEED);
    ASSERT_EQ(com_null_set(&n.c, 100, v, 2), CS_SUCCEED); // replaces, no second entry
    EXPECT_EQ(n.get(100, 8), want(2, "xy", 8));
    EXPECT_EQ(com_null_reinstall(&n.c, 100), CS_SUCCEED);
    EXPECT_EQ(n.get(100, 8), want(0, "", 8));
    EXPECT_EQ(com_null_reinstall(&n.c, 555), CS_SUCCEED);
    // A value set for CS_VOID goes to the user list; a fetch for it never sees it.
    ASSERT_EQ(com_null_set(&n.c, CS_VOID, v, 3), CS_SUCCEED);
    EXPECT_EQ(n.get(CS_VOID, 4), want(4, std::string(4, '\0'), 4));
    // Shorter and empty values of built-in types, and their defaults back.
    ASSERT_EQ(com_null_set(&n.c, CS_FLOAT, v, 1), CS_SUCCEED);
    ASSERT_EQ(com_null_reinstall(&n.c, CS_FLOAT), CS_SUCCEED);
    EXPECT_EQ(n.get(CS_FLOAT, 8), want(8, std::string(8, '\0'), 8));
    ASSERT_EQ(com_null_set(&n.c, CS_INT, nullptr, 0), CS_SUCCEED);
    EXPECT_EQ(n.get(CS_INT, 4), want(0, "", 4));
    ASSERT_EQ(com_null_reinstall(&n.c, CS_INT), CS_SUCCEED);
    EXPECT_EQ(n.get(CS_INT, 4), want(4, std::string(4, '\0'), 4));
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
