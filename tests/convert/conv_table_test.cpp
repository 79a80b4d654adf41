// The default conversion table, cell by cell, against the expected table by routine name.
// A cell must hold exactly the routine the library exports under that name, every routine
// the expected table names must be exported, and a context's copy must look up the same.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include "comnlib.h"

namespace {

const char *const kExpected[24][24] = {
#include "convert/expected_conv_table.inc"
};

class ConvTable : public testing::Test {
  protected:
    void SetUp() override {
        lib_ = dlopen(COMN_SHARED_LIB, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(lib_, nullptr) << dlerror();
        auto get = reinterpret_cast<void (*)(const ComConvFunc **, uint32_t *)>(
            dlsym(lib_, "com__get_ctbl"));
        ASSERT_NE(get, nullptr);
        get(&table_, &dim_);
    }
    void TearDown() override {
        if (lib_) dlclose(lib_);
    }
    void *lib_ = nullptr;
    const ComConvFunc *table_ = nullptr;
    uint32_t dim_ = 0;
};

TEST_F(ConvTable, EveryCellMatchesTheExpectedTable) {
    ASSERT_EQ(dim_, 24u);
    // The context routines of the same library.
    const auto init = reinterpret_cast<int32_t (*)(ComContext *)>(dlsym(lib_, "com_conv_init"));
    const auto release = reinterpret_cast<int32_t (*)(ComContext *)>(dlsym(lib_, "com_conv_free"));
    const auto func = reinterpret_cast<ComConvFunc (*)(ComContext *, int32_t, int32_t)>(
        dlsym(lib_, "com_conv_func"));
    ASSERT_TRUE(init && release && func);
    ComContext ctx{};
    ASSERT_EQ(init(&ctx), CS_SUCCEED);
    int wired = 0, named = 0;
    for (int s = 0; s < 24; ++s) {
        for (int d = 0; d < 24; ++d) {
            const void *cell = reinterpret_cast<const void *>(table_[s * 24 + d]);
            const char *name = kExpected[s][d];
            EXPECT_EQ(reinterpret_cast<const void *>(func(&ctx, s, d)), cell);
            if (!name) {
                EXPECT_EQ(cell, nullptr) << "(" << s << ", " << d << ") should be empty";
                continue;
            }
            ++named;
            void *sym = dlsym(lib_, name);
            EXPECT_NE(sym, nullptr) << name << " is not exported";
            EXPECT_EQ(cell, sym) << "(" << s << ", " << d << ") should be " << name;
            wired += cell != nullptr;
        }
    }
    EXPECT_EQ(wired, named);
    release(&ctx);
}

} // namespace
