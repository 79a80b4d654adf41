// Status tracing and the debug output stream.
//
// Com_trace_enable selects the level: 1 traces nothing, 2 traces failures (statuses that are
// part of normal flow are skipped), 3 traces every status. A trace line names the status (or
// its number when it has no name) and the source file without its directories.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "comnlib/msg.h"

extern "C" {

int32_t Com_trace_enable = COM_TRACE_OFF;
FILE *Com_fp = nullptr;

COMN_API int32_t com_errset(int32_t level) {
    COM_ASSERT(level >= COM_TRACE_OFF && level <= COM_TRACE_ALL);
    Com_trace_enable = level;
    return level - 1;
}

COMN_API int32_t comn_debug_vprint(const char *format, va_list args) {
    FILE *out = Com_fp ? Com_fp : stdout;
    std::vfprintf(out, format, args);
    std::fflush(out);
    return CS_SUCCEED;
}

COMN_API int32_t comn_debug_print(const char *format, ...) {
    va_list args;
    va_start(args, format);
    comn_debug_vprint(format, args);
    va_end(args);
    return CS_SUCCEED;
}

COMN_API int32_t comn_debug_setfile(ComContext *, const char *path, int32_t on) {
    if (on && path) {
        // A stream that is already open stays open; the new one takes its place.
        FILE *f = std::fopen(path, "w");
        if (!f) return 0;
        Com_fp = f;
        return CS_SUCCEED;
    }
    if (Com_fp) std::fclose(Com_fp);
    Com_fp = nullptr;
    return CS_SUCCEED;
}

COMN_API int32_t com_errtrace(int32_t status, const char *file, int32_t line) {
    if (Com_trace_enable == COM_TRACE_OFF) return status;
    if (Com_trace_enable == COM_TRACE_FAILURES) {
        switch (status) {
        case CS_SUCCEED:
        case CS_PENDING:
        case CS_END_DATA:
        case CS_END_RESULTS:
        case CS_END_ITEM:
        case CS_INTERRUPT:
            return status;
        default:
            break;
        }
    }
    const int32_t depth = com__get_stack_depth();
    COM_ASSERT(depth >= 0);
    for (int32_t i = 0; i < depth; ++i)
        comn_debug_print(".");

    const char *base = file ? file : "";
    if (const char *slash = std::strrchr(base, '/')) base = slash + 1;
    for (const ComErrorName &e : Com_errors) {
        if (e.code == status) {
            comn_debug_print("(%s) file %s, line %d\n", e.name, base, static_cast<int>(line));
            return status;
        }
    }
    comn_debug_print("(%ld) file %s, line %d\n", static_cast<long>(status), base,
                     static_cast<int>(line));
    return status;
}

// The call-depth counter of the trace; this build keeps no call stack.
COMN_API int32_t com__get_stack_depth(void) {
    return 0;
}
COMN_API void com_dbginit(void) {}
}
