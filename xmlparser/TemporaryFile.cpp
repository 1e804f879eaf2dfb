#include "TemporaryFile.h"

#include "Handle.h"
#include "WindowsApi.h"

#include <algorithm>
#include <cstddef>
#include <cwchar>
#include <memory>

namespace xmlparser
{
namespace
{

struct SearchCloser {
    void operator()(HANDLE search) const { ::FindClose(search); }
};

using Search = std::unique_ptr<void, SearchCloser>;

// What the temporary name has behind the file's.
std::wstring Ending(DWORD process, DWORD thread)
{
    return L"." + std::to_wstring(process) + L"-" + std::to_wstring(thread) + L".saving";
}

// Whether no process has the number. One that may not be opened is there.
bool IsGone(DWORD process)
{
    const Handle handle(::OpenProcess(SYNCHRONIZE, FALSE, process));
    if (handle == nullptr)
        return ::GetLastError() == ERROR_INVALID_PARAMETER;
    return ::WaitForSingleObject(handle.get(), 0) == WAIT_OBJECT_0;
}

// Whether a process that is gone had a temporary name with this ending, character for character.
bool IsLeftover(const std::wstring& ending)
{
    if (ending.empty())
        return false;
    wchar_t* end = nullptr;
    const DWORD process = std::wcstoul(ending.c_str() + 1, &end, 10);
    if (*end != L'-')
        return false;
    const DWORD thread = std::wcstoul(end + 1, nullptr, 10);
    return ending == Ending(process, thread) && IsGone(process);
}

} // namespace

std::wstring TemporaryName(const std::wstring& path)
{
    return path + Ending(::GetCurrentProcessId(), ::GetCurrentThreadId());
}

void RemoveLeftovers(const std::wstring& path)
{
    WIN32_FIND_DATAW found;
    const HANDLE first = ::FindFirstFileW((path + L".*-*.saving").c_str(), &found);
    if (first == INVALID_HANDLE_VALUE)
        return;
    const Search search(first);
    const std::size_t nameSize = path.size() - (path.find_last_of(L"\\/:") + 1);
    do {
        const std::wstring name = found.cFileName;
        const std::wstring ending = name.substr(std::min(nameSize, name.size()));
        if (IsLeftover(ending))
            ::DeleteFileW((path + ending).c_str());
    } while (::FindNextFileW(search.get(), &found));
}

} // namespace xmlparser
