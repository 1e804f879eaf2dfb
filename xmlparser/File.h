#pragma once

#include <string>
#include <string_view>

namespace xmlparser
{

// The bytes of a file, which others may have open in any way. False if it cannot be read or is 2 GiB or larger.
bool ReadWholeFile(const wchar_t* path, std::string& bytes);

// Puts a file in the place of another in one step, or makes it. Where no file can be made beside one that is there, its
// content is written over. False if any step fails; what was there is then as it was, and nothing is left beside it.
bool WriteWholeFile(const std::wstring& path, std::string_view bytes);

} // namespace xmlparser
