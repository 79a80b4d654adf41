// The allocation seam: counting wrappers over the C allocator and the "fail the n-th
// allocation" test hook. While the hook is disarmed an allocation costs one relaxed load and
// two relaxed increments beyond the allocator itself.
#include "core/alloc.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace comn {
namespace {

std::atomic<uint64_t> attempts{0};
std::atomic<int64_t> outstanding{0};
std::atomic<uint64_t> failed{0};

// Allocations left before the one that fails (0: disarmed), and whether failing continues.
std::atomic<int64_t> countdown{0};
std::atomic<bool> repeating{false};
std::atomic<bool> tripped{false};

// Counts the attempt and decides whether the hook fails it.
bool inject_failure() {
    attempts.fetch_add(1, std::memory_order_relaxed);
    if (tripped.load(std::memory_order_relaxed)) {
        failed.fetch_add(1, std::memory_order_relaxed);
        return true;
    }
    if (countdown.load(std::memory_order_relaxed) <= 0) return false;
    if (countdown.fetch_sub(1, std::memory_order_relaxed) != 1) return false;
    if (repeating.load(std::memory_order_relaxed)) tripped.store(true, std::memory_order_relaxed);
    failed.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void *counted(void *p) {
    if (p) outstanding.fetch_add(1, std::memory_order_relaxed);
    return p;
}

} // namespace

void *mem_malloc(size_t n) {
    return inject_failure() ? nullptr : counted(std::malloc(n));
}

void *mem_calloc(size_t count, size_t size) {
    return inject_failure() ? nullptr : counted(std::calloc(count, size));
}

void *mem_realloc(void *p, size_t n) {
    if (!p) return mem_malloc(n);
    return inject_failure() ? nullptr : std::realloc(p, n);
}

void mem_free(void *p) {
    if (!p) return;
    outstanding.fetch_sub(1, std::memory_order_relaxed);
    std::free(p);
}

char *mem_strndup(const char *s, size_t n) {
    auto *copy = static_cast<char *>(mem_malloc(n + 1));
    if (!copy) return nullptr;
    if (n) std::memcpy(copy, s, n);
    copy[n] = '\0';
    return copy;
}

AllocStats alloc_stats() {
    return {attempts.load(std::memory_order_relaxed), outstanding.load(std::memory_order_relaxed),
            failed.load(std::memory_order_relaxed)};
}

void alloc_fail_at(int64_t n, bool repeat) {
    tripped.store(false, std::memory_order_relaxed);
    repeating.store(repeat, std::memory_order_relaxed);
    countdown.store(n > 0 ? n : 0, std::memory_order_relaxed);
}

} // namespace comn
