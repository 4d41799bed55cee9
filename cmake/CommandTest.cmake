# vexa_command_test(NAME OPTIONS... COMMAND command argument...): a test that runs a command and checks its exit
# status and all that it writes. (ctest's PASS_REGULAR_EXPRESSION ignores the exit status.)
#
#   STATUS n          the exit status, if it is not 0
#   ERRORS regex      is found on standard error (".*": anything, or nothing); without it nothing may be
#                     written there
#   EQUALS file       the output is the content of the file
#   MATCHES regex     is found in the output
#   CONTAINS file     each line of the file is found in the output, after those before it
#                     (without any of these three there is no output)
#   WRITES file       the output is this file; nothing is written to standard output
#   APPENDS file      the content of this file, which the command writes, follows the output
#   WRITES_NOT file   this file is not written
#   INPUT file        the standard input
#
# The arguments of the command have no semicolons.
function(vexa_command_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "STATUS;ERRORS;EQUALS;MATCHES;CONTAINS;WRITES;APPENDS;WRITES_NOT;INPUT"
                        "COMMAND")
  if(NOT arg_COMMAND OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${name}: no command, or unknown options: ${arg_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT DEFINED arg_STATUS)
    set(arg_STATUS 0)
  endif()
  set(settings "")
  foreach(option IN ITEMS STATUS ERRORS WRITES APPENDS WRITES_NOT INPUT)
    if(DEFINED arg_${option})
      list(APPEND settings -D "${option}=${arg_${option}}")
    endif()
  endforeach()
  foreach(option IN ITEMS EQUALS MATCHES CONTAINS)
    if(DEFINED arg_${option})
      list(APPEND settings -D "OUTPUT_${option}=${arg_${option}}")
    endif()
  endforeach()
  list(POP_FRONT arg_COMMAND command)
  if(TARGET ${command})
    set(command "$<TARGET_FILE:${command}>")
  endif()
  add_test(NAME ${name} COMMAND "${CMAKE_COMMAND}" ${settings} -D "COMMAND=${command};${arg_COMMAND}" -P
                                "${PROJECT_SOURCE_DIR}/cmake/RunCommand.cmake")
endfunction()
