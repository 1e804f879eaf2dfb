# Every DLL that a DLL of the package imports stands in the package beside it or is a part of Windows.
#
#     cmake -DBIN=<prefix>/bin -DOBJDUMP=... -P CheckImports.cmake

cmake_minimum_required(VERSION 3.25)

set(windows advapi32.dll bcrypt.dll crypt32.dll dbghelp.dll gdi32.dll iphlpapi.dll kernel32.dll msvcrt.dll ntdll.dll
  ole32.dll oleaut32.dll shell32.dll shlwapi.dll user32.dll version.dll ws2_32.dll
)

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

foreach(dll IN LISTS dlls)
  execute_process(COMMAND "${OBJDUMP}" -p "${dll}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${headers}")
  foreach(import IN LISTS imports)
    string(REPLACE "DLL Name: " "" import "${import}")
    string(STRIP "${import}" import)
    string(TOLOWER "${import}" import)
    if(NOT import IN_LIST shipped AND NOT import IN_LIST windows)
      message(SEND_ERROR "${dll} needs ${import}, which is neither shipped nor a part of Windows")
    endif()
    list(APPEND used "${import}")
  endforeach()
endforeach()
foreach(name IN LISTS shipped)
  if(NOT name STREQUAL "kelpkit.dll" AND NOT name IN_LIST used)
    message(SEND_ERROR "${name} is shipped, but nothing needs it")
  endif()
endforeach()
