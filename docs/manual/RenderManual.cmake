# Renders the manual as one page, by vexa-xslt:
# -D VEXA_XSLT=... -D PROJECT_FOLDER=... -D OUTPUT=FOLDER [-D MANUAL=FOLDER]
cmake_minimum_required(VERSION 3.25)
include("${PROJECT_FOLDER}/examples/Regions.cmake")

find_file(
  DOCBOOK_XSL html/docbook.xsl
  PATHS /usr/share/xml/docbook/stylesheet/docbook-xsl
  NO_CACHE)
if(NOT DOCBOOK_XSL)
  message(FATAL_ERROR "The manual needs the DocBook stylesheets (Debian's package docbook-xsl)")
endif()

if(NOT MANUAL)
  set(MANUAL "${CMAKE_CURRENT_LIST_DIR}")
endif()
set(work "${OUTPUT}/work")
file(REMOVE "${OUTPUT}/index.html")
file(MAKE_DIRECTORY "${work}")

function(xml_text variable text)
  string(REPLACE "&" "&amp;" text "${text}")
  string(REPLACE "<" "&lt;" text "${text}")
  string(REPLACE ">" "&gt;" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# What the chapters ask for, each by <?example FILE PART?>: a document of all the parts.
function(write_examples file)
  file(GLOB chapters "${MANUAL}/*.xml")
  set(content "<examples>\n")
  foreach(chapter IN LISTS chapters)
    file(READ "${chapter}" text)
    string(REGEX MATCHALL "<\\?example [^?]*\\?>" wanted "${text}")
    foreach(one IN LISTS wanted)
      string(REGEX MATCH "<\\?example ([^ ?]+) ?([^?]*)\\?>" _ "${one}")
      set(part "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
      string(STRIP "${part}" part)
      read_region(shown "${PROJECT_FOLDER}/${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}")
      unindent(shown "${shown}")
      string(REGEX REPLACE "\n$" "" shown "${shown}")
      xml_text(shown "${shown}")
      string(APPEND content "<example part=\"${part}\">${shown}</example>\n")
    endforeach()
  endforeach()
  file(WRITE "${file}" "${content}</examples>\n")
endfunction()

write_examples("${work}/examples.xml")
configure_file("${CMAKE_CURRENT_LIST_DIR}/html.xsl.in" "${work}/html.xsl" @ONLY)

# The stylesheet reads it by its URI.
string(REPLACE "%" "%25" examples_uri "${work}/examples.xml")

execute_process(
  COMMAND "${VEXA_XSLT}" chain "${MANUAL}/manual.xml" "${CMAKE_CURRENT_LIST_DIR}/show-examples.xsl"
          "${work}/html.xsl" "${CMAKE_CURRENT_LIST_DIR}/finish.xsl" -p "examples=${examples_uri}"
          -o "${OUTPUT}/index.html"
  RESULT_VARIABLE status
  ERROR_VARIABLE errors)
if(NOT status EQUAL 0 OR NOT "${errors}" STREQUAL "")
  file(REMOVE "${OUTPUT}/index.html")
  message(FATAL_ERROR "The manual could not be rendered without a complaint (${status}):\n${errors}")
endif()

# Two profiles, to which the chapter about them refers.
function(write_profile name stylesheet source)
  cmake_path(GET source PARENT_PATH folder)
  cmake_path(GET source FILENAME source)
  execute_process(
    COMMAND "${VEXA_XSLT}" profile "${stylesheet}" "${source}" --html "${OUTPUT}/profile-${name}.html"
    WORKING_DIRECTORY "${folder}"
    RESULT_VARIABLE status
    ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${name} could not be profiled (${status}):\n${errors}")
  endif()
endfunction()

if(MANUAL STREQUAL CMAKE_CURRENT_LIST_DIR)
  write_profile(report report.xsl "${PROJECT_FOLDER}/samples/orders.xml")
  execute_process(COMMAND "${VEXA_XSLT}" transform "${CMAKE_CURRENT_LIST_DIR}/show-examples.xsl" "${MANUAL}/manual.xml"
                          -p "examples=${examples_uri}" -o "${work}/manual.xml" COMMAND_ERROR_IS_FATAL ANY)
  write_profile(manual html.xsl "${work}/manual.xml")
endif()

file(COPY "${CMAKE_CURRENT_LIST_DIR}/manual.css" DESTINATION "${OUTPUT}")
file(GLOB pictures "${MANUAL}/*.svg")
file(COPY ${pictures} DESTINATION "${OUTPUT}")
file(REMOVE_RECURSE "${work}")
