/*
 * Polling: one handle (com__async_poll_state), every handle of a manager
 * (com__async_do_poll), and the caller-facing loop (com_async_poll) that waits between
 * polls on the handle's or manager's event (event mode) or through the manager's wait
 * routine, honouring the poll's timeout.
 *
 * Poll results: CS_SUCCEED a completion is waiting (state 5), CS_QUIET nothing to do
 * (idle), CS_PENDING an operation is under way, CS_BUSY its stack is running on another
 * thread; anything else is a failure of the run or of a lock.
 */
#include "async/async_internal.h"

using namespace comn::async;

namespace {

bool event_armed(ComAsyncManager *m, ComAsyncHandle *h) {
    return h ? (h->flags.load(std::memory_order_acquire) & H_EVENTWAIT) != 0
             : (m->flags.load(std::memory_order_acquire) & MGR_EVENTWAIT) != 0;
}

bool can_wait_event(const ComThreadCallbacks *cb) {
    return cb && cb->wait_event;
}

} // namespace

extern "C" {

COMN_API int32_t com__async_poll_state(ComAsyncHandle *h, int32_t pollflags) {
    if (!h) return CS_FAIL;
    if (handle_lock(h) != CS_SUCCEED) return CS_FAIL;
    int32_t st = h->state.load(std::memory_order_acquire);
    if (st == COM_ASYNC_POSTED) {
        st = COM_ASYNC_READY;
        h->state.store(st, std::memory_order_release);
    }
    int32_t result = CS_PENDING;
    if (st == COM_ASYNC_READY) {
        const uint32_t fl = h->flags.load(std::memory_order_acquire);
        if (fl & H_RUNNING) {
            result = CS_BUSY;
        } else {
            // Run here, with inline runs off so a post during the run leaves the handle
            // ready for the next poll instead of starting a second run.
            h->flags.fetch_or(H_RUNNING, std::memory_order_acq_rel);
            h->flags.fetch_and(~H_INLINE, std::memory_order_acq_rel);
            h->state.store(COM_ASYNC_RUNNING, std::memory_order_release);
            handle_unlock(h);
            const int32_t r = run_stack(h);
            if (fl & H_INLINE) h->flags.fetch_or(H_INLINE, std::memory_order_acq_rel);
            if (handle_lock(h) != CS_SUCCEED) return CS_FAIL;
            result = r == CS_SUCCEED ? CS_PENDING : r;
        }
    }
    if (result == CS_PENDING) {
        st = h->state.load(std::memory_order_acquire);
        // A completion is handed out only once the run that made it has let go of the
        // handle, so its owner may start the next operation at once.
        const bool running = h->flags.load(std::memory_order_acquire) & H_RUNNING;
        if (st == COM_ASYNC_DONE && !running) {
            result = CS_SUCCEED;
            if (pollflags & COM_ASYNC_POLL_TAKE) {
                int32_t expected = COM_ASYNC_DONE;
                if (!h->state.compare_exchange_strong(expected, COM_ASYNC_IDLE,
                                                      std::memory_order_acq_rel))
                    result = CS_QUIET; // taken by someone else meanwhile
            }
        } else if (st == COM_ASYNC_IDLE) {
            result = CS_QUIET;
        }
    }
    handle_unlock(h);
    return result;
}

COMN_API int32_t com__async_do_poll(ComAsyncManager *m, ComAsyncHandle *h, int32_t pollflags,
                                    ComAsyncHandle **found, int32_t *maywait) {
    if (found) *found = nullptr;
    if (maywait) *maywait = 0;
    auto note_wait = [&](ComAsyncHandle *x) {
        if (maywait && (x->flags.load(std::memory_order_acquire) & H_POLLRUN)) *maywait = 1;
    };
    if (pollflags & COM_ASYNC_POLL_ONE) {
        if (!h) return CS_FAIL;
        const int32_t r = com__async_poll_state(h, pollflags);
        if (found) *found = h;
        if (r == CS_PENDING) note_wait(h);
        return r;
    }
    if (!m) return CS_FAIL;
    if (int32_t r = access_enter(m); r != CS_SUCCEED) return r;
    m->flags.fetch_or(MGR_POLLING, std::memory_order_acq_rel);
    bool busy = false, pending = false, stopped = false;
    int32_t result = CS_QUIET;
    for (ComAsyncHandle *x = m->handles; x; x = x->next) {
        const int32_t r = com__async_poll_state(x, pollflags);
        if (r == CS_QUIET) continue;
        if (r == CS_PENDING) {
            pending = true;
            note_wait(x);
            continue;
        }
        if (r == CS_BUSY) {
            busy = true;
            continue;
        }
        if (found) *found = x;
        result = r;
        stopped = true;
        break;
    }
    m->flags.fetch_and(~MGR_POLLING, std::memory_order_acq_rel);
    const int32_t left = access_leave(m);
    if (!stopped) result = busy ? CS_BUSY : pending ? CS_PENDING : CS_QUIET;
    return left != CS_SUCCEED ? left : result;
}

// Polls until a completion or failure, or until the timeout, the wait routine or the end
// of an event wait says to stop. Event mode waits on the event before each poll for as
// long as the event wait stays requested (com_async_comp_event_wait ends it).
COMN_API int32_t com_async_poll(ComAsyncManager *m, ComAsyncHandle *h, int32_t timeout,
                                int32_t pollflags, ComAsyncHandle **found) {
    if (found) *found = nullptr;
    const bool single = pollflags & COM_ASYNC_POLL_ONE;
    if (single && !h) return CS_FAIL;
    if (!m) m = single ? h->manager : nullptr;
    if (!m) return CS_FAIL;
    if (ComAsyncChooseFunc choose = m->global->hooks.chooser) {
        if (ComAsyncManager *chosen = choose(m, single ? h : nullptr)) m = chosen;
    }
    ComAsyncHandle *target = single ? h : nullptr;
    const ComThreadCallbacks *ecb = single ? callbacks_of(h) : m->callbacks;
    void *event = single ? h->event : m->event;
    const bool event_mode = (pollflags & COM_ASYNC_POLL_EVENT) && can_wait_event(ecb);
    if (pollflags & COM_ASYNC_POLL_EVENT) {
        if (single)
            h->flags.fetch_or(H_EVENTWAIT, std::memory_order_acq_rel);
        else
            m->flags.fetch_or(MGR_EVENTWAIT, std::memory_order_acq_rel);
    }
    for (;;) {
        if (event_mode && event_armed(m, target)) {
            if (int32_t r = event_wait(ecb, event); r != CS_SUCCEED) return r;
        }
        ComAsyncHandle *hit = nullptr;
        int32_t maywait = 0;
        const int32_t r = com__async_do_poll(m, h, pollflags, &hit, &maywait);
        if (r == CS_BUSY) return CS_TIMED_OUT;
        if (r == CS_QUIET) {
            if (event_mode && event_armed(m, target)) continue;
            return CS_QUIET;
        }
        if (r != CS_PENDING) {
            if (found) *found = hit;
            return r;
        }
        if (timeout == 0 && !maywait) return CS_TIMED_OUT;
        if (event_mode && event_armed(m, target)) continue;
        if (!m->waitfunc) return CS_TIMED_OUT;
        int32_t w;
        do
            w = m->waitfunc(m, target, timeout);
        while (w == CS_INTERRUPT);
        if (w != CS_SUCCEED) return w;
    }
}

} // extern "C"
