# How Kelpkit's own sources are compiled and linked.

add_library(KelpkitCompileOptions INTERFACE)
target_compile_definitions(KelpkitCompileOptions INTERFACE UNICODE _UNICODE _WIN32_WINNT=0x0601)
if(MSVC)
  # The old name resolution is the one that is meant.
  target_compile_definitions(KelpkitCompileOptions INTERFACE _WINSOCK_DEPRECATED_NO_WARNINGS)
  target_compile_options(KelpkitCompileOptions INTERFACE /W4 /WX /utf-8 /permissive- /EHsc)
else()
  target_compile_options(KelpkitCompileOptions INTERFACE
    -Wall -Wextra -Werror -Wpedantic -Wcast-qual -Wconversion -Wduplicated-cond -Wextra-semi -Wlogical-op
    -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wshadow -Wsign-conversion
    -Wundef -Wunused -g
  )
  # Catches misuse of the standard library at the place where it happens.
  target_compile_definitions(KelpkitCompileOptions INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endif()
