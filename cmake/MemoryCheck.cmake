# vexa_memory_check(TARGET [LEAKING PATTERN...] [SLOW PATTERN...]): runs a test program under valgrind, as a test of
# its own. It fails at any error, and at any leak except those that tests/valgrind.supp lists with their causes.
# Patterns are those of GoogleTest. LEAKING tests are those in which the engine itself leaks memory: these run
# separately, and only errors count there. SLOW ones are left to AddressSanitizer: each takes minutes here.

include(CommandTest)
find_program(VALGRIND valgrind REQUIRED)

# GoogleTest succeeds if a filter selects no test, or only tests that are skipped.
set(VEXA_SOME_TESTS_PASSED "\\[  PASSED  \\] [1-9]")

function(vexa_memory_check target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LEAKING;SLOW")
  set(special_tests ${arg_LEAKING} ${arg_SLOW})
  list(JOIN special_tests ":" excluded_tests)
  add_memory_test(Memory.${target} ${target} "-${excluded_tests}" --leak-check=full
                  --errors-for-leak-kinds=definite,indirect,possible
                  "--suppressions=${PROJECT_SOURCE_DIR}/tests/valgrind.supp")
  if(arg_LEAKING)
    list(JOIN arg_LEAKING ":" leaking_tests)
    add_memory_test(Memory.${target}.WhereTheEngineLeaks ${target} "${leaking_tests}" --leak-check=no)
  endif()
  foreach(pattern IN LISTS special_tests)
    string(REPLACE "*" "" name "${pattern}")
    vexa_command_test(
      Memory.${target}.HasTests.${name}
      MATCHES "\n  [A-Za-z]"
      COMMAND ${target} --gtest_list_tests "--gtest_filter=${pattern}")
  endforeach()
endfunction()

function(add_memory_test name target filter)
  vexa_command_test(
    ${name}
    MATCHES "${VEXA_SOME_TESTS_PASSED}"
    ERRORS ".*"
    COMMAND "${VALGRIND}" --quiet --error-exitcode=99 ${ARGN} "$<TARGET_FILE:${target}>" --gtest_brief=1
            "--gtest_filter=${filter}")
  # ctest starts the longest tests first.
  set_tests_properties(${name} PROPERTIES TIMEOUT 1200 COST 1000)
endfunction()

# vexa_thread_check(TARGET): runs the tests with "Thread" in their names under helgrind. It sees the engine's code,
# which ThreadSanitizer does not; ThreadSanitizer knows atomics, which helgrind does not.
function(vexa_thread_check target)
  vexa_command_test(
    Threads.${target}
    MATCHES "${VEXA_SOME_TESTS_PASSED}"
    ERRORS ".*"
    COMMAND "${VALGRIND}" --tool=helgrind --quiet --error-exitcode=99
            "--suppressions=${PROJECT_SOURCE_DIR}/tests/valgrind.supp" "$<TARGET_FILE:${target}>" --gtest_brief=1
            "--gtest_filter=*Thread*")
  set_tests_properties(Threads.${target} PROPERTIES TIMEOUT 1200 COST 100)
endfunction()
