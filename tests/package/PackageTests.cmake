# Tests of what `cmake --install` lays down, from outside: by projects that know nothing but the installed prefix.

set(stage "${CMAKE_CURRENT_BINARY_DIR}/package/stage")
set(work "${CMAKE_CURRENT_BINARY_DIR}/package")
file(MAKE_DIRECTORY "${work}")

add_test(NAME package.install
  COMMAND "${CMAKE_COMMAND}" --install "${PROJECT_BINARY_DIR}" --config $<CONFIG> --prefix "${stage}"
)
set_tests_properties(package.install PROPERTIES FIXTURES_SETUP package)

add_test(NAME package.archives
  COMMAND "${CMAKE_COMMAND}" "-DCPACK=${CMAKE_CPACK_COMMAND}" "-DBUILD=${PROJECT_BINARY_DIR}" -DCONFIG=$<CONFIG>
    "-DSTAGE=${stage}" "-DNAME=${KELPKIT_PACKAGE_NAME}" "-DWORK=${work}/archives"
    -P "${CMAKE_CURRENT_SOURCE_DIR}/package/CheckArchives.cmake"
)
set_tests_properties(package.archives PROPERTIES FIXTURES_REQUIRED package)

# A customer's own settings for the toolchain, not this project's. For clang-cl there are too many: he takes the
# project's toolchain file.
set(customer_options "-DCMAKE_PREFIX_PATH=${stage}" -DCMAKE_BUILD_TYPE=$<CONFIG>)
if(CMAKE_CROSSCOMPILING AND MSVC)
  list(APPEND customer_options "-DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}" "-DKELPKIT_SYSROOT=${KELPKIT_SYSROOT}")
elseif(CMAKE_CROSSCOMPILING)
  list(APPEND customer_options -DCMAKE_SYSTEM_NAME=Windows
    "-DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}" "-DCMAKE_RC_COMPILER=${CMAKE_RC_COMPILER}"
  )
else()
  list(APPEND customer_options "-DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}")
endif()

# kelpkit_add_customer(NAME FOLDER): builds the project in the folder against the installed package.
function(kelpkit_add_customer name folder)
  add_test(NAME package.${name}
    COMMAND "${CMAKE_CTEST_COMMAND}" --build-and-test "${folder}" "${work}/${name}"
      --build-generator "${CMAKE_GENERATOR}" --build-noclean
      --build-options ${customer_options}
  )
  set_tests_properties(package.${name} PROPERTIES FIXTURES_REQUIRED package FIXTURES_SETUP package.${name})
endfunction()

kelpkit_add_customer(consumer "${CMAKE_CURRENT_SOURCE_DIR}/package/consumer")
kelpkit_add_customer(headers "${CMAKE_CURRENT_SOURCE_DIR}/package/headers")
foreach(example converter host palette tour)
  kelpkit_add_customer(example.${example} "${PROJECT_SOURCE_DIR}/examples/${example}")
endforeach()

# The sources as a part of another project, with what that was told of the toolchain here.
set(subproject_options "-DKELPKIT_SOURCES=${PROJECT_SOURCE_DIR}" -DCMAKE_BUILD_TYPE=Debug)
if(CMAKE_TOOLCHAIN_FILE)
  list(APPEND subproject_options "-DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}")
endif()
if(KELPKIT_SYSROOT)
  list(APPEND subproject_options "-DKELPKIT_SYSROOT=${KELPKIT_SYSROOT}")
endif()
add_test(NAME package.subproject
  COMMAND "${CMAKE_CTEST_COMMAND}" --build-and-test "${CMAKE_CURRENT_SOURCE_DIR}/package/subproject" "${work}/subproject"
    --build-generator "${CMAKE_GENERATOR}" --build-noclean --build-options ${subproject_options}
    --test-command "${CMAKE_COMMAND}" "-DBUILD=${work}/subproject" "-DPREFIX=${work}/subproject.prefix"
      -P "${CMAKE_CURRENT_SOURCE_DIR}/package/CheckNothingInstalled.cmake"
)

# kelpkit_add_refusal(NAME LANGUAGE EXPECTED OPTION ...): a project with these settings is told that the package does not
# fit, and its reason matches EXPECTED. With LANGUAGE NONE, the settings simulate a compiler that need not be installed.
function(kelpkit_add_refusal name language expected)
  add_test(NAME package.refusal.${name}
    COMMAND "${CMAKE_CTEST_COMMAND}" --build-and-test "${CMAKE_CURRENT_SOURCE_DIR}/package/refusal"
      "${work}/refusal.${name}" --build-generator "${CMAKE_GENERATOR}"
      --build-options ${customer_options} "-DLANGUAGE=${language}" "-DEXPECTED=${expected}" ${ARGN}
  )
  set_tests_properties(package.refusal.${name} PROPERTIES FIXTURES_REQUIRED package)
endfunction()

if(MINGW)
  kelpkit_add_refusal(compiler NONE "mingw-w64" -UCMAKE_TOOLCHAIN_FILE -DMSVC=ON -DMSVC_VERSION=1944)
  if(KELPKIT_ABI STREQUAL "mingw-msvcrt")
    kelpkit_add_refusal(runtime CXX "C runtime" -DCMAKE_CXX_FLAGS=-D_UCRT)
  endif()
else()
  kelpkit_add_refusal(compiler NONE "Visual Studio" -DMINGW=ON)
  kelpkit_add_refusal(static-runtime NONE "/MDd?," -DMSVC=ON -DCMAKE_MSVC_RUNTIME_LIBRARY=MultiThreaded)
  if(NOT KELPKIT_ABI MATCHES "-debug$")
    kelpkit_add_refusal(debug-runtime NONE "MultiThreadedDebugDLL" -DMSVC=ON -DCMAKE_BUILD_TYPE=Debug
      -DCMAKE_MSVC_RUNTIME_LIBRARY=
    )
  endif()
  if(NOT KELPKIT_USE_MFC)
    kelpkit_add_refusal(mfc NONE "without MFC" -DMSVC=ON -DCMAKE_MFC_FLAG=2)
  endif()
endif()

find_program(KELPKIT_PKG_CONFIG NAMES pkgconf pkg-config)
if(MINGW AND KELPKIT_PKG_CONFIG)
  # Beside the other build of the program, which has the DLLs.
  add_test(NAME package.pkgconfig
    COMMAND "${CMAKE_COMMAND}" "-DPREFIX=${stage}" "-DPKG_CONFIG=${KELPKIT_PKG_CONFIG}" "-DCXX=${CMAKE_CXX_COMPILER}"
      "-DSOURCE=${CMAKE_CURRENT_SOURCE_DIR}/package/consumer/main.cpp" "-DPROGRAM=${work}/consumer/pkgconfig.exe"
      -P "${CMAKE_CURRENT_SOURCE_DIR}/package/BuildWithPkgConfig.cmake"
  )
  set_tests_properties(package.pkgconfig PROPERTIES
    FIXTURES_REQUIRED package.consumer FIXTURES_SETUP package.pkgconfig
  )
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME package.pkgconfig.run COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} "${work}/consumer/pkgconfig.exe")
    set_tests_properties(package.pkgconfig.run PROPERTIES
      ENVIRONMENT KELPKIT_CODE_PAGE=936 FIXTURES_REQUIRED "wine.936;package.pkgconfig"
    )
  else()
    add_test(NAME package.pkgconfig.run COMMAND "${work}/consumer/pkgconfig.exe")
    set_tests_properties(package.pkgconfig.run PROPERTIES FIXTURES_REQUIRED package.pkgconfig)
  endif()
endif()

if(CMAKE_CROSSCOMPILING)
  foreach(code_page IN LISTS KELPKIT_CODE_PAGES)
    add_test(NAME package.consumer.${code_page}
      COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} "${work}/consumer/consumer.exe"
    )
    set_tests_properties(package.consumer.${code_page} PROPERTIES
      ENVIRONMENT KELPKIT_CODE_PAGE=${code_page}
      FIXTURES_REQUIRED "wine.${code_page};package.consumer"
    )
  endforeach()
else()
  add_test(NAME package.consumer.run COMMAND "${work}/consumer/consumer.exe")
  set_tests_properties(package.consumer.run PROPERTIES FIXTURES_REQUIRED package.consumer)
endif()

# What the DLLs export: with mingw the names as the source says them, else the mangled ones.
set(exports_dlls XMLParser)
set(exports_list exports.msvc.txt)
set(exports_options)
if(MINGW)
  cmake_path(GET CMAKE_OBJDUMP PARENT_PATH binutils)
  find_program(KELPKIT_CXXFILT NAMES x86_64-w64-mingw32-c++filt c++filt HINTS "${binutils}" REQUIRED)
  set(exports_list exports.txt)
  set(exports_options "-DCXXFILT=${KELPKIT_CXXFILT}")
endif()
# With MFC, CString and COleDateTime are other types, and so the mangled names are others.
if(NOT KELPKIT_USE_MFC)
  list(PREPEND exports_dlls Kelpkit)
endif()
# Writes the lists anew where the interface changes on purpose.
add_custom_target(update-exports)
foreach(dll IN LISTS exports_dlls)
  set(check_exports "${CMAKE_COMMAND}" "-DDLL=$<TARGET_FILE:${dll}>"
    "-DLIST=${CMAKE_CURRENT_SOURCE_DIR}/package/${dll}.${exports_list}" "-DWORK=${work}" ${exports_options}
  )
  add_test(NAME package.exports.${dll}
    COMMAND ${check_exports} -P "${CMAKE_CURRENT_SOURCE_DIR}/package/CheckExports.cmake"
  )
  add_custom_command(TARGET update-exports POST_BUILD
    COMMAND ${check_exports} -DUPDATE=ON -P "${CMAKE_CURRENT_SOURCE_DIR}/package/CheckExports.cmake"
    VERBATIM
  )
endforeach()
add_dependencies(update-exports ${exports_dlls})

foreach(dll Kelpkit XMLParser)
  # Visual Studio's ABI needs fewer calls of the project's own.
  add_test(NAME package.calls.${dll}
    COMMAND "${CMAKE_COMMAND}" "-DDLL=$<TARGET_FILE:${dll}>" "-DRESULTS=${KELPKIT_TEST_RESULTS}"
      "-DLIST=${CMAKE_CURRENT_SOURCE_DIR}/package/${dll}.calls.txt" "-DSTALE=$<BOOL:${MINGW}>"
      -P "${CMAKE_CURRENT_SOURCE_DIR}/package/CheckCalls.cmake"
  )
  set_tests_properties(package.calls.${dll} PROPERTIES DEPENDS "${KELPKIT_TEST_RUNS}")
endforeach()

add_test(NAME package.imports
  COMMAND "${CMAKE_COMMAND}" "-DBIN=${stage}/bin" -P "${CMAKE_CURRENT_SOURCE_DIR}/package/CheckImports.cmake"
)
set_tests_properties(package.imports PROPERTIES FIXTURES_REQUIRED package)
