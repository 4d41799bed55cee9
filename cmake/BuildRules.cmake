# How all of our own code is compiled.

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Every program finds the libraries beside it, in the build tree and where it is installed. Debian's own
# folders need no such path.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  file(RELATIVE_PATH to_libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(VEXA_PROGRAM_INSTALL_RPATH "$ORIGIN/${to_libraries}")
  set(CMAKE_INSTALL_RPATH "$ORIGIN")
endif()

# Two builds of the same sources are the same to the bit, wherever they are made.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")

# vexa_own_code(TARGET): the rules for a target of ours; nothing of them reaches its users.
function(vexa_own_code target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  # The engine's libraries are built without assertions; its headers have to agree with them.
  target_compile_definitions(${target} PRIVATE NDEBUG)
endfunction()

# vexa_shared_library(TARGET ALIAS PACKAGE): what our shared libraries have in common. PACKAGE names the CMake
# package that exports the library, and the installation components: PACKAGE_libraries, PACKAGE_development.
function(vexa_shared_library target alias package)
  vexa_own_code(${target})
  add_library(${alias} ALIAS ${target})
  target_include_directories(
    ${target} PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>"
                     "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>"
                     "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_link_options(
    ${target} PRIVATE -Wl,--no-undefined
    "-Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/hide-standard-library.map")
  set_target_properties(
    ${target}
    PROPERTIES LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/hide-standard-library.map"
               VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}
               SOVERSION ${PROJECT_VERSION_MAJOR}
               EXPORT_NAME ${alias})
  if(VEXA_INSTALL)
    install(
      TARGETS ${target}
      EXPORT ${package}Targets
      LIBRARY COMPONENT ${package}_libraries NAMELINK_COMPONENT ${package}_development)
  endif()
endfunction()
