#pragma once

#include <string>

namespace test
{

// A new empty folder below the user's temporary folder, removed with everything in it at the end, read-only files
// included. Links in it are removed, not followed.
class TempFolder
{
public:
    // name stands at the end of the folder's own name, which is unique.
    explicit TempFolder(const std::wstring& name = L"");
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    // Without a trailing backslash.
    const std::wstring& Path() const { return m_path; }

    // The path of something in the folder.
    std::wstring operator/(const std::wstring& name) const { return m_path + L"\\" + name; }

private:
    std::wstring m_path;
};

// What every TempFolder's path starts with.
const std::wstring& TempFolderPrefix();

} // namespace test
