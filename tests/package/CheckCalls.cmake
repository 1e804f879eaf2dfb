# Every function of Windows that a DLL imports has a row in the committed list, which says in which tests it fails or
# why in none; and in the last run of each of these tests, the DLL called a double in the function's place. A reason in
# parentheses behind a test says by what the system itself makes the call fail there. That a double does fail is the
# test's to expect.
#
#     cmake -DDLL=... -DLIST=... -DRESULTS=<folder of reports> [-DSTALE=ON] -P CheckCalls.cmake
#
# One list serves mingw's ABI and Visual Studio's. With -DSTALE=ON, for the ABI with which a DLL calls all that the
# project itself ever calls, rows without a call fail; those of the toolchains may stay.

cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/ReadPe.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/../ReadReports.cmake")

# The runtimes and libraries whose functions are no calls of the system.
set(others msvcrt "ucrtbased?" "api-ms-win-crt-.*" "lib[a-z0-9_+-]+" "msvcp140.*" "vcruntime140.*" "concrt140d?"
  "mfc140ud?" "log4cplus.*" "pugixmld?" xmlparser
)
list(JOIN others "|" others)

# Windows' own import libraries ask for these by their ordinals.
set(ordinals "oleaut32.dll:#2" SysAllocString "oleaut32.dll:#6" SysFreeString "oleaut32.dll:#8" VariantInit
  "oleaut32.dll:#9" VariantClear "oleaut32.dll:#94" VarDateFromStr "oleaut32.dll:#184" SystemTimeToVariantTime
  "oleaut32.dll:#185" VariantTimeToSystemTime "oleaut32.dll:#331" VarUdateFromDate "ws2_32.dll:#12" inet_ntoa
  "ws2_32.dll:#52" gethostbyname "ws2_32.dll:#57" gethostname "ws2_32.dll:#115" WSAStartup "ws2_32.dll:#116" WSACleanup
)

read_pe_imports("${DLL}" entries)
set(imports)
foreach(entry IN LISTS entries)
  string(REGEX MATCH "^([^:]+):(.+)$" entry "${entry}")
  set(function "${CMAKE_MATCH_2}")
  string(TOLOWER "${CMAKE_MATCH_1}" dll)
  if(dll MATCHES "^(${others})\\.dll$")
    continue()
  endif()
  list(FIND ordinals "${dll}:${function}" index)
  if(NOT index EQUAL -1)
    math(EXPR index "${index} + 1")
    list(GET ordinals ${index} function)
  elseif(function MATCHES "^#")
    set(function "${dll}:${function}")
  endif()
  list(APPEND imports "${function}")
endforeach()
list(LENGTH imports count)
if(count LESS 20)
  message(FATAL_ERROR "Only ${count} imports were found in ${DLL}")
endif()

read_test_reports("${RESULTS}" ran)
cmake_path(GET DLL FILENAME name)
set(faked)
file(GLOB notes "${RESULTS}/*.calls")
foreach(note IN LISTS notes)
  file(STRINGS "${note}" lines REGEX "^${name} ")
  list(APPEND faked ${lines})
endforeach()

# check_test(FUNCTION TEST REASON): the function fails in the test, for the reason that the list gives, if any.
function(check_test function test reason)
  if(NOT test IN_LIST ran)
    message(SEND_ERROR "${LIST}: ${test} did not run")
  elseif("${name} ${function} ${test}" IN_LIST faked)
    if(reason)
      message(SEND_ERROR "${LIST}: ${test} has a double of ${function}, so the reason ${reason} is not needed")
    endif()
  elseif(NOT reason)
    message(SEND_ERROR "${LIST}: ${test} has no double of ${function} that is called")
  endif()
endfunction()

set(listed)
file(STRINGS "${LIST}" rows REGEX "^[A-Za-z_]")
foreach(row IN LISTS rows)
  if(NOT row MATCHES "^([A-Za-z0-9_]+) +(.+)$")
    message(SEND_ERROR "${LIST}: nothing is said of ${row}")
    continue()
  endif()
  set(function "${CMAKE_MATCH_1}")
  list(APPEND listed "${function}")
  set(rest "${CMAKE_MATCH_2}")
  if(STALE AND NOT function IN_LIST imports AND NOT row MATCHES " - \\(")
    message(SEND_ERROR "${LIST}: ${DLL} does not call ${function}")
  endif()
  if(rest MATCHES "^- ." OR NOT function IN_LIST imports)
    continue()
  endif()
  while(rest MATCHES "^([A-Za-z0-9_]+\\.[A-Za-z0-9_]+)( \\([^)]+\\))? *(.*)$")
    set(test "${CMAKE_MATCH_1}")
    set(reason "${CMAKE_MATCH_2}")
    set(rest "${CMAKE_MATCH_3}")
    check_test(${function} ${test} "${reason}")
  endwhile()
  if(rest)
    message(SEND_ERROR "${LIST}: ${rest} is no test, behind ${function}")
  endif()
endforeach()

foreach(function IN LISTS imports)
  if(NOT function IN_LIST listed)
    message(SEND_ERROR "${DLL} calls ${function}, of which ${LIST} says nothing")
  endif()
endforeach()
