target_compile_definitions(${name} PRIVATE COMN_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
