// Test support for the asynchronous manager: a callback table whose mutexes and events are
// plain counters (so a single thread can check lock balance, lock order and signals, and
// make a lock fail on demand), and an access-lock routine that fails on demand.
#pragma once

#include <comnlib/async.h>

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace async_test {

struct FakeMutex {
    int depth = 0;
    int takes = 0;
};
struct FakeEvent {
    int signals = 0;
    int waits = 0;
};

// Counters shared by the fake callbacks; reset by each test's fixture.
struct Fakes {
    int mutexes = 0, events = 0; // live objects
    int fail_create_mutex = 0;   // nth creation (1-based) fails, 0 never
    int fail_create_event = 0;
    int mutex_creations = 0, event_creations = 0;
    int fail_lock = 0; // nth lock from now fails with 0
    int locks = 0;
    int signals = 0;                          // over all events
    std::function<void(FakeMutex *)> on_lock; // runs inside a take
    std::function<void(FakeEvent *)> on_wait; // runs inside a wait
    bool fail_access = false;
    // Lock order: every (held, taken) pair seen. Two mutexes taken in both orders could
    // deadlock two threads, even where this single thread never blocks.
    std::vector<FakeMutex *> held;
    std::set<std::pair<FakeMutex *, FakeMutex *>> order;
};
inline Fakes fakes;

inline int32_t create_mutex(void **m) {
    if (++fakes.mutex_creations == fakes.fail_create_mutex) return CS_FAIL;
    *m = new FakeMutex;
    ++fakes.mutexes;
    return CS_SUCCEED;
}
inline int32_t delete_mutex(void *m) {
    EXPECT_EQ(static_cast<FakeMutex *>(m)->depth, 0) << "mutex destroyed while held";
    std::erase_if(fakes.order, [m](const auto &p) { return p.first == m || p.second == m; });
    delete static_cast<FakeMutex *>(m);
    --fakes.mutexes;
    return CS_SUCCEED;
}
inline int32_t take_mutex(void *p) {
    auto *m = static_cast<FakeMutex *>(p);
    if (fakes.fail_lock && ++fakes.locks == fakes.fail_lock) return 0;
    EXPECT_EQ(m->depth, 0) << "a mutex taken twice would deadlock";
    for (FakeMutex *h : fakes.held) {
        EXPECT_EQ(fakes.order.count({m, h}), 0u) << "two mutexes taken in both orders";
        fakes.order.insert({h, m});
    }
    fakes.held.push_back(m);
    ++m->depth;
    ++m->takes;
    if (fakes.on_lock) fakes.on_lock(m);
    return CS_SUCCEED;
}
inline int32_t release_mutex(void *p) {
    auto *m = static_cast<FakeMutex *>(p);
    EXPECT_EQ(m->depth, 1) << "release of a mutex not held";
    std::erase(fakes.held, m);
    --m->depth;
    return CS_SUCCEED;
}
inline int32_t create_event(void **e) {
    if (++fakes.event_creations == fakes.fail_create_event) return CS_FAIL;
    *e = new FakeEvent;
    ++fakes.events;
    return CS_SUCCEED;
}
inline int32_t delete_event(void *e) {
    delete static_cast<FakeEvent *>(e);
    --fakes.events;
    return CS_SUCCEED;
}
inline int32_t signal_event(void *e) {
    ++static_cast<FakeEvent *>(e)->signals;
    ++fakes.signals;
    return CS_SUCCEED;
}
inline int32_t wait_event(void *e) {
    auto *ev = static_cast<FakeEvent *>(e);
    ++ev->waits;
    if (fakes.on_wait) fakes.on_wait(ev);
    return CS_SUCCEED;
}

inline const ComThreadCallbacks fake_callbacks = {create_mutex,  delete_mutex, take_mutex,
                                                  release_mutex, create_event, delete_event,
                                                  signal_event,  wait_event};

// The access lock of a manager: fails (0) on demand.
inline int32_t failing_access(ComAsyncManager *, int32_t) {
    return fakes.fail_access ? 0 : CS_SUCCEED;
}

inline int32_t state_of(ComAsyncHandle *h) {
    int32_t st = 0;
    com_async_state(h, &st, nullptr);
    return st;
}

} // namespace async_test
