# Differential test of the money routines against Python's exact arithmetic: a small driver
# answers operations read from stdin; money_oracle.py generates fixed-seed cases and checks.
# The driver is built twice, the second time with the portable inline addition and
# subtraction that compilers without checked-arithmetic builtins use.
comn_add_test_driver(comn_money_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/oracle_driver.cpp)
comn_add_test_driver(comn_money_portable_driver ${CMAKE_CURRENT_LIST_DIR}/oracle_driver.cpp)
target_compile_definitions(comn_money_portable_driver PRIVATE COMN_PORTABLE_INLINE)
comn_add_python_test(money_oracle money ${CMAKE_CURRENT_LIST_DIR}/money_oracle.py
  $<TARGET_FILE:comn_money_oracle_driver> $<TARGET_FILE:comn_money_portable_driver>)
