#pragma once

#include "support/ImportPatch.h"

#include <windows.h>

#include <string>
#include <vector>

namespace test
{

// Records Kelpkit's calls that look for, make, copy and delete files and folders, as "function path [path]", while it
// lives; they are carried out, too. One at a time.
class FileCallRecorder
{
public:
    // Paths that start with the prefix are shown without it.
    explicit FileCallRecorder(const std::wstring& prefix = L"")
    {
        s_prefix = prefix;
        s_calls.clear();
    }

    static const std::vector<std::wstring>& Calls() { return s_calls; }

private:
    static std::wstring Shown(const std::wstring& path)
    {
        return path.compare(0, s_prefix.size(), s_prefix) == 0 ? path.substr(s_prefix.size()) : path;
    }

    static void Note(const wchar_t* function, const std::wstring& path)
    {
        s_calls.push_back(std::wstring(function) + L" " + Shown(path));
    }

    static inline std::wstring s_prefix;
    static inline std::vector<std::wstring> s_calls;

    ImportPatch m_find{"FindFirstFileW", +[](const wchar_t* path, WIN32_FIND_DATAW* entry) {
                           Note(L"find", path);
                           return ::FindFirstFileW(path, entry);
                       }};
    ImportPatch m_create{"CreateDirectoryW", +[](const wchar_t* path, SECURITY_ATTRIBUTES* security) {
                             Note(security == nullptr ? L"create" : L"create with attributes", path);
                             return ::CreateDirectoryW(path, security);
                         }};
    ImportPatch m_attributes{"SetFileAttributesW", +[](const wchar_t* path, DWORD attributes) {
                                 Note(attributes == FILE_ATTRIBUTE_NORMAL ? L"normal" : L"attributes", path);
                                 return ::SetFileAttributesW(path, attributes);
                             }};
    ImportPatch m_copy{"CopyFileW", +[](const wchar_t* from, const wchar_t* to, BOOL failIfThere) {
                           Note(failIfThere ? L"copy if new" : L"copy", from);
                           s_calls.back() += L" " + Shown(to);
                           return ::CopyFileW(from, to, failIfThere);
                       }};
    ImportPatch m_delete{"DeleteFileW", +[](const wchar_t* path) {
                             Note(L"delete", path);
                             return ::DeleteFileW(path);
                         }};
    ImportPatch m_remove{"RemoveDirectoryW", +[](const wchar_t* path) {
                             Note(L"remove", path);
                             return ::RemoveDirectoryW(path);
                         }};
};

} // namespace test
