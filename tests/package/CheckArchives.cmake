# The archives that cpack writes, unpacked, are what `cmake --install` lays down, byte for byte. Symbols are in one of
# their own.
#
#     cmake -DCPACK=... -DBUILD=... -DCONFIG=... -DSTAGE=<installed> -DNAME=... -DWORK=... -P CheckArchives.cmake

cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}/unpacked")
execute_process(
  COMMAND "${CPACK}" --config "${BUILD}/CPackConfig.cmake" -C "${CONFIG}" -B "${WORK}"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY
)
file(GLOB archives RELATIVE "${WORK}" "${WORK}/*.zip")
if(NOT archives STREQUAL "${NAME}-symbols.zip;${NAME}.zip")
  message(FATAL_ERROR "cpack has written these archives: ${archives}")
endif()

# Fails where an archive differs from the installed files that `select` (INCLUDE or EXCLUDE) and `pattern` leave.
function(expect_same_files archive select pattern)
  file(REMOVE_RECURSE "${WORK}/unpacked")
  file(ARCHIVE_EXTRACT INPUT "${WORK}/${archive}" DESTINATION "${WORK}/unpacked")
  set(unpacked "${WORK}/unpacked/${NAME}")
  file(GLOB_RECURSE found RELATIVE "${unpacked}" "${unpacked}/*")
  file(GLOB_RECURSE expected RELATIVE "${STAGE}" "${STAGE}/*")
  list(FILTER expected ${select} REGEX "${pattern}")
  if(NOT expected OR NOT found STREQUAL expected)
    message(FATAL_ERROR "${archive} holds\n  ${found}\nand not\n  ${expected}")
  endif()
  foreach(file IN LISTS found)
    file(SHA256 "${unpacked}/${file}" packed)
    file(SHA256 "${STAGE}/${file}" installed)
    if(NOT packed STREQUAL installed)
      message(FATAL_ERROR "${archive} holds another ${file} than is installed")
    endif()
  endforeach()
endfunction()

expect_same_files("${NAME}.zip" EXCLUDE "^symbols/")
expect_same_files("${NAME}-symbols.zip" INCLUDE "^symbols/")
