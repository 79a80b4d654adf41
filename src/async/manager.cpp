/*
 * Managers of the asynchronous manager: one per connection context of the caller. A
 * manager owns a mutex and an event made from the caller's callback table, the list of its
 * handles (guarded by the caller's access lock), the caller's wait routine, and a place in
 * the application-global record's list of managers (guarded by the global mutex).
 */
#include "async/async_internal.h"

#include <cstdlib>
#include <new>

using namespace comn::async;

namespace {

void destroy_manager(ComAsyncManager *m) {
    event_delete(m->callbacks, m->event);
    mutex_delete(m->callbacks, m->mutex);
    m->~ComAsyncManager();
    comn::mem_free(m);
}

} // namespace

extern "C" {

COMN_API int32_t com_async_init(ComAsyncManager **out, ComAsyncWaitFunc waitfunc,
                                ComAsyncLockFunc accessfunc, int32_t flags,
                                const ComThreadCallbacks *callbacks) {
    if (!out) return CS_FAIL;
    *out = nullptr;
    void *mem = comn::mem_malloc(sizeof(ComAsyncManager));
    if (!mem) return CS_MEM_ERROR;
    auto *m = new (mem) ComAsyncManager{};
    m->waitfunc = waitfunc;
    m->accessfunc = accessfunc;
    m->callbacks = callbacks;
    m->flags.store(static_cast<uint32_t>(flags) & MGR_STATIC_GLOBAL, std::memory_order_relaxed);

    int32_t r = mutex_create(callbacks, &m->mutex);
    if (r != CS_SUCCEED) {
        m->~ComAsyncManager();
        comn::mem_free(m);
        return r;
    }
    if ((r = event_create(callbacks, &m->event)) != CS_SUCCEED) {
        mutex_delete(callbacks, m->mutex);
        m->~ComAsyncManager();
        comn::mem_free(m);
        return r;
    }
    ComAppGlobal *g = nullptr;
    r = com_appglobal_alloc(&g, callbacks,
                            flags & (COM_ASYNC_GLOBAL_STATIC | COM_ASYNC_GLOBAL_NOHOOKS));
    if (r != CS_SUCCEED) {
        destroy_manager(m);
        return r;
    }
    if ((r = lock_result(mutex_take(g->callbacks, g->mutex))) != CS_SUCCEED) {
        com_appglobal_drop(g, 0);
        destroy_manager(m);
        return r;
    }
    if (!(g->flags & GLOBAL_NOHOOKS)) {
        g->hooks.iopost = com__async_iopost;
        g->hooks.access = com__async_access;
    }
    m->global = g;
    list_push(g->managers, m);
    mutex_release(g->callbacks, g->mutex);
    *out = m;
    return CS_SUCCEED;
}

// Without force (1), refuses with CS_FAIL while any of the manager's handles runs.
COMN_API int32_t com_async_shut(ComAsyncManager *m, int32_t force) {
    if (!m) return CS_FAIL;
    if (int32_t r = access_enter(m); r != CS_SUCCEED) return r;
    if (force != 1) {
        for (ComAsyncHandle *h = m->handles; h; h = h->next) {
            if (h->state.load(std::memory_order_acquire) == COM_ASYNC_RUNNING) {
                access_leave(m);
                return CS_FAIL;
            }
        }
    }
    for (ComAsyncHandle *h = m->handles, *next; h; h = next) {
        next = h->next;
        free_handle(h);
    }
    m->handles = nullptr;
    access_leave(m);

    ComAppGlobal *g = m->global;
    if (int32_t r = lock_result(mutex_take(g->callbacks, g->mutex)); r != CS_SUCCEED) return r;
    list_unlink(g->managers, m);
    mutex_release(g->callbacks, g->mutex);
    com_appglobal_drop(g, 0);
    destroy_manager(m);
    return CS_SUCCEED;
}

// Hands every borrowed handle back to its home manager, then shuts with force.
COMN_API int32_t com_async_exit(ComAsyncManager *m) {
    if (!m) return CS_FAIL;
    for (ComAsyncHandle *h = m->handles, *next; h; h = next) {
        next = h->next;
        if (h->home != m) {
            if (int32_t r = com_async_assoc(h, h->home); r != CS_SUCCEED) return r;
        }
    }
    return com_async_shut(m, 1);
}

// Moves a handle into another manager's list: enters the old then the new manager's access
// lock, and leaves them in the same order.
COMN_API int32_t com_async_assoc(ComAsyncHandle *h, ComAsyncManager *to) {
    if (!h || !to) return CS_FAIL;
    ComAsyncManager *from = h->manager;
    if (from == to) return CS_SUCCEED;
    if (int32_t r = access_enter(from); r != CS_SUCCEED) return r;
    if (int32_t r = access_enter(to); r != CS_SUCCEED) {
        access_leave(from);
        return r;
    }
    list_unlink(from->handles, h);
    list_push(to->handles, h);
    h->manager = to;
    int32_t r1 = access_leave(from);
    int32_t r2 = access_leave(to);
    return r1 != CS_SUCCEED ? r1 : r2;
}

} // extern "C"
