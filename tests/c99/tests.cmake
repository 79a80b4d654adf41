# The public headers must stay plain C99: compile the umbrella header from C with
# -pedantic-errors and call through the shared library.
add_executable(comn_c99_consumer ${CMAKE_CURRENT_LIST_DIR}/consumer.c)
target_compile_options(comn_c99_consumer PRIVATE -std=c99 -pedantic-errors -Wall -Wextra -Werror)
target_link_libraries(comn_c99_consumer PRIVATE comn)
add_test(NAME c99_consumer COMMAND comn_c99_consumer)

# Only the library's own names may leave libcomn.so. (Not in fuzzing builds: coverage
# instrumentation keeps standard-library templates out of line, and those are exported weak.)
if(NOT COMN_FUZZ)
add_test(NAME exported_symbols
  COMMAND ${CMAKE_COMMAND} -DLIB=$<TARGET_FILE:comn> -P ${CMAKE_CURRENT_LIST_DIR}/check_exports.cmake)
endif()

# The installed package works from CMake and from pkg-config (not under sanitizers, whose
# runtime the plain consumer would not link).
if(NOT COMN_SANITIZE)
  add_test(NAME install_and_consume
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/install_check.sh ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_LIST_DIR})
endif()
