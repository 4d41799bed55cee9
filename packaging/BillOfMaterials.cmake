# Writes a software bill of materials (CycloneDX, JSON) of our libraries and program: themselves, each Debian
# package whose libraries the dynamic linker loads for them, the packages of header-only libraries that are
# compiled in, and who depends on whom. No time and no random number goes in: the same build gives the same bill.
#
#   cmake -D FILES=... -D VERSION=... -D HEADER_ONLY=... -D BILL=... -P BillOfMaterials.cmake
cmake_minimum_required(VERSION 3.25)

find_program(OBJDUMP objdump REQUIRED)
find_program(DPKG_QUERY dpkg-query)

# read_needed(RESULT FILE): the names of the libraries that FILE asks the dynamic linker for.
function(read_needed result file)
  execute_process(COMMAND "${OBJDUMP}" -p "${file}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "NEEDED +[^\n]+" needed "${headers}")
  list(TRANSFORM needed REPLACE "NEEDED +" "")
  set(${result} "${needed}" PARENT_SCOPE)
endfunction()

# name_component(FILE): sets ref, name, version and purl of the package that FILE belongs to.
function(name_component file)
  get_filename_component(name "${file}" NAME)
  set(version "")
  set(purl "")
  if(DPKG_QUERY)
    file(REAL_PATH "${file}" real)
    # A system whose /lib is a link to /usr/lib may know the file by either path.
    string(REGEX REPLACE "^/usr" "" short "${real}")
    execute_process(COMMAND "${DPKG_QUERY}" -S "${real}" "${short}" OUTPUT_VARIABLE owner ERROR_QUIET)
    if(owner MATCHES "^([^:,]+)")
      set(package "${CMAKE_MATCH_1}")
      execute_process(COMMAND "${DPKG_QUERY}" -W -f "\${Package};\${Version};\${Architecture}\n" "${package}"
                      OUTPUT_VARIABLE fields COMMAND_ERROR_IS_FATAL ANY)
      string(REGEX REPLACE "\n.*" "" fields "${fields}")
      list(GET fields 0 name)
      list(GET fields 1 version)
      list(GET fields 2 architecture)
      string(REPLACE "+" "%2B" escaped "${version}")
      string(REPLACE ":" "%3A" escaped "${escaped}")
      set(purl "pkg:deb/debian/${name}@${escaped}?arch=${architecture}")
    endif()
  endif()
  set(ref "${purl}")
  if(NOT purl)
    set(ref "${name}")
  endif()
  return(PROPAGATE ref name version purl)
endfunction()

# add_component(REF NAME VERSION PURL TYPE): to the bill, once.
function(add_component ref name version purl type)
  if(NOT ref IN_LIST components)
    list(APPEND components "${ref}")
    set(text "{\"type\": \"${type}\", \"bom-ref\": \"${ref}\", \"name\": \"${name}\"")
    if(version)
      string(APPEND text ", \"version\": \"${version}\"")
    endif()
    if(purl)
      string(APPEND text ", \"purl\": \"${purl}\"")
    endif()
    string(JSON length LENGTH "${bill}" components)
    string(JSON bill SET "${bill}" components ${length} "${text}}")
  endif()
  return(PROPAGATE components bill)
endfunction()

function(add_dependencies_of ref)
  list(REMOVE_DUPLICATES ARGN)
  list(REMOVE_ITEM ARGN "${ref}")
  list(SORT ARGN)
  list(JOIN ARGN "\", \"" refs)
  if(refs)
    set(refs "\"${refs}\"")
  endif()
  string(JSON length LENGTH "${bill}" dependencies)
  string(JSON bill SET "${bill}" dependencies ${length} "{\"ref\": \"${ref}\", \"dependsOn\": [${refs}]}")
  return(PROPAGATE bill)
endfunction()

set(bill
    "{\"bomFormat\": \"CycloneDX\", \"specVersion\": \"1.4\", \"version\": 1,
      \"metadata\": {\"component\": {\"type\": \"library\", \"bom-ref\": \"VEXA_XSLTransformer\",
        \"name\": \"VEXA_XSLTransformer\", \"version\": \"${VERSION}\"}},
      \"components\": [], \"dependencies\": []}")
set(components "")

# Every file that is loaded, by the name under which it is asked for.
file(GET_RUNTIME_DEPENDENCIES EXECUTABLES ${FILES} RESOLVED_DEPENDENCIES_VAR loaded)
foreach(file IN LISTS loaded)
  get_filename_component(soname "${file}" NAME)
  set(file_of_${soname} "${file}")
endforeach()

# Our own come first: each is a component; of the others, the package is.
set(own_names "")
foreach(file IN LISTS FILES)
  get_filename_component(name "${file}" NAME)
  string(REGEX REPLACE "(\\.so\\.[0-9]+)\\..*" "\\1" soname "${name}")
  string(REGEX REPLACE "\\.so.*" "" name "${name}")
  set(ref_of_${soname} "${name}")
  set(file_of_${soname} "${file}")
  list(APPEND own_names "${soname}")
  set(type library)
  if(soname STREQUAL name)
    set(type application)
  endif()
  add_component("${name}" "${name}" "${VERSION}" "" ${type})
endforeach()

set(names "${own_names}")
foreach(file IN LISTS loaded)
  get_filename_component(soname "${file}" NAME)
  if(NOT soname IN_LIST own_names)
    list(APPEND names "${soname}")
    name_component("${file}")
    set(ref_of_${soname} "${ref}")
    add_component("${ref}" "${name}" "${version}" "${purl}" library)
  endif()
endforeach()

# A package may hold several of the libraries: its dependencies are those of all of them.
set(refs "")
foreach(soname IN LISTS names)
  set(ref "${ref_of_${soname}}")
  list(APPEND refs "${ref}")
  read_needed(needed "${file_of_${soname}}")
  foreach(other IN LISTS needed)
    if(DEFINED ref_of_${other})
      list(APPEND needed_by_${ref} "${ref_of_${other}}")
    endif()
  endforeach()
endforeach()

if("vexa-xslt" IN_LIST own_names)
  foreach(header IN LISTS HEADER_ONLY)
    name_component("${header}")
    add_component("${ref}" "${name}" "${version}" "${purl}" library)
    list(APPEND needed_by_vexa-xslt "${ref}")
    list(APPEND refs "${ref}")
  endforeach()
endif()

list(REMOVE_DUPLICATES refs)
foreach(ref IN LISTS refs)
  add_dependencies_of("${ref}" ${needed_by_${ref}})
endforeach()
set(own_refs "")
foreach(soname IN LISTS own_names)
  list(APPEND own_refs "${ref_of_${soname}}")
endforeach()
add_dependencies_of(VEXA_XSLTransformer ${own_refs})

file(WRITE "${BILL}" "${bill}\n")
