// A reference model of one manager's handles on one thread, driven by random operation
// sequences: after every call the result, each handle's state, stack depth, flags and
// completion, the order in which state and checkpoint functions ran with the status each
// received, and the number of event signals must agree with the model. Handles are dropped
// and made again, so the manager's list changes order; stacks have random depths.
#include "async_support.h"

#include <algorithm>
#include <deque>
#include <random>

using namespace async_test;

namespace {

constexpr int kHandles = 3;
std::vector<std::string> trace;

// p passes status + 1 on, w suspends, x fails, f completes with code 42 and passes
// CS_SUCCEED on, r restarts its own handle with status + 10 (finding it busy meanwhile).
// User value 2 holds the handle's number.
template <char K>
int32_t step(ComAsyncHandle *h, void *, void *u2, int32_t s) {
    trace.push_back(std::to_string(*static_cast<int *>(u2)) + K + std::to_string(s));
    if (K == 'f') com_async_complete(h, 42, s, COM_ASYNC_COMP_KEEP);
    if (K == 'r') {
        com_async_restart(h, s + 10);
        EXPECT_EQ(com__async_runstack(h), CS_BUSY);
        EXPECT_EQ(com__async_poll_state(h, 0), CS_BUSY);
    }
    return K == 'p' ? s + 1 : K == 'x' ? CS_FAIL : K == 'f' ? CS_SUCCEED : CS_PENDING;
}
const char kKinds[] = "pwfrx";
const ComAsyncStateFunc kFuncs[] = {step<'p'>, step<'w'>, step<'f'>, step<'r'>, step<'x'>};

struct Model {
    struct H {
        std::deque<char> stack;                       // the front runs next
        std::vector<std::pair<int32_t, char>> checks; // mask and kind, one-shot, in order
        int32_t state = COM_ASYNC_IDLE, status = CS_SUCCEED, code = -1, comp = 0;
        uint32_t flags = 0;
        bool started = false;
        size_t depth = 0;
    } h[kHandles];
    std::deque<int> order; // handle numbers, newest first
    std::vector<std::string> trace;
    int signals = 0;

    // Runs a function of kind k (checkpoints never restart) and returns what it answers.
    int32_t call(int i, char k, int32_t s) {
        trace.push_back(std::to_string(i) + k + std::to_string(s));
        if (k == 'f') complete(i, 42, s, COM_ASYNC_COMP_KEEP);
        if (k == 'r') h[i].status = s + 10, h[i].state = COM_ASYNC_READY;
        return k == 'p' ? s + 1 : k == 'x' ? CS_FAIL : k == 'f' ? CS_SUCCEED : CS_PENDING;
    }
    // The first checkpoint registered for the mask runs once; none leaves the status alone.
    int32_t checkpoint(int i, int32_t mask, int32_t s) {
        auto &c = h[i].checks;
        auto it = std::find_if(c.begin(), c.end(), [&](auto &e) { return e.first & mask; });
        if (it == c.end()) return s;
        const char k = it->second;
        c.erase(it);
        return call(i, k, s);
    }
    int32_t start(int i) {
        H &x = h[i];
        x = {x.stack, x.checks, COM_ASYNC_RUNNING, CS_SUCCEED, -1, 0, x.flags, true, x.depth};
        const int32_t r = checkpoint(i, COM_ASYNC_CHECK_STEP, CS_SUCCEED);
        return r == CS_PENDING ? CS_SUCCEED : r;
    }
    int32_t complete(int i, int32_t code, int32_t status, int32_t fl) {
        H &x = h[i];
        if (x.state != COM_ASYNC_RUNNING && !(fl & COM_ASYNC_COMP_ANYSTATE)) return CS_FAIL;
        x.code = code;
        x.comp = status;
        const int32_t r = checkpoint(i, COM_ASYNC_CHECK_COMPLETE, status);
        if (r != CS_SUCCEED && status == CS_SUCCEED) x.comp = r;
        x.state = fl & COM_ASYNC_COMP_KEEP ? COM_ASYNC_DONE : COM_ASYNC_IDLE;
        return CS_SUCCEED;
    }
    // Runs functions, each after its step checkpoint, until one suspends; the carried status
    // is kept only while the chain goes on. A restart from inside resumes the chain.
    int32_t run(int i) {
        H &x = h[i];
        if (x.stack.empty()) return CS_FAIL;
        do {
            x.state = COM_ASYNC_RUNNING;
            for (int32_t s = x.status; !x.stack.empty(); x.status = s) {
                if ((s = checkpoint(i, COM_ASYNC_CHECK_STEP, s)) == CS_PENDING) break;
                const char k = x.stack.front();
                x.stack.pop_front();
                if ((s = call(i, k, s)) == CS_PENDING) break;
            }
        } while (x.state == COM_ASYNC_READY);
        return CS_SUCCEED;
    }
    int32_t post(int i, int32_t s, bool callbacks) {
        H &x = h[i];
        if (!x.started) return CS_FAIL;
        x.status = s;
        signals += callbacks ? 2 : 0; // the handle's event and the manager's
        if (x.flags & COM_ASYNC_F_SIGNALONLY) return CS_SUCCEED;
        x.state = x.flags & COM_ASYNC_F_POLLRUN  ? COM_ASYNC_POSTED
                  : x.flags & COM_ASYNC_F_INLINE ? COM_ASYNC_RUNNING
                                                 : COM_ASYNC_READY;
        return x.state == COM_ASYNC_RUNNING ? run(i) : CS_SUCCEED;
    }
    // One handle's poll: CS_SUCCEED done, CS_QUIET idle, CS_PENDING under way, or a failure.
    int32_t poll_state(int i, bool take) {
        H &x = h[i];
        if (x.state == COM_ASYNC_POSTED || x.state == COM_ASYNC_READY) {
            x.state = COM_ASYNC_RUNNING;
            if (run(i) != CS_SUCCEED) return CS_FAIL;
        }
        if (x.state != COM_ASYNC_DONE) return x.state == COM_ASYNC_IDLE ? CS_QUIET : CS_PENDING;
        if (take) x.state = COM_ASYNC_IDLE;
        return CS_SUCCEED;
    }
    // A manager poll visits the handles newest first; with a zero timeout and no wait
    // routine a pending operation times the poll out.
    int32_t poll(int one, bool take, int &found) {
        bool pending = false;
        for (const int i : order) {
            if (one >= 0 && i != one) continue;
            const int32_t r = poll_state(i, take);
            pending |= r == CS_PENDING;
            if (r == CS_PENDING || r == CS_QUIET) continue;
            found = i;
            return r;
        }
        return pending ? CS_TIMED_OUT : CS_QUIET;
    }
    int find(int code, int ref, bool take) { // user value 1 is shared by even and odd handles
        for (const int i : order) {
            if (h[i].state != COM_ASYNC_DONE || h[i].code != code || (ref >= 0 && i % 2 != ref % 2))
                continue;
            if (take) h[i].state = COM_ASYNC_IDLE;
            return i;
        }
        return -1;
    }
};

void run_sequence(const ComThreadCallbacks *cb, unsigned seed) {
    SCOPED_TRACE(seed);
    fakes = Fakes{};
    trace.clear();
    Model model;
    ComAsyncManager *m = nullptr;
    ComAsyncHandle *hs[kHandles];
    int ids[kHandles], groups[2];
    std::mt19937 rng(seed);
    ASSERT_EQ(com_async_init(&m, nullptr, nullptr, 0, cb), CS_SUCCEED);
    // A new handle for number i, the newest of the manager; depth 0 asks for 32 functions.
    auto make = [&](int i) {
        const int32_t depth = static_cast<int32_t>(rng() % 5);
        ASSERT_EQ(com_async_alloc(m, &hs[i], depth), CS_SUCCEED);
        model.h[i] = {};
        model.h[i].depth = depth ? static_cast<size_t>(depth) : 32;
        model.order.push_front(i);
        for (size_t k = 0; k <= model.h[i].depth; ++k) // full at its depth; abort empties it
            ASSERT_EQ(com_async_push(hs[i], step<'p'>),
                      k < model.h[i].depth ? CS_SUCCEED : CS_FAIL);
        ASSERT_EQ(com_async_abort(hs[i]), CS_SUCCEED);
        void *u1 = &groups[i % 2], *u2 = &(ids[i] = i), *back = nullptr;
        ASSERT_EQ(com_async_props(hs[i], COM_ASYNC_SET, COM_ASYNC_PROP_USER1, &u1), CS_SUCCEED);
        ASSERT_EQ(com_async_props(hs[i], COM_ASYNC_SET, COM_ASYNC_PROP_USER2, &u2), CS_SUCCEED);
        ASSERT_EQ(com_async_props(hs[i], COM_ASYNC_GET, COM_ASYNC_PROP_USER2, &back), CS_SUCCEED);
        ASSERT_EQ(back, u2);
    };
    for (int i = 0; i < kHandles; ++i)
        make(i);
    ComAsyncHandle *none = nullptr;
    void *unused = nullptr;
    EXPECT_EQ(com_async_alloc(m, &none, -1), CS_FAIL);
    EXPECT_EQ(com_async_props(hs[0], COM_ASYNC_GET, 4, &unused), CS_FAIL); // no such property
    EXPECT_EQ(com_async_props(hs[0], 3, COM_ASYNC_PROP_USER1, &unused), CS_FAIL); // nor action
    auto index = [&](ComAsyncHandle *h) {
        return h ? int(std::find(hs, hs + kHandles, h) - hs) : -1;
    };
    for (int n = 0; n < 300; ++n) {
        const int i = static_cast<int>(rng() % kHandles), op = static_cast<int>(rng() % 15);
        const int32_t s = 100 + static_cast<int32_t>(rng() % 100), code = rng() & 1 ? 7 : 42;
        const bool take = rng() & 1, one = rng() & 1;
        const int k = static_cast<int>(rng() % 5);
        Model::H &x = model.h[i];
        ComAsyncHandle *found = nullptr;
        int want_found = -1;
        SCOPED_TRACE(testing::Message() << "step " << n << " op " << op << " handle " << i);
        if (op < 4) {
            const bool room = x.stack.size() < x.depth;
            if (room) x.stack.push_front(kKinds[k % 4]);
            ASSERT_EQ(com_async_push(hs[i], kFuncs[k % 4]), room ? CS_SUCCEED : CS_FAIL);
        } else if (op == 4) {
            const int32_t mask = one ? COM_ASYNC_CHECK_STEP : COM_ASYNC_CHECK_COMPLETE;
            x.checks.emplace_back(mask, kKinds[k == 3 ? 0 : k]);
            ASSERT_EQ(com_async_reg_checkfunc(hs[i], kFuncs[k == 3 ? 0 : k], mask), CS_SUCCEED);
        } else if (op == 5) {
            ASSERT_EQ(com_async_start(hs[i]), model.start(i));
        } else if (op == 6) {
            x.status = s;
            x.state = COM_ASYNC_READY;
            ASSERT_EQ(com_async_restart(hs[i], s), CS_SUCCEED);
        } else if (op == 7) {
            x.stack.clear();
            x.state = COM_ASYNC_IDLE;
            x.flags = 0;
            ASSERT_EQ(com_async_abort(hs[i]), CS_SUCCEED);
        } else if (op == 8) {
            uint32_t f = 1u << (k % 3); // inline, left to a poll, or signal only
            x.flags |= f;
            ASSERT_EQ(com_async_props(hs[i], COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &f), CS_SUCCEED);
        } else if (op == 9) {
            ASSERT_EQ(com_async_iopost(hs[i], s), model.post(i, s, cb));
        } else if (op == 10) {
            ASSERT_EQ(com__async_runstack(hs[i]), model.run(i));
        } else if (op == 11) {
            const int32_t want = model.poll(one ? i : -1, take, want_found);
            const int32_t flags = (one ? COM_ASYNC_POLL_ONE : 0) | (take ? COM_ASYNC_POLL_TAKE : 0);
            ASSERT_EQ(com_async_poll(m, one ? hs[i] : nullptr, 0, flags, &found), want);
            ASSERT_EQ(index(found), want_found);
        } else if (op == 12) {
            const int32_t fl = (k % 3) * 2; // none, any state, keep
            ASSERT_EQ(com_async_complete(hs[i], code, s, fl), model.complete(i, code, s, fl));
        } else if (op == 14) {
            ASSERT_EQ(com_async_drop(hs[i]), CS_SUCCEED);
            model.order.erase(std::find(model.order.begin(), model.order.end(), i));
            make(i);
        } else {
            want_found = model.find(code, one ? i : -1, take);
            const int32_t flags =
                (one ? COM_ASYNC_MATCH_USER1 : 0) | (take ? COM_ASYNC_MATCH_TAKE : 0);
            ASSERT_EQ(com_async_get_hndl_by_func(m, flags, hs[i], &found, code), want_found >= 0);
            ASSERT_EQ(index(found), want_found);
        }
        ASSERT_EQ(trace, model.trace);
        trace.clear();
        model.trace.clear();
        ASSERT_EQ(fakes.signals, model.signals);
        for (int j = 0; j < kHandles; ++j) {
            const Model::H &y = model.h[j];
            int32_t st = 0, stacked = 0, flags = 0, got_code = 0, status = 0, done = 0;
            com_async_state(hs[j], &st, &stacked);
            com_async_props(hs[j], COM_ASYNC_GET, COM_ASYNC_PROP_FLAGS, &flags);
            com_async_getcomp(hs[j], nullptr, nullptr, &got_code, &status);
            ASSERT_EQ(com_async_status(hs[j], &done), CS_SUCCEED);
            ASSERT_EQ(std::vector<int32_t>({st, stacked, flags, got_code, status, done}),
                      std::vector<int32_t>({y.state, int32_t(y.stack.size()), int32_t(y.flags),
                                            y.code, y.comp,
                                            y.state == COM_ASYNC_IDLE || y.state == COM_ASYNC_DONE
                                                ? COM_ASYNC_STAT_DONE
                                                : COM_ASYNC_STAT_PENDING}))
                << "handle " << j;
        }
    }
    // Without force a manager refuses to shut while one of its handles runs.
    const bool running = std::any_of(model.h, model.h + kHandles, [](const Model::H &y) {
        return y.state == COM_ASYNC_RUNNING;
    });
    EXPECT_EQ(com_async_shut(m, 0), running ? CS_FAIL : CS_SUCCEED);
    if (running) {
        EXPECT_EQ(com_async_shut(m, 1), CS_SUCCEED);
    }
    EXPECT_EQ(fakes.mutexes, 0);
    EXPECT_EQ(fakes.events, 0);
}

TEST(AsyncModel, RandomOperationSequencesFollowTheModel) {
    for (const ComThreadCallbacks *cb :
         {&fake_callbacks, static_cast<const ComThreadCallbacks *>(nullptr)})
        for (unsigned seed = 1; seed <= 60 && !testing::Test::HasFatalFailure(); ++seed)
            run_sequence(cb, seed);
}

} // namespace
