#pragma once

#include "support/LastError.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace test
{

// A file held open as another program might hold it.
class FileHolder
{
public:
    FileHolder(const std::wstring& path, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING)
        : m_handle(::CreateFileW(path.c_str(), access, share, nullptr, disposition, 0, nullptr))
    {
        if (m_handle == INVALID_HANDLE_VALUE)
            throw std::runtime_error("a test file cannot be opened: " + LastErrorText());
    }
    FileHolder(const FileHolder&) = delete;
    FileHolder& operator=(const FileHolder&) = delete;
    ~FileHolder() { ::CloseHandle(m_handle); }

    HANDLE Handle() const { return m_handle; }

private:
    HANDLE m_handle;
};

} // namespace test
