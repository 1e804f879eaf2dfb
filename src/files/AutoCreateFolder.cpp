#include "Kelpkit/Files.h"

#include "WindowsApi.h"

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
    CFileFolderManageTool().ClearFolder(m_strFolderPath);
}

} // namespace KELPKIT
