# Targets that look at the sources only: format lays them out; the others fail on findings.

if(CMAKE_HOST_UNIX)
  set(check "${PROJECT_SOURCE_DIR}/cmake/check-sources.sh")
  add_custom_target(format COMMAND "${check}" format VERBATIM)
  add_custom_target(format-check COMMAND "${check}" format-check VERBATIM)

  # clang reads the sources as mingw's compiler does, but for the compiler's own headers.
  set(arguments --target=x86_64-w64-windows-gnu -nostdinc++ -Wno-unknown-warning-option -Wno-unused-command-line-argument)
  foreach(dir IN LISTS CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES)
    if(NOT dir MATCHES "/lib/gcc/[^/]+/[^/]+/include(-fixed)?$")
      list(APPEND arguments -isystem "${dir}")
    endif()
  endforeach()
  add_custom_target(tidy COMMAND "${check}" tidy "${PROJECT_BINARY_DIR}" . ${arguments} USES_TERMINAL VERBATIM)
  # Without tests and benchmarks, which take most of the time.
  add_custom_target(tidy-library
    COMMAND "${check}" tidy "${PROJECT_BINARY_DIR}" "src xmlparser mfc examples" ${arguments} USES_TERMINAL VERBATIM
  )
  add_custom_target(gnu-names COMMAND "${check}" gnu-names VERBATIM)
  if(MSVC)
    add_custom_target(mfc-syntax COMMAND "${check}" mfc-syntax "${PROJECT_BINARY_DIR}" USES_TERMINAL VERBATIM)
  endif()
endif()
