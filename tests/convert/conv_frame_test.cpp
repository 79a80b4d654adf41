// The conversion frame: per-context table copies, lookups, installs and user conversions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <vector>

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

// The user list of a context as (source, destination) pairs, heads first.
std::vector<std::pair<int32_t, int32_t>> user_list(const ComContext &c) {
    std::vector<std::pair<int32_t, int32_t>> out;
    for (const UserConvEntry *h = c.conv.user_convs; h; h = h->next_src)
        for (const UserConvEntry *e = h; e; e = e->next_dest)
            out.emplace_back(e->src_type, e->dest_type);
    return out;
}

// Two contexts under random installs and resets against a model of each: after every step both
// lookup forms answer as the model for every pair around the table's edge, the user list holds
// the user pairs in order of first installation grouped by source, the default table is intact.
TEST(ConvFrame, InstallsAndResetsFollowAModelPerContext) {
    const ComConvFunc *table;
    uint32_t dim;
    com__get_ctbl(&table, &dim);
    ASSERT_EQ(dim, static_cast<uint32_t>(COMN_CONV_DIM));
    const std::vector<ComConvFunc> pristine(table, table + dim * dim);
    auto builtin = [&](int32_t s, int32_t d) {
        return s >= 0 && d >= 0 && s < 24 && d < 24 ? pristine[static_cast<size_t>(s * 24 + d)]
                                                    : nullptr;
    };
    Ctx ctx[2];
    std::map<std::pair<int32_t, int32_t>, ComConvFunc> model[2];
    std::vector<std::pair<int32_t, int32_t>> first_installed[2];
    auto check = [&](int k) {
        const ComContext &c = ctx[k].c;
        for (int32_t s = -3; s < 34; ++s)
            for (int32_t d = -3; d < 34; ++d) {
                const auto it = model[k].find({s, d});
                const ComConvFunc want = s < 0 || d < 0         ? nullptr
                                         : it != model[k].end() ? it->second
                                                                : builtin(s, d);
                ASSERT_EQ(com_conv_func(&ctx[k].c, s, d), want) << k << ": " << s << " " << d;
                ASSERT_EQ((com_conv_func)(&ctx[k].c, s, d), want) << k << ": " << s << " " << d;
            }
        // The expected list: the first installations, stably grouped by source id.
        std::vector<std::pair<int32_t, int32_t>> want;
        for (const auto &[s, d] : first_installed[k])
            if (std::none_of(want.begin(), want.end(), [s = s](auto p) { return p.first == s; }))
                for (const auto &p : first_installed[k])
                    if (p.first == s) want.push_back(p);
        ASSERT_EQ(user_list(c), want) << k;
    };
    // Few ids, so that pairs come back: built-in ones, the table's edge, user ones, negative.
    const int32_t ids[] = {-1, CS_INT, CS_SMALLINT, 23, 24, 30, 31};
    const ComConvFunc funcs[] = {user_conv, other_conv, nullptr, comn_i4toi2};
    std::mt19937 rng(12);
    for (int step = 0; step < 200; ++step) {
        const int k = static_cast<int>(rng() % 2);
        const int32_t s = ids[rng() % 7], d = ids[rng() % 7];
        const bool user = s >= 24 || d >= 24, install = rng() % 3 != 0;
        const ComConvFunc f = funcs[rng() % 4];
        const int32_t rc =
            install ? com_conv_install(&ctx[k].c, s, d, f) : com_conv_default(&ctx[k].c, s, d);
        ASSERT_EQ(rc, !user && (s < 0 || d < 0) ? CS_FAIL : CS_SUCCEED) << s << " " << d;
        const bool known = model[k].count({s, d}) != 0;
        if (user && install && !known) first_installed[k].emplace_back(s, d);
        if (rc == CS_SUCCEED && (install || !user || known))
            model[k][{s, d}] = install ? f : builtin(s, d);
        check(0);
        check(1);
    }
    EXPECT_EQ(std::memcmp(table, pristine.data(), dim * dim * sizeof(ComConvFunc)), 0);

    // A smaller table: ids from its size up have no built-in conversion. A freed table looks
    // nothing up at all.
    ComContext &c = ctx[0].c;
    c.conv.conv_dim = 20;
    EXPECT_EQ(com_conv_func(&c, 21, CS_INT), nullptr);
    EXPECT_EQ((com_conv_func)(&c, CS_INT, 22), nullptr);
    c.conv.conv_dim = COMN_CONV_DIM;
    ASSERT_EQ(com_conv_free(&c), CS_SUCCEED);
    EXPECT_EQ(c.conv.conv_table, nullptr);
    EXPECT_EQ(c.conv.user_convs, nullptr);
    for (int32_t s = -3; s < 34; ++s)
        for (int32_t d = -3; d < 34; ++d)
            ASSERT_EQ(com_conv_func(&c, s, d), (com_conv_func)(&c, s, d));
    EXPECT_EQ(com_conv_func(&c, CS_INT, CS_INT), nullptr);
    EXPECT_EQ(com_conv_install(&c, CS_INT, CS_INT, user_conv), CS_FAIL);
}

} // namespace
