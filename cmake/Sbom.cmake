# The bill of materials of the package, in SPDX 2.3: what is in it, in the versions that this build found.

# kelpkit_add_material(NAME VERSION LICENCE RELATION): RELATION is how Kelpkit comes by it, in SPDX's words.
set(KELPKIT_MATERIALS)
set(KELPKIT_RELATIONS)
function(kelpkit_add_material name version license relation)
  if(NOT version)
    message(FATAL_ERROR "The version of ${name} is not known")
  endif()
  string(MAKE_C_IDENTIFIER "${name}" id)
  string(REPLACE "_" "-" id "SPDXRef-${id}")
  string(APPEND KELPKIT_MATERIALS ",
    {
      \"SPDXID\": \"${id}\",
      \"name\": \"${name}\",
      \"versionInfo\": \"${version}\",
      \"downloadLocation\": \"NOASSERTION\",
      \"filesAnalyzed\": false,
      \"licenseConcluded\": \"NOASSERTION\",
      \"licenseDeclared\": \"${license}\",
      \"copyrightText\": \"NOASSERTION\"
    }")
  string(APPEND KELPKIT_RELATIONS ",
    {
      \"spdxElementId\": \"SPDXRef-Kelpkit\",
      \"relationshipType\": \"${relation}\",
      \"relatedSpdxElement\": \"${id}\"
    }")
  set(KELPKIT_MATERIALS "${KELPKIT_MATERIALS}" PARENT_SCOPE)
  set(KELPKIT_RELATIONS "${KELPKIT_RELATIONS}" PARENT_SCOPE)
endfunction()

kelpkit_add_material(log4cplus "${log4cplus_VERSION}" "Apache-2.0 AND BSD-2-Clause AND Zlib" DYNAMIC_LINK)
# Packages of pugixml tell a DLL by the target behind the one that everybody uses.
if(TARGET pugixml::shared)
  kelpkit_add_material(pugixml "${pugixml_VERSION}" MIT DYNAMIC_LINK)
else()
  kelpkit_add_material(pugixml "${pugixml_VERSION}" MIT STATIC_LINK)
endif()
file(STRINGS "${KELPKIT_BOOST_INCLUDE_DIR}/boost/version.hpp" version REGEX "define BOOST_LIB_VERSION")
string(REGEX REPLACE ".*\"([0-9_]+)\".*" "\\1" version "${version}")
string(REPLACE "_" "." version "${version}")
kelpkit_add_material(Boost "${version}" BSL-1.0 STATIC_LINK)
if(MINGW)
  kelpkit_add_material("GCC runtime" "${CMAKE_CXX_COMPILER_VERSION}" "GPL-3.0-or-later WITH GCC-exception-3.1" DYNAMIC_LINK)
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -E echo "#include <_mingw.h>\nKELPKIT_VERSION __MINGW64_VERSION_STR"
    COMMAND "${CMAKE_CXX_COMPILER}" -E -P -x c++ -
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY
  )
  # The macro gives one literal for each part, such as: "10" "." "0" "." "0"
  string(REGEX REPLACE ".*KELPKIT_VERSION" "" version "${text}")
  string(REGEX REPLACE "[^0-9.]" "" version "${version}")
  kelpkit_add_material("mingw-w64 runtime" "${version}" "MIT AND BSD-3-Clause AND ZPL-2.1" DYNAMIC_LINK)
endif()
if(MSVC)
  kelpkit_add_material("Visual C++ runtime" "${MSVC_VERSION}" NOASSERTION DYNAMIC_LINK)
endif()

string(TIMESTAMP KELPKIT_CREATED "%Y-%m-%dT%H:%M:%SZ" UTC)
string(UUID KELPKIT_DOCUMENT NAMESPACE 6ba7b811-9dad-11d1-80b4-00c04fd430c8 TYPE SHA1
  NAME "${PROJECT_VERSION}${KELPKIT_MATERIALS}${KELPKIT_CREATED}"
)
configure_file(cmake/kelpkit.spdx.json.in kelpkit.spdx.json @ONLY)
