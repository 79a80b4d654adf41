// Threads drive the asynchronous manager through POSIX mutexes and condition variables:
// poster threads deliver I/O completions while poller threads poll several managers (walks,
// single-handle polls and an event-mode poller) and start the next operation of each
// handle whose completion they took. Every operation must complete exactly once, no
// handle may be lost, and the run must be clean under ThreadSanitizer. Per-handle
// bookkeeping is deliberately plain memory: only the manager's own hand-offs order it.
#include <comnlib/async.h>

#include <gtest/gtest.h>

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <random>
#include <thread>
#include <vector>

namespace {

// ---- Callback table over pthreads. Events are auto-reset and remember one signal. ----
struct Event {
    pthread_mutex_t mu = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t cv = PTHREAD_COND_INITIALIZER;
    bool signaled = false;
};

int32_t create_mutex(void **m) {
    auto *mu = new pthread_mutex_t;
    pthread_mutex_init(mu, nullptr);
    *m = mu;
    return CS_SUCCEED;
}
int32_t delete_mutex(void *m) {
    pthread_mutex_destroy(static_cast<pthread_mutex_t *>(m));
    delete static_cast<pthread_mutex_t *>(m);
    return CS_SUCCEED;
}
int32_t take_mutex(void *m) {
    return pthread_mutex_lock(static_cast<pthread_mutex_t *>(m)) == 0 ? CS_SUCCEED : 0;
}
int32_t release_mutex(void *m) {
    return pthread_mutex_unlock(static_cast<pthread_mutex_t *>(m)) == 0 ? CS_SUCCEED : CS_FAIL;
}
int32_t create_event(void **e) {
    *e = new Event;
    return CS_SUCCEED;
}
int32_t delete_event(void *e) {
    delete static_cast<Event *>(e);
    return CS_SUCCEED;
}
int32_t signal_event(void *p) {
    auto *e = static_cast<Event *>(p);
    pthread_mutex_lock(&e->mu);
    e->signaled = true;
    pthread_cond_signal(&e->cv);
    pthread_mutex_unlock(&e->mu);
    return CS_SUCCEED;
}
int32_t wait_event(void *p) {
    auto *e = static_cast<Event *>(p);
    pthread_mutex_lock(&e->mu);
    while (!e->signaled)
        pthread_cond_wait(&e->cv, &e->mu);
    e->signaled = false;
    pthread_mutex_unlock(&e->mu);
    return CS_SUCCEED;
}
const ComThreadCallbacks posix_callbacks = {create_mutex, delete_mutex, take_mutex,   release_mutex,
                                            create_event, delete_event, signal_event, wait_event};

constexpr int MANAGERS = 3;
constexpr int HANDLES_PER_MANAGER = 8;
constexpr int OPS_PER_HANDLE = 150;
constexpr int TOTAL_OPS = MANAGERS * HANDLES_PER_MANAGER * OPS_PER_HANDLE;

// One operation per handle at a time; the fields are touched by whichever thread the
// manager hands the handle to.
struct Slot {
    ComAsyncHandle *h = nullptr;
    int op = 0;                                                   // operation now under way
    std::vector<int> taken = std::vector<int>(OPS_PER_HANDLE, 0); // completions taken per op
    int bad_status = 0;
};

struct World {
    ComAsyncManager *mgr[MANAGERS] = {};
    pthread_mutex_t access[MANAGERS];
    Slot slots[MANAGERS * HANDLES_PER_MANAGER];

    pthread_mutex_t io_mu = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t io_cv = PTHREAD_COND_INITIALIZER;
    std::deque<Slot *> io_queue;
    std::atomic<int> completed{0};
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> posts{0};
};
World *world = nullptr;

int index_of(ComAsyncManager *m) {
    for (int i = 0; i < MANAGERS; ++i)
        if (world->mgr[i] == m) return i;
    ADD_FAILURE() << "unknown manager";
    return 0;
}

int32_t access_lock(ComAsyncManager *m, int32_t action) {
    pthread_mutex_t *mu = &world->access[index_of(m)];
    const int r = action == COM_ASYNC_ENTER ? pthread_mutex_lock(mu) : pthread_mutex_unlock(mu);
    return r == 0 ? CS_SUCCEED : 0;
}

// Wait for any post, briefly; a quiet spell ends the poll so the poller can look around.
int32_t wait_for_posts(ComAsyncManager *, ComAsyncHandle *, int32_t) {
    if (world->stop.load()) return CS_QUIET;
    const uint64_t seen = world->posts.load();
    pthread_mutex_lock(&world->io_mu);
    timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_nsec += 1000000;
    if (until.tv_nsec >= 1000000000) until.tv_sec += 1, until.tv_nsec -= 1000000000;
    int r = 0;
    while (world->posts.load() == seen && r == 0)
        r = pthread_cond_timedwait(&world->io_cv, &world->io_mu, &until);
    pthread_mutex_unlock(&world->io_mu);
    return r == 0 ? CS_SUCCEED : CS_TIMED_OUT;
}

int32_t token(const Slot *s) {
    return 1000 + s->op;
}

// The operation: hand the handle to the I/O queue and suspend; check the posted status;
// complete with the operation number as the completion code.
int32_t issue_io(ComAsyncHandle *, void *u1, void *, int32_t) {
    pthread_mutex_lock(&world->io_mu);
    world->io_queue.push_back(static_cast<Slot *>(u1));
    pthread_cond_broadcast(&world->io_cv);
    pthread_mutex_unlock(&world->io_mu);
    return CS_PENDING;
}
int32_t after_io(ComAsyncHandle *, void *u1, void *, int32_t status) {
    auto *s = static_cast<Slot *>(u1);
    if (status != token(s)) ++s->bad_status;
    return status;
}
int32_t finish(ComAsyncHandle *h, void *u1, void *, int32_t status) {
    com_async_complete(h, static_cast<Slot *>(u1)->op, status, COM_ASYNC_COMP_KEEP);
    return CS_SUCCEED;
}

// Starts the slot's current operation; even operations are left to a poll (restart), odd
// ones run at once on this thread.
void start_op(Slot *s) {
    com_async_push(s->h, finish);
    com_async_push(s->h, after_io);
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
    ++s->taken[s->op];
    world->completed.fetch_add(1);
    if (++s->op < OPS_PER_HANDLE) start_op(s);
}

void poster() {
    for (;;) {
        pthread_mutex_lock(&world->io_mu);
        while (world->io_queue.empty() && !world->stop.load())
            pthread_cond_wait(&world->io_cv, &world->io_mu);
        if (world->io_queue.empty()) {
            pthread_mutex_unlock(&world->io_mu);
            return;
        }
        Slot *s = world->io_queue.front();
        world->io_queue.pop_front();
        const int32_t status = token(s);
        pthread_mutex_unlock(&world->io_mu);
        const int32_t r = com_async_iopost(s->h, status);
        EXPECT_TRUE(r == CS_SUCCEED) << r;
        pthread_mutex_lock(&world->io_mu);
        world->posts.fetch_add(1);
        pthread_cond_broadcast(&world->io_cv);
        pthread_mutex_unlock(&world->io_mu);
    }
}

// Polls every manager in turn, now and then a single handle instead of a whole manager.
void poller(unsigned seed) {
    std::mt19937 rng(seed);
    while (!world->stop.load()) {
        for (int i = 0; i < MANAGERS && !world->stop.load(); ++i) {
            ComAsyncHandle *found = nullptr;
            int32_t r;
            if (rng() % 4 == 0) {
                Slot &s = world->slots[rng() % (MANAGERS * HANDLES_PER_MANAGER)];
                r = com_async_poll(nullptr, s.h, 1, COM_ASYNC_POLL_ONE | COM_ASYNC_POLL_TAKE,
                                   &found);
            } else {
                r = com_async_poll(world->mgr[i], nullptr, 1, COM_ASYNC_POLL_TAKE, &found);
            }
            if (r == CS_SUCCEED)
                take(found);
            else
                EXPECT_TRUE(r == CS_TIMED_OUT || r == CS_QUIET) << r;
        }
    }
}

// Blocks on manager 0's event between polls until the test ends its event wait.
void event_poller(std::atomic<bool> *exited) {
    while (!world->stop.load()) {
        ComAsyncHandle *found = nullptr;
        const int32_t r = com_async_poll(world->mgr[0], nullptr, 1,
                                         COM_ASYNC_POLL_EVENT | COM_ASYNC_POLL_TAKE, &found);
        if (r == CS_SUCCEED) take(found);
    }
    exited->store(true);
}

TEST(AsyncThreads, EveryOperationCompletesExactlyOnce) {
    World w;
    world = &w;
    for (int i = 0; i < MANAGERS; ++i) {
        pthread_mutexattr_t attr;
        pthread_mutexattr_init(&attr);
        pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&w.access[i], &attr);
        pthread_mutexattr_destroy(&attr);
        ASSERT_EQ(com_async_init(&w.mgr[i], wait_for_posts, access_lock, COM_ASYNC_GLOBAL_STATIC,
                                 &posix_callbacks),
                  CS_SUCCEED);
    }
    // Each manager mixes the three post routes: inline runs, runs left to a poll (state 2),
    // and handles made ready for a poll (state 3).
    const uint32_t routes[] = {COM_ASYNC_F_INLINE, COM_ASYNC_F_POLLRUN, 0};
    for (int i = 0; i < MANAGERS * HANDLES_PER_MANAGER; ++i) {
        Slot &s = w.slots[i];
        ASSERT_EQ(com_async_alloc(w.mgr[i / HANDLES_PER_MANAGER], &s.h, 4), CS_SUCCEED);
        void *u1 = &s;
        uint32_t route = routes[i % 3];
        com_async_props(s.h, COM_ASYNC_SET, COM_ASYNC_PROP_USER1, &u1);
        com_async_props(s.h, COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &route);
        start_op(&s);
    }

    std::atomic<bool> event_exited{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back(poster);
    for (unsigned i = 0; i < 2; ++i)
        threads.emplace_back(poller, 7 + i);
    threads.emplace_back(event_poller, &event_exited);

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (w.completed.load() < TOTAL_OPS && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    w.stop.store(true);
    pthread_mutex_lock(&w.io_mu);
    pthread_cond_broadcast(&w.io_cv);
    pthread_mutex_unlock(&w.io_mu);
    // The event poller may be blocked on manager 0's event: end its wait until it leaves.
    while (!event_exited.load()) {
        com_async_comp_event_wait(w.slots[0].h);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (auto &t : threads)
        t.join();

    EXPECT_EQ(w.completed.load(), TOTAL_OPS);
    for (Slot &s : w.slots) {
        EXPECT_EQ(s.op, OPS_PER_HANDLE) << "a handle was lost";
        EXPECT_EQ(s.bad_status, 0);
        for (int n : s.taken)
            EXPECT_EQ(n, 1);
        int32_t st = 0;
        com_async_state(s.h, &st, nullptr);
        EXPECT_EQ(st, COM_ASYNC_IDLE);
    }
    EXPECT_EQ(com__async_access(&Application_global), CS_SUCCEED);
    for (int i = 0; i < MANAGERS; ++i) {
        EXPECT_EQ(com_async_shut(w.mgr[i], 0), CS_SUCCEED);
        pthread_mutex_destroy(&w.access[i]);
    }
    world = nullptr;
}

} // namespace
