# The DLLs that Kelpkit.dll needs and Windows does not have. They are brought into the folder of the programs, and the
# package ships them from there.

set(KELPKIT_RUNTIME_DLLS)

# kelpkit_bring_dll(FILE COMMAND ...): makes FILE in the folder of the programs with the command, which gets two more
# arguments: the file's present place and its new one.
function(kelpkit_bring_dll file)
  cmake_path(GET file FILENAME name)
  set(copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}")
  add_custom_command(
    OUTPUT "${copy}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
    COMMAND ${ARGN} "${file}" "${copy}"
    DEPENDS "${file}"
    COMMENT "Bringing ${name}"
    VERBATIM
  )
  set(KELPKIT_RUNTIME_DLLS ${KELPKIT_RUNTIME_DLLS} "${copy}" PARENT_SCOPE)
endfunction()

# Of the configuration that is built, or the one that stands for it.
set(config)
if(CMAKE_BUILD_TYPE)
  string(TOUPPER "_${CMAKE_BUILD_TYPE}" config)
endif()
get_target_property(KELPKIT_LOG4CPLUS_DLL ${KELPKIT_LOG4CPLUS} LOCATION${config})
get_target_property(KELPKIT_LOG4CPLUS_IMPLIB ${KELPKIT_LOG4CPLUS} IMPORTED_IMPLIB${config})
if(NOT KELPKIT_LOG4CPLUS_IMPLIB)
  get_target_property(KELPKIT_LOG4CPLUS_IMPLIB ${KELPKIT_LOG4CPLUS} IMPORTED_IMPLIB_RELEASE)
endif()
if(MINGW)
  # The loader reads the whole file, and debug information makes up most of it.
  set(strip "${CMAKE_OBJCOPY}" --strip-all)
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
      COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE
    )
    cmake_path(NORMAL_PATH file)
    if(NOT EXISTS "${file}")
      message(FATAL_ERROR "The compiler does not know its runtime ${name}")
    endif()
    kelpkit_bring_dll("${file}" ${strip})
  endforeach()
  kelpkit_bring_dll("${KELPKIT_LOG4CPLUS_DLL}" ${strip})
else()
  kelpkit_bring_dll("${KELPKIT_LOG4CPLUS_DLL}" "${CMAKE_COMMAND}" -E copy)
endif()

add_custom_target(KelpkitRuntime ALL DEPENDS ${KELPKIT_RUNTIME_DLLS})
