// Internals of the locale cache shared by its files and reachable by tests: the selection of a
// locale record from (context, data format). Its allocations are zero-filled blocks from the
// library's allocation seam (core/alloc.h).
#pragma once

#include <cstddef>

#include "comnlib/intl.h"
#include "core/alloc.h"

namespace comn {

// The record of a category 1..6 of a handle, or null.
LocaleRecord *category_record(const LocaleHandle *h, int32_t category);

} // namespace comn

namespace comn {

// Frees a common information record and its three name blocks; null is allowed.
void drop_common(CommonInfo *info);

} // namespace comn
