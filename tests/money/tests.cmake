# Differential test of the money routines against Python's exact arithmetic: a small driver
# answers operations read from stdin; money_oracle.py generates fixed-seed cases and checks.
comn_add_test_driver(comn_money_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/oracle_driver.cpp)
comn_add_python_test(money_oracle money ${CMAKE_CURRENT_LIST_DIR}/money_oracle.py
  $<TARGET_FILE:comn_money_oracle_driver>)
