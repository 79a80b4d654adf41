// Drives handles through the lifecycle on one thread: inline runs, suspension and
// resumption by posts and polls, restarts, checkpoints, busy handles, timeouts.
#include "async_support.h"

using namespace async_test;

namespace {

class Lifecycle : public ::testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        fakes = Fakes{};
        cb = GetParam() ? &fake_callbacks : nullptr;
        ASSERT_EQ(com_async_init(&m, nullptr, logging_access, 0, cb), CS_SUCCEED);
        ASSERT_EQ(com_async_alloc(m, &h, 4), CS_SUCCEED);
        void *u1 = &script;
        ASSERT_EQ(com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_USER1, &u1), CS_SUCCEED);
    }
    void TearDown() override {
        EXPECT_EQ(com_async_shut(m, 1), CS_SUCCEED);
        EXPECT_EQ(fakes.mutexes, 0);
        EXPECT_EQ(fakes.events, 0);
    }
    // Pushes the functions so that they run in the order given.
    void push(std::initializer_list<ComAsyncStateFunc> order) {
        for (auto it = std::rbegin(order); it != std::rend(order); ++it)
            ASSERT_EQ(com_async_push(h, *it), CS_SUCCEED);
    }
    void set_flags(uint32_t f) { com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &f); }

    const ComThreadCallbacks *cb = nullptr;
    ComAsyncManager *m = nullptr;
    ComAsyncHandle *h = nullptr;
    Script script;
};

// The last state function of every scripted operation completes with its status.
int32_t finish(ComAsyncHandle *h, void *, void *, int32_t status) {
    com_async_complete(h, 42, status, COM_ASYNC_COMP_KEEP);
    return CS_SUCCEED;
}

TEST_P(Lifecycle, InlineRunPassesEachResultToTheNextAndCompletion) {
    push({traced<'a'>, traced<'b'>, finish});
    EXPECT_EQ(state_of(h), COM_ASYNC_IDLE);
    ASSERT_EQ(com_async_start(h), CS_SUCCEED);
    EXPECT_EQ(state_of(h), COM_ASYNC_RUNNING);
    ASSERT_EQ(com__async_runstack(h), CS_SUCCEED);
    EXPECT_EQ(script.trace, (std::vector<std::string>{"a:1", "b:2"}));
    EXPECT_EQ(state_of(h), COM_ASYNC_DONE);
    int32_t st = 0;
    com_async_status(h, &st);
    EXPECT_EQ(st, COM_ASYNC_STAT_DONE);

    ComAsyncHandle *found = nullptr;
    EXPECT_EQ(com_async_poll(m, h, 0, COM_ASYNC_POLL_ONE, &found), CS_SUCCEED);
    EXPECT_EQ(state_of(h), COM_ASYNC_DONE) << "without the take flag the completion stays";
    EXPECT_EQ(com_async_poll(m, nullptr, 0, COM_ASYNC_POLL_TAKE, &found), CS_SUCCEED);
    EXPECT_EQ(found, h);
    EXPECT_EQ(state_of(h), COM_ASYNC_IDLE);
    void *u1 = nullptr;
    int32_t code = 0, status = 0;
    com_async_getcomp(h, &u1, nullptr, &code, &status);
    EXPECT_EQ(u1, &script);
    EXPECT_EQ(code, 42);
    EXPECT_EQ(status, 3);
    EXPECT_EQ(com_async_poll(m, nullptr, 0, 0, &found), CS_QUIET);
}

TEST_P(Lifecycle, CompleteWithoutKeepLeavesTheHandleIdle) {
    ASSERT_EQ(com_async_complete(h, 1, CS_SUCCEED, 0), CS_FAIL) << "idle handles refuse";
    ASSERT_EQ(com_async_complete(h, 1, CS_SUCCEED, COM_ASYNC_COMP_ANYSTATE), CS_SUCCEED);
    com_async_start(h);
    ASSERT_EQ(com_async_complete(h, 5, CS_FAIL, 0), CS_SUCCEED);
    EXPECT_EQ(state_of(h), COM_ASYNC_IDLE);
    int32_t code = 0;
    com_async_getcomp(h, nullptr, nullptr, &code, nullptr);
    EXPECT_EQ(code, 5);
}

// A function that suspends, then resumes with the posted status. The post routes are the
// handle's flags: default (ready for a poll), inline, left to a poll (state 2), signal only.
TEST_P(Lifecycle, PendingChainResumesAccordingToThePostRoute) {
    struct Route {
        uint32_t flags;
        int32_t state_after_post;
    };
    for (Route r : {Route{0, COM_ASYNC_READY}, Route{COM_ASYNC_F_INLINE, COM_ASYNC_DONE},
                    Route{COM_ASYNC_F_POLLRUN, COM_ASYNC_POSTED},
                    Route{COM_ASYNC_F_SIGNALONLY, COM_ASYNC_RUNNING}}) {
        SCOPED_TRACE(r.flags);
        script = Script{};
        script.step = [](ComAsyncHandle *, const char *name, int32_t s) -> int32_t {
            return name[0] == 'a' ? CS_PENDING : s;
        };
        com_async_abort(h);
        set_flags(r.flags);
        push({traced<'a'>, traced<'b'>, finish});
        ASSERT_EQ(com_async_start(h), CS_SUCCEED);
        ASSERT_EQ(com__async_runstack(h), CS_SUCCEED);
        EXPECT_EQ(state_of(h), COM_ASYNC_RUNNING);
        int32_t st = 0;
        com_async_status(h, &st);
        EXPECT_EQ(st, COM_ASYNC_STAT_PENDING);
        ComAsyncHandle *found = nullptr;
        EXPECT_EQ(com_async_poll(m, nullptr, 0, 0, &found), CS_TIMED_OUT);

        ASSERT_EQ(com_async_iopost(h, 77), CS_SUCCEED);
        EXPECT_EQ(state_of(h), r.state_after_post);
        EXPECT_EQ(fakes.signals, cb ? 2 : 0) << "a post signals the handle and the manager";
        fakes.signals = 0;
        if (r.flags == COM_ASYNC_F_SIGNALONLY) {
            EXPECT_EQ(script.trace.size(), 1u);
            continue;
        }
        EXPECT_EQ(com_async_poll(m, nullptr, 0, COM_ASYNC_POLL_TAKE, &found), CS_SUCCEED);
        EXPECT_EQ(found, h);
        EXPECT_EQ(script.trace, (std::vector<std::string>{"a:1", "b:77"}));
        int32_t status = 0;
        com_async_getcomp(h, nullptr, nullptr, nullptr, &status);
        EXPECT_EQ(status, 77);
    }
}

TEST_P(Lifecycle, RestartDuringARunResumesWithTheNewStatus) {
    script.step = [](ComAsyncHandle *hh, const char *name, int32_t s) -> int32_t {
        if (name[0] != 'a') return s;
        com_async_push(hh, traced<'c'>); // runs next
        com_async_restart(hh, 9);
        return CS_PENDING;
    };
    push({traced<'a'>, traced<'b'>, finish});
    com_async_start(h);
    ASSERT_EQ(com__async_runstack(h), CS_SUCCEED);
    EXPECT_EQ(script.trace, (std::vector<std::string>{"a:1", "c:9", "b:9"}));
    EXPECT_EQ(state_of(h), COM_ASYNC_DONE);
}

// While a stack runs, a second poller finds the handle ready but busy.
TEST_P(Lifecycle, SecondPollerOfARunningHandleIsToldBusy) {
    ComAsyncManager *mm = m;
    script.step = [mm](ComAsyncHandle *hh, const char *name, int32_t s) -> int32_t {
        if (name[0] != 'a') return s;
        com_async_restart(hh, s);
        EXPECT_EQ(com__async_poll_state(hh, 0), CS_BUSY);
        EXPECT_EQ(com_async_poll(mm, nullptr, 0, 0, nullptr), CS_TIMED_OUT);
        EXPECT_EQ(com__async_runstack(hh), CS_BUSY);
        return CS_PENDING;
    };
    push({traced<'a'>, traced<'b'>, finish});
    com_async_start(h);
    com_async_restart(h, 5);
    ASSERT_EQ(com_async_poll(m, h, 0, COM_ASYNC_POLL_ONE | COM_ASYNC_POLL_TAKE, nullptr),
              CS_SUCCEED);
    EXPECT_EQ(script.trace, (std::vector<std::string>{"a:5", "b:5"}));
}

TEST_P(Lifecycle, CheckpointsRunOnceAtTheirMask) {
    std::vector<std::string> &trace = script.trace;
    script.step = [](ComAsyncHandle *, const char *name, int32_t s) -> int32_t {
        switch (name[0]) {
        case 'a':
            return 7;
        case 'b':
            return CS_SUCCEED;
        case 'C':
            return CS_FAIL;
        default:
            return s;
        }
    };
    push({traced<'a'>, traced<'b'>, finish});
    ASSERT_EQ(com_async_reg_checkfunc(h, traced<'S'>, COM_ASYNC_CHECK_STEP), CS_SUCCEED);
    ASSERT_EQ(com_async_reg_checkfunc(h, traced<'C'>, COM_ASYNC_CHECK_COMPLETE), CS_SUCCEED);
    ASSERT_EQ(com_async_reg_checkfunc(h, traced<'T'>, COM_ASYNC_CHECK_STEP), CS_SUCCEED);
    ASSERT_EQ(com_async_reg_checkfunc(h, traced<'U'>, COM_ASYNC_CHECK_STEP), CS_SUCCEED);
    ASSERT_EQ(com_async_start(h), CS_SUCCEED); // uses S
    ASSERT_EQ(com__async_runstack(h), CS_SUCCEED);
    // T before a, U before b; C at completion with the completing status.
    EXPECT_EQ(trace, (std::vector<std::string>{"S:1", "T:1", "a:1", "U:7", "b:7", "C:1"}));
    int32_t status = -1;
    com_async_getcomp(h, nullptr, nullptr, nullptr, &status);
    EXPECT_EQ(status, CS_FAIL) << "a failing completion checkpoint replaces a successful status";
}

TEST_P(Lifecycle, CheckpointResultsGoverningStartAndCompletion) {
    script.step = [](ComAsyncHandle *, const char *name, int32_t s) -> int32_t {
        return name[0] == 'P' ? CS_PENDING : name[0] == 'F' ? CS_FAIL : s;
    };
    com_async_reg_checkfunc(h, traced<'P'>, COM_ASYNC_CHECK_STEP);
    EXPECT_EQ(com_async_start(h), CS_SUCCEED) << "a pending start checkpoint is success";
    com_async_reg_checkfunc(h, traced<'F'>, COM_ASYNC_CHECK_STEP);
    EXPECT_EQ(com_async_start(h), CS_FAIL);

    // A step checkpoint that suspends stops the run before the function.
    com_async_reg_checkfunc(h, traced<'P'>, COM_ASYNC_CHECK_STEP);
    push({traced<'a'>});
    com__async_runstack(h);
    EXPECT_EQ(script.trace.back(), "P:1");
    com_async_iopost(h, 8);
    com_async_poll(m, nullptr, 0, 0, nullptr);
    EXPECT_EQ(script.trace.back(), "a:8");

    // A failing completion checkpoint leaves a failed completion status alone.
    com_async_reg_checkfunc(h, traced<'F'>, COM_ASYNC_CHECK_COMPLETE);
    com_async_complete(h, 1, CS_INTERRUPT, COM_ASYNC_COMP_ANYSTATE);
    int32_t status = 0;
    com_async_getcomp(h, nullptr, nullptr, nullptr, &status);
    EXPECT_EQ(status, CS_INTERRUPT);
}

int32_t waits = 0;
std::vector<int32_t> wait_answers;
ComAsyncHandle *post_on_wait = nullptr;
int32_t scripted_wait(ComAsyncManager *, ComAsyncHandle *, int32_t timeout) {
    EXPECT_GT(timeout, -1);
    int32_t r = wait_answers.at(waits++);
    if (r == CS_SUCCEED && post_on_wait) com_async_iopost(post_on_wait, 3);
    return r;
}

TEST_P(Lifecycle, TimeoutsAndTheWaitRoutine) {
    script.step = [](ComAsyncHandle *, const char *name, int32_t s) -> int32_t {
        return name[0] == 'a' ? CS_PENDING : s;
    };
    push({traced<'a'>, finish});
    com_async_start(h);
    com__async_runstack(h);
    // No wait routine: a pending poll times out whatever the timeout.
    EXPECT_EQ(com_async_poll(m, nullptr, 100, 0, nullptr), CS_TIMED_OUT);

    ComAsyncManager *w = nullptr;
    ASSERT_EQ(com_async_init(&w, scripted_wait, nullptr, 0, cb), CS_SUCCEED);
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
        waits = 0;
        wait_answers = c.answers;
        post_on_wait = c.result == CS_SUCCEED ? h : nullptr;
        set_flags(c.flags);
        EXPECT_EQ(com_async_poll(w, nullptr, c.timeout, 0, nullptr), c.result);
        EXPECT_EQ(waits, c.waits);
    }
    EXPECT_EQ(com_async_exit(w), CS_SUCCEED);
    EXPECT_EQ(state_of(h), COM_ASYNC_DONE) << "the handle went home with exit";
}

TEST_P(Lifecycle, AbortEmptiesTheStackAndEmptyStacksDoNotRun) {
    push({traced<'a'>, traced<'b'>});
    set_flags(COM_ASYNC_F_INLINE);
    com_async_start(h);
    ASSERT_EQ(com_async_abort(h), CS_SUCCEED);
    int32_t st = 0, stacked = -1, flags = -1;
    com_async_state(h, &st, &stacked);
    com_async_props(h, COM_ASYNC_GET, COM_ASYNC_PROP_FLAGS, &flags);
    EXPECT_EQ(st, COM_ASYNC_IDLE);
    EXPECT_EQ(stacked, 0);
    EXPECT_EQ(flags, 0);
    ASSERT_EQ(com_async_start(h), CS_SUCCEED) << "a start needs no stack";
    EXPECT_EQ(com__async_runstack(h), CS_FAIL);
    EXPECT_TRUE(script.trace.empty());
    EXPECT_EQ(com_async_shut(m, 0), CS_FAIL) << "the handle is still running";
}

INSTANTIATE_TEST_SUITE_P(Callbacks, Lifecycle, ::testing::Bool(),
                         [](const auto &p) { return p.param ? "fake" : "none"; });

} // namespace
