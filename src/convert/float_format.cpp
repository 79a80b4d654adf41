// The process-wide float format setting, Com__fltfmt. It is stored and handed back for the
// callers that keep their float display preference here; the conversions never read it
// (floats always print with 17 significant digits). Reads and writes are relaxed atomic
// accesses, so threads that set and read it concurrently see one value or the other.
#include <atomic>

#include "comnlib/convert.h"

extern "C" {

COMN_API int32_t Com__fltfmt = 0;

COMN_API int32_t com_getfltfmt(void) {
    return std::atomic_ref<int32_t>(Com__fltfmt).load(std::memory_order_relaxed);
}

COMN_API int32_t com_setfltfmt(int32_t fltfmt) {
    std::atomic_ref<int32_t>(Com__fltfmt).store(fltfmt, std::memory_order_relaxed);
    return CS_SUCCEED;
}
}
