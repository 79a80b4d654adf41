# Baseline for the text-to-numeric benchmark: GMP's mpz_set_str (benchmarks only).
find_library(GMP gmp)
find_path(GMP_INCLUDE gmp.h)
if(GMP AND GMP_INCLUDE)
  target_link_libraries(${name} PRIVATE ${GMP})
  target_include_directories(${name} PRIVATE ${GMP_INCLUDE})
  target_compile_definitions(${name} PRIVATE HAVE_GMP)
endif()
