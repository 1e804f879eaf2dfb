# Every library that Kelpkit builds on is looked up here: an installed package first, for mingw the ones that
# scripts/setup.sh put into build/deps among them; else the sources on this machine.

# The wide-character build of log4cplus 2.0, shared. Its target's name tells the build: log4cplusU is the wide one.
find_package(log4cplus 2.0 CONFIG QUIET)
if(NOT log4cplus_FOUND)
  message(FATAL_ERROR "The libraries that Kelpkit builds on are not there. Run scripts/setup.sh first (for clang-cl: "
    "scripts/setup.sh clang-cl; with Visual Studio, vcpkg brings them)."
  )
endif()
if(TARGET log4cplus::log4cplusU)
  set(KELPKIT_LOG4CPLUS log4cplus::log4cplusU)
elseif(TARGET log4cplus::log4cplus)
  set(KELPKIT_LOG4CPLUS log4cplus::log4cplus)
else()
  message(FATAL_ERROR "Kelpkit needs log4cplus with wide characters (UNICODE)")
endif()

find_path(KELPKIT_BOOST_INCLUDE_DIR boost/version.hpp REQUIRED)
add_library(KelpkitBoost INTERFACE)
target_include_directories(KelpkitBoost SYSTEM INTERFACE "${KELPKIT_BOOST_INCLUDE_DIR}")

find_package(pugixml 1.13 CONFIG REQUIRED)

if(KELPKIT_BUILD_TESTS)
  find_package(GTest CONFIG QUIET)
  if(NOT GTest_FOUND)
    set(KELPKIT_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "The sources of GoogleTest")
    set(INSTALL_GTEST OFF)
    set(BUILD_GMOCK OFF)
    set(gtest_force_shared_crt ON) # Visual Studio's runtime as a DLL, as everything here
    add_subdirectory("${KELPKIT_GOOGLETEST_SOURCES}" googletest EXCLUDE_FROM_ALL SYSTEM)
  endif()
endif()
