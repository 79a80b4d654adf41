# Differential checks against Python's codecs (and unicodedata): the loaded single-byte
# character sets, and the utf8 set (translation both ways with every other set, ill-formed
# input, short destinations, the attribute record). They load the shared library, so they
# stay out of sanitizer builds.
if(NOT COMN_SANITIZE)
  comn_add_python_test(intl_charsets_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_charsets.py
    $<TARGET_FILE:comn>)
  comn_add_python_test(intl_utf8_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_utf8.py
    $<TARGET_FILE:comn>)
endif()
