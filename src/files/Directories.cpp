#include "Kelpkit/Files.h"

#include "files/Entries.h"

#include <cstddef>
#include <vector>

namespace KELPKIT
{
namespace
{

// "C:\" and shorter are no folders to make or delete.
constexpr std::size_t kRootLength = 3;

// Deletes a file, or a folder that is empty. What fails shows when the folder around it cannot be removed.
void DeleteEntry(const std::wstring& path, bool isFolder)
{
    if (isFolder) {
        ::RemoveDirectoryW((path + L'\\').c_str());
        return;
    }
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    ::DeleteFileW(path.c_str());
}

} // namespace

bool MakeDirectory(const std::wstring& path)
{
    const std::wstring folder = UpToZero(path);
    if (folder.size() <= kRootLength)
        return false;
    if (CheckFolderExis(folder))
        return true;

    // Up until a level can be made or is there or is too short, then down again.
    std::vector<std::size_t> unmadeLengths;
    std::wstring level = folder;
    do {
        if (::CreateDirectoryW(level.c_str(), nullptr))
            break;
        const std::size_t backslash = level.rfind(L'\\');
        if (backslash == std::wstring::npos)
            break;
        unmadeLengths.push_back(level.size());
        level.resize(backslash);
    } while (level.size() > kRootLength && !CheckFolderExis(level));
    for (auto length = unmadeLengths.rbegin(); length != unmadeLengths.rend(); ++length)
        ::CreateDirectoryW(folder.substr(0, *length).c_str(), nullptr);

    // By contract false where the first attempt made the folder.
    return !unmadeLengths.empty();
}

bool DeleteDirectory(const std::wstring& path)
{
    const std::wstring folder = UpToZero(path);
    if (folder.size() <= kRootLength)
        return false;
    // By contract always one backslash more, also behind one that is there.
    const auto enter = [](std::wstring& subfolder) {
        subfolder += L'\\';
        ::SetFileAttributesW(subfolder.c_str(), FILE_ATTRIBUTE_NORMAL);
        return true;
    };
    ForEachInTree(folder, enter, DeleteEntry);
    return ::RemoveDirectoryW((folder + L'\\').c_str()) != FALSE;
}

} // namespace KELPKIT
