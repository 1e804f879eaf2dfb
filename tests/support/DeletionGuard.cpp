#include "support/DeletionGuard.h"

#include "support/TempFolder.h"

#include <cwchar>

namespace test
{
namespace
{

std::vector<std::wstring> g_refused;

bool IsInTempFolder(const wchar_t* path)
{
    const std::wstring& prefix = TempFolderPrefix();
    std::wstring full(32768, L'\0');
    full.resize(::GetFullPathNameW(path, static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.compare(0, 4, L"\\\\?\\") == 0)
        full.erase(0, 4);
    return _wcsnicmp(full.c_str(), prefix.c_str(), prefix.size()) == 0;
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
