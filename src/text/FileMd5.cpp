#include "Kelpkit/Text.h"

#include "Kelpkit/Files.h"
#include "text/Md5.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <vector>

namespace KELPKIT
{
namespace
{

// Beneath the stream, so that its chunks cost no system call.
constexpr std::size_t kFileBufferSize = 65536;

} // namespace

std::wstring GetFileMD5(const std::wstring& path)
{
    std::wstring reason;
    if (!CheckFileValid(path, reason))
        return {};
    // By contract a file that can no longer be opened gives the digest of nothing.
    std::vector<char> buffer(kFileBufferSize);
    std::ifstream file;
    // libstdc++ takes a buffer before the file is opened, Visual Studio's library after.
    file.rdbuf()->pubsetbuf(buffer.data(), kFileBufferSize);
    file.open(path.c_str(), std::ios::in | std::ios::binary);
    file.rdbuf()->pubsetbuf(buffer.data(), kFileBufferSize);
    Md5 digest;
    digest.Update(file);
    const std::array<char, 32> digits = digest.Digits();
    return {digits.begin(), digits.end()};
}

} // namespace KELPKIT
