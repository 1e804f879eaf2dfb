#pragma once

#include "Kelpkit/Mfc.h" // before windows.h, as MFC wants it

#include "WindowsApi.h"
#if !defined(_AFX) // MFC's own headers define it
#include "mfc/CFileFind.h"
#endif

#include <string>

namespace KELPKIT
{

// What the system takes for the path.
inline std::wstring UpToZero(const std::wstring& path)
{
    return path.substr(0, path.find(L'\0'));
}

// Calls action(name, isFolder) for each entry that a pattern finds, "." and ".." left out, in the order in which the
// system names them.
template <class Action>
void ForEachEntry(const std::wstring& pattern, const Action& action)
{
    CFileFind finder;
    BOOL more = finder.FindFile(pattern.c_str());
    while (more) {
        more = finder.FindNextFile();
        if (!finder.IsDots())
            action(std::wstring(finder.GetFileName().GetString()),
                   finder.MatchesMask(FILE_ATTRIBUTE_DIRECTORY) != FALSE);
    }
}

} // namespace KELPKIT
