# Differential test of the money routines against Python's exact arithmetic: a small driver
# answers operations read from stdin; money_oracle.py generates fixed-seed cases and checks.
if(Python3_Interpreter_FOUND)
  add_executable(comn_money_oracle_driver ${CMAKE_CURRENT_LIST_DIR}/oracle_driver.cpp)
  target_link_libraries(comn_money_oracle_driver PRIVATE comn_static)
  target_include_directories(comn_money_oracle_driver PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_compile_options(comn_money_oracle_driver PRIVATE ${COMN_WARNINGS})
  add_test(NAME money_oracle
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/money_oracle.py
            $<TARGET_FILE:comn_money_oracle_driver>)
  set_tests_properties(money_oracle PROPERTIES LABELS money)
endif()
