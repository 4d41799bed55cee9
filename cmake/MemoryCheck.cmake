# vexa_memory_check(TARGET [LOSSY_TESTS...]): runs a test program under valgrind, as a test of its own. It
# fails at any error, and at any loss but those that tests/valgrind.supp lists with their reasons.
# LOSSY_TESTS are GoogleTest patterns of tests in which the engine itself loses memory: these run apart,
# and only errors count.

find_program(VALGRIND valgrind REQUIRED)

function(vexa_memory_check target)
  list(JOIN ARGN ":" lossy_tests)
  add_memory_test(Memory.${target} ${target} "-${lossy_tests}" --leak-check=full
                  --errors-for-leak-kinds=definite,indirect,possible
                  "--suppressions=${PROJECT_SOURCE_DIR}/tests/valgrind.supp")
  if(ARGN)
    add_memory_test(Memory.${target}.WhereTheEngineLosesSome ${target} "${lossy_tests}"
                    --leak-check=no)
  endif()
endfunction()

function(add_memory_test name target filter)
  add_test(NAME ${name}
           COMMAND "${VALGRIND}" --quiet --error-exitcode=99 ${ARGN} "$<TARGET_FILE:${target}>"
                   --gtest_brief=1 "--gtest_filter=${filter}")
  # The longest tests begin first.
  set_tests_properties(${name} PROPERTIES TIMEOUT 1200 COST 1000)
endfunction()

# vexa_thread_check(TARGET): runs the tests with "Thread" in their names under helgrind, which sees into the
# engine, as ThreadSanitizer cannot; that one knows atomics, as helgrind does not.
function(vexa_thread_check target)
  add_test(NAME Threads.${target}
           COMMAND "${VALGRIND}" --tool=helgrind --quiet --error-exitcode=99
                   "--suppressions=${PROJECT_SOURCE_DIR}/tests/valgrind.supp" "$<TARGET_FILE:${target}>"
                   --gtest_brief=1 "--gtest_filter=*Thread*")
  set_tests_properties(Threads.${target} PROPERTIES TIMEOUT 1200 COST 100)
endfunction()
