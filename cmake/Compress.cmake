# vexa_compress(RESULT SOURCE NAME): a command that writes NAME.gz into the current build folder, without the
# file's name and time in it, which would make each build another. RESULT is the path.

find_program(GZIP gzip REQUIRED)

function(vexa_compress result source name)
  add_custom_command(
    OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${name}.gz"
    COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${name}"
    COMMAND "${GZIP}" -9nf "${name}"
    DEPENDS "${source}"
    VERBATIM)
  set(${result} "${CMAKE_CURRENT_BINARY_DIR}/${name}.gz" PARENT_SCOPE)
endfunction()
