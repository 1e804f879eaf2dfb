#include "Kelpkit/Files.h"

#include "WindowsApi.h"

#include <exception>

namespace KELPKIT
{

CAutoCreateFolder::CAutoCreateFolder(const std::wstring& path) : m_strFolderPath(path)
{
    ::CreateDirectoryW(path.c_str(), nullptr);
}

CAutoCreateFolder::CAutoCreateFolder(const CAutoCreateFolder&) = default;
CAutoCreateFolder& CAutoCreateFolder::operator=(const CAutoCreateFolder&) = default;

CAutoCreateFolder::~CAutoCreateFolder()
{
    try {
        CFileFolderManageTool().ClearFolder(m_strFolderPath);
    } catch (const std::exception&) {
        // Memory ran out, which a destructor cannot tell. What is left stays.
    }
}

} // namespace KELPKIT
