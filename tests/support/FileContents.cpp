#include "support/FileContents.h"

#include "support/FileHolder.h"
#include "support/LastError.h"

#include <windows.h>
#include <winioctl.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test
{

void WriteFileBytes(const std::wstring& path, const std::string& bytes)
{
    std::ofstream file(path.c_str(), std::ios::binary | std::ios::trunc);
    if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
        throw std::runtime_error("a test file cannot be written");
}

std::string ReadFileBytes(const std::wstring& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    if (!file)
        throw std::runtime_error("a test file cannot be read");
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void MakeSparseFile(const std::wstring& path, long long size)
{
    const FileHolder file(path, GENERIC_READ | GENERIC_WRITE, 0, CREATE_ALWAYS);
    DWORD returned = 0;
    // Where the file system has no such control, it has sparse files without being asked.
    ::DeviceIoControl(file.Handle(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    LARGE_INTEGER end;
    end.QuadPart = size;
    if (!::SetFilePointerEx(file.Handle(), end, nullptr, FILE_BEGIN) || !::SetEndOfFile(file.Handle()))
        throw std::runtime_error("a test file cannot be made: " + LastErrorText());
}

} // namespace test
