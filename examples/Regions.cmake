# The parts of example files that documents show. A part stands between two lines of its own, in the
# file's kind of comment, "// [its name]" and "// [/its name]"; parts may overlap.

set(REGION_MARK "(//|#|<!--) \\[/?[a-z][a-z0-9 ]*\\]( -->)?")

# read_region(VARIABLE FILE NAME): the part of that name as it stands there, or the whole file where
# the name is empty; without the marks of other parts.
function(read_region variable file name)
  file(READ "${file}" text)
  if(NOT name STREQUAL "")
    if(NOT "\n${text}" MATCHES "\n *(//|#|<!--) \\[${name}\\]( -->)?\n(.*)\n *(//|#|<!--) \\[/${name}\\]")
      message(FATAL_ERROR "${file} has no part between [${name}] and [/${name}]")
    endif()
    set(text "${CMAKE_MATCH_3}\n")
  endif()
  string(REGEX REPLACE "(^|\n) *${REGION_MARK}\n" "\\1" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# unindent(VARIABLE TEXT): the text without the blanks that its first line begins with.
function(unindent variable text)
  if(text MATCHES "^ +")
    string(REPLACE "\n${CMAKE_MATCH_0}" "\n" text "\n${text}")
    string(SUBSTRING "${text}" 1 -1 text)
  endif()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()
