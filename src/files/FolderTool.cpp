#include "Kelpkit/Files.h"

#include "files/Entries.h"
#include "files/OpenFolder.h"

#include <algorithm>
#include <locale>

namespace KELPKIT
{
namespace
{

std::wstring LowerCase(std::wstring text)
{
    const std::locale global;
    std::use_facet<std::ctype<wchar_t>>(global).tolower(text.data(), text.data() + text.size());
    return text;
}

// Adds the pieces between "$" signs, empty ones included, save an empty last one.
void InsertPieces(const std::wstring& text, std::set<std::wstring>& pieces)
{
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(L'$', start), text.size());
        pieces.insert(LowerCase(text.substr(start, end - start)));
        start = end + 1;
    }
}

bool Holds(const std::set<std::wstring>& lowerCase, const std::wstring& text)
{
    return !lowerCase.empty() && lowerCase.count(LowerCase(text)) != 0;
}

void ClearTree(const std::wstring& folder)
{
    const auto enterEach = [](const std::wstring& /*unused*/) { return true; };
    ForEachInTree(folder, enterEach, [](const std::wstring& path, bool isFolder) {
        if (isFolder)
            ::RemoveDirectoryW(path.c_str());
        // By contract for a folder, too, where it fails.
        ::DeleteFileW(path.c_str());
    });
    ::RemoveDirectoryW(folder.c_str());
}

// Makes an empty folder in the place of whatever folder is there.
void MakeAnew(const std::wstring& folder)
{
    ClearTree(folder);
    ::CreateDirectoryW(folder.c_str(), nullptr);
}

} // namespace

CFileFolderManageTool::CFileFolderManageTool() = default;
CFileFolderManageTool::CFileFolderManageTool(const CFileFolderManageTool&) = default;
CFileFolderManageTool& CFileFolderManageTool::operator=(const CFileFolderManageTool&) = default;
CFileFolderManageTool::~CFileFolderManageTool() = default;

void CFileFolderManageTool::SetNoNeedFilePath(const std::wstring& paths)
{
    InsertPieces(paths, m_setNoNeedFilePath);
}

void CFileFolderManageTool::SetNoNeedFileExName(const std::wstring& exts)
{
    InsertPieces(exts, m_setNoNeedFileExName);
}

bool CFileFolderManageTool::CopyFolder(const std::wstring& src, const std::wstring& dst)
{
    const std::wstring source = UpToZero(src);
    const std::wstring destination = UpToZero(dst);
    if (source.empty() || destination.empty() || IsNoNeedFile(source))
        return false;
    MakeAnew(destination);
    const OpenFolder made(destination);
    const auto copyOf = [&](const std::wstring& path) { return destination + path.substr(source.size()); };
    const auto enter = [&](const std::wstring& path) {
        // The destination may be in the source: copied into itself, it would end only where paths do.
        if (IsNoNeedFile(path) || OpenFolder(path).IsSameAs(made))
            return false;
        MakeAnew(copyOf(path));
        return true;
    };
    ForEachInTree(source, enter, [&](const std::wstring& path, bool /*unused*/) {
        // By contract for a folder, too, where it fails.
        if (!IsNoNeedFile(path) && !IsNoNeedFileExName(path))
            ::CopyFileW(path.c_str(), copyOf(path).c_str(), FALSE);
    });
    return true;
}

bool CFileFolderManageTool::ClearFolder(const std::wstring& folder)
{
    const std::wstring path = UpToZero(folder);
    if (path.empty())
        return false;
    ClearTree(path);
    return true;
}

bool CFileFolderManageTool::IsNoNeedFile(const std::wstring& path)
{
    return Holds(m_setNoNeedFilePath, path);
}

bool CFileFolderManageTool::IsNoNeedFileExName(const std::wstring& path)
{
    return Holds(m_setNoNeedFileExName, GetFileType(path));
}

std::wstring CFileFolderManageTool::GetFileType(const std::wstring& path)
{
    // Where there is no dot, npos and one more is 0: the whole path.
    return path.substr(path.rfind(L'.') + 1);
}

int CFileFolderManageTool::CopyNeedFile(const std::wstring& src, const std::wstring& dst)
{
    if (IsNoNeedFile(src) || IsNoNeedFileExName(src))
        return 0;
    return ::CopyFileW(src.c_str(), dst.c_str(), FALSE);
}

} // namespace KELPKIT
