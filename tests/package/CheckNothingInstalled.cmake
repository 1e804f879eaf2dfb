# Nothing is installed by a build.
#
#     cmake -DBUILD=... -DPREFIX=... -P CheckNothingInstalled.cmake

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${PREFIX}" COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE installed "${PREFIX}/*")
if(installed)
  message(FATAL_ERROR "These are installed: ${installed}")
endif()
