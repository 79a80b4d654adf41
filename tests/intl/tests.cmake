# Differential checks against Python's codecs and unicodedata: the character attribute records
# of the loaded sets and the translation converters with the dispatch table (single-byte
# tables against their generator's, utf8 both ways with every other set, ill-formed input and
# short destinations, the Japanese sets among themselves). They load the shared library, so
# they stay out of sanitizer builds.
if(NOT COMN_SANITIZE)
  comn_add_python_test(intl_charsets_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_charsets.py
    $<TARGET_FILE:comn>)
  comn_add_python_test(intl_xlate_vs_python intl ${CMAKE_CURRENT_LIST_DIR}/check_xlate.py
    $<TARGET_FILE:comn> ${PROJECT_SOURCE_DIR}/tools/gen)
endif()

# The committed character sets, locale data and translation tables must be exactly what their
# generators write today.
foreach(gen charsets locales unicode_tables xlate_tables)
  comn_add_python_test(${gen}_generated intl ${PROJECT_SOURCE_DIR}/tools/gen/gen_${gen}.py --check
    ${PROJECT_SOURCE_DIR})
endforeach()
