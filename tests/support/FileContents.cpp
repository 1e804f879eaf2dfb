#include "support/FileContents.h"

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

} // namespace test
