// Every allocation of start-up, locale load, message load and user conversion install fails in
// turn: each run answers CS_MEM_ERROR, leaves the context usable and leaks nothing; the loop
// runs once per allocation of the first run that injected no failure.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "comnlib.h"
#include "core/alloc.h"
#include "intl/intl_test_util.h"

namespace {

struct Scenario {
    const char *name;
    std::function<void(ComContext *)> prepare; // runs without failures, before the operation
    std::function<int32_t(ComContext *)> op;
    std::function<void(ComContext *)> check; // after a successful op
};

int32_t noop_conv(ComContext *, DataFormat *, void *, DataFormat *, void *, int32_t *) {
    return CS_SUCCEED;
}

// Loads the message file of the default locale the way start-up does, with a few preloads.
int32_t load_messages(ComContext *ctx) {
    ComErrCtx errctx{ctx->conv.default_locale->message, "cslib.loc"};
    const ComErrKey pre[] = {
        {COM_ERRSEC_FALLBACK, 1}, {COM_ERRSEC_FALLBACK, 4}, {COM_ERRSEC_STATUS, 1}};
    return com_err_init(ctx, &errctx, Com_msg_sections, COM_MSG_SECTION_COUNT, pre, 3);
}

void run(const Scenario &s) {
    SCOPED_TRACE(s.name);
    uint64_t successful_run_allocs = 0;
    int failing_runs = 0;
    for (int64_t n = 1;; ++n) {
        const int64_t outstanding = comn::alloc_stats().outstanding;
        ComContext ctx{};
        if (s.prepare) s.prepare(&ctx);
        const comn::AllocStats before = comn::alloc_stats();
        comn::alloc_fail_at(n);
        const int32_t rc = s.op(&ctx);
        comn::alloc_fail_at(0);
        const comn::AllocStats after = comn::alloc_stats();
        if (after.failed == before.failed) {
            ASSERT_EQ(rc, CS_SUCCEED) << "no failure injected";
            successful_run_allocs = after.attempts - before.attempts;
            s.check(&ctx);
        } else {
            ++failing_runs;
            EXPECT_EQ(rc, CS_MEM_ERROR) << "allocation " << n;
            // Still usable: with memory back the operation succeeds.
            EXPECT_EQ(s.op(&ctx), CS_SUCCEED) << "after failing allocation " << n;
            s.check(&ctx);
        }
        comn_ctx_teardown(&ctx);
        EXPECT_EQ(comn::alloc_stats().outstanding, outstanding) << "allocation " << n;
        if (after.failed == before.failed || ::testing::Test::HasFatalFailure()) break;
    }
    EXPECT_GT(successful_run_allocs, 0u);
    EXPECT_GE(static_cast<uint64_t>(failing_runs), successful_run_allocs);
}

void expect_started(ComContext *ctx, const char *language) {
    ASSERT_NE(ctx->conv.default_locale, nullptr);
    EXPECT_STREQ(ctx->conv.default_locale->message->language, language);
    EXPECT_NE(com_conv_func(ctx, CS_INT, CS_CHAR), nullptr);
    ComErrEntry *e = nullptr;
    ComErrCtx errctx{ctx->conv.default_locale->message, "cslib.loc"};
    EXPECT_EQ(com__err_getcache(ctx, &errctx, 1, 1, &e), CS_SUCCEED);
}

void expect_loaded(ComContext *ctx, const char *name) {
    LocaleRecord *r = com__scan_lcache_name(ctx, name, -1);
    ASSERT_NE(r, nullptr) << name;
    ASSERT_NE(r->common, nullptr);
    EXPECT_NE(r->common->months[0], nullptr);
}

Scenario locale_load(const char *name, const char *preload) {
    return {name,
            [preload](ComContext *ctx) {
                LocaleRecord *r = nullptr;
                if (preload) {
                    ASSERT_EQ(com_intl_load(ctx, preload, -1, &r), 1);
                }
            },
            [name](ComContext *ctx) {
                LocaleRecord *const cached = ctx->loc_cache, *r = nullptr;
                const int32_t rc = com_intl_load(ctx, name, -1, &r);
                if (rc != 1) {
                    EXPECT_EQ(ctx->loc_cache, cached) << "a failed load caches nothing";
                }
                return rc == 1 ? CS_SUCCEED : rc;
            },
            [name](ComContext *ctx) { expect_loaded(ctx, name); }};
}

TEST(AllocationFailure, ContextStartUp) {
    for (const char *locale : {"fr_FR", "default"}) {
        EnvGuard env("LC_ALL");
        env.set(locale);
        const char *language = std::string(locale) == "fr_FR" ? "french" : "us_english";
        run({locale, nullptr, comn_ctx_setup,
             [language](ComContext *ctx) { expect_started(ctx, language); }});
    }
}

TEST(AllocationFailure, LocaleLoad) {
    run(locale_load("fr_FR", nullptr));
    run(locale_load("ja_JP.SJIS", nullptr));
    // The common information is copied from the language's record already cached.
    run(locale_load("fr_FR", "french"));
}

TEST(AllocationFailure, MessageLoad) {
    EnvGuard env("LC_ALL");
    env.set("fr_FR");
    run({"cslib.loc",
         [](ComContext *ctx) {
             ASSERT_EQ(comn_ctx_setup(ctx), CS_SUCCEED);
             LocaleRecord *rec = ctx->conv.default_locale->message;
             com__msgcache_drop(rec->msgcache);
             rec->msgcache = nullptr;
         },
         load_messages, [](ComContext *ctx) { expect_started(ctx, "french"); }});
}

TEST(AllocationFailure, UserConversionInstall) {
    run({"user pair",
         [](ComContext *ctx) {
             ASSERT_EQ(com_conv_init(ctx), CS_SUCCEED);
             ASSERT_EQ(com_conv_install(ctx, 30, 31, noop_conv), CS_SUCCEED);
         },
         [](ComContext *ctx) { return com_conv_install(ctx, 30, 32, noop_conv); },
         [](ComContext *ctx) {
             EXPECT_EQ(com_conv_func(ctx, 30, 31), &noop_conv);
             EXPECT_EQ(com_conv_func(ctx, 30, 32), &noop_conv);
         }});
}

} // namespace
