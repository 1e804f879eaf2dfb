#include "support/DeletionGuard.h"

#include "support/TempFolder.h"

#include <cwchar>
#include <iterator>

namespace test
{
namespace
{

std::vector<std::wstring> g_refused;

bool IsInTempFolder(const wchar_t* path)
{
    // Takes no memory from the heap, which tests let run out: compilers assume that Windows' functions throw nothing.
    wchar_t buffer[32768];
    const DWORD length = ::GetFullPathNameW(path, static_cast<DWORD>(std::size(buffer)), buffer, nullptr);
    if (length == 0 || length >= std::size(buffer))
        return false;
    const wchar_t* const full = std::wcsncmp(buffer, L"\\\\?\\", 4) == 0 ? buffer + 4 : buffer;
    const std::wstring& prefix = TempFolderPrefix();
    return _wcsnicmp(full, prefix.c_str(), prefix.size()) == 0;
}

bool IsAllowed(const wchar_t* path)
{
    if (IsInTempFolder(path))
        return true;
    g_refused.emplace_back(path);
    ::SetLastError(ERROR_ACCESS_DENIED);
    return false;
}

} // namespace

DeletionGuard::DeletionGuard()
    : m_deleteFile(
          "DeleteFileW", +[](const wchar_t* path) { return IsAllowed(path) ? ::DeleteFileW(path) : FALSE; }),
      m_removeDirectory(
          "RemoveDirectoryW", +[](const wchar_t* path) { return IsAllowed(path) ? ::RemoveDirectoryW(path) : FALSE; })
{
}

const std::vector<std::wstring>& DeletionGuard::Refused()
{
    return g_refused;
}

} // namespace test
