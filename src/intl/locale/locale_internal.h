// Internals of the locale cache shared by its files and reachable by tests: the allocation
// seam every allocation of the cache goes through, and the selection of a locale record from
// (context, data format).
#pragma once

#include <cstddef>

#include "comnlib/intl.h"

namespace comn {

// Zero-filled allocation of n bytes, or null. Every allocation of a locale load, of the
// common information and of a locale handle goes through this pointer (std::calloc by
// default), so that a test can fail the n-th one. Freed with std::free.
extern void *(*locale_calloc)(size_t n);

inline void *loc_alloc(size_t n) {
    return locale_calloc(n);
}

// A copy of the first n bytes of s, terminated; null when the allocation fails.
char *loc_strndup(const char *s, size_t n);

// The record of a category 1..6 of a handle, or null.
LocaleRecord *category_record(const LocaleHandle *h, int32_t category);

} // namespace comn

namespace comn {

// Frees a common information record and its three name blocks; null is allowed.
void drop_common(CommonInfo *info);

} // namespace comn
