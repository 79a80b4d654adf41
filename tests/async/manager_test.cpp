// Global records, managers and their hooks, moving handles between managers, finding
// completions, event waits, and every failure path: failing locks and callbacks, failed
// allocations, shut while running.
#include "async_support.h"

#include "async/async_internal.h"
#include "core/alloc.h"

#include <cstdlib>

using namespace async_test;

namespace {

class Managers : public ::testing::Test {
  protected:
    void SetUp() override { fakes = Fakes{}; }
    void TearDown() override {
        EXPECT_EQ(fakes.mutexes, 0);
        EXPECT_EQ(fakes.events, 0);
        ComAppGlobal *g = &Application_global;
        EXPECT_EQ(com_appglobal_drop(g, 1), CS_FAIL) << "static record left referenced";
    }
};

int32_t done_now(ComAsyncHandle *h, void *, void *, int32_t) {
    com_async_complete(h, 7, CS_SUCCEED, COM_ASYNC_COMP_KEEP);
    return CS_SUCCEED;
}

TEST_F(Managers, StaticGlobalIsSharedAndClearedByTheLastDrop) {
    ComAsyncManager *a = nullptr, *b = nullptr, *c = nullptr;
    ASSERT_EQ(com_async_init(&a, nullptr, nullptr, COM_ASYNC_GLOBAL_STATIC, &fake_callbacks),
              CS_SUCCEED);
    ASSERT_EQ(com_async_init(&b, nullptr, nullptr, COM_ASYNC_GLOBAL_STATIC, nullptr), CS_SUCCEED);
    ASSERT_EQ(com_async_init(&c, nullptr, nullptr, 0, nullptr), CS_SUCCEED);
    EXPECT_EQ(a->global, &Application_global);
    EXPECT_EQ(b->global, &Application_global);
    EXPECT_NE(c->global, &Application_global);
    EXPECT_EQ(Application_global.refcount, 2);
    EXPECT_EQ(fakes.mutexes, 2) << "one for the manager, one for the global record";

    // The last reference cannot go while a manager hangs off the record.
    ComAppGlobal *g = nullptr;
    ASSERT_EQ(com_appglobal_alloc(&g, nullptr, COM_ASYNC_GLOBAL_STATIC), CS_SUCCEED);
    EXPECT_EQ(com_appglobal_drop(g, 1), CS_SUCCEED);
    EXPECT_EQ(com_async_shut(a, 0), CS_SUCCEED);
    ComAsyncHooks hooks{};
    com_appglobal_hooks(&Application_global, COM_ASYNC_GET, &hooks);
    EXPECT_EQ(hooks.iopost, com__async_iopost);
    EXPECT_EQ(com_async_shut(b, 0), CS_SUCCEED);
    EXPECT_EQ(Application_global.refcount, 0);
    com_appglobal_hooks(&Application_global, COM_ASYNC_GET, &hooks);
    EXPECT_EQ(hooks.iopost, nullptr);
    EXPECT_EQ(com_async_shut(c, 0), CS_SUCCEED);

    ASSERT_EQ(com_appglobal_alloc(&g, nullptr, 0), CS_SUCCEED);
    ComAsyncManager *d = nullptr;
    ASSERT_EQ(com_async_init(&d, nullptr, nullptr, 0, nullptr), CS_SUCCEED);
    // A manager's global record refuses its last drop while the manager is linked.
    EXPECT_EQ(com_appglobal_drop(d->global, 0), CS_FAIL);
    EXPECT_EQ(com_async_shut(d, 0), CS_SUCCEED);
    EXPECT_EQ(com_appglobal_drop(g, 0), CS_SUCCEED);
}

ComAsyncManager *chosen = nullptr;
int32_t refuse_start(ComAsyncHandle *) {
    return CS_BUSY;
}

TEST_F(Managers, HooksStartChooserAndAccessTest) {
    ComAsyncManager *a = nullptr, *b = nullptr;
    ASSERT_EQ(com_async_init(&a, nullptr, nullptr, COM_ASYNC_GLOBAL_STATIC, nullptr), CS_SUCCEED);
    ASSERT_EQ(com_async_init(&b, nullptr, nullptr, COM_ASYNC_GLOBAL_STATIC, nullptr), CS_SUCCEED);
    ComAsyncHandle *h = nullptr;
    ASSERT_EQ(com_async_alloc(b, &h, 2), CS_SUCCEED);
    ComAsyncHooks hooks{};
    com_appglobal_hooks(&Application_global, COM_ASYNC_GET, &hooks);
    ASSERT_EQ(hooks.access, com__async_access);
    EXPECT_EQ(hooks.access(&Application_global), CS_SUCCEED);

    hooks.start = refuse_start;
    hooks.chooser = [](ComAsyncManager *, ComAsyncHandle *) { return chosen; };
    com_appglobal_hooks(&Application_global, COM_ASYNC_SET, &hooks);
    EXPECT_EQ(com_async_start(h), CS_BUSY);
    EXPECT_EQ(state_of(h), COM_ASYNC_IDLE);
    hooks.start = nullptr;
    com_appglobal_hooks(&Application_global, COM_ASYNC_SET, &hooks);

    com_async_push(h, done_now);
    ASSERT_EQ(com_async_start(h), CS_SUCCEED);
    EXPECT_EQ(com__async_access(&Application_global), CS_FAIL) << "a handle runs";
    com_async_restart(h, CS_SUCCEED);
    EXPECT_EQ(com__async_access(&Application_global), CS_FAIL) << "a handle is ready";
    chosen = b; // a poll of manager a is redirected to b, where the handle lives
    ComAsyncHandle *found = nullptr;
    EXPECT_EQ(com_async_poll(a, nullptr, 0, COM_ASYNC_POLL_TAKE, &found), CS_SUCCEED);
    EXPECT_EQ(found, h);
    EXPECT_EQ(com__async_access(&Application_global), CS_SUCCEED);
    chosen = nullptr;
    EXPECT_EQ(com_async_poll(a, nullptr, 0, 0, &found), CS_QUIET);
    EXPECT_EQ(com_async_shut(a, 0), CS_SUCCEED);
    EXPECT_EQ(com_async_shut(b, 0), CS_SUCCEED);

    // Without the hooks installed a post has nowhere to go.
    ASSERT_EQ(com_async_init(&a, nullptr, nullptr, COM_ASYNC_GLOBAL_NOHOOKS, nullptr), CS_SUCCEED);
    ASSERT_EQ(com_async_alloc(a, &h, 0), CS_SUCCEED);
    com_async_start(h);
    EXPECT_EQ(com_async_iopost(h, CS_SUCCEED), CS_FAIL);
    EXPECT_EQ(com_async_shut(a, 1), CS_SUCCEED);
}

int32_t wait_calls = 0;
std::vector<int32_t> wait_answers;
ComAsyncHandle *post_on_wait = nullptr;
int32_t scripted_wait(ComAsyncManager *, ComAsyncHandle *, int32_t timeout) {
    EXPECT_GT(timeout, -1);
    int32_t r = wait_answers.at(wait_calls++);
    if (r == CS_SUCCEED && post_on_wait) com_async_iopost(post_on_wait, 3);
    return r;
}

TEST_F(Managers, TimeoutsAndTheWaitRoutine) {
    ComAsyncManager *m = nullptr, *w = nullptr;
    ComAsyncHandle *h = nullptr;
    ASSERT_EQ(com_async_init(&m, nullptr, nullptr, 0, &fake_callbacks), CS_SUCCEED);
    ASSERT_EQ(com_async_alloc(m, &h, 2), CS_SUCCEED);
    com_async_push(h, done_now);
    com_async_push(h,
                   [](ComAsyncHandle *, void *, void *, int32_t) -> int32_t { return CS_PENDING; });
    com_async_start(h);
    com__async_runstack(h);
    // No wait routine: a pending poll times out whatever the timeout.
    EXPECT_EQ(com_async_poll(m, nullptr, 100, 0, nullptr), CS_TIMED_OUT);

    ASSERT_EQ(com_async_init(&w, scripted_wait, nullptr, 0, &fake_callbacks), CS_SUCCEED);
    ASSERT_EQ(com_async_assoc(h, w), CS_SUCCEED);
    struct Case {
        int32_t timeout;
        uint32_t flags;
        std::vector<int32_t> answers;
        int32_t result;
        int waits;
    };
    const Case cases[] = {
        {0, 0, {}, CS_TIMED_OUT, 0},                               // zero timeout never waits
        {0, COM_ASYNC_F_POLLRUN, {CS_TIMED_OUT}, CS_TIMED_OUT, 1}, // unless a poll-run handle
        {50, 0, {CS_INTERRUPT, CS_INTERRUPT, CS_QUIET}, CS_QUIET, 3},
        {50, 0, {CS_INTERRUPT, CS_SUCCEED}, CS_SUCCEED, 2}, // the wait delivers the post
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.result);
        wait_calls = 0;
        wait_answers = c.answers;
        post_on_wait = c.result == CS_SUCCEED ? h : nullptr;
        uint32_t f = c.flags;
        com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &f);
        EXPECT_EQ(com_async_poll(w, nullptr, c.timeout, 0, nullptr), c.result);
        EXPECT_EQ(wait_calls, c.waits);
    }
    EXPECT_EQ(com_async_exit(w), CS_SUCCEED);
    EXPECT_EQ(state_of(h), COM_ASYNC_DONE) << "the handle went home with exit";
    EXPECT_EQ(com_async_shut(m, 0), CS_SUCCEED);
}

TEST_F(Managers, EventModeWaitsUntilTheEventWaitIsEnded) {
    ComAsyncManager *m = nullptr;
    ASSERT_EQ(com_async_init(&m, nullptr, nullptr, 0, &fake_callbacks), CS_SUCCEED);
    ComAsyncHandle *h = nullptr;
    ASSERT_EQ(com_async_alloc(m, &h, 1), CS_SUCCEED);
    // An idle handle keeps an event-mode poll waiting until the wait is ended. (A manager's
    // event-mode poll ended by a post is the threaded test's event poller.)
    int waits = 0;
    fakes.on_wait = [&](FakeEvent *) {
        if (++waits == 3) com_async_comp_event_wait(h);
    };
    EXPECT_EQ(com_async_poll(m, h, 0, COM_ASYNC_POLL_ONE | COM_ASYNC_POLL_EVENT, nullptr),
              CS_QUIET);
    EXPECT_EQ(waits, 3);
    int32_t flags = 0;
    com_async_props(h, COM_ASYNC_GET, COM_ASYNC_PROP_FLAGS, &flags);
    EXPECT_EQ(flags & COM_ASYNC_F_EVENTWAIT, 0);
    EXPECT_EQ(fakes.signals, 1) << "only the handle had an event wait";
    EXPECT_EQ(com_async_shut(m, 0), CS_SUCCEED);
}

// A restart that lands while the run is releasing the handle is run at once, under the
// handle's mutex (the fake mutex would flag a second take by the chain).
TEST_F(Managers, RestartSeenWhileReleasingRunsUnderTheMutex) {
    ComAsyncManager *m = nullptr;
    ASSERT_EQ(com_async_init(&m, nullptr, nullptr, 0, &fake_callbacks), CS_SUCCEED);
    ComAsyncHandle *h = nullptr;
    ASSERT_EQ(com_async_alloc(m, &h, 2), CS_SUCCEED);
    static FakeMutex *held = nullptr;
    static int finish_depth = -1;
    com_async_push(h, [](ComAsyncHandle *hh, void *, void *, int32_t) -> int32_t {
        finish_depth = held ? held->depth : -1;
        com_async_complete(hh, 1, CS_SUCCEED, COM_ASYNC_COMP_KEEP);
        return CS_SUCCEED;
    });
    com_async_push(h,
                   [](ComAsyncHandle *, void *, void *, int32_t) -> int32_t { return CS_PENDING; });
    com_async_start(h);
    fakes.on_lock = [&](FakeMutex *mx) {
        held = mx;
        fakes.on_lock = nullptr;
        com_async_restart(h, CS_SUCCEED);
    };
    ASSERT_EQ(com__async_runstack(h), CS_SUCCEED);
    EXPECT_EQ(finish_depth, 1);
    EXPECT_EQ(state_of(h), COM_ASYNC_DONE);
    EXPECT_EQ(com_async_shut(m, 0), CS_SUCCEED);
}

TEST_F(Managers, FailingLocksAreReportedAndLeaveStateAlone) {
    ComAsyncManager *m = nullptr;
    ASSERT_EQ(com_async_init(&m, nullptr, failing_access, 0, &fake_callbacks), CS_SUCCEED);
    ComAsyncHandle *h = nullptr;
    ASSERT_EQ(com_async_alloc(m, &h, 1), CS_SUCCEED);
    com_async_push(h, done_now);
    com_async_start(h);
    for (int nth : {1, 2}) { // the manager's mutex, then the handle's
        fakes.locks = 0;
        fakes.fail_lock = nth;
        EXPECT_EQ(com_async_iopost(h, 5), CS_FAIL);
        EXPECT_EQ(state_of(h), COM_ASYNC_RUNNING);
    }
    fakes.locks = 0;
    fakes.fail_lock = 1;
    com_async_restart(h, CS_SUCCEED);
    EXPECT_EQ(com_async_poll(m, h, 0, COM_ASYNC_POLL_ONE, nullptr), CS_FAIL);
    EXPECT_EQ(state_of(h), COM_ASYNC_READY);
    fakes.fail_lock = 0;

    fakes.fail_access = true;
    ComAsyncHandle *other = nullptr;
    int32_t st = 0;
    EXPECT_EQ(com_async_alloc(m, &other, 1), CS_FAIL);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(com_async_reg_checkfunc(h, done_now, COM_ASYNC_CHECK_STEP), CS_FAIL);
    EXPECT_EQ(com_async_status(h, &st), CS_FAIL);
    EXPECT_EQ(com_async_poll(m, nullptr, 0, 0, nullptr), CS_FAIL);
    EXPECT_EQ(com_async_shut(m, 1), CS_FAIL);
    fakes.fail_access = false;
    EXPECT_EQ(com_async_shut(m, 1), CS_SUCCEED);
}

TEST_F(Managers, FailingCreationCallbacksUndoWhatWasMade) {
    for (int which = 0; which < 4; ++which) {
        SCOPED_TRACE(which);
        fakes = Fakes{};
        ComAsyncManager *m = nullptr;
        ComAsyncHandle *h = nullptr;
        // 0, 1: the manager's mutex or event; 2: the global mutex; 3: the handle's event.
        if (which == 0 || which == 2) fakes.fail_create_mutex = which == 0 ? 1 : 2;
        if (which == 1 || which == 3) fakes.fail_create_event = which == 1 ? 1 : 2;
        int32_t r = com_async_init(&m, nullptr, nullptr, 0, &fake_callbacks);
        if (which < 3) {
            EXPECT_EQ(r, CS_FAIL);
            EXPECT_EQ(m, nullptr);
        } else {
            ASSERT_EQ(r, CS_SUCCEED);
            EXPECT_EQ(com_async_alloc(m, &h, 1), CS_FAIL);
            EXPECT_EQ(com_async_shut(m, 0), CS_SUCCEED);
        }
        EXPECT_EQ(fakes.mutexes, 0);
        EXPECT_EQ(fakes.events, 0);
    }
}

// Fails each allocation of a full set-up in turn: every failure is a clean CS_MEM_ERROR.
TEST_F(Managers, FailedAllocationsReportMemErrorWithoutLeaks) {
    int fail_at = 1;
    for (;; ++fail_at) {
        comn::alloc_fail_at(fail_at);
        ComAsyncManager *m = nullptr;
        ComAsyncHandle *h = nullptr;
        int32_t r = com_async_init(&m, nullptr, nullptr, 0, &fake_callbacks);
        if (r == CS_SUCCEED) {
            r = com_async_alloc(m, &h, 0);
            for (int i = 0; r == CS_SUCCEED && i < 5; ++i) // two beyond the pool of three
                r = com_async_reg_checkfunc(h, done_now, COM_ASYNC_CHECK_STEP);
            EXPECT_EQ(com_async_shut(m, 1), CS_SUCCEED);
        }
        EXPECT_EQ(fakes.mutexes, 0);
        EXPECT_EQ(fakes.events, 0);
        if (r == CS_SUCCEED) break;
        EXPECT_EQ(r, CS_MEM_ERROR) << "allocation " << fail_at;
    }
    comn::alloc_fail_at(0);
    EXPECT_EQ(fail_at, 9) << "manager, global, handle, three checkpoints, two more, success";
}

} // namespace
