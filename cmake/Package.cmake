# What `cmake --install` lays down and `cpack` puts into a ZIP.

include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Kelpkit")
set(licenses_dir "${CMAKE_INSTALL_DATADIR}/licenses")

install(TARGETS Kelpkit KelpkitMfc XMLParser EXPORT KelpkitTargets FILE_SET HEADERS)
install(DIRECTORY mfc DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/Kelpkit" FILES_MATCHING PATTERN "*.h")
install(EXPORT KelpkitTargets NAMESPACE Kelpkit:: DESTINATION "${package_dir}")

configure_package_config_file(cmake/KelpkitConfig.cmake.in KelpkitConfig.cmake INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(KelpkitConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/KelpkitConfig.cmake" "${PROJECT_BINARY_DIR}/KelpkitConfigVersion.cmake"
  DESTINATION "${package_dir}"
)
install(FILES mfc/Kelpkit.natvis DESTINATION "${CMAKE_INSTALL_DATADIR}/Kelpkit")
include(cmake/Sbom.cmake)
install(FILES "${PROJECT_BINARY_DIR}/kelpkit.spdx.json" THIRD-PARTY.md DESTINATION "${licenses_dir}/Kelpkit")

if(MINGW)
  configure_file(cmake/kelpkit.pc.in kelpkit.pc @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/kelpkit.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  install(FILES ${KELPKIT_RUNTIME_DLLS} TYPE BIN)
  install(FILES $<TARGET_FILE:Kelpkit>.debug $<TARGET_FILE:XMLParser>.debug
    DESTINATION symbols COMPONENT symbols
  )

  # log4cplus for those who attach appenders: its headers, import library and package.
  cmake_path(GET log4cplus_DIR PARENT_PATH log4cplus_prefix)
  cmake_path(APPEND log4cplus_prefix ../.. OUTPUT_VARIABLE log4cplus_prefix)
  cmake_path(NORMAL_PATH log4cplus_prefix)
  install(DIRECTORY "${log4cplus_prefix}/include/log4cplus" TYPE INCLUDE)
  install(DIRECTORY "${log4cplus_DIR}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake")
  install(FILES $<TARGET_LINKER_FILE:${KELPKIT_LOG4CPLUS}> TYPE LIB)

  # The licences of what is shipped.
  install(DIRECTORY "${log4cplus_prefix}/share/licenses/log4cplus" DESTINATION "${licenses_dir}")
  install(FILES "${log4cplus_prefix}/share/licenses/pugixml/LICENSE.md" DESTINATION "${licenses_dir}/pugixml")
  install(FILES /usr/share/common-licenses/GPL-3 DESTINATION "${licenses_dir}/gcc-runtime")
  install(FILES /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright DESTINATION "${licenses_dir}/gcc-runtime")
  install(FILES /usr/share/doc/mingw-w64-x86-64-dev/copyright DESTINATION "${licenses_dir}/mingw-w64-runtime")
else()
  install(FILES $<TARGET_RUNTIME_DLLS:Kelpkit> $<TARGET_RUNTIME_DLLS:XMLParser> TYPE BIN)
  install(FILES $<TARGET_PDB_FILE:Kelpkit> $<TARGET_PDB_FILE:XMLParser>
    DESTINATION symbols COMPONENT symbols OPTIONAL
  )
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR Kelpkit)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
# Symbols in an archive of their own: they are kept, not shipped.
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_PACKAGE_FILE_NAME "Kelpkit-${PROJECT_VERSION}-win64")
set(CPACK_ARCHIVE_UNSPECIFIED_FILE_NAME "${CPACK_PACKAGE_FILE_NAME}")
set(CPACK_ARCHIVE_SYMBOLS_FILE_NAME "${CPACK_PACKAGE_FILE_NAME}-symbols")
include(CPack)
