#include "log/DumpPath.h"
#include "support/Fuzz.h"

#include <fuzzer/FuzzedDataProvider.h>

using fuzz::Expect;
using KELPKIT::crash::CopyProgramName;
using KELPKIT::crash::DumpPath;

namespace
{

constexpr std::size_t kLongest = MAX_PATH - 1;

// Bytes of the name behind the last backslash, as many as the path has units.
std::wstring ModelName(const std::wstring& path)
{
    const std::size_t backslash = path.rfind(L'\\');
    if (backslash == path.npos)
        return L"";
    std::string bytes;
    for (const wchar_t unit : path.substr(backslash + 1))
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    bytes = bytes.substr(0, path.size());
    bytes += bytes.size() % 2 == 0 ? "" : std::string(1, '\0');
    std::wstring name;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        name +=
            static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) | static_cast<unsigned char>(bytes[i + 1]) << 8);
    return fuzz::UpToZero(name);
}

std::wstring ModelDigits(unsigned number, std::size_t least)
{
    const std::string digits = std::to_string(number);
    return std::wstring(least > digits.size() ? least - digits.size() : 0, L'0') +
           std::wstring(digits.begin(), digits.end());
}

std::wstring ModelPath(const std::wstring& folder, const SYSTEMTIME& now, const std::wstring& name)
{
    const std::wstring stamp = ModelDigits(now.wYear, 4) + ModelDigits(now.wMonth, 2) + ModelDigits(now.wDay, 2) +
                               ModelDigits(now.wHour, 2) + ModelDigits(now.wMinute, 2) + ModelDigits(now.wSecond, 2);
    return (folder + stamp + L"_" + name + L".dmp").substr(0, kLongest);
}

// In memory of just its size, zero-terminated.
std::unique_ptr<wchar_t[]> Exactly(const std::wstring& text)
{
    std::unique_ptr<wchar_t[]> exact(new wchar_t[text.size() + 1]);
    std::memcpy(exact.get(), text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    return exact;
}

} // namespace

// The folder, ended by a backslash with anything behind it but another one, and the program's path; the last bytes are
// the time.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    SYSTEMTIME now = {};
    for (WORD* field : {&now.wYear, &now.wMonth, &now.wDay, &now.wHour, &now.wMinute, &now.wSecond})
        *field = input.ConsumeIntegral<WORD>();
    const auto upToLongest = [](const std::string& bytes) {
        return fuzz::UpToZero(fuzz::Wide(bytes)).substr(0, kLongest);
    };
    const std::wstring folder = upToLongest(input.ConsumeRandomLengthString());
    const std::wstring program = upToLongest(input.ConsumeRemainingBytesAsString());

    wchar_t name[MAX_PATH] = {};
    CopyProgramName(Exactly(program).get(), name);
    Expect(name == ModelName(program), "the program's name is cut as the model does");
    const DumpPath path(Exactly(folder).get(), now, name);
    Expect(path.Text() == ModelPath(folder, now, name), "the path is the model's");
    return 0;
}
