# Each test that the ledger of deliberate behaviour names ran in this test run.
#
#     cmake -DLEDGER=docs/deliberate.md -DRESULTS=<folder of GoogleTest's XML reports> -P CheckDeliberate.cmake

cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/../ReadReports.cmake")

read_test_reports("${RESULTS}" ran)

set(named 0)
file(STRINGS "${LEDGER}" rows REGEX "^\\| `" ENCODING UTF-8)
foreach(row IN LISTS rows)
  string(REGEX MATCH "\\| [^|]* \\|$" pins "${row}")
  string(REGEX MATCHALL "`[A-Za-z0-9_]+\\.[A-Za-z0-9_]+`" pins "${pins}")
  if(NOT pins)
    message(SEND_ERROR "No test pins this row: ${row}")
  endif()
  foreach(test IN LISTS pins)
    string(REPLACE "`" "" test "${test}")
    math(EXPR named "${named} + 1")
    if(NOT test IN_LIST ran)
      message(SEND_ERROR "${test} did not run")
    endif()
  endforeach()
endforeach()
if(named EQUAL 0)
  message(FATAL_ERROR "${LEDGER} names no test")
endif()
message(STATUS "${named} names of tests in ${LEDGER}, all of which ran")
