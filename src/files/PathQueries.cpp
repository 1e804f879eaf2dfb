#include "Kelpkit/Files.h"

#include "WindowsApi.h"

#include <fstream>

namespace KELPKIT
{
namespace
{

// Both runtimes open so that others may read and write the file meanwhile.
std::ifstream OpenForTest(const std::wstring& path)
{
    return std::ifstream(path.c_str(), std::ios::in | std::ios::binary);
}

} // namespace

bool CheckFileExis(const std::wstring& path)
{
    return OpenForTest(path).is_open();
}

bool CheckFolderExis(const std::wstring& path)
{
    WIN32_FIND_DATAW entry;
    const HANDLE find = ::FindFirstFileW(path.c_str(), &entry);
    const bool isFolder = find != INVALID_HANDLE_VALUE && (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    ::FindClose(find);
    return isFolder;
}

int GetFileSize(const std::wstring& path)
{
    std::ifstream file = OpenForTest(path);
    if (!file.good())
        return 0;
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    // Only the low 32 bits are the result: it is an int, and callers know it as one.
    return size < 0 ? 0 : static_cast<int>(static_cast<unsigned>(size));
}

bool CheckFileValid(const std::wstring& path, std::wstring& msg)
{
    // The path may be msg itself.
    const std::ifstream file = OpenForTest(path);
    const bool isEmpty = path.empty();
    msg.clear();
    if (isEmpty)
        msg = L"文件名为空";
    else if (!file.is_open())
        msg = L"文件不存在!";
    else if (!file.good())
        msg = L"文件正在使用!";
    return msg.empty();
}

} // namespace KELPKIT
