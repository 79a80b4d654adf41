# Differential test of exact numerics against Python's decimal module: a driver answers
# parse, arithmetic and conversion requests; the script generates them (fixed seed) and
# checks every answer.
comn_add_test_driver(comn_numeric_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/oracle_driver.cpp)
comn_add_python_test(numeric_decimal_oracle numeric ${CMAKE_CURRENT_LIST_DIR}/decimal_oracle.py
  $<TARGET_FILE:comn_numeric_oracle_driver>)
