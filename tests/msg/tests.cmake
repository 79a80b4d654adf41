# The bundled message files must be exactly what the generator writes from the message list.
comn_add_python_test(msgfiles_generated msg ${PROJECT_SOURCE_DIR}/tools/gen/gen_msgfiles.py --check
  ${PROJECT_SOURCE_DIR})
