# Each disabled test is one of those that the list names, with the reason.
#
#     cmake -DLIST=CONTRIBUTING.md -DTESTS=<folder> -P CheckDisabled.cmake

cmake_minimum_required(VERSION 3.25)

file(READ "${LIST}" list)
file(GLOB_RECURSE sources "${TESTS}/*.cpp" "${TESTS}/*.h")
foreach(source IN LISTS sources)
  file(STRINGS "${source}" lines REGEX "DISABLED_[A-Za-z0-9]")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*TEST(_[FP])?\\(([A-Za-z0-9_]+), ([A-Za-z0-9_]+)\\).*" "\\2.\\3" test "${line}")
    string(FIND "${list}" "| `${test}` | " at)
    if(at EQUAL -1)
      message(SEND_ERROR "${source}: ${LIST} gives no reason why this is disabled: ${test}")
    endif()
  endforeach()
endforeach()
