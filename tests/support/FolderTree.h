#pragma once

#include <string>
#include <vector>

namespace test
{

// Whether there is a file or a folder of this path.
bool Exists(const std::wstring& path);

// Makes the files and folders of a list below a folder, which is made, too; each file holds its own path in the list.
// An entry that ends in a backslash is a folder. Parents come before what is in them.
void MakeTree(const std::wstring& folder, const std::vector<std::wstring>& entries);

// Everything below a folder as such a list, sorted; nothing for a folder that is missing.
std::vector<std::wstring> ListTree(const std::wstring& folder);

} // namespace test
