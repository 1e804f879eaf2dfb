#include "support/TempFolder.h"

#include "support/LastError.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>

namespace test
{
namespace
{

void Remove(const std::wstring& path, DWORD attributes)
{
    ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        ::DeleteFileW(path.c_str());
        return;
    }
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        WIN32_FIND_DATAW entry;
        const HANDLE find = ::FindFirstFileW((path + L"\\*").c_str(), &entry);
        if (find != INVALID_HANDLE_VALUE) {
            do {
                const std::wstring name = entry.cFileName;
                if (name != L"." && name != L"..")
                    Remove(path + L"\\" + name, entry.dwFileAttributes);
            } while (::FindNextFileW(find, &entry));
            ::FindClose(find);
        }
    }
    ::RemoveDirectoryW(path.c_str());
}

} // namespace

const std::wstring& TempFolderPrefix()
{
    static const std::wstring prefix = [] {
        wchar_t temp[MAX_PATH + 1] = {};
        ::GetTempPathW(MAX_PATH, temp);
        wchar_t full[MAX_PATH + 1] = {};
        ::GetLongPathNameW(temp, full, MAX_PATH);
        return std::wstring(full) + L"kelpkit-" + std::to_wstring(::GetCurrentProcessId()) + L"-";
    }();
    return prefix;
}

TempFolder::TempFolder(const std::wstring& name)
{
    static std::atomic<int> count = 0;
    // An earlier program of the same number may have left folders behind.
    do {
        m_path = TempFolderPrefix() + std::to_wstring(++count) + name;
        if (::CreateDirectoryW(m_path.c_str(), nullptr))
            return;
    } while (::GetLastError() == ERROR_ALREADY_EXISTS);
    throw std::runtime_error("no temporary folder: " + LastErrorText());
}

TempFolder::~TempFolder()
{
    // By way of the long form, since tests make trees that are deep.
    Remove(L"\\\\?\\" + m_path, FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace test
