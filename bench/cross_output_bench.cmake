# Baseline for numeric-to-text: GMP's mpz_get_str, found as for the numeric benchmark.
include(${CMAKE_CURRENT_LIST_DIR}/numeric_bench.cmake)
