# ICU is an optional baseline of the translation benchmark; iconv comes with the C library.
find_library(ICUUC icuuc)
find_path(ICU_INCLUDE unicode/ucnv.h)
if(ICUUC AND ICU_INCLUDE)
  target_link_libraries(${name} PRIVATE ${ICUUC})
  target_include_directories(${name} PRIVATE ${ICU_INCLUDE})
  target_compile_definitions(${name} PRIVATE HAVE_ICU)
endif()
