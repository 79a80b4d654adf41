/*
 * Running a handle's stack of state functions: start, restart and abort of an operation,
 * the run itself, and the posting of an I/O completion, which either runs the stack inline,
 * leaves the handle to a poll, or only signals the events.
 *
 * A run keeps the running flag (8) set from its first step until it has released the
 * handle, so a second poller is told CS_BUSY and a post never starts a second run. State
 * functions run without the handle's mutex, except for the one re-run that picks up a
 * restart posted while the run was finishing; that re-run holds the mutex so the post that
 * follows it waits until the handle has been released.
 */
#include "async/async_internal.h"

using namespace comn::async;

namespace {

// Runs state functions from the next index up to the top, each fed the previous result,
// until one answers CS_PENDING. The carried status is written back only while the chain
// keeps going: once a function has suspended, the status belongs to whoever resumes it.
void run_chain(ComAsyncHandle *h) {
    h->state.store(COM_ASYNC_RUNNING, std::memory_order_release);
    int32_t s = h->status;
    while (h->next_index <= h->top_index) {
        if (h->check_count > 0) {
            s = run_checkpoint(h, COM_ASYNC_CHECK_STEP, s);
            if (s == CS_PENDING) return;
        }
        ComAsyncStateFunc f = h->stack[h->next_index++];
        s = f(h, h->user1, h->user2, s);
        if (s == CS_PENDING) return;
        h->status = s;
    }
}

void clear_running(ComAsyncHandle *h) {
    h->flags.fetch_and(~H_RUNNING, std::memory_order_acq_rel);
}

} // namespace

namespace comn::async {

int32_t run_stack(ComAsyncHandle *h) {
    if (h->next_index > h->top_index) { // nothing to run
        clear_running(h);
        return CS_FAIL;
    }
    do
        run_chain(h); // a function asking for a restart resumes the chain
    while (h->state.load(std::memory_order_acquire) == COM_ASYNC_READY);

    // Release the handle under its mutex (the access lock when there is no callback table),
    // so that a restart posted meanwhile is either seen here or finds the handle released.
    const bool use_mutex = callbacks_of(h) != nullptr;
    ComAsyncManager *m = h->manager;
    int32_t r = use_mutex ? handle_lock(h) : access_enter(m);
    if (r != CS_SUCCEED) {
        clear_running(h);
        return r;
    }
    if (h->state.load(std::memory_order_acquire) == COM_ASYNC_READY) run_chain(h);
    clear_running(h);
    return use_mutex ? handle_unlock(h) : access_leave(m);
}

} // namespace comn::async

extern "C" {

COMN_API int32_t com_async_start(ComAsyncHandle *h) {
    if (!h) return CS_FAIL;
    ComAppGlobal *g = h->manager->global;
    if (g->hooks.start) {
        if (int32_t r = g->hooks.start(h); r != CS_SUCCEED) return r;
    }
    h->post = g->hooks.iopost;
    h->comp_code = -1;
    h->comp_status = 0;
    h->status = CS_SUCCEED;
    h->state.store(COM_ASYNC_RUNNING, std::memory_order_release);
    if (h->check_count > 0) {
        int32_t r = run_checkpoint(h, COM_ASYNC_CHECK_STEP, CS_SUCCEED);
        return r == CS_SUCCEED || r == CS_PENDING ? CS_SUCCEED : r;
    }
    return CS_SUCCEED;
}

COMN_API int32_t com_async_restart(ComAsyncHandle *h, int32_t status) {
    if (!h) return CS_FAIL;
    h->status = status;
    h->state.store(COM_ASYNC_READY, std::memory_order_release);
    return CS_SUCCEED;
}

// Empties the stack and leaves the handle idle with all flags cleared.
COMN_API int32_t com_async_abort(ComAsyncHandle *h) {
    if (!h) return CS_FAIL;
    h->next_index = h->top_index + 1;
    h->state.store(COM_ASYNC_IDLE, std::memory_order_release);
    h->flags.store(0, std::memory_order_release);
    return CS_SUCCEED;
}

// Runs the stack on the caller's thread. CS_BUSY when it is already running elsewhere,
// CS_FAIL when the stack is empty.
COMN_API int32_t com__async_runstack(ComAsyncHandle *h) {
    if (!h) return CS_FAIL;
    if (h->flags.fetch_or(H_RUNNING, std::memory_order_acq_rel) & H_RUNNING) return CS_BUSY;
    return run_stack(h);
}

COMN_API int32_t com_async_iopost(ComAsyncHandle *h, int32_t status) {
    if (!h || !h->post) return CS_FAIL;
    return h->post(h, status);
}

// Locks the manager's mutex, then the handle's: every path that takes both does so in
// this order.
COMN_API int32_t com__async_iopost(ComAsyncHandle *h, int32_t status) {
    if (!h) return CS_FAIL;
    ComAsyncManager *m = h->manager;
    const ComThreadCallbacks *mcb = m->callbacks, *hcb = callbacks_of(h);
    if (int32_t r = lock_result(mutex_take(mcb, m->mutex)); r != CS_SUCCEED) return r;
    if (int32_t r = handle_lock(h); r != CS_SUCCEED) {
        mutex_release(mcb, m->mutex);
        return r;
    }
    h->status = status;
    const uint32_t fl = h->flags.load(std::memory_order_acquire);
    event_signal(hcb, h->event);
    event_signal(mcb, m->event);
    if (!(fl & H_SIGNALONLY)) {
        if (fl & H_POLLRUN) {
            h->state.store(COM_ASYNC_POSTED, std::memory_order_release);
        } else if ((fl & H_INLINE) && !(fl & H_RUNNING) &&
                   !(m->flags.load(std::memory_order_acquire) & MGR_POLLING)) {
            h->state.store(COM_ASYNC_RUNNING, std::memory_order_release);
            h->flags.fetch_or(H_RUNNING, std::memory_order_acq_rel);
            handle_unlock(h);
            mutex_release(mcb, m->mutex);
            return run_stack(h);
        } else {
            h->state.store(COM_ASYNC_READY, std::memory_order_release);
        }
    }
    int32_t r1 = handle_unlock(h);
    int32_t r2 = mutex_release(mcb, m->mutex);
    return r1 != CS_SUCCEED ? r1 : r2;
}

} // extern "C"
