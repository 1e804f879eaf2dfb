# How Kelpkit's own sources are compiled and linked.

# Not inside of other projects, whose compilers may find what ours do not.
set(CMAKE_COMPILE_WARNING_AS_ERROR ${PROJECT_IS_TOP_LEVEL})

add_library(KelpkitCompileOptions INTERFACE)
target_compile_definitions(KelpkitCompileOptions INTERFACE UNICODE _UNICODE _WIN32_WINNT=0x0601)
if(MSVC)
  # MFC includes windows.h, whose min and max are macros otherwise. The C library's and Winsock's old functions are the
  # ones that are meant, and a cast says itself that it cuts a constant.
  target_compile_definitions(KelpkitCompileOptions INTERFACE
    NOMINMAX _CRT_SECURE_NO_WARNINGS _WINSOCK_DEPRECATED_NO_WARNINGS
  )
  target_compile_options(KelpkitCompileOptions INTERFACE /W4 /wd4310 /utf-8 /permissive- /EHsc)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # clang-cl takes GCC's extensions, which Visual Studio's compiler does not.
    target_compile_options(KelpkitCompileOptions INTERFACE
      -Wpedantic -Wconversion -Wshadow
      -Wno-deprecated-declarations -Wno-language-extension-token
    )
  endif()
else()
  target_compile_options(KelpkitCompileOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wcast-qual -Wconversion -Wduplicated-cond -Wextra-semi -Wlogical-op
    -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wshadow -Wsign-conversion
    -Wundef -Wunused -g
  )
  # As in mingw-w64-x86_64.cmake, for those who bring a toolchain of their own.
  target_compile_options(KelpkitCompileOptions INTERFACE -fno-ipa-ra)
  # Catches misuse of the standard library at the place where it happens.
  target_compile_definitions(KelpkitCompileOptions INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endif()
