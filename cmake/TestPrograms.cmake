# Functions that define test programs.

include(GoogleTest)
include(CommandTest)
include(MemoryCheck)

# vexa_test_program(NAME SOURCES...): a program that uses the libraries as a host does. Each of its tests is
# a test of ctest.
function(vexa_test_program name)
  add_executable(${name} ${ARGN})
  vexa_own_code(${name})
  target_link_libraries(${name} PRIVATE test_support GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
endfunction()

# vexa_inner_test_program(NAME SOURCES...): a program that contains the transformer's objects, for tests of what
# the library does not export. The tests set the platform's clock there.
function(vexa_inner_test_program name)
  add_executable(${name} ${ARGN})
  vexa_own_code(${name})
  # CMake does not pass on the objects of an object library through another one.
  target_link_libraries(
    ${name} PRIVATE inner_test_support vexa_transformer_objects vexa_function_objects
                    vexa_engine_objects GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
endfunction()

# vexa_single_test_program(NAME TEST SOURCES...): a program that is one test of ctest. Hundreds of processes
# would take longer than the tests in them. A test that is skipped is a failure.
function(vexa_single_test_program name test)
  add_executable(${name} ${ARGN})
  vexa_own_code(${name})
  target_link_libraries(${name} PRIVATE test_support GTest::gtest_main)
  vexa_command_test(${test} MATCHES "${VEXA_SOME_TESTS_PASSED}[0-9]* tests?\\.\n$" ERRORS ".*"
                    COMMAND ${name} --gtest_brief=1)
endfunction()
