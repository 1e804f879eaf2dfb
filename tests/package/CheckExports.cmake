# Compares what a DLL exports with its committed list, so that the interface changes only on purpose.
#
#     cmake -DDLL=... -DLIST=... -DWORK=<folder> [-DCXXFILT=...] -P CheckExports.cmake
#
# The list has the names as the source says them where c++filt is given, the mangled ones otherwise, and may begin with
# comments. With -DUPDATE=ON its names are written instead.

cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/ReadPe.cmake")

cmake_path(GET LIST FILENAME list_name)

# Demangles `names`.
function(demangle_names)
  list(JOIN names "\n" text)
  set(names_file "${WORK}/${list_name}.names")
  file(WRITE "${names_file}" "${text}\n")
  execute_process(COMMAND "${CXXFILT}" INPUT_FILE "${names_file}" OUTPUT_VARIABLE demangled COMMAND_ERROR_IS_FATAL ANY)

  # As the source says it.
  string(REPLACE "[abi:cxx11]" "" demangled "${demangled}")
  string(REGEX REPLACE "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >" "std::string"
    demangled "${demangled}")
  string(REGEX REPLACE "std::__cxx11::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t> >"
    "std::wstring" demangled "${demangled}")
  string(REGEX REPLACE ", std::allocator<std::wstring > >" ">" demangled "${demangled}")
  string(REGEX REPLACE ", std::allocator<std::wstring> >" ">" demangled "${demangled}")

  string(STRIP "${demangled}" demangled)
  string(REPLACE "\n" ";" lines "${demangled}")
  # Constructors and destructors are exported in two forms each, which read alike.
  list(REMOVE_DUPLICATES lines)
  set(names ${lines} PARENT_SCOPE)
endfunction()

read_pe_exports("${DLL}" names)
if(CXXFILT)
  demangle_names()
endif()
list(SORT names)
list(JOIN names "\n" exports)
string(APPEND exports "\n")

set(expected "")
if(EXISTS "${LIST}")
  file(READ "${LIST}" expected)
endif()
string(REGEX MATCH "^(#[^\n]*\n)+" comments "${expected}")
string(PREPEND exports "${comments}")
if(UPDATE)
  file(WRITE "${LIST}" "${exports}")
elseif(NOT exports STREQUAL expected)
  file(WRITE "${WORK}/${list_name}" "${exports}")
  message(FATAL_ERROR "The exports differ from ${LIST}:\n${exports}")
endif()
