# A debugger that people use shows where a program crashed: the thread, and the function by its name.
#
#     cmake -DWINE=... -DBIN=<folder of the programs> -DLLDB=... -DWORK=... -P ReadDump.cmake

cmake_minimum_required(VERSION 3.25)

function(show_dump way)
  file(REMOVE_RECURSE "${WORK}")
  file(MAKE_DIRECTORY "${WORK}")
  string(REPLACE "/" "\\" windows_work "Z:${WORK}")
  string(REPLACE "/" "\\" windows_bin "Z:${BIN}")
  # By way of cmd, since Wine sets TMP itself.
  execute_process(
    COMMAND "${WINE}" run cmd /c set "TMP=${windows_work}&&"
      "${windows_bin}\\Crasher.exe" "${windows_work}\\records" ${way}
    OUTPUT_QUIET ERROR_QUIET
  )
  file(GLOB dump "${WORK}/*_Crasher.exe.dmp")
  execute_process(
    COMMAND "${LLDB}" --batch --no-lldbinit
      -o "target create \"${BIN}/Crasher.exe\" --core \"${dump}\""
      -o "target symbols add --shlib Kelpkit.dll \"${BIN}/Kelpkit.dll.debug\""
      -o "thread list" -o "thread backtrace"
    OUTPUT_VARIABLE shown ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY
  )
  foreach(wanted IN LISTS ARGN)
    if(NOT shown MATCHES "${wanted}")
      message(FATAL_ERROR "lldb does not show ${wanted}:\n${shown}")
    endif()
  endforeach()
endfunction()

show_dump("write;thread"
  "\n\\* thread #2: [^\n]*WriteToNowhere[^\n]*Exception 0xc0000005"
  "\n  \\* frame #0: [^\n]*WriteToNowhere"
)
# Arguments have names only where the separate file of symbols is read.
show_dump("kelpkit"
  "\n\\* thread #1: [^\n]*Kelpkit.dll[^\n]*Exception 0xc0000005"
  "\n    frame #[0-9]+: [^\n]*Kelpkit.dll`KELPKIT::CBase64::Encode[^\n]*\\(data="
  "\n    frame #[0-9]+: [^\n]*CrashInKelpkit"
)
