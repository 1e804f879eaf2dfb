#pragma once

#include "Kelpkit/Mfc.h" // before windows.h, as MFC wants it

#include "WindowsApi.h"
#if !defined(_AFX) // MFC's own headers define it
#include "mfc/CFileFind.h"
#endif

#include <cstddef>
#include <stack>
#include <string>

namespace KELPKIT
{

// What the system takes for the path.
inline std::wstring UpToZero(const std::wstring& path)
{
    return path.substr(0, path.find(L'\0'));
}

// The entries of a folder, "." and ".." left out, in the order in which the system names them.
class FolderSearch
{
public:
    explicit FolderSearch(const std::wstring& folder)
        : m_folderLength(folder.size()), m_more(m_finder.FindFile((folder + L"\\*.*").c_str()))
    {
    }

    // Goes to the next entry; the first one is next at the beginning. False if there is none.
    bool GoToNext()
    {
        while (m_more) {
            m_more = m_finder.FindNextFile();
            if (!m_finder.IsDots())
                return true;
        }
        return false;
    }

    std::wstring Name() const { return m_finder.GetFileName().GetString(); }
    bool IsFolder() const { return m_finder.MatchesMask(FILE_ATTRIBUTE_DIRECTORY) != FALSE; }

    // How long the path of the folder is.
    std::size_t FolderLength() const { return m_folderLength; }

private:
    std::size_t m_folderLength;
    CFileFind m_finder;
    BOOL m_more;
};

// Calls leave(path, isFolder) for each entry in a tree of folders. Before that, it calls enter(path) for each folder,
// which may add to the path; where that returns true, what is in the folder comes next. The stack of the thread does
// not grow with the depth of the tree.
template <class Enter, class Leave>
void ForEachInTree(std::wstring path, const Enter& enter, const Leave& leave)
{
    std::stack<FolderSearch> searches;
    searches.emplace(path);
    while (!searches.empty()) {
        FolderSearch& search = searches.top();
        path.resize(search.FolderLength());
        if (!search.GoToNext()) {
            // The search ends first: it would keep the folder from being removed.
            searches.pop();
            if (!searches.empty())
                leave(path, true);
            continue;
        }
        path += L'\\';
        path += search.Name();
        const bool isFolder = search.IsFolder();
        if (isFolder && enter(path))
            searches.emplace(path);
        else
            leave(path, isFolder);
    }
}

} // namespace KELPKIT
