// Cost of the asynchronous manager per operation: start, push three state functions, run
// them inline, complete, take the completion. Baseline: a bare loop calling the same three
// functions directly. Manager rows run without a callback table and with callbacks over
// POSIX mutexes; the "posted" rows suspend in the first function and resume through an
// inline I/O post, the path a client takes when its I/O completes on the caller's thread.
#include <comnlib/async.h>

#include <benchmark/benchmark.h>

#include <pthread.h>

namespace {

int32_t step1(ComAsyncHandle *, void *u1, void *, int32_t s) {
    return s + *static_cast<int32_t *>(u1);
}
int32_t step2(ComAsyncHandle *, void *, void *, int32_t s) {
    return s * 3;
}
// The last step adds its result to a sink, so both sides deliver the same checked sum.
int32_t step3(ComAsyncHandle *, void *, void *u2, int32_t s) {
    *static_cast<int64_t *>(u2) += s - 7;
    return s - 7;
}
int32_t suspend(ComAsyncHandle *, void *, void *, int32_t) {
    return CS_PENDING;
}

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
    return pthread_mutex_unlock(static_cast<pthread_mutex_t *>(m)) == 0 ? CS_SUCCEED : 0;
}
// Events are counters here: nobody waits on them in this single-threaded cycle.
int32_t create_event(void **e) {
    *e = new int(0);
    return CS_SUCCEED;
}
int32_t delete_event(void *e) {
    delete static_cast<int *>(e);
    return CS_SUCCEED;
}
int32_t signal_event(void *e) {
    ++*static_cast<int *>(e);
    return CS_SUCCEED;
}
int32_t wait_event(void *) {
    return CS_SUCCEED;
}
const ComThreadCallbacks posix_callbacks = {create_mutex, delete_mutex, take_mutex,   release_mutex,
                                            create_event, delete_event, signal_event, wait_event};

void BM_BareCalls(benchmark::State &state) {
    int32_t add = 5;
    int64_t sink = 0;
    ComAsyncStateFunc f1 = step1, f2 = step2, f3 = step3;
    benchmark::DoNotOptimize(f1);
    benchmark::DoNotOptimize(f2);
    benchmark::DoNotOptimize(f3);
    for (auto _ : state) {
        int32_t s = f1(nullptr, &add, &sink, CS_SUCCEED);
        s = f2(nullptr, &add, &sink, s);
        f3(nullptr, &add, &sink, s);
        benchmark::ClobberMemory();
    }
    if (sink != static_cast<int64_t>(state.iterations()) * 11) state.SkipWithError("wrong sum");
}
BENCHMARK(BM_BareCalls);

// Arguments: 0 no callback table, 1 POSIX mutexes; 0 run by the owner, 1 resumed by a post.
void BM_ManagerCycle(benchmark::State &state) {
    const bool posix = state.range(0) != 0, posted = state.range(1) != 0;
    ComAsyncManager *m = nullptr;
    ComAsyncHandle *h = nullptr;
    if (com_async_init(&m, nullptr, nullptr, 0, posix ? &posix_callbacks : nullptr) != CS_SUCCEED ||
        com_async_alloc(m, &h, 4) != CS_SUCCEED) {
        state.SkipWithError("set-up failed");
        return;
    }
    int32_t add = 5;
    int64_t sink = 0, codes = 0;
    void *u1 = &add, *u2 = &sink;
    uint32_t inl = COM_ASYNC_F_INLINE;
    com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_USER1, &u1);
    com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_USER2, &u2);
    com_async_props(h, COM_ASYNC_SET, COM_ASYNC_PROP_FLAGS, &inl);
    for (auto _ : state) {
        com_async_start(h);
        com_async_push(h, step3);
        com_async_push(h, step2);
        com_async_push(h, step1);
        if (posted) {
            com_async_push(h, suspend);
            com__async_runstack(h);
            com_async_iopost(h, CS_SUCCEED);
        } else {
            com__async_runstack(h);
        }
        com_async_complete(h, 1, CS_SUCCEED, COM_ASYNC_COMP_KEEP);
        ComAsyncHandle *found = nullptr;
        if (com_async_poll(m, h, 0, COM_ASYNC_POLL_ONE | COM_ASYNC_POLL_TAKE, &found) !=
            CS_SUCCEED) {
            state.SkipWithError("completion not taken");
            break;
        }
        int32_t code = 0;
        com_async_getcomp(h, nullptr, nullptr, &code, nullptr);
        codes += code;
    }
    if (sink != static_cast<int64_t>(state.iterations()) * 11 ||
        codes != static_cast<int64_t>(state.iterations()))
        state.SkipWithError("wrong sum");
    com_async_shut(m, 1);
}
BENCHMARK(BM_ManagerCycle)
    ->ArgNames({"posix", "posted"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({0, 1})
    ->Args({1, 1});

} // namespace
