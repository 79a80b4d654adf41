// Drives the asynchronous manager with arbitrary sequences of calls: two managers, up to
// six handles, scripted state and checkpoint functions, posts, polls, restarts, aborts,
// moves between managers, failing locks and failing allocations. Any sequence must end
// without a crash, a leak, an unbalanced lock or a mutex taken twice.
#include <comnlib/async.h>

#include "async/async_internal.h"
#include "core/alloc.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

struct Mutex {
    int depth;
};
int live_objects = 0;
int fail_lock_in = 0; // the nth lock from now answers 0

void check(bool ok) {
    if (!ok) __builtin_trap();
}

int32_t create_obj(void **p) {
    *p = std::calloc(1, sizeof(Mutex));
    ++live_objects;
    return CS_SUCCEED;
}
int32_t delete_obj(void *p) {
    if (p) {
        check(static_cast<Mutex *>(p)->depth == 0);
        std::free(p);
        --live_objects;
    }
    return CS_SUCCEED;
}
int32_t take(void *p) {
    if (fail_lock_in > 0 && --fail_lock_in == 0) return 0;
    check(static_cast<Mutex *>(p)->depth++ == 0);
    return CS_SUCCEED;
}
int32_t release(void *p) {
    check(--static_cast<Mutex *>(p)->depth == 0);
    return CS_SUCCEED;
}
int32_t signal(void *) {
    return CS_SUCCEED;
}
// No wait slot: a real event wait would block, which one thread cannot undo.
const ComThreadCallbacks callbacks = {create_obj, delete_obj, take,   release,
                                      create_obj, delete_obj, signal, nullptr};

// The access lock may be entered again by the thread holding it (a poll walk runs stacks).
int access_depth = 0;
int32_t access(ComAsyncManager *, int32_t action) {
    if (action == COM_ASYNC_ENTER && fail_lock_in > 0 && --fail_lock_in == 0) return 0;
    access_depth += action == COM_ASYNC_ENTER ? 1 : -1;
    check(access_depth >= 0);
    return CS_SUCCEED;
}

int32_t wait_once(ComAsyncManager *, ComAsyncHandle *, int32_t) {
    return CS_TIMED_OUT;
}

// State functions: each behaves by its own rule so the stack does the interesting parts.
int32_t pass(ComAsyncHandle *, void *, void *, int32_t s) {
    return s;
}
int32_t pend(ComAsyncHandle *, void *, void *, int32_t) {
    return CS_PENDING;
}
int32_t fail(ComAsyncHandle *, void *, void *, int32_t) {
    return CS_FAIL;
}
int32_t done(ComAsyncHandle *h, void *, void *, int32_t s) {
    com_async_complete(h, 3, s, COM_ASYNC_COMP_KEEP);
    return CS_SUCCEED;
}
int32_t done_idle(ComAsyncHandle *h, void *, void *, int32_t s) {
    com_async_complete(h, 4, s, 0);
    return s;
}
int32_t again(ComAsyncHandle *h, void *, void *, int32_t s) {
    com_async_restart(h, s);
    return CS_PENDING;
}
constexpr ComAsyncStateFunc funcs[] = {pass, pend, fail, done, done_idle, again};

struct Tracked {
    ComAsyncHandle *h;
    int home;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    comn::alloc_fail_at(0);
    fail_lock_in = 0;
    ComAsyncManager *m[2] = {};
    if (com_async_init(&m[0], wait_once, access, 0, &callbacks) != CS_SUCCEED ||
        com_async_init(&m[1], nullptr, nullptr, COM_ASYNC_GLOBAL_STATIC, nullptr) != CS_SUCCEED)
        __builtin_trap();
    Tracked hs[6] = {};
    int count = 0;
    size_t pos = 0;
    auto next = [&]() -> uint8_t { return pos < size ? data[pos++] : 0; };

    while (pos < size) {
        const uint8_t op = next(), arg = next();
        Tracked *t = count ? &hs[arg % count] : nullptr;
        ComAsyncHandle *h = t ? t->h : nullptr;
        ComAsyncHandle *found = nullptr;
        int32_t out = 0;
        switch (op % 18) {
        case 0:
            if (count < 6) {
                const int mi = arg & 1;
                if (com_async_alloc(m[mi], &hs[count].h, (arg >> 1) % 5) == CS_SUCCEED)
                    hs[count++].home = mi;
            }
            break;
        case 1: // only idle handles are dropped: a running chain still uses its handle
            if (h && (com_async_state(h, &out, nullptr), out != COM_ASYNC_RUNNING) &&
                com_async_drop(h) == CS_SUCCEED)
                *t = hs[--count];
            break;
        case 2:
            if (h) com_async_push(h, funcs[(arg >> 3) % 6]);
            break;
        case 3:
            if (h) com_async_start(h);
            break;
        case 4:
            if (h) com__async_runstack(h);
            break;
        case 5:
            if (h) com_async_iopost(h, static_cast<int8_t>(next()));
            break;
        case 6:
            if (h) com_async_restart(h, static_cast<int8_t>(next()));
            break;
        case 7:
            if (h) com_async_abort(h);
            break;
        case 8:
            if (h) com_async_complete(h, arg, CS_SUCCEED, next() & 6);
            break;
        case 9:
            com_async_poll(m[arg & 1], nullptr, (arg >> 1) & 1, arg & 12, &found);
            break;
        case 10:
            if (h)
                com_async_poll(nullptr, h, (arg >> 1) & 1, COM_ASYNC_POLL_ONE | (arg & 12), &found);
            break;
        case 11:
            if (h) {
                uint32_t f = next() & 7;
                com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &f);
            }
            break;
        case 12:
            if (h) com_async_reg_checkfunc(h, funcs[(arg >> 3) % 6], next() & 6);
            break;
        case 13:
            if (h) com_async_assoc(h, m[next() & 1]);
            break;
        case 14:
            com_async_get_hndl_by_func(m[arg & 1], next() & 5, h, &found, arg % 5);
            break;
        case 15:
            if (h) {
                com_async_status(h, &out);
                com_async_getcomp(h, nullptr, nullptr, &out, &out);
                com_async_comp_event_wait(h);
            }
            com__async_access(m[0]->global);
            break;
        case 16:
            fail_lock_in = arg % 8;
            break;
        case 17:
            comn::alloc_fail_at(arg % 8);
            break;
        }
    }

    // Every handle goes home, then both managers shut, releasing everything.
    fail_lock_in = 0;
    comn::alloc_fail_at(0);
    for (int i = 0; i < count; ++i)
        check(com_async_assoc(hs[i].h, m[hs[i].home]) == CS_SUCCEED);
    check(com_async_shut(m[1], 1) == CS_SUCCEED);
    check(com_async_shut(m[0], 1) == CS_SUCCEED);
    check(access_depth == 0);
    check(live_objects == 0);
    return 0;
}
