#include "support/Fuzz.h"

#include <Kelpkit/Files.h>

#include <algorithm>

using fuzz::Expect;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring path = fuzz::Wide({data, data + size});
    const bool hasBackslash = std::count(path.begin(), path.end(), L'\\') != 0;
    const std::wstring folder = KELPKIT::GetFileDir(path);
    Expect(path.substr(0, folder.size()) == folder, "the folder is how the path starts");
    Expect(hasBackslash ? folder.back() == L'\\' : folder == path, "it ends in a backslash, or is the path");
    Expect(std::count(path.begin() + static_cast<std::ptrdiff_t>(folder.size()), path.end(), L'\\') == 0,
           "that is the last one");

    const std::wstring extension = KELPKIT::GetFileExtion(path);
    const std::size_t start = path.size() - extension.size();
    Expect(path.substr(start) == extension, "the extension is how the path ends");
    if (std::count(path.begin(), path.end(), L'.') == 0)
        Expect(extension.empty(), "there is none without a dot");
    else
        Expect(start > 0 && path[start - 1] == L'.' && std::count(extension.begin(), extension.end(), L'.') == 0,
               "it stands behind the last dot");
    return 0;
}
