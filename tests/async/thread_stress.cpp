// Threads drive the asynchronous manager through real mutexes and events: poster threads
// deliver I/O completions while poller threads poll several managers (walks, single-handle
// polls and an event-mode poller) and start the next operation of each handle whose
// completion they took. Every operation must complete exactly once, no handle may be lost,
// and the run must be clean under ThreadSanitizer. Per-handle bookkeeping is deliberately
// plain memory: only the manager's own hand-offs order it.
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

// Events are auto-reset and remember one signal.
struct Event {
    std::mutex mu;
    std::condition_variable cv;
    bool signaled = false;
};
template <class T>
int32_t create(void **p) {
    *p = new T;
    return CS_SUCCEED;
}
template <class T>
int32_t destroy(void *p) {
    delete static_cast<T *>(p);
    return CS_SUCCEED;
}
int32_t signal_event(void *p) {
    auto *e = static_cast<Event *>(p);
    std::lock_guard<std::mutex> lock(e->mu);
    e->signaled = true;
    e->cv.notify_one();
    return CS_SUCCEED;
}
int32_t wait_event(void *p) {
    auto *e = static_cast<Event *>(p);
    std::unique_lock<std::mutex> lock(e->mu);
    e->cv.wait(lock, [e] { return e->signaled; });
    e->signaled = false;
    return CS_SUCCEED;
}
const ComThreadCallbacks callbacks = {
    create<std::mutex>,
    destroy<std::mutex>,
    [](void *m) -> int32_t { return static_cast<std::mutex *>(m)->lock(), CS_SUCCEED; },
    [](void *m) -> int32_t { return static_cast<std::mutex *>(m)->unlock(), CS_SUCCEED; },
    create<Event>,
    destroy<Event>,
    signal_event,
    wait_event};

constexpr int MANAGERS = 3, HANDLES = 8 * MANAGERS, OPS = 150;

// One operation per handle at a time; the fields are touched by whichever thread the
// manager hands the handle to. A completion taken twice fails the code check in take(), a
// lost one leaves its handle short of the last operation.
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

int32_t token(const Slot *s) {
    return 1000 + s->op;
}

// The operation: queue the handle for a poster and suspend; complete with the posted
// status and the operation number as the completion code.
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
    EXPECT_EQ(status, token(s));
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
        const int32_t status = token(s);
        lock.unlock();
        EXPECT_EQ(com_async_iopost(s->h, status), CS_SUCCEED);
    }
}

// Polls every manager in turn, now and then a single handle instead of a whole manager;
// with event set, blocks on manager 0's event between polls instead.
void poller(unsigned seed, bool event) {
    std::mt19937 rng(seed);
    while (!world->stop.load()) {
        for (int i = 0; i < MANAGERS && !world->stop.load(); ++i) {
            ComAsyncHandle *found = nullptr;
            int32_t r;
            if (event)
                r = com_async_poll(world->mgr[0], nullptr, 1,
                                   COM_ASYNC_POLL_EVENT | COM_ASYNC_POLL_TAKE, &found);
            else if (rng() % 4 == 0)
                r = com_async_poll(nullptr, world->slots[rng() % HANDLES].h, 1,
                                   COM_ASYNC_POLL_ONE | COM_ASYNC_POLL_TAKE, &found);
            else
                r = com_async_poll(world->mgr[i], nullptr, 1, COM_ASYNC_POLL_TAKE, &found);
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
    // Each manager mixes the three post routes: inline runs, runs left to a poll (state 2),
    // and handles made ready for a poll (state 3).
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
