# Compares one language file with the list of identifiers:
#   cmake -D IDENTIFIERS=identifiers.txt -D LANGUAGE_FILE=de.txt -P CheckCatalogue.cmake
# Without this check, a missing message would silently be shown in the fallback language.

cmake_minimum_required(VERSION 3.25)

file(STRINGS "${IDENTIFIERS}" lines REGEX "^[0-9A-F]+ " ENCODING UTF-8)
foreach(line IN LISTS lines)
  string(REGEX REPLACE " .*" "" identifier "${line}")
  string(REGEX REPLACE "^[^ ]+ " "" "meaning_${identifier}" "${line}")
  list(APPEND required "${identifier}")
endforeach()

cmake_path(GET LANGUAGE_FILE STEM language)
cmake_path(GET LANGUAGE_FILE FILENAME name)
set(has_errors FALSE)
macro(report_error text)
  message("${name}: error: language '${language}': ${text}")
  set(has_errors TRUE)
endmacro()

# ICU accepts more than this format, such as block comments and texts over several lines. They are an
# error here, because they could hide a missing message.
file(READ "${LANGUAGE_FILE}" content)
string(REGEX REPLACE "[][;\\]" "." content "${content}") # special characters of CMake lists
string(REPLACE "\n" ";" lines "${content}")
set(found "")
set(headers 0)
foreach(line IN LISTS lines)
  if(line MATCHES "^[ \t]+([0-9A-Za-z]+)[ \t]*{[ \t]*\"(.*)\"[ \t]*}[ \t]*$")
    set(identifier "${CMAKE_MATCH_1}")
    if(CMAKE_MATCH_2 STREQUAL "")
      report_error("empty text for ${identifier}")
    endif()
    if(identifier IN_LIST found)
      report_error("duplicate identifier ${identifier}")
    endif()
    list(APPEND found "${identifier}")
  elseif(line MATCHES "^${language}:table\\(nofallback\\) {$")
    math(EXPR headers "${headers} + 1")
  elseif(NOT line MATCHES "^(//.*|})?$")
    report_error("not a message: ${line}")
  endif()
endforeach()
if(NOT headers EQUAL 1)
  report_error("the file must begin with '${language}:table(nofallback) {'")
endif()

set(missing ${required})
list(REMOVE_ITEM missing ${found})
foreach(identifier IN LISTS missing)
  report_error("missing identifier ${identifier} (\"${meaning_${identifier}}\")")
endforeach()
set(unknown ${found})
list(REMOVE_ITEM unknown ${required})
foreach(identifier IN LISTS unknown)
  report_error("unknown identifier ${identifier}: not in identifiers.txt")
endforeach()

if(has_errors)
  message(FATAL_ERROR "The message catalogue has errors.")
endif()
