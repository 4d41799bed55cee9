# The build's check of the catalogue names what is wrong:
#   -D RESOURCES=platform/resources -D SCRATCH=folder
cmake_minimum_required(VERSION 3.25)

set(CASES
    # name | what a language file has too much or too little | what the check has to say
    "missing|A2E98406|language 'de' misses A2E98406"
    "misspelt|A2E9840X|language 'de' has A2E9840X"
    "misspelt|A2E9840X|language 'de' misses A2E98406"
    "added|A2E00000|language 'de' has A2E00000"
    "doubled|A2E98406|language 'de' has A2E98406 twice"
    "emptied|A2E98406|language 'de' has an empty text for A2E98406"
    "commented|A2E98406|language 'de' misses A2E98406"
    "headless||language 'de' has to begin with"
    "odd|A2E98406|")

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
  message(FATAL_ERROR "the check refuses the real catalogue: ${output}")
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
  elseif(name STREQUAL "doubled")
    string(REGEX REPLACE "(\n[^\n]*${identifier}[^\n]*)" "\\1\\1" content "${original}")
  elseif(name STREQUAL "emptied")
    string(REGEX REPLACE "${identifier} { \"[^\"]*\"" "${identifier} { \"\"" content "${original}")
  elseif(name STREQUAL "commented")
    string(REGEX REPLACE "\n *(${identifier}[^\n]*)\n" "\n// \\1\n" content "${original}")
  elseif(name STREQUAL "headless")
    string(REGEX REPLACE "de:table[^\n]*\n" "de {\n" content "${original}")
  elseif(name STREQUAL "odd")
    string(REGEX REPLACE "${identifier} { \"[^\"]*\"" "${identifier} { \"[a; b\"" content "${original}")
  else()
    string(REPLACE "(nofallback) {\n" "(nofallback) {\n    ${identifier} { \"x\" }\n" content
                   "${original}")
  endif()
  if(content STREQUAL original)
    message(FATAL_ERROR "${name}: the catalogue has changed its form, and this test with it")
  endif()
  check("${content}" result output)
  if(expected STREQUAL "" AND result EQUAL 0)
    continue() # odd, but right
  endif()
  if(result EQUAL 0 OR expected STREQUAL "" OR NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${name}: \"${expected}\" was expected, and this came: ${output}")
  endif()
endforeach()
