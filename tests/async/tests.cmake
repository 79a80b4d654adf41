# The threaded test of the asynchronous manager runs in its own executable so that the
# tsan preset can run it alone under ThreadSanitizer (label tsan); the ordinary presets
# run it too (label async). Its source is not named *_test.cpp, so the folder's
# single-threaded executable does not pick it up.
find_package(Threads REQUIRED)
add_executable(comn_async_thread_tests ${CMAKE_CURRENT_LIST_DIR}/thread_stress.cpp)
target_link_libraries(comn_async_thread_tests PRIVATE comn_static GTest::gtest GTest::gtest_main
  Threads::Threads)
target_include_directories(comn_async_thread_tests PRIVATE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(comn_async_thread_tests PRIVATE ${COMN_WARNINGS})
# One CTest entry for the whole executable: its labels and environment are then set as lists.
add_test(NAME async_threads COMMAND comn_async_thread_tests)
set_tests_properties(async_threads PROPERTIES LABELS "tsan;async"
  ENVIRONMENT "VELDAR=${COMN_TEST_HOME};TSAN_OPTIONS=halt_on_error=1 second_deadlock_stack=1")
