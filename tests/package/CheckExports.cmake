# Compares what a DLL exports with its committed list, so that the interface changes only on purpose.
#
#     cmake -DDLL=... -DLIST=... -DOBJDUMP=... -DCXXFILT=... -P CheckExports.cmake
#
# With -DUPDATE=ON the list is written instead.

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND "${OBJDUMP}" -p "${DLL}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table.*" table "${headers}")
string(REGEX REPLACE "\n\n.*" "" table "${table}")
string(REGEX MATCHALL "\\[ *[0-9]+\\] [A-Za-z0-9_?@$.]+" rows "${table}")
list(TRANSFORM rows REPLACE "^\\[ *[0-9]+\\] " "")
list(JOIN rows "\n" names)
cmake_path(GET LIST FILENAME list_name)
set(names_file "${WORK}/${list_name}.names")
file(WRITE "${names_file}" "${names}\n")
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
list(SORT lines)
list(JOIN lines "\n" exports)
string(APPEND exports "\n")

if(UPDATE)
  file(WRITE "${LIST}" "${exports}")
  return()
endif()
file(READ "${LIST}" expected)
if(NOT exports STREQUAL expected)
  file(WRITE "${WORK}/${list_name}" "${exports}")
  message(FATAL_ERROR "The exports differ from ${LIST}:\n${exports}")
endif()
