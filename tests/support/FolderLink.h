#pragma once

#include <string>

namespace test
{

// A junction to a folder; under Wine, which has no junctions, a symbolic link of the file system below, which Wine shows
// as a folder, too, but does not remove. It is removed at the end, if it is still there. The constructor throws
// std::runtime_error on failure.
class FolderLink
{
public:
    FolderLink(const std::wstring& link, const std::wstring& target);
    FolderLink(const FolderLink&) = delete;
    FolderLink& operator=(const FolderLink&) = delete;
    ~FolderLink();

private:
    std::wstring m_link;
    std::wstring m_target;
};

} // namespace test
