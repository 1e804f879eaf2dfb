#include "Kelpkit/Files.h"

#include <cstddef>

namespace KELPKIT
{

std::wstring GetFileDir(const std::wstring& path)
{
    const std::size_t backslash = path.rfind(L'\\');
    return backslash == std::wstring::npos ? path : path.substr(0, backslash + 1);
}

std::wstring GetFileExtion(const std::wstring& path)
{
    // The dot is looked for in the whole path, not in its last component.
    const std::size_t dot = path.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : path.substr(dot + 1);
}

} // namespace KELPKIT
