# Differential checks against Python's codecs (and unicodedata): the loaded single-byte
# character sets, and the utf8 set (translation both ways with every other set, ill-formed
# input, short destinations, the attribute record) with the Japanese sets among themselves.
# They load the shared library, so they stay out of sanitizer builds.
if(NOT COMN_SANITIZE)
  comn_add_python_test(intl_charsets_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_charsets.py
    $<TARGET_FILE:comn>)
  comn_add_python_test(intl_utf8_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_utf8.py
    $<TARGET_FILE:comn>)
endif()

# Differential check of the twenty single-byte translations, byte for byte and into short
# destinations, against Python's codecs and the departures listed by their generator.
if(NOT COMN_SANITIZE)
  comn_add_python_test(intl_xlate_single_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_xlate_single.py
    $<TARGET_FILE:comn> ${PROJECT_SOURCE_DIR}/tools/gen)
endif()

# The committed character sets, locale data and translation tables must be exactly what their
# generators write today.
foreach(gen charsets locales unicode_tables xlate_tables)
  comn_add_python_test(${gen}_generated intl ${PROJECT_SOURCE_DIR}/tools/gen/gen_${gen}.py --check
    ${PROJECT_SOURCE_DIR})
endforeach()
