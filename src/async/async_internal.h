/*
 * Private layout of the asynchronous manager's three records, and the small helpers every
 * file of the manager shares: the callback wrappers (a missing table or slot counts as
 * done), the access lock and intrusive list links. The records come from the library's
 * allocation seam (core/alloc.h).
 *
 * Concurrency model. The caller's callbacks are the only locks. The state and flags words
 * of handles and managers are atomics so that the unlocked reads the protocol allows (a
 * running chain checking for a restart, a post checking for a manager-wide poll) are well
 * defined; every other field is guarded as the protocol says: the handle list by the
 * manager's access lock, the manager list by the global mutex, the carried status by the
 * handle's mutex whenever a chain is suspended.
 */
#pragma once

#include <comnlib/async.h>

#include "core/alloc.h"

#include <atomic>
#include <cstddef>

namespace comn::async {

// Callback wrappers. A missing table, or a missing slot in it, counts as done.
inline int32_t mutex_create(const ComThreadCallbacks *cb, void **m) {
    *m = nullptr;
    return cb && cb->create_mutex ? cb->create_mutex(m) : CS_SUCCEED;
}
inline int32_t mutex_delete(const ComThreadCallbacks *cb, void *m) {
    return cb && cb->delete_mutex ? cb->delete_mutex(m) : CS_SUCCEED;
}
inline int32_t mutex_take(const ComThreadCallbacks *cb, void *m) {
    return cb && cb->take_mutex ? cb->take_mutex(m) : CS_SUCCEED;
}
inline int32_t mutex_release(const ComThreadCallbacks *cb, void *m) {
    return cb && cb->release_mutex ? cb->release_mutex(m) : CS_SUCCEED;
}
inline int32_t event_create(const ComThreadCallbacks *cb, void **e) {
    *e = nullptr;
    return cb && cb->create_event ? cb->create_event(e) : CS_SUCCEED;
}
inline int32_t event_delete(const ComThreadCallbacks *cb, void *e) {
    return cb && cb->delete_event ? cb->delete_event(e) : CS_SUCCEED;
}
inline int32_t event_signal(const ComThreadCallbacks *cb, void *e) {
    return cb && cb->signal_event ? cb->signal_event(e) : CS_SUCCEED;
}
inline int32_t event_wait(const ComThreadCallbacks *cb, void *e) {
    return cb && cb->wait_event ? cb->wait_event(e) : CS_SUCCEED;
}

// A lock callback that answers 0 means "could not"; it is reported as CS_FAIL, as is any
// other answer that is not CS_SUCCEED.
inline int32_t lock_result(int32_t r) {
    return r == CS_SUCCEED ? CS_SUCCEED : CS_FAIL;
}

// Global flag bits.
constexpr uint32_t GLOBAL_STATIC = COM_ASYNC_GLOBAL_STATIC;
constexpr uint32_t GLOBAL_NOHOOKS = COM_ASYNC_GLOBAL_NOHOOKS;

// Manager flag bits.
constexpr uint32_t MGR_STATIC_GLOBAL = 0x1; // joined Application_global
constexpr uint32_t MGR_POLLING = 0x2;       // a poll is walking the handle list
constexpr uint32_t MGR_EVENTWAIT = 0x10;    // an event wait is requested

// Handle flag bits.
constexpr uint32_t H_INLINE = COM_ASYNC_F_INLINE;
constexpr uint32_t H_POLLRUN = COM_ASYNC_F_POLLRUN;
constexpr uint32_t H_SIGNALONLY = COM_ASYNC_F_SIGNALONLY;
constexpr uint32_t H_RUNNING = COM_ASYNC_F_RUNNING;
constexpr uint32_t H_EVENTWAIT = COM_ASYNC_F_EVENTWAIT;

struct Checkpoint {
    Checkpoint *next;
    int32_t mask;
    ComAsyncStateFunc func;
};

} // namespace comn::async

struct ComAppGlobal {
    int32_t refcount;
    uint32_t flags;
    ComAsyncManager *managers; // list head, newest first
    const ComThreadCallbacks *callbacks;
    void *mutex;
    ComAsyncHooks hooks;
};

struct ComAsyncManager {
    ComAsyncManager *prev, *next; // place in the global list
    ComAsyncHandle *handles;      // list head, newest first
    ComAsyncWaitFunc waitfunc;
    ComAsyncLockFunc accessfunc;
    std::atomic<uint32_t> flags;
    ComAppGlobal *global;
    const ComThreadCallbacks *callbacks;
    void *mutex;
    void *event;
};

struct ComAsyncHandle {
    ComAsyncHandle *prev, *next; // place in the current manager's list
    ComAsyncManager *manager;    // the manager it now belongs to
    ComAsyncManager *home;       // the manager it was allocated under
    int32_t next_index;          // next state function to run; depth when the stack is empty
    int32_t top_index;           // depth - 1
    void *user1, *user2;
    int32_t status;      // carried from one state function to the next
    int32_t comp_status; // set by com_async_complete
    int32_t comp_code;   // set by com_async_complete; -1 after a start
    std::atomic<int32_t> state;
    std::atomic<uint32_t> flags;
    ComAsyncPostFunc post;
    int32_t check_count;
    comn::async::Checkpoint *checks;     // registered, in registration order
    comn::async::Checkpoint *pool;       // free records
    const ComThreadCallbacks *callbacks; // those of the home manager
    void *mutex;
    void *event;
    ComAsyncStateFunc *stack; // depth entries, allocated in the same block after the handle
};

namespace comn::async {

// The manager's access lock; without an access routine it counts as done.
inline int32_t access_enter(ComAsyncManager *m) {
    return m->accessfunc ? lock_result(m->accessfunc(m, COM_ASYNC_ENTER)) : CS_SUCCEED;
}
inline int32_t access_leave(ComAsyncManager *m) {
    return m->accessfunc ? lock_result(m->accessfunc(m, COM_ASYNC_LEAVE)) : CS_SUCCEED;
}

// The handle's own mutex and event come from the callback table of its home manager; the
// handle keeps that table so it can release them wherever it lives.
inline const ComThreadCallbacks *callbacks_of(const ComAsyncHandle *h) {
    return h->callbacks;
}
inline int32_t handle_lock(ComAsyncHandle *h) {
    return lock_result(mutex_take(callbacks_of(h), h->mutex));
}
inline int32_t handle_unlock(ComAsyncHandle *h) {
    return mutex_release(callbacks_of(h), h->mutex);
}

// Intrusive doubly linked lists with a head pointer.
template <class T>
void list_push(T *&head, T *item) {
    item->prev = nullptr;
    item->next = head;
    if (head) head->prev = item;
    head = item;
}
template <class T>
void list_unlink(T *&head, T *item) {
    if (item->prev)
        item->prev->next = item->next;
    else
        head = item->next;
    if (item->next) item->next->prev = item->prev;
    item->prev = item->next = nullptr;
}

// Runs the first registered checkpoint whose mask shares a bit with mask (it is used up
// and its record returned to the pool); with none, status comes back unchanged.
int32_t run_checkpoint(ComAsyncHandle *h, int32_t mask, int32_t status);

// Frees a handle without touching any list or lock (its manager already holds them).
void free_handle(ComAsyncHandle *h);

// Runs the stack of a handle whose running flag the caller has already set.
int32_t run_stack(ComAsyncHandle *h);

} // namespace comn::async
