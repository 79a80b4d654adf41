/*
 * Completion of operations: recording a completion (com_async_complete), asking whether a
 * handle is done, reading its completion, finding a completed handle by completion code,
 * and ending an event wait.
 */
#include "async/async_internal.h"

using namespace comn::async;

extern "C" {

// Refused unless the handle runs or COM_ASYNC_COMP_ANYSTATE is given. A completion
// checkpoint may replace a successful completion status with its own failure. The state
// is published last, so whoever sees it also sees the code and status.
COMN_API int32_t com_async_complete(ComAsyncHandle *h, int32_t code, int32_t status,
                                    int32_t flags) {
    if (!h) return CS_FAIL;
    if (h->state.load(std::memory_order_acquire) != COM_ASYNC_RUNNING &&
        !(flags & COM_ASYNC_COMP_ANYSTATE))
        return CS_FAIL;
    h->comp_code = code;
    h->comp_status = status;
    if (h->check_count > 0) {
        const int32_t r = run_checkpoint(h, COM_ASYNC_CHECK_COMPLETE, status);
        if (r != CS_SUCCEED && status == CS_SUCCEED) h->comp_status = r;
    }
    h->state.store(flags & COM_ASYNC_COMP_KEEP ? COM_ASYNC_DONE : COM_ASYNC_IDLE,
                   std::memory_order_release);
    return CS_SUCCEED;
}

COMN_API int32_t com_async_status(ComAsyncHandle *h, int32_t *out) {
    if (!h || !out) return CS_FAIL;
    ComAsyncManager *m = h->manager;
    if (int32_t r = access_enter(m); r != CS_SUCCEED) return r;
    const int32_t st = h->state.load(std::memory_order_acquire);
    *out =
        st == COM_ASYNC_IDLE || st == COM_ASYNC_DONE ? COM_ASYNC_STAT_DONE : COM_ASYNC_STAT_PENDING;
    return access_leave(m);
}

COMN_API int32_t com_async_getcomp(ComAsyncHandle *h, void **user1, void **user2, int32_t *code,
                                   int32_t *status) {
    if (!h) return CS_FAIL;
    if (user1) *user1 = h->user1;
    if (user2) *user2 = h->user2;
    if (code) *code = h->comp_code;
    if (status) *status = h->comp_status;
    return CS_SUCCEED;
}

// 1 when a completed handle with the code is found, else 0. As with polls, a handle whose
// run has not yet let go of it does not count as completed.
COMN_API int32_t com_async_get_hndl_by_func(ComAsyncManager *m, int32_t flags, ComAsyncHandle *ref,
                                            ComAsyncHandle **found, int32_t code) {
    if (found) *found = nullptr;
    if (!m || !found || ((flags & COM_ASYNC_MATCH_USER1) && !ref)) return 0;
    if (access_enter(m) != CS_SUCCEED) return 0;
    int32_t result = 0;
    for (ComAsyncHandle *h = m->handles; h; h = h->next) {
        if (h->state.load(std::memory_order_acquire) != COM_ASYNC_DONE ||
            (h->flags.load(std::memory_order_acquire) & H_RUNNING) || h->comp_code != code)
            continue;
        if ((flags & COM_ASYNC_MATCH_USER1) && h->user1 != ref->user1) continue;
        if (flags & COM_ASYNC_MATCH_TAKE) {
            int32_t expected = COM_ASYNC_DONE;
            if (!h->state.compare_exchange_strong(expected, COM_ASYNC_IDLE,
                                                  std::memory_order_acq_rel))
                continue;
        }
        *found = h;
        result = 1;
        break;
    }
    access_leave(m);
    return result;
}

// Ends an event wait on the handle and then on its manager, signalling each event that
// had one requested, so a poller blocked in event mode wakes and stops waiting.
COMN_API int32_t com_async_comp_event_wait(ComAsyncHandle *h) {
    if (!h) return CS_FAIL;
    if (int32_t r = handle_lock(h); r != CS_SUCCEED) return r;
    if (h->flags.fetch_and(~H_EVENTWAIT, std::memory_order_acq_rel) & H_EVENTWAIT)
        event_signal(callbacks_of(h), h->event);
    handle_unlock(h);
    ComAsyncManager *m = h->manager;
    if (int32_t r = lock_result(mutex_take(m->callbacks, m->mutex)); r != CS_SUCCEED) return r;
    if (m->flags.fetch_and(~MGR_EVENTWAIT, std::memory_order_acq_rel) & MGR_EVENTWAIT)
        event_signal(m->callbacks, m->event);
    return mutex_release(m->callbacks, m->mutex);
}

} // extern "C"
