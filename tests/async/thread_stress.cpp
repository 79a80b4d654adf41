// Threads drive the asynchronous manager through real mutexes and events: posters deliver
// I/O completions while pollers (manager walks, single-handle polls, one event-mode poller)
// take completions and start each handle's next operation. Every operation must complete
// exactly once and the run must be clean under ThreadSanitizer; per-handle bookkeeping is
// plain memory, ordered only by the manager's own hand-offs.
#include <comnlib/async.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

namespace {

struct Event { // auto-reset, remembers one signal
    std::mutex mu;
    std::condition_variable cv;
    bool signaled = false;
};
template <class T>
int32_t create(void **p) {
    return *p = new T, CS_SUCCEED;
}
template <class T>
int32_t destroy(void *p) {
    return delete static_cast<T *>(p), CS_SUCCEED;
}
const ComThreadCallbacks callbacks = {
    create<std::mutex>,
    destroy<std::mutex>,
    [](void *m) -> int32_t { return static_cast<std::mutex *>(m)->lock(), CS_SUCCEED; },
    [](void *m) -> int32_t { return static_cast<std::mutex *>(m)->unlock(), CS_SUCCEED; },
    create<Event>,
    destroy<Event>,
    [](void *p) -> int32_t {
        auto *e = static_cast<Event *>(p);
        std::lock_guard<std::mutex> lock(e->mu);
        e->signaled = true;
        e->cv.notify_one();
        return CS_SUCCEED;
    },
    [](void *p) -> int32_t {
        auto *e = static_cast<Event *>(p);
        std::unique_lock<std::mutex> lock(e->mu);
        e->cv.wait(lock, [e] { return e->signaled; });
        e->signaled = false;
        return CS_SUCCEED;
    }};

constexpr int MANAGERS = 3, HANDLES = 8 * MANAGERS, OPS = 150;

// A completion taken twice fails the code check in take(); a lost one leaves its handle
// short of the last operation.
struct Slot {
    ComAsyncHandle *h = nullptr;
    int op = 0; // the operation under way
};

struct World {
    ComAsyncManager *mgr[MANAGERS] = {};
    std::recursive_mutex access[MANAGERS];
    Slot slots[HANDLES];
    std::mutex io_mu;
    std::condition_variable io_cv;
    std::deque<Slot *> io_queue;
    std::atomic<int> completed{0};
    std::atomic<bool> stop{false}, event_poller_left{false};
} * world;

int32_t access_lock(ComAsyncManager *m, int32_t action) {
    std::recursive_mutex &mu =
        world->access[std::find(world->mgr, world->mgr + MANAGERS, m) - world->mgr];
    action == COM_ASYNC_ENTER ? mu.lock() : mu.unlock();
    return CS_SUCCEED;
}

// A short pause between polls; once the test stops, the poll ends quietly.
int32_t pause(ComAsyncManager *, ComAsyncHandle *, int32_t) {
    std::this_thread::sleep_for(std::chrono::microseconds(50));
    return world->stop.load() ? CS_QUIET : CS_SUCCEED;
}

// The operation queues the handle for a poster and suspends, then completes with the
// operation number as its code and the posted status (1000 + the number).
int32_t issue_io(ComAsyncHandle *, void *u1, void *, int32_t) {
    std::lock_guard<std::mutex> lock(world->io_mu);
    world->io_queue.push_back(static_cast<Slot *>(u1));
    world->io_cv.notify_all();
    return CS_PENDING;
}
int32_t finish(ComAsyncHandle *h, void *u1, void *, int32_t status) {
    com_async_complete(h, static_cast<Slot *>(u1)->op, status, COM_ASYNC_COMP_KEEP);
    return CS_SUCCEED;
}

// Even operations are left to a poll (restart), odd ones run at once on this thread.
void start_op(Slot *s) {
    com_async_push(s->h, finish);
    com_async_push(s->h, issue_io);
    ASSERT_EQ(com_async_start(s->h), CS_SUCCEED);
    if (s->op % 2 == 0)
        com_async_restart(s->h, CS_SUCCEED);
    else
        ASSERT_EQ(com__async_runstack(s->h), CS_SUCCEED);
}

void take(ComAsyncHandle *h) {
    void *u1 = nullptr;
    int32_t code = -1, status = 0;
    com_async_getcomp(h, &u1, nullptr, &code, &status);
    auto *s = static_cast<Slot *>(u1);
    ASSERT_EQ(code, s->op);
    EXPECT_EQ(status, 1000 + s->op);
    world->completed.fetch_add(1);
    if (++s->op < OPS) start_op(s);
}

void poster() {
    for (;;) {
        std::unique_lock<std::mutex> lock(world->io_mu);
        world->io_cv.wait(lock, [] { return !world->io_queue.empty() || world->stop.load(); });
        if (world->io_queue.empty()) return;
        Slot *s = world->io_queue.front();
        world->io_queue.pop_front();
        lock.unlock();
        EXPECT_EQ(com_async_iopost(s->h, 1000 + s->op), CS_SUCCEED);
    }
}

// Polls every manager in turn, now and then a single handle instead; with event set,
// blocks on manager 0's event between polls.
void poller(unsigned seed, bool event) {
    std::mt19937 rng(seed);
    while (!world->stop.load()) {
        for (int i = 0; i < MANAGERS && !world->stop.load(); ++i) {
            ComAsyncHandle *found = nullptr;
            const bool one = !event && rng() % 4 == 0;
            const int32_t r = com_async_poll(one ? nullptr : world->mgr[event ? 0 : i],
                                             one ? world->slots[rng() % HANDLES].h : nullptr, 1,
                                             COM_ASYNC_POLL_TAKE | (one ? COM_ASYNC_POLL_ONE : 0) |
                                                 (event ? COM_ASYNC_POLL_EVENT : 0),
                                             &found);
            if (r == CS_SUCCEED)
                take(found);
            else
                EXPECT_TRUE(r == CS_TIMED_OUT || r == CS_QUIET) << r;
        }
    }
    if (event) world->event_poller_left.store(true);
}

TEST(AsyncThreads, EveryOperationCompletesExactlyOnce) {
    World w;
    world = &w;
    for (ComAsyncManager *&m : w.mgr)
        ASSERT_EQ(com_async_init(&m, pause, access_lock, COM_ASYNC_GLOBAL_STATIC, &callbacks),
                  CS_SUCCEED);
    // Each manager mixes the three post routes: inline runs, runs left to a poll, and
    // handles made ready for a poll.
    const uint32_t routes[] = {COM_ASYNC_F_INLINE, COM_ASYNC_F_POLLRUN, 0};
    for (int i = 0; i < HANDLES; ++i) {
        Slot &s = w.slots[i];
        ASSERT_EQ(com_async_alloc(w.mgr[i % MANAGERS], &s.h, 4), CS_SUCCEED);
        void *u1 = &s;
        uint32_t route = routes[i % 3];
        com_async_props(s.h, COM_ASYNC_SET, COM_ASYNC_PROP_USER1, &u1);
        com_async_props(s.h, COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &route);
        start_op(&s);
    }
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 2; ++i) {
        threads.emplace_back(poster);
        threads.emplace_back(poller, 7 + i, false);
    }
    std::thread event_poller(poller, 9, true);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (w.completed.load() < HANDLES * OPS && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    {
        std::lock_guard<std::mutex> lock(w.io_mu);
        w.stop.store(true);
        w.io_cv.notify_all();
    }
    for (auto &t : threads)
        t.join();
    // The event poller may be blocked on manager 0's event: end its wait until it leaves.
    while (!w.event_poller_left.load()) {
        com_async_comp_event_wait(w.slots[0].h);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    event_poller.join();

    EXPECT_EQ(w.completed.load(), HANDLES * OPS);
    for (Slot &s : w.slots) {
        EXPECT_EQ(s.op, OPS) << "a handle was lost";
        int32_t st = 0;
        com_async_state(s.h, &st, nullptr);
        EXPECT_EQ(st, COM_ASYNC_IDLE);
    }
    EXPECT_EQ(com__async_access(&Application_global), CS_SUCCEED);
    for (ComAsyncManager *m : w.mgr)
        EXPECT_EQ(com_async_shut(m, 0), CS_SUCCEED);
}

} // namespace
