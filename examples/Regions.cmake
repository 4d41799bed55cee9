# Regions: the parts of example files that the documentation shows. A region is between two comment
# lines, "// [name]" and "// [/name]". Regions may overlap.

set(REGION_MARK "(//|#|<!--) \\[/?[a-z][a-z0-9 ]*\\]( -->)?")

# read_region(VARIABLE FILE NAME): reads a region, or the whole file if NAME is empty, without the
# marks of other regions.
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

# unindent(VARIABLE TEXT): removes the indentation of the first line from all lines.
function(unindent variable text)
  if(text MATCHES "^ +")
    string(REPLACE "\n${CMAKE_MATCH_0}" "\n" text "\n${text}")
    string(SUBSTRING "${text}" 1 -1 text)
  endif()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()
