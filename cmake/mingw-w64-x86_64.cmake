# Cross-compiles for 64-bit Windows with mingw-w64 (POSIX threads).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

find_program(KELPKIT_MINGW_COMPILER x86_64-w64-mingw32-g++-posix)
mark_as_advanced(KELPKIT_MINGW_COMPILER)
if(NOT KELPKIT_MINGW_COMPILER)
  message(FATAL_ERROR "There is no x86_64-w64-mingw32-g++-posix. On Debian, Kelpkit's scripts/setup.sh installs it.")
endif()
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# For Windows, GCC lets a caller rely on the registers that its own copy of an inline function leaves alone, though the
# linker may keep another file's copy, which uses them.
set(CMAKE_C_FLAGS_INIT -fno-ipa-ra)
set(CMAKE_CXX_FLAGS_INIT -fno-ipa-ra)

# Libraries for Windows only: mingw's, those that scripts/setup.sh installs into build/deps since no Debian package
# offers them for mingw, and those in the prefixes that a project names.
cmake_path(SET KELPKIT_DEPS NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../build/deps")
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${KELPKIT_DEPS}" ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
