# Every DLL that a DLL of the package imports stands in the package beside it or is a part of Windows.
#
#     cmake -DBIN=<prefix>/bin -P CheckImports.cmake

cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/ReadPe.cmake")

set(windows advapi32.dll bcrypt.dll crypt32.dll dbghelp.dll gdi32.dll iphlpapi.dll kernel32.dll msvcrt.dll ntdll.dll
  ole32.dll oleaut32.dll shell32.dll shlwapi.dll user32.dll version.dll ws2_32.dll
)
# Of Visual Studio's runtime, which packages bring or leave to its own setup.
set(redistributable "^(vcruntime140.*|msvcp140.*|concrt140d?|mfcm?140.*|ucrtbased?|api-ms-win-crt-.*)\\.dll$")

file(GLOB dlls "${BIN}/*.dll")
set(shipped)
foreach(dll IN LISTS dlls)
  cmake_path(GET dll FILENAME name)
  string(TOLOWER "${name}" name)
  list(APPEND shipped "${name}")
endforeach()
if(NOT "kelpkit.dll" IN_LIST shipped)
  message(FATAL_ERROR "There is no Kelpkit.dll in ${BIN}")
endif()

set(used)
foreach(dll IN LISTS dlls)
  read_pe_imports("${dll}" imports)
  list(TRANSFORM imports REPLACE ":.*" "")
  list(TRANSFORM imports TOLOWER)
  list(REMOVE_DUPLICATES imports)
  foreach(import IN LISTS imports)
    if(NOT import IN_LIST shipped AND NOT import IN_LIST windows AND NOT import MATCHES "${redistributable}")
      message(SEND_ERROR "${dll} needs ${import}, which is neither shipped nor a part of Windows")
    endif()
  endforeach()
  list(APPEND used ${imports})
endforeach()
foreach(name IN LISTS shipped)
  if(NOT name STREQUAL "kelpkit.dll" AND NOT name IN_LIST used AND NOT name MATCHES "${redistributable}")
    message(SEND_ERROR "${name} is shipped, but nothing needs it")
  endif()
endforeach()
