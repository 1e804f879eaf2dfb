# Cross-compiles for 64-bit Windows with Visual Studio's ABI: clang-cl and lld-link over a sysroot in the layout of
# `xwin splat`, with crt/ and sdk/ in it. KELPKIT_SYSROOT, a CMake or an environment variable, names the sysroot.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(KELPKIT_SYSROOT "$ENV{KELPKIT_SYSROOT}" CACHE PATH "Headers and libraries of Windows and of Visual Studio's runtime")
if(NOT EXISTS "${KELPKIT_SYSROOT}/crt/include" OR NOT EXISTS "${KELPKIT_SYSROOT}/sdk/include/um")
  message(FATAL_ERROR "KELPKIT_SYSROOT must name a sysroot in the layout of `xwin splat`; it is \"${KELPKIT_SYSROOT}\"")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KELPKIT_SYSROOT)

# The newest LLVM of this machine. Microsoft's C++ library of Visual Studio 2022 17.14 needs clang 19.
file(GLOB kelpkit_llvm LIST_DIRECTORIES ON "/usr/lib/llvm-*/bin")
list(SORT kelpkit_llvm COMPARE NATURAL ORDER DESCENDING)
foreach(tool clang-cl lld-link llvm-lib llvm-mt llvm-rc llvm-readobj llvm-undname)
  find_program(KELPKIT_${tool} ${tool} HINTS ${kelpkit_llvm} NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  mark_as_advanced(KELPKIT_${tool})
endforeach()
set(CMAKE_C_COMPILER "${KELPKIT_clang-cl}")
set(CMAKE_CXX_COMPILER "${KELPKIT_clang-cl}")
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_CXX_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_LINKER "${KELPKIT_lld-link}")
set(CMAKE_AR "${KELPKIT_llvm-lib}")
set(CMAKE_MT "${KELPKIT_llvm-mt}")
set(CMAKE_RC_COMPILER "${KELPKIT_llvm-rc}")

# /X: no headers but those of the sysroot, which may ask for compiler options of its own in the file "flags".
set(flags /X)
if(EXISTS "${KELPKIT_SYSROOT}/flags")
  file(STRINGS "${KELPKIT_SYSROOT}/flags" own LIMIT_COUNT 1)
  string(APPEND flags " ${own}")
endif()
set(resource_flags)
foreach(folder crt/include sdk/include/ucrt sdk/include/um sdk/include/shared)
  string(APPEND flags " -imsvc \"${KELPKIT_SYSROOT}/${folder}\"")
  string(APPEND resource_flags " -I \"${KELPKIT_SYSROOT}/${folder}\"")
endforeach()
set(link_flags /manifest:no)
foreach(folder crt/lib/x86_64 sdk/lib/ucrt/x86_64 sdk/lib/um/x86_64)
  string(APPEND link_flags " \"/libpath:${KELPKIT_SYSROOT}/${folder}\"")
endforeach()
set(CMAKE_C_FLAGS_INIT "${flags}")
set(CMAKE_CXX_FLAGS_INIT "${flags}")
set(CMAKE_RC_FLAGS_INIT "${resource_flags}")
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "${link_flags}")
endforeach()

# The release runtime in every configuration: such a sysroot need not have the debug one, and Wine does not have it.
if(NOT DEFINED CMAKE_MSVC_RUNTIME_LIBRARY)
  set(CMAKE_MSVC_RUNTIME_LIBRARY MultiThreadedDLL)
endif()
set(CMAKE_TRY_COMPILE_CONFIGURATION Release)

# Libraries for this ABI only: those that `scripts/setup.sh clang-cl` installs, and those in the prefixes that a project
# names.
cmake_path(SET KELPKIT_DEPS NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../build/deps-clang-cl")
set(CMAKE_FIND_ROOT_PATH "${KELPKIT_SYSROOT}" "${KELPKIT_DEPS}" ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
