# How test programs are made.

include(GoogleTest)
include(MemoryCheck)

# vexa_test_program(NAME SOURCES...): a program that uses the libraries as a host does. Each of its tests is
# a test of ctest.
function(vexa_test_program name)
  add_executable(${name} ${ARGN})
  vexa_own_code(${name})
  target_link_libraries(${name} PRIVATE test_support GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
endfunction()

# vexa_inner_test_program(NAME SOURCES...): a program with the transformer's objects inside, for tests of what
# the library hides. The tests set the platform's clock there.
function(vexa_inner_test_program name)
  add_executable(${name} ${ARGN})
  vexa_own_code(${name})
  # Objects do not travel through another library of objects.
  target_link_libraries(
    ${name} PRIVATE inner_test_support vexa_transformer_objects vexa_function_objects
                    vexa_engine_objects GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
endfunction()

# vexa_single_test_program(NAME TEST SOURCES...): a program that is one test of ctest. Hundreds of processes
# would take longer than what they test.
function(vexa_single_test_program name test)
  add_executable(${name} ${ARGN})
  vexa_own_code(${name})
  target_link_libraries(${name} PRIVATE test_support GTest::gtest_main)
  add_test(NAME ${test} COMMAND ${name} --gtest_brief=1)
endfunction()
