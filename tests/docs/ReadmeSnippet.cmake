# Fails unless the README shows an example program, or a part of it, word for word:
# -D README=... -D EXAMPLE=... [-D REGION=NAME] [-D LANGUAGE=cpp]
cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/../../examples/Regions.cmake")

file(READ "${README}" readme)
read_region(shown "${EXAMPLE}" "${REGION}")
unindent(shown "${shown}")
if(NOT LANGUAGE)
  set(LANGUAGE cpp)
endif()
string(FIND "${readme}" "```${LANGUAGE}\n${shown}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${README} does not show this of ${EXAMPLE}:\n${shown}")
endif()
