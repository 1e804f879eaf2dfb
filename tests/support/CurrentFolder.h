#pragma once

#include "support/LastError.h"

#include <windows.h>

#include <iterator>
#include <stdexcept>
#include <string>

namespace test
{

// Makes a folder the current one of this process, until the object ends. Throws std::runtime_error where it cannot.
class CurrentFolder
{
public:
    explicit CurrentFolder(const std::wstring& folder)
    {
        ::GetCurrentDirectoryW(static_cast<DWORD>(std::size(m_before)), m_before);
        if (!::SetCurrentDirectoryW(folder.c_str()))
            throw std::runtime_error("no current folder: " + LastErrorText());
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() { ::SetCurrentDirectoryW(m_before); }

private:
    wchar_t m_before[MAX_PATH + 1] = {};
};

} // namespace test
