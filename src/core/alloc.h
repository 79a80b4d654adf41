// The library's one allocation seam. Every heap allocation of the library goes through
// mem_malloc, mem_calloc, mem_realloc or mem_strndup, and every block the library itself
// releases goes back through mem_free. The memory is plain malloc memory, so a block handed to
// a caller may still be released by the caller with free().
//
// The seam keeps two counters (allocations attempted, blocks outstanding) and one test hook:
// alloc_fail_at(n) makes the n-th allocation from now fail, and with `repeat` every one after
// it too, until alloc_fail_at(0) disarms it. The counters and the hook are atomics, so threaded
// tests may allocate while another thread reads them; arming the hook itself is meant for a
// single-threaded test that wants a chosen allocation to fail.
#pragma once

#include <cstddef>
#include <cstdint>

namespace comn {

// malloc, calloc and realloc with the seam's counting and failure injection. A realloc of
// null counts as a new block; a failed realloc leaves the old block as it was.
void *mem_malloc(size_t n);
void *mem_calloc(size_t count, size_t size);
void *mem_realloc(void *p, size_t n);
// Releases a block from the seam; null is allowed.
void mem_free(void *p);

// A copy of the first n bytes of s plus a terminator, or null when the allocation fails.
char *mem_strndup(const char *s, size_t n);

// What the seam has seen since the program started.
struct AllocStats {
    uint64_t attempts;   // allocation calls, failed ones included
    int64_t outstanding; // blocks allocated and not yet released through mem_free
    uint64_t failed;     // allocations the test hook made fail
};
AllocStats alloc_stats();

// Test hook: the n-th allocation from now (n >= 1) fails, and with repeat every allocation
// after it as well. n = 0 disarms the hook.
void alloc_fail_at(int64_t n, bool repeat = false);

} // namespace comn
