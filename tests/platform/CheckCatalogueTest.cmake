# The build reports errors in the message catalogue:
#   cmake -D RESOURCES=src/platform/resources -D SCRATCH=folder -P CheckCatalogueTest.cmake
cmake_minimum_required(VERSION 3.25)

set(CASES
    # change | identifier in the language file | expected error; none if empty
    "missing|A2E98406|language 'de': missing identifier A2E98406"
    "misspelt|A2E9840X|language 'de': unknown identifier A2E9840X"
    "misspelt|A2E9840X|language 'de': missing identifier A2E98406"
    "added|A2E00000|language 'de': unknown identifier A2E00000"
    "duplicate|A2E98406|language 'de': duplicate identifier A2E98406"
    "empty|A2E98406|language 'de': empty text for A2E98406"
    "commented|A2E98406|language 'de': missing identifier A2E98406"
    "headless||language 'de': the file must begin with"
    "special-characters|A2E98406|")

file(MAKE_DIRECTORY "${SCRATCH}")
file(READ "${RESOURCES}/catalogue/de.txt" original)

function(check content result_variable output_variable)
  file(WRITE "${SCRATCH}/de.txt" "${content}")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -D "IDENTIFIERS=${RESOURCES}/identifiers.txt" -D
            "LANGUAGE_FILE=${SCRATCH}/de.txt" -P "${RESOURCES}/CheckCatalogue.cmake"
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  set(${result_variable} "${result}" PARENT_SCOPE)
  set(${output_variable} "${output}" PARENT_SCOPE)
endfunction()

check("${original}" result output)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the unchanged catalogue has errors: ${output}")
endif()

foreach(case IN LISTS CASES)
  string(REPLACE "|" ";" case "${case}")
  list(GET case 0 name)
  list(GET case 1 identifier)
  list(GET case 2 expected)
  if(name STREQUAL "missing")
    string(REGEX REPLACE "[^\n]*${identifier}[^\n]*\n" "" content "${original}")
  elseif(name STREQUAL "misspelt")
    string(REPLACE "A2E98406" "${identifier}" content "${original}")
  elseif(name STREQUAL "duplicate")
    string(REGEX REPLACE "(\n[^\n]*${identifier}[^\n]*)" "\\1\\1" content "${original}")
  elseif(name STREQUAL "empty")
    string(REGEX REPLACE "${identifier} { \"[^\"]*\"" "${identifier} { \"\"" content "${original}")
  elseif(name STREQUAL "commented")
    string(REGEX REPLACE "\n *(${identifier}[^\n]*)\n" "\n// \\1\n" content "${original}")
  elseif(name STREQUAL "headless")
    string(REGEX REPLACE "de:table[^\n]*\n" "de {\n" content "${original}")
  elseif(name STREQUAL "special-characters")
    string(REGEX REPLACE "${identifier} { \"[^\"]*\"" "${identifier} { \"[a; b\"" content "${original}")
  else()
    string(REPLACE "(nofallback) {\n" "(nofallback) {\n    ${identifier} { \"x\" }\n" content
                   "${original}")
  endif()
  if(content STREQUAL original)
    message(FATAL_ERROR "${name}: no change was made: the format of the catalogue differs from this test's")
  endif()
  check("${content}" result output)
  if(expected STREQUAL "" AND result EQUAL 0)
    continue()
  endif()
  if(result EQUAL 0 OR expected STREQUAL "" OR NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${name}: expected \"${expected}\", got: ${output}")
  endif()
endforeach()
