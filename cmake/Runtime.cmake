# The DLLs that Kelpkit.dll needs and Windows does not have. They are brought into the folder of the programs, and the
# package ships them from there.

set(KELPKIT_RUNTIME_DLLS)

# kelpkit_bring_dll(FILE): with mingw a stripped copy: the loader reads the whole file, and debug information makes up most
# of it.
function(kelpkit_bring_dll file)
  cmake_path(GET file FILENAME name)
  set(copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}")
  set(command "${CMAKE_COMMAND}" -E copy)
  if(MINGW)
    set(command "${CMAKE_OBJCOPY}" --strip-all)
  endif()
  add_custom_command(
    OUTPUT "${copy}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
    COMMAND ${command} "${file}" "${copy}"
    DEPENDS "${file}"
    COMMENT "Bringing ${name}"
    VERBATIM
  )
  set(KELPKIT_RUNTIME_DLLS ${KELPKIT_RUNTIME_DLLS} "${copy}" PARENT_SCOPE)
endfunction()

# Of the configuration that is built, or of the one that CMake takes instead.
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
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
      COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${name}"
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE
    )
    cmake_path(NORMAL_PATH file)
    if(NOT EXISTS "${file}")
      message(FATAL_ERROR "The compiler does not know its runtime ${name}")
    endif()
    kelpkit_bring_dll("${file}")
  endforeach()
endif()
kelpkit_bring_dll("${KELPKIT_LOG4CPLUS_DLL}")

add_custom_target(KelpkitRuntime ALL DEPENDS ${KELPKIT_RUNTIME_DLLS})
