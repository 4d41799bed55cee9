# Installs BUILD into PREFIX, by way of another folder in SCRATCH.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${SCRATCH}/elsewhere"
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${SCRATCH}/elsewhere" "${PREFIX}")
