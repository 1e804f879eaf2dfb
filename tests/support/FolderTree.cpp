#include "support/FolderTree.h"

#include "support/FileContents.h"
#include "support/LastError.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace test
{
namespace
{

void MakeFolder(const std::wstring& path)
{
    if (!::CreateDirectoryW(path.c_str(), nullptr))
        throw std::runtime_error("a test folder cannot be made: " + LastErrorText());
}

void List(const std::wstring& folder, const std::wstring& prefix, std::vector<std::wstring>& entries)
{
    WIN32_FIND_DATAW entry;
    const HANDLE find = ::FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (find == INVALID_HANDLE_VALUE)
        return;
    do {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..")
            continue;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            entries.push_back(std::wstring(prefix).append(name));
        } else {
            const std::wstring path = std::wstring(prefix).append(name).append(L"\\");
            entries.push_back(path);
            List(folder + L"\\" + name, path, entries);
        }
    } while (::FindNextFileW(find, &entry));
    ::FindClose(find);
}

} // namespace

bool Exists(const std::wstring& path)
{
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void MakeTree(const std::wstring& folder, const std::vector<std::wstring>& entries)
{
    MakeFolder(folder);
    const std::wstring prefix = folder + L"\\";
    for (const std::wstring& entry : entries) {
        if (entry.back() == L'\\')
            MakeFolder(prefix + entry);
        else
            WriteFileBytes(prefix + entry, std::string(reinterpret_cast<const char*>(entry.data()), entry.size() * 2));
    }
}

std::vector<std::wstring> ListTree(const std::wstring& folder)
{
    std::vector<std::wstring> entries;
    List(folder, L"", entries);
    std::sort(entries.begin(), entries.end());
    return entries;
}

} // namespace test
