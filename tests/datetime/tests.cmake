# Differential check of the calendar against Python's datetime: every day 1753-9999 cracked
# and made, and fixed-seed random differences and additions.
add_executable(comn_datetime_oracle_helper ${CMAKE_CURRENT_LIST_DIR}/oracle_helper.cpp)
target_link_libraries(comn_datetime_oracle_helper PRIVATE comn_static)
target_compile_options(comn_datetime_oracle_helper PRIVATE ${COMN_WARNINGS})
if(Python3_Interpreter_FOUND)
  add_test(NAME datetime_python_oracle
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/calendar_oracle.py
            $<TARGET_FILE:comn_datetime_oracle_helper>)
  set_tests_properties(datetime_python_oracle PROPERTIES LABELS datetime TIMEOUT 120)
endif()
