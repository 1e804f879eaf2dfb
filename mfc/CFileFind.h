#pragma once

// Stand-in for MFC's CFileFind, for toolchains without MFC: the same names with the same results, as far as Kelpkit and
// its applications use them. Like the real one, it is one entry ahead of what it shows.

#include "CString.h"

#include <windows.h>

class CFileFind
{
public:
    CFileFind() = default;
    CFileFind(const CFileFind&) = delete;
    CFileFind& operator=(const CFileFind&) = delete;
    virtual ~CFileFind() { Close(); }

    // Starts a search by a path that may hold wildcards; null stands for everything in the current folder. FALSE if
    // nothing is found. The first entry shows after the first FindNextFile.
    BOOL FindFile(const wchar_t* pattern = nullptr, DWORD /*unused*/ = 0)
    {
        Close();
        m_find = ::FindFirstFileW(pattern == nullptr ? L"*.*" : pattern, &m_next);
        return m_find != INVALID_HANDLE_VALUE;
    }

    // Goes to the next entry. FALSE if it is the last one, or if there is no search.
    BOOL FindNextFile()
    {
        if (m_find == INVALID_HANDLE_VALUE)
            return FALSE;
        m_shown = m_next;
        return ::FindNextFileW(m_find, &m_next);
    }

    // Ends the search. May be called again.
    void Close()
    {
        if (m_find != INVALID_HANDLE_VALUE)
            ::FindClose(m_find);
        m_find = INVALID_HANDLE_VALUE;
        m_shown = {};
    }

    // Of the entry that shows.
    CString GetFileName() const { return m_shown.cFileName; }
    BOOL MatchesMask(DWORD attributes) const { return (m_shown.dwFileAttributes & attributes) != 0; }
    BOOL IsDirectory() const { return MatchesMask(FILE_ATTRIBUTE_DIRECTORY); }
    BOOL IsDots() const
    {
        const CString name = GetFileName();
        return IsDirectory() && (name == L"." || name == L"..");
    }

private:
    HANDLE m_find = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW m_shown = {};
    WIN32_FIND_DATAW m_next = {};
};
