# Differential check of the calendar against Python's datetime: every day 1753-9999 cracked
# and made, and fixed-seed random differences and additions.
comn_add_test_driver(comn_datetime_oracle_helper ${CMAKE_CURRENT_LIST_DIR}/oracle_helper.cpp)
comn_add_python_test(datetime_python_oracle datetime ${CMAKE_CURRENT_LIST_DIR}/calendar_oracle.py
  $<TARGET_FILE:comn_datetime_oracle_helper>)
if(TEST datetime_python_oracle)
  set_tests_properties(datetime_python_oracle PROPERTIES TIMEOUT 300)
endif()
