#include "Kelpkit/Files.h"

#include "files/Entries.h"

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

bool IsSamePath(const std::wstring& a, const std::wstring& b)
{
    return a.size() == b.size() && ::CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                                          static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

void ClearTree(const std::wstring& folder)
{
    ForEachEntry(folder + L"\\*.*", [&](const std::wstring& name, bool isFolder) {
        const std::wstring path = folder + L'\\' + name;
        if (isFolder)
            ClearTree(path);
        // By contract for a folder, too, where it fails.
        ::DeleteFileW(path.c_str());
    });
    ::RemoveDirectoryW(folder.c_str());
}

// Without a trailing backslash.
std::wstring FullPath(const std::wstring& path)
{
    std::wstring full(::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full.substr(0, full.find_last_not_of(L'\\') + 1);
}

// The path by which a walk through src meets dst; empty where dst is not inside src.
std::wstring PathInside(const std::wstring& src, const std::wstring& dst)
{
    const std::wstring source = FullPath(src) + L'\\';
    const std::wstring destination = FullPath(dst);
    if (destination.size() <= source.size() || !IsSamePath(destination.substr(0, source.size()), source))
        return {};
    return src + L'\\' + destination.substr(source.size());
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
    CopyTree(source, destination, PathInside(source, destination));
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
    return !m_setNoNeedFileExName.empty() && Holds(m_setNoNeedFileExName, GetFileType(path));
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

void CFileFolderManageTool::CopyTree(const std::wstring& src, const std::wstring& dst, const std::wstring& skipped)
{
    ClearTree(dst);
    ::CreateDirectoryW(dst.c_str(), nullptr);
    ForEachEntry(src + L"\\*.*", [&](const std::wstring& name, bool isFolder) {
        const std::wstring srcPath = src + L'\\' + name;
        if (IsNoNeedFile(srcPath) || IsSamePath(srcPath, skipped))
            return;
        const std::wstring dstPath = dst + L'\\' + name;
        if (isFolder)
            CopyTree(srcPath, dstPath, skipped);
        // The same here.
        if (!IsNoNeedFileExName(srcPath))
            ::CopyFileW(srcPath.c_str(), dstPath.c_str(), FALSE);
    });
}

} // namespace KELPKIT
