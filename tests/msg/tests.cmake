# The bundled message files must be exactly what the generator writes from the message list.
if(Python3_Interpreter_FOUND)
  add_test(NAME msgfiles_generated
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/gen/gen_msgfiles.py --check
            ${PROJECT_SOURCE_DIR})
  set_tests_properties(msgfiles_generated PROPERTIES LABELS msg)
endif()
