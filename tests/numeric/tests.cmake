# Differential test of exact numerics against Python's decimal module: a driver answers
# parse, arithmetic and conversion requests; the script generates them (fixed seed) and
# checks every answer.
add_executable(comn_numeric_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/oracle_driver.cpp)
target_link_libraries(comn_numeric_oracle_driver PRIVATE comn_static)
target_compile_options(comn_numeric_oracle_driver PRIVATE ${COMN_WARNINGS})
if(Python3_Interpreter_FOUND)
  add_test(NAME numeric_decimal_oracle
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/decimal_oracle.py
            $<TARGET_FILE:comn_numeric_oracle_driver>)
  set_tests_properties(numeric_decimal_oracle PROPERTIES LABELS numeric)
endif()
