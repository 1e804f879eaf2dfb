#include "Kelpkit/Files.h"

#include "WindowsApi.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace KELPKIT
{
namespace
{

// "C:\" and shorter are no folders to make or delete.
constexpr std::size_t kRootLength = 3;

// To the system a path ends at its first zero character, so its length is counted to there.
std::wstring UpToZero(const std::wstring& path)
{
    return path.substr(0, path.find(L'\0'));
}

struct FindCloser {
    void operator()(HANDLE find) const { ::FindClose(find); }
};

bool IsDots(const wchar_t* name)
{
    return name[0] == L'.' && (name[1] == L'\0' || (name[1] == L'.' && name[2] == L'\0'));
}

// Deletes one entry of a folder. What fails shows when the folder itself cannot be removed.
void DeleteEntry(const std::wstring& folder, const WIN32_FIND_DATAW& entry)
{
    const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    std::wstring path = folder + entry.cFileName;
    if (isFolder)
        path += L'\\';
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (isFolder)
        DeleteDirectory(path);
    else
        ::DeleteFileW(path.c_str());
}

// Deletes everything in a folder, in the order in which the system names it.
void DeleteEntries(const std::wstring& folder)
{
    WIN32_FIND_DATAW entry;
    const HANDLE find = ::FindFirstFileW((folder + L"*.*").c_str(), &entry);
    if (find == INVALID_HANDLE_VALUE)
        return;
    const std::unique_ptr<void, FindCloser> closer(find);
    do {
        if (!IsDots(entry.cFileName))
            DeleteEntry(folder, entry);
    } while (::FindNextFileW(find, &entry));
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
    std::wstring folder = UpToZero(path);
    if (folder.size() <= kRootLength)
        return false;
    // By contract always one more, also behind a backslash that is there.
    folder += L'\\';
    DeleteEntries(folder);
    return ::RemoveDirectoryW(folder.c_str()) != FALSE;
}

} // namespace KELPKIT
