# Runs an example and fails unless it succeeds and prints exactly what is expected:
# -D "COMMAND=program;argument..." -D EXPECTED=FILE [-D INPUT=FILE] [-D ERRORS=yes: it tells of errors
# on standard error; otherwise it may print nothing there]
cmake_minimum_required(VERSION 3.25)

if(INPUT)
  set(input INPUT_FILE "${INPUT}")
endif()
execute_process(
  COMMAND ${COMMAND} ${input}
  OUTPUT_VARIABLE output
  ERROR_VARIABLE errors
  RESULT_VARIABLE status
  TIMEOUT 120)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${COMMAND}: ${status}\n${errors}")
endif()
if(NOT "${errors}" STREQUAL "" AND NOT ERRORS)
  message(FATAL_ERROR "On standard error:\n${errors}")
endif()
if("${errors}" STREQUAL "" AND ERRORS)
  message(FATAL_ERROR "Nothing on standard error")
endif()
file(READ "${EXPECTED}" expected)
if(NOT "${output}" STREQUAL "${expected}")
  message(FATAL_ERROR "Expected:\n${expected}\nPrinted:\n${output}")
endif()
