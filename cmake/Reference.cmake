# The target "reference": the guide and the reference of the public headers as a web site, in
# build/<preset>/reference/html. What Doxygen warns of and links that lead nowhere are errors.

find_program(KELPKIT_DOXYGEN NAMES doxygen)
find_package(Python3 COMPONENTS Interpreter QUIET)
if(KELPKIT_DOXYGEN AND Python3_FOUND)
  set(KELPKIT_REFERENCE_DIR "${PROJECT_BINARY_DIR}/reference")
  configure_file(docs/Doxyfile.in Doxyfile @ONLY)
  add_custom_target(reference
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${KELPKIT_REFERENCE_DIR}"
    COMMAND "${KELPKIT_DOXYGEN}" "${PROJECT_BINARY_DIR}/Doxyfile"
    COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/docs/check-links.py" "${KELPKIT_REFERENCE_DIR}/html"
    COMMENT "Writing the reference"
    VERBATIM
  )
else()
  add_custom_target(reference
    COMMAND "${CMAKE_COMMAND}" -E echo "Doxygen or Python 3 is missing; scripts/setup.sh dev installs both. Then configure again."
    COMMAND "${CMAKE_COMMAND}" -E false
    VERBATIM
  )
endif()
