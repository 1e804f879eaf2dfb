#include "system/DescriptorText.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace KELPKIT
{
namespace
{

// These ask no locale: the same descriptor reads alike in every application.
bool IsPrintable(int c)
{
    return c >= ' ' && c <= '~';
}

std::optional<int> HexDigit(char c)
{
    if (c == ' ' || (c >= '\t' && c <= '\r'))
        return 0;
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return {};
}

std::optional<std::string> DecodeHex(const std::string& text)
{
    std::string bytes;
    std::optional<int> high;
    for (const char c : text) {
        const std::optional<int> digit = HexDigit(c);
        if (!digit)
            return {};
        if (!high) {
            high = digit;
            continue;
        }
        const int byte = *high * 16 + *digit;
        if (byte != 0 && !IsPrintable(byte))
            return {};
        bytes.push_back(static_cast<char>(byte));
        high.reset();
    }
    return bytes;
}

} // namespace

std::string DescriptorText(const char* descriptor, std::size_t size, std::uint32_t offset)
{
    if (offset == 0 || offset >= size)
        return {};
    const char* const text = descriptor + offset;
    const void* const end = std::memchr(text, '\0', size - offset);
    return end == nullptr ? std::string() : DecodeDescriptorText(text);
}

std::string DecodeDescriptorText(const std::string& text)
{
    if (const std::optional<std::string> bytes = DecodeHex(text))
        return *bytes;
    return std::all_of(text.begin(), text.end(), IsPrintable) ? text : std::string();
}

} // namespace KELPKIT
