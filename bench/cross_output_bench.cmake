# Baseline for numeric-to-text: GMP's mpz_get_str, found as for the numeric benchmark.
include(${CMAKE_CURRENT_LIST_DIR}/numeric_bench.cmake)
# The date baseline is glibc's strftime with its %l (blank-padded 12-hour clock), which
# -Wpedantic reports as outside ISO C++.
target_compile_options(${name} PRIVATE -Wno-format)
