# Builds what scripts/setup.sh builds: change both.

# XMLParser.dll has it inside.
vcpkg_check_linkage(ONLY_STATIC_LIBRARY)

vcpkg_from_github(
  OUT_SOURCE_PATH source_path
  REPO zeux/pugixml
  REF "v${VERSION}"
  SHA512 5ff95a1ce06df01a72e736be4684c097dc656b2fc330b7fe6bf62601aca5c72edd0f40e51a643ce92f4fe5ba632b0b9fb57fbb1524aebcdd70441adeedec4a86
)

# Compact: less memory for each node, which is most of the time that a large file takes.
# The policy: version 1.13 asks for CMake 3.4, whose ways CMake 4 has given up.
vcpkg_cmake_configure(
  SOURCE_PATH "${source_path}"
  OPTIONS
    -DPUGIXML_COMPACT=ON
    -DCMAKE_POLICY_VERSION_MINIMUM=3.5
  MAYBE_UNUSED_VARIABLES
    CMAKE_POLICY_VERSION_MINIMUM
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/pugixml)
vcpkg_fixup_pkgconfig()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
vcpkg_install_copyright(FILE_LIST "${source_path}/LICENSE.md")
