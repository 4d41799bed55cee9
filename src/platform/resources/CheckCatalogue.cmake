# Holds one language file against the list of identifiers:
#   cmake -D IDENTIFIERS=identifiers.txt -D LANGUAGE_FILE=de.txt -P CheckCatalogue.cmake
# A message that is missing would be told in another language, and nobody would know.

cmake_minimum_required(VERSION 3.25)

file(STRINGS "${IDENTIFIERS}" lines REGEX "^[0-9A-F]+ " ENCODING UTF-8)
foreach(line IN LISTS lines)
  string(REGEX REPLACE " .*" "" identifier "${line}")
  string(REGEX REPLACE "^[^ ]+ " "" "meaning_${identifier}" "${line}")
  list(APPEND wanted "${identifier}")
endforeach()

cmake_path(GET LANGUAGE_FILE STEM language)
cmake_path(GET LANGUAGE_FILE FILENAME name)
set(fault FALSE)
macro(tell text)
  message("${name}: error: language '${language}' ${text}")
  set(fault TRUE)
endmacro()

# Only the plain form that the files have: whatever else ICU would read (comments that hold messages,
# messages over several lines) could hide one.
file(READ "${LANGUAGE_FILE}" content)
string(REGEX REPLACE "[][;\\]" "." content "${content}") # these mean something in a list
string(REPLACE "\n" ";" lines "${content}")
set(found "")
set(heads 0)
foreach(line IN LISTS lines)
  if(line MATCHES "^[ \t]+([0-9A-Za-z]+)[ \t]*{[ \t]*\"(.*)\"[ \t]*}[ \t]*$")
    set(identifier "${CMAKE_MATCH_1}")
    if(CMAKE_MATCH_2 STREQUAL "")
      tell("has an empty text for ${identifier}")
    endif()
    if(identifier IN_LIST found)
      tell("has ${identifier} twice")
    endif()
    list(APPEND found "${identifier}")
  elseif(line MATCHES "^${language}:table\\(nofallback\\) {$")
    math(EXPR heads "${heads} + 1")
  elseif(NOT line MATCHES "^(//.*|})?$")
    tell("has a line that is no message: ${line}")
  endif()
endforeach()
if(NOT heads EQUAL 1)
  tell("has to begin with '${language}:table(nofallback) {'")
endif()

set(missing ${wanted})
list(REMOVE_ITEM missing ${found})
foreach(identifier IN LISTS missing)
  tell("misses ${identifier} (\"${meaning_${identifier}}\")")
endforeach()
set(unknown ${found})
list(REMOVE_ITEM unknown ${wanted})
foreach(identifier IN LISTS unknown)
  tell("has ${identifier}, which identifiers.txt lacks")
endforeach()

if(fault)
  message(FATAL_ERROR "The message catalogue is not complete.")
endif()
