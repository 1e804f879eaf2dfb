# What `cmake --install` lays down and `cpack` puts into a ZIP.

include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Kelpkit")
set(licenses_dir "${CMAKE_INSTALL_DATADIR}/licenses")

install(TARGETS Kelpkit KelpkitMfc XMLParser EXPORT KelpkitTargets FILE_SET HEADERS)
install(DIRECTORY mfc DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/Kelpkit" FILES_MATCHING PATTERN "*.h")
install(EXPORT KelpkitTargets NAMESPACE Kelpkit:: DESTINATION "${package_dir}")

# log4cplus for those who attach appenders: its headers and import library, of which KelpkitConfig.cmake makes a target.
get_target_property(log4cplus_includes ${KELPKIT_LOG4CPLUS} INTERFACE_INCLUDE_DIRECTORIES)
install(DIRECTORY "${log4cplus_includes}/log4cplus" TYPE INCLUDE)
install(FILES $<TARGET_LINKER_FILE:${KELPKIT_LOG4CPLUS}> TYPE LIB)
install(FILES ${KELPKIT_RUNTIME_DLLS} TYPE BIN)
cmake_path(GET KELPKIT_LOG4CPLUS_DLL FILENAME log4cplus_dll)
cmake_path(GET KELPKIT_LOG4CPLUS_IMPLIB FILENAME log4cplus_implib)
if(log4cplus_DIR MATCHES "/lib/cmake/log4cplus$")
  # For those who look for log4cplus themselves. That of vcpkg works inside of vcpkg only.
  install(DIRECTORY "${log4cplus_DIR}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake")
endif()

configure_package_config_file(cmake/KelpkitConfig.cmake.in KelpkitConfig.cmake
  INSTALL_DESTINATION "${package_dir}"
  PATH_VARS CMAKE_INSTALL_BINDIR CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR
)
write_basic_package_version_file(KelpkitConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/KelpkitConfig.cmake" "${PROJECT_BINARY_DIR}/KelpkitConfigVersion.cmake"
  DESTINATION "${package_dir}"
)
install(FILES mfc/Kelpkit.natvis DESTINATION "${CMAKE_INSTALL_DATADIR}/Kelpkit")
include(cmake/Sbom.cmake)
install(FILES "${PROJECT_BINARY_DIR}/kelpkit.spdx.json" THIRD-PARTY.md DESTINATION "${licenses_dir}/Kelpkit")

# The licences of what is shipped, from where scripts/setup.sh or vcpkg puts them.
foreach(library log4cplus pugixml)
  find_file(KELPKIT_${library}_LICENSE NAMES LICENSE LICENSE.md copyright
    PATHS "${log4cplus_includes}/../share/licenses/${library}" "${log4cplus_includes}/../share/${library}"
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED
  )
  mark_as_advanced(KELPKIT_${library}_LICENSE)
  install(FILES "${KELPKIT_${library}_LICENSE}" DESTINATION "${licenses_dir}/${library}")
endforeach()

if(MINGW)
  configure_file(cmake/kelpkit.pc.in kelpkit.pc @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/kelpkit.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  install(FILES $<TARGET_FILE:Kelpkit>.debug $<TARGET_FILE:XMLParser>.debug
    DESTINATION symbols COMPONENT symbols
  )
  install(FILES /usr/share/common-licenses/GPL-3 DESTINATION "${licenses_dir}/gcc-runtime")
  install(FILES /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright DESTINATION "${licenses_dir}/gcc-runtime")
  install(FILES /usr/share/doc/mingw-w64-x86-64-dev/copyright DESTINATION "${licenses_dir}/mingw-w64-runtime")
else()
  install(FILES $<TARGET_PDB_FILE:Kelpkit> $<TARGET_PDB_FILE:XMLParser> DESTINATION symbols COMPONENT symbols)
  # The redistributable parts of Visual Studio's runtime, and MFC's: Microsoft's licence for Visual Studio covers them.
  # Cross builds have none.
  if(CMAKE_HOST_WIN32 AND NOT KELPKIT_ABI MATCHES "-debug$")
    set(CMAKE_INSTALL_MFC_LIBRARIES ${KELPKIT_USE_MFC})
    include(InstallRequiredSystemLibraries)
  endif()
endif()

if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR Kelpkit)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
# Symbols in an archive of their own: they are kept, not shipped.
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_PACKAGE_FILE_NAME "${KELPKIT_PACKAGE_NAME}")
set(CPACK_ARCHIVE_UNSPECIFIED_FILE_NAME "${CPACK_PACKAGE_FILE_NAME}")
set(CPACK_ARCHIVE_SYMBOLS_FILE_NAME "${CPACK_PACKAGE_FILE_NAME}-symbols")
include(CPack)
