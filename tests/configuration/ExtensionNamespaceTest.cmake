# Valid and invalid extension namespaces: cmake -D CHECK=ExtensionNamespace.cmake -P ExtensionNamespaceTest.cmake
cmake_minimum_required(VERSION 3.25)

foreach(uri "http://vexa.example/xslt/wol" "http://a/wol" "http://host.example:8080/a/b-c/wol"
            "http://a/b%20c/wol")
  execute_process(COMMAND "${CMAKE_COMMAND}" -D "VEXA_XSL_EXTENSION_NAMESPACE=${uri}" -P "${CHECK}"
                  RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "\"${uri}\" was rejected")
  endif()
endforeach()
foreach(uri "" "wol" "/wol" "vexa.example/wol" "https://vexa.example/wol" "http://vexa.example/"
            "http://vexa.example/xwol" "http://vexa.example/wol/" "http:///wol" "http://a/wol?x"
            "http://a/wol#x" "http://a b/wol" "http://a/\"/wol"
            "http://:/wol" "http://%/wol" "http://a/%zz/wol" "http://a:x/wol")
  execute_process(COMMAND "${CMAKE_COMMAND}" -D "VEXA_XSL_EXTENSION_NAMESPACE=${uri}" -P "${CHECK}"
                  RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(result EQUAL 0)
    message(FATAL_ERROR "\"${uri}\" was accepted")
  endif()
endforeach()
