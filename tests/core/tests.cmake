# The table test opens the shared library to find each routine the default table names.
target_compile_definitions(comn_core_tests PRIVATE COMN_SHARED_LIB="$<TARGET_FILE:comn>")
target_link_libraries(comn_core_tests PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(comn_core_tests comn)
