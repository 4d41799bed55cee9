# Holds one language file against the list of identifiers:
#   cmake -D IDENTIFIERS=identifiers.txt -D LANGUAGE_FILE=de.txt -P CheckCatalogue.cmake
# A message that is missing would be told in another language, and nobody would know.

set(ENTRY "^[ \t]*([0-9A-Za-z]+)[ \t]*{")

file(STRINGS "${IDENTIFIERS}" lines REGEX "^[0-9A-F]+ " ENCODING UTF-8)
foreach(line IN LISTS lines)
  string(REGEX REPLACE " .*" "" identifier "${line}")
  string(REGEX REPLACE "^[^ ]+ " "" "meaning_${identifier}" "${line}")
  list(APPEND wanted "${identifier}")
endforeach()

cmake_path(GET LANGUAGE_FILE STEM language)
cmake_path(GET LANGUAGE_FILE FILENAME name)
file(STRINGS "${LANGUAGE_FILE}" lines REGEX "${ENTRY}" ENCODING UTF-8)
set(found "")
foreach(line IN LISTS lines)
  string(REGEX MATCH "${ENTRY}" _ "${line}")
  list(APPEND found "${CMAKE_MATCH_1}")
endforeach()

set(missing ${wanted})
list(REMOVE_ITEM missing ${found})
set(unknown ${found})
list(REMOVE_ITEM unknown ${wanted})

foreach(identifier IN LISTS missing)
  message("${name}: error: language '${language}' misses ${identifier} "
          "(\"${meaning_${identifier}}\")")
endforeach()
foreach(identifier IN LISTS unknown)
  message("${name}: error: language '${language}' has ${identifier}, which identifiers.txt lacks")
endforeach()

file(STRINGS "${LANGUAGE_FILE}" heads REGEX "^${language}:table\\(nofallback\\)")
if(NOT heads)
  message("${name}: error: language '${language}' must begin with '${language}:table(nofallback) {'")
endif()

if(missing OR unknown OR NOT heads)
  message(FATAL_ERROR "The message catalogue is not complete.")
endif()
