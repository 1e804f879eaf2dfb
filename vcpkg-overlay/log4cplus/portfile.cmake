# vcpkg's own port is of a later version, is not patched, and has the thread pool. This one builds what scripts/setup.sh
# builds: change both.

# The release's archive has the sources that the repository takes from others.
vcpkg_download_distfile(archive
  URLS
    "https://github.com/log4cplus/log4cplus/releases/download/REL_2_0_8/log4cplus-2.0.8.tar.xz"
    "https://downloads.sourceforge.net/project/log4cplus/log4cplus-stable/2.0.8/log4cplus-2.0.8.tar.xz"
  FILENAME log4cplus-2.0.8.tar.xz
  SHA512 3a7445d972458d6fca03ae6fdc31bf4be22447af8aaeabc68bd2b0262e2328e471f6e9dad515892cf27f3864d67e0d9aa88521e6fc7d180368f1874f22027766
)
vcpkg_extract_source_archive(source_path ARCHIVE "${archive}" PATCHES kelpkit.patch)

vcpkg_check_features(OUT_FEATURE_OPTIONS feature_options FEATURES unicode UNICODE)
# With the thread pool, each log that is set up starts four threads, and processes hang when they exit or unload the
# DLL. The library's name stays decorated: cmake/Dependencies.cmake knows the wide build by its target, log4cplusU.
vcpkg_cmake_configure(
  SOURCE_PATH "${source_path}"
  OPTIONS
    ${feature_options}
    -DLOG4CPLUS_ENABLE_THREAD_POOL=OFF
    -DLOG4CPLUS_BUILD_TESTING=OFF
    -DLOG4CPLUS_BUILD_LOGGINGSERVER=OFF
    -DWITH_UNIT_TESTS=OFF
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/log4cplus)
vcpkg_copy_pdbs()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
vcpkg_install_copyright(FILE_LIST "${source_path}/LICENSE" "${source_path}/threadpool/COPYING")
