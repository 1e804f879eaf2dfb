# The tools that people use show where a program crashed: the function by its name. Each is tested where it is given.
#
#     cmake -DWINE=... -DBIN=<folder of the programs> -DWORK=... -DLLDB=... -P ReadDump.cmake
#     cmake -DWINE=... -DBIN=<folder of the programs> -DWORK=... -DADDR2LINE=... -DOBJDUMP=... -P ReadDump.cmake
#     cmake -DWINE=... -DBIN=<folder of the programs> -DWORK=... -DSYMBOLIZER=... -DOBJCOPY=... -P ReadDump.cmake

cmake_minimum_required(VERSION 3.25)

string(REPLACE "/" "\\" windows_bin "Z:${BIN}")

# Sets `dump` to what Crasher.exe leaves.
function(make_dump way)
  file(REMOVE_RECURSE "${WORK}")
  file(MAKE_DIRECTORY "${WORK}")
  string(REPLACE "/" "\\" windows_work "Z:${WORK}")
  # By way of cmd, since Wine sets TMP itself.
  execute_process(
    COMMAND "${WINE}" run cmd /c set "TMP=${windows_work}&&"
      "${windows_bin}\\Crasher.exe" "${windows_work}\\records" ${way}
    OUTPUT_QUIET ERROR_QUIET
  )
  file(GLOB dump "${WORK}/*_Crasher.exe.dmp")
  set(dump "${dump}" PARENT_SCOPE)
endfunction()

function(expect_shown tool shown)
  foreach(wanted IN LISTS ARGN)
    if(NOT shown MATCHES "${wanted}")
      message(FATAL_ERROR "${tool} does not show ${wanted}:\n${shown}")
    endif()
  endforeach()
endfunction()

function(read_with_lldb way)
  make_dump("${way}")
  execute_process(
    COMMAND "${LLDB}" --batch --no-lldbinit
      -o "target create \"${BIN}/Crasher.exe\" --core \"${dump}\""
      -o "target symbols add --shlib Kelpkit.dll \"${BIN}/Kelpkit.dll.debug\""
      -o "thread list" -o "thread backtrace"
    OUTPUT_VARIABLE shown ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY
  )
  expect_shown(lldb "${shown}" ${ARGN})
endfunction()

# Sets `offset` to the place in Kelpkit.dll where the exception of a dump was raised.
function(find_exception)
  make_dump(kelpkit)
  execute_process(
    COMMAND "${WINE}" run "${windows_bin}\\ExceptionPlace.exe" "Z:${dump}"
    OUTPUT_VARIABLE place COMMAND_ERROR_IS_FATAL ANY
  )
  if(NOT place MATCHES "^kelpkit.dll (0x[0-9a-f]+)")
    message(FATAL_ERROR "The exception was raised elsewhere: ${place}")
  endif()
  set(offset "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

# The compiler's own tools: no debugger, only the place of the exception and the file of symbols. What is inlined there
# stands in front.
function(read_with_addr2line)
  find_exception()
  execute_process(
    COMMAND "${OBJDUMP}" -p "${BIN}/Kelpkit.dll.debug" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY
  )
  string(REGEX MATCH "ImageBase[ \t]+([0-9a-f]+)" base "${headers}")
  math(EXPR address "0x${CMAKE_MATCH_1} + ${offset}" OUTPUT_FORMAT HEXADECIMAL)
  execute_process(
    COMMAND "${ADDR2LINE}" --exe "${BIN}/Kelpkit.dll.debug" --functions --demangle --inlines "${address}"
    OUTPUT_VARIABLE shown COMMAND_ERROR_IS_FATAL ANY
  )
  expect_shown(addr2line "${shown}" "Encode[^\n]*\n[^\n]*/src/text/Base64[^\n]*:[0-9]+")
endfunction()

# LLVM's tool for .pdb files, which finds the one of a DLL by itself. It prefers DWARF, which libraries of a sysroot may
# have brought into the DLL.
function(read_with_symbolizer)
  find_exception()
  execute_process(COMMAND "${OBJCOPY}" --strip-debug "${BIN}/Kelpkit.dll" "${WORK}/Kelpkit.dll" COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND "${SYMBOLIZER}" "--obj=${WORK}/Kelpkit.dll" --relative-address "${offset}"
    OUTPUT_VARIABLE shown COMMAND_ERROR_IS_FATAL ANY
  )
  expect_shown(llvm-symbolizer "${shown}" "Encode[^\n]*\n[^\n]*/src/text/Base64[^\n]*:[0-9]+")
endfunction()

if(LLDB)
  read_with_lldb("write;thread"
    "\n\\* thread #2: [^\n]*WriteToNowhere[^\n]*Exception 0xc0000005"
    "\n  \\* frame #0: [^\n]*WriteToNowhere"
  )
  read_with_lldb("throw;handler"
    "\n\\* thread #1: [^\n]*Kelpkit.dll[^\n]*Exception 0xe06b656c"
    "\n    frame #[0-9]+: [^\n]*`__cxa_throw[^\n]*\n    frame #[0-9]+: [^\n]*::Throw"
  )
  # Arguments have names only where the separate file of symbols is read.
  read_with_lldb("kelpkit"
    "\n\\* thread #1: [^\n]*Kelpkit.dll[^\n]*Exception 0xc0000005"
    "\n    frame #[0-9]+: [^\n]*Kelpkit.dll`KELPKIT::CBase64::Encode[^\n]*\\(data="
    "\n    frame #[0-9]+: [^\n]*CrashInKelpkit"
  )
endif()
if(ADDR2LINE)
  read_with_addr2line()
endif()
if(SYMBOLIZER)
  read_with_symbolizer()
endif()
