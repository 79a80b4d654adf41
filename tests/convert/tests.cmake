# Differential test of the money, numeric and cross conversions against Python's decimal
# module: a driver answers conversion requests; the script generates them (fixed seed) and
# checks every answer.
add_executable(comn_convert_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/cross_oracle_driver.cpp)
target_link_libraries(comn_convert_oracle_driver PRIVATE comn_static)
target_compile_options(comn_convert_oracle_driver PRIVATE ${COMN_WARNINGS})
find_package(Python3 COMPONENTS Interpreter QUIET)
if(Python3_Interpreter_FOUND)
  add_test(NAME convert_cross_decimal_oracle
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/cross_oracle.py
            $<TARGET_FILE:comn_convert_oracle_driver>)
  set_tests_properties(convert_cross_decimal_oracle PROPERTIES LABELS convert)
endif()

# The table test opens the shared library to find each routine the default table names.
target_compile_definitions(comn_convert_tests PRIVATE COMN_SHARED_LIB="$<TARGET_FILE:comn>")
target_link_libraries(comn_convert_tests PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(comn_convert_tests comn)
