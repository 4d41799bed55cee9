# vexa_memory_check(TARGET [FILTER]): runs a test program under valgrind as a test of its own. It fails
# at any error, and at any loss but those that tests/valgrind.supp lists with their reasons. FILTER is
# a GoogleTest filter.

find_program(VALGRIND valgrind REQUIRED)

function(vexa_memory_check target)
  add_test(
    NAME Memory.${target}
    COMMAND
      "${VALGRIND}" --quiet --leak-check=full --errors-for-leak-kinds=definite,indirect,possible
      --error-exitcode=99 "--suppressions=${PROJECT_SOURCE_DIR}/tests/valgrind.supp"
      "$<TARGET_FILE:${target}>" --gtest_brief=1 "--gtest_filter=${ARGN}")
  set_tests_properties(Memory.${target} PROPERTIES TIMEOUT 600)
endfunction()
