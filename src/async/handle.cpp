/*
 * Handles of the asynchronous manager: one per operation. A handle carries a stack of
 * state functions filled from the top down (a push lowers the next index and stores the
 * function there, so the function pushed last runs first and a run raises the index), two
 * user values handed to every function, its state and flags, and one-shot checkpoint
 * functions kept in a list with a pool of free records (three made with the handle).
 */
#include "async/async_internal.h"

#include <cstdlib>
#include <new>

using namespace comn::async;

namespace {

constexpr int32_t DEFAULT_DEPTH = 32;
constexpr int32_t INITIAL_CHECKPOINTS = 3;

void free_checkpoints(Checkpoint *c) {
    while (c) {
        Checkpoint *next = c->next;
        comn::mem_free(c);
        c = next;
    }
}

} // namespace

namespace comn::async {

void free_handle(ComAsyncHandle *h) {
    const ComThreadCallbacks *cb = callbacks_of(h);
    event_delete(cb, h->event);
    mutex_delete(cb, h->mutex);
    free_checkpoints(h->checks);
    free_checkpoints(h->pool);
    h->~ComAsyncHandle();
    comn::mem_free(h);
}

int32_t run_checkpoint(ComAsyncHandle *h, int32_t mask, int32_t status) {
    Checkpoint **link = &h->checks;
    while (*link && !((*link)->mask & mask))
        link = &(*link)->next;
    Checkpoint *c = *link;
    if (!c) return status;
    *link = c->next;
    --h->check_count;
    ComAsyncStateFunc func = c->func;
    c->next = h->pool;
    h->pool = c;
    return func(h, h->user1, h->user2, status);
}

} // namespace comn::async

extern "C" {

// A depth of 0 asks for the default of 32 state functions.
COMN_API int32_t com_async_alloc(ComAsyncManager *m, ComAsyncHandle **out, int32_t depth) {
    if (!m || !out) return CS_FAIL;
    *out = nullptr;
    if (depth < 0) return CS_FAIL;
    if (depth == 0) depth = DEFAULT_DEPTH;
    static_assert(sizeof(ComAsyncHandle) % alignof(ComAsyncStateFunc) == 0);
    void *mem = comn::mem_malloc(sizeof(ComAsyncHandle) +
                                 static_cast<std::size_t>(depth) * sizeof(ComAsyncStateFunc));
    if (!mem) return CS_MEM_ERROR;
    auto *h = new (mem) ComAsyncHandle{};
    h->stack = reinterpret_cast<ComAsyncStateFunc *>(h + 1);
    h->manager = h->home = m;
    h->callbacks = m->callbacks;
    h->next_index = depth;
    h->top_index = depth - 1;
    h->status = CS_SUCCEED;
    h->comp_code = -1;
    h->state.store(COM_ASYNC_IDLE, std::memory_order_relaxed);

    int32_t r = mutex_create(m->callbacks, &h->mutex);
    if (r == CS_SUCCEED && (r = event_create(m->callbacks, &h->event)) != CS_SUCCEED) {
        mutex_delete(m->callbacks, h->mutex);
        h->mutex = nullptr;
    }
    if (r != CS_SUCCEED) {
        h->~ComAsyncHandle();
        comn::mem_free(h);
        return r;
    }
    for (int i = 0; i < INITIAL_CHECKPOINTS; ++i) {
        auto *c = static_cast<Checkpoint *>(comn::mem_malloc(sizeof(Checkpoint)));
        if (!c) {
            free_handle(h);
            return CS_MEM_ERROR;
        }
        c->next = h->pool;
        h->pool = c;
    }
    if ((r = access_enter(m)) != CS_SUCCEED) {
        free_handle(h);
        return r;
    }
    list_push(m->handles, h);
    access_leave(m); // the handle exists either way; the caller's lock reports its own failure
    *out = h;
    return CS_SUCCEED;
}

COMN_API int32_t com_async_drop(ComAsyncHandle *h) {
    if (!h) return CS_FAIL;
    ComAsyncManager *m = h->manager;
    if (int32_t r = access_enter(m); r != CS_SUCCEED) return r;
    list_unlink(m->handles, h);
    access_leave(m); // as in alloc: success means the handle is gone
    free_handle(h);
    return CS_SUCCEED;
}

COMN_API int32_t com_async_props(ComAsyncHandle *h, int32_t action, int32_t property, void *value) {
    if (!h || !value || (action != COM_ASYNC_SET && action != COM_ASYNC_GET)) return CS_FAIL;
    const bool set = action == COM_ASYNC_SET;
    switch (property) {
    case COM_ASYNC_PROP_USER1:
    case COM_ASYNC_PROP_USER2: {
        void *&field = property == COM_ASYNC_PROP_USER1 ? h->user1 : h->user2;
        if (set)
            field = *static_cast<void **>(value);
        else
            *static_cast<void **>(value) = field;
        return CS_SUCCEED;
    }
    case COM_ASYNC_PROP_FLAGS:
        if (set)
            h->flags.fetch_or(*static_cast<uint32_t *>(value), std::memory_order_acq_rel);
        else
            *static_cast<int32_t *>(value) = static_cast<int32_t>(h->flags.load());
        return CS_SUCCEED;
    default:
        return CS_FAIL;
    }
}

COMN_API int32_t com_async_push(ComAsyncHandle *h, ComAsyncStateFunc func) {
    if (!h || !func || h->next_index <= 0) return CS_FAIL;
    h->stack[--h->next_index] = func;
    return CS_SUCCEED;
}

COMN_API int32_t com_async_state(ComAsyncHandle *h, int32_t *state, int32_t *stacked) {
    if (!h) return CS_FAIL;
    if (state) *state = h->state.load(std::memory_order_acquire);
    if (stacked) *stacked = h->top_index + 1 - h->next_index;
    return CS_SUCCEED;
}

// Registers a one-shot checkpoint function, appended after those already registered.
COMN_API int32_t com_async_reg_checkfunc(ComAsyncHandle *h, ComAsyncStateFunc func, int32_t mask) {
    if (!h || !func) return CS_FAIL;
    ComAsyncManager *m = h->manager;
    if (int32_t r = access_enter(m); r != CS_SUCCEED) return r;
    Checkpoint *c = h->pool;
    if (c) {
        h->pool = c->next;
    } else if (!(c = static_cast<Checkpoint *>(comn::mem_malloc(sizeof(Checkpoint))))) {
        access_leave(m);
        return CS_MEM_ERROR;
    }
    c->next = nullptr;
    c->mask = mask;
    c->func = func;
    Checkpoint **tail = &h->checks;
    while (*tail)
        tail = &(*tail)->next;
    *tail = c;
    ++h->check_count;
    return access_leave(m);
}

} // extern "C"
