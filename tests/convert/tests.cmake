# Differential test of the money, numeric and cross conversions against Python's decimal
# module: a driver answers conversion requests; the script generates them (fixed seed) and
# checks every answer.
comn_add_test_driver(comn_convert_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/cross_oracle_driver.cpp)
comn_add_python_test(convert_cross_decimal_oracle convert ${CMAKE_CURRENT_LIST_DIR}/cross_oracle.py
  $<TARGET_FILE:comn_convert_oracle_driver>)

# The table test opens the shared library to find each routine the default table names.
target_compile_definitions(comn_convert_tests PRIVATE COMN_SHARED_LIB="$<TARGET_FILE:comn>")
target_link_libraries(comn_convert_tests PRIVATE ${CMAKE_DL_LIBS})
add_dependencies(comn_convert_tests comn)

