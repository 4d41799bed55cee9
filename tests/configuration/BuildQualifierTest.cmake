# Valid and invalid build qualifiers: cmake -D CHECK=BuildQualifier.cmake -P BuildQualifierTest.cmake
cmake_minimum_required(VERSION 3.25)

foreach(qualifier "release" "rc.1" "2026-11-22" "1" "a_b+c~d")
  execute_process(COMMAND "${CMAKE_COMMAND}" -D "VEXA_BUILD_QUALIFIER=${qualifier}" -P "${CHECK}"
                  RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "\"${qualifier}\" was rejected")
  endif()
endforeach()
foreach(qualifier "" " " "-" "a b" "a\nb" "a\"b" "a\\b" "a@b" "é")
  execute_process(COMMAND "${CMAKE_COMMAND}" -D "VEXA_BUILD_QUALIFIER=${qualifier}" -P "${CHECK}"
                  RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(result EQUAL 0)
    message(FATAL_ERROR "\"${qualifier}\" was accepted")
  endif()
endforeach()
