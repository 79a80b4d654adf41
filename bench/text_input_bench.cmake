# Baseline for the text-to-numeric benchmark: GMP's mpz_set_str, found as for the numeric benchmark.
include(${CMAKE_CURRENT_LIST_DIR}/numeric_bench.cmake)
