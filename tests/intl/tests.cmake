# Differential check of the loaded single-byte character sets against Python's codecs.
if(Python3_Interpreter_FOUND AND NOT COMN_SANITIZE)
  add_test(NAME intl_charsets_vs_python
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/check_charsets.py $<TARGET_FILE:comn>)
  set_tests_properties(intl_charsets_vs_python PROPERTIES
    ENVIRONMENT "VELDAR=${COMN_TEST_HOME}" LABELS intl)
endif()

# Differential check of the utf8 set (translation both ways with every other set, ill-formed
# input, short destinations, the attribute record) against Python's codecs and unicodedata.
if(Python3_Interpreter_FOUND AND NOT COMN_SANITIZE)
  add_test(NAME intl_utf8_vs_python
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/check_utf8.py $<TARGET_FILE:comn>)
  set_tests_properties(intl_utf8_vs_python PROPERTIES
    ENVIRONMENT "VELDAR=${COMN_TEST_HOME}" LABELS intl)
endif()
