/*
 * The application-global record of the asynchronous manager: reference counted, either the
 * static Application_global or a fresh allocation. It holds the list of managers, the
 * caller's callback table with one mutex made from it, and the hooks managers read (the
 * post routine, the access test) or the caller supplies (manager chooser, start hook).
 * Also the access test itself.
 */
#include "async/async_internal.h"

#include <cstdlib>
#include <cstring>

using namespace comn::async;

extern "C" {

COMN_API ComAppGlobal Application_global = {};

COMN_API int32_t com_appglobal_alloc(ComAppGlobal **global, const ComThreadCallbacks *callbacks,
                                     int32_t flags) {
    if (!global) return CS_FAIL;
    *global = nullptr;
    ComAppGlobal *g;
    if (flags & GLOBAL_STATIC) {
        g = &Application_global;
        if (g->refcount > 0) {
            // Later users share the record and the callbacks of the first.
            if (int32_t r = lock_result(mutex_take(g->callbacks, g->mutex)); r != CS_SUCCEED)
                return r;
            ++g->refcount;
            mutex_release(g->callbacks, g->mutex);
            *global = g;
            return CS_SUCCEED;
        }
    } else {
        g = static_cast<ComAppGlobal *>(comn::mem_malloc(sizeof(ComAppGlobal)));
        if (!g) return CS_MEM_ERROR;
    }
    std::memset(g, 0, sizeof *g);
    g->flags = static_cast<uint32_t>(flags) & (GLOBAL_STATIC | GLOBAL_NOHOOKS);
    g->callbacks = callbacks;
    if (int32_t r = mutex_create(callbacks, &g->mutex); r != CS_SUCCEED) {
        if (g == &Application_global)
            std::memset(g, 0, sizeof *g);
        else
            comn::mem_free(g);
        return r;
    }
    g->refcount = 1;
    *global = g;
    return CS_SUCCEED;
}

// The record itself tells whether it is the static one, so flags are not consulted.
COMN_API int32_t com_appglobal_drop(ComAppGlobal *g, int32_t /*flags*/) {
    if (!g || g->refcount <= 0) return CS_FAIL;
    if (int32_t r = lock_result(mutex_take(g->callbacks, g->mutex)); r != CS_SUCCEED) return r;
    if (g->refcount > 1) {
        --g->refcount;
        return mutex_release(g->callbacks, g->mutex);
    }
    if (g->managers) { // the last reference cannot go while a manager still hangs off it
        mutex_release(g->callbacks, g->mutex);
        return CS_FAIL;
    }
    mutex_release(g->callbacks, g->mutex);
    int32_t r = mutex_delete(g->callbacks, g->mutex);
    if (g == &Application_global)
        std::memset(g, 0, sizeof *g);
    else
        comn::mem_free(g);
    return r;
}

COMN_API int32_t com_appglobal_hooks(ComAppGlobal *g, int32_t action, ComAsyncHooks *hooks) {
    if (!g || !hooks) return CS_FAIL;
    if (action == COM_ASYNC_SET)
        g->hooks = *hooks;
    else if (action == COM_ASYNC_GET)
        *hooks = g->hooks;
    else
        return CS_FAIL;
    return CS_SUCCEED;
}

// No operation of any manager may be ready or running for the caller to get access.
// Handle lists are read under the global mutex only: the caller keeps handle allocation
// and release apart from this test.
COMN_API int32_t com__async_access(ComAppGlobal *g) {
    if (!g) return CS_FAIL;
    if (int32_t r = lock_result(mutex_take(g->callbacks, g->mutex)); r != CS_SUCCEED) return r;
    int32_t result = CS_SUCCEED;
    for (ComAsyncManager *m = g->managers; m && result == CS_SUCCEED; m = m->next) {
        for (ComAsyncHandle *h = m->handles; h; h = h->next) {
            int32_t st = h->state.load(std::memory_order_acquire);
            if (st == COM_ASYNC_READY || st == COM_ASYNC_RUNNING) {
                result = CS_FAIL;
                break;
            }
        }
    }
    mutex_release(g->callbacks, g->mutex);
    return result;
}

} // extern "C"
