// Assertions, pointer checks and the panic exit: each ends the process.
#include <cstdio>
#include <cstdlib>

#include "comnlib/msg.h"

extern "C" {

COMN_API void com__abort(void) {
    std::fclose(stderr);
    std::abort();
}

COMN_API void com_bomb(const char *file, int32_t line) {
    std::fprintf(stderr, "\n\rassertion failed, file '%s' line %d\n\r", file ? file : "",
                 static_cast<int>(line));
    com__abort();
}

COMN_API void com_chkptr(const void *ptr, const char *file, int32_t line) {
    if (ptr) return;
    std::fprintf(stderr, "\n\rInvalid pointer 0x%X, file '%s' line %d\n\r", 0u, file ? file : "",
                 static_cast<int>(line));
    com__abort();
}

COMN_API void com_chkfunc(void (*func)(void), const char *file, int32_t line) {
    if (func) return;
    std::fprintf(stderr, "\n\rInvalid pointer 0x%X, file '%s' line %d\n\r", 0u, file ? file : "",
                 static_cast<int>(line));
    com__abort();
}

COMN_API void com_panic(const char *message) {
    com_chkptr(message, __FILE__, __LINE__);
    std::fprintf(stderr, "\nINTERNAL ERROR: unrecoverable error: %s\n", message);
    std::fflush(stderr);
    std::exit(-1);
}

// Writes text to standard error, using it as the format (callers pass trusted texts).
COMN_API void com_perr(const char *text) {
    if (!text) return;
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#endif
    std::fprintf(stderr, text);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    std::fflush(stderr);
}
}
