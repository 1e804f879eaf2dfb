#include "Kelpkit/Text.h"

#include "text/Base64Codec.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>
#include <utility>

namespace KELPKIT
{
namespace
{

const base64::Blocks& g_blocks = processor::Fastest(base64::kWays).blocks;

std::string EncodeBytes(std::string_view data)
{
    std::string text(base64::EncodedSize(data.size()), base64::kPadding);
    base64::Encode(g_blocks, data, text.data());
    return text;
}

std::size_t DecodeText(std::string_view text, char* out)
{
    return base64::Decode(g_blocks, text, out);
}

// Room for what any text of this length can give, with the zero byte. A well-formed one of four characters and more
// needs no more than its own length.
std::size_t DecodedRoom(std::size_t length)
{
    return std::max(length, (length + 3) / 4 * 3 + 1);
}

std::size_t Length(int length)
{
    return static_cast<std::size_t>(std::max(length, 0));
}

// Lengths are int, and so are the counts of decoded bytes: a text that is longer counts as an empty one.
std::string_view Countable(const std::string& text)
{
    return text.size() <= INT_MAX ? std::string_view(text) : std::string_view();
}

} // namespace

CBase64& CBase64::operator=(const CBase64&) = default;

std::string CBase64::Encode(const char* data, int length)
{
    return EncodeBytes({data, Length(length)});
}

int CBase64::Decode(const char* text, char* out, int length)
{
    return static_cast<int>(DecodeText({text, Length(length)}, out));
}

// By contract data and texts are taken by value.
// NOLINTBEGIN(performance-unnecessary-value-param)
std::string CBase64::Encode(std::string data)
{
    return EncodeBytes(data);
}

int CBase64::DecodeEx(std::string text, std::string& out)
{
    const std::string_view characters = Countable(text);
    std::string area(DecodedRoom(characters.size()), '\0');
    const std::size_t count = DecodeText(characters, area.data());
    // By contract the text ends at its first zero byte, whatever the count says.
    area.resize(std::strlen(area.c_str()));
    out = std::move(area);
    return static_cast<int>(count);
}

void CBase64::DecodeEx(std::string text, char*& buffer, int& length)
{
    const std::string_view characters = Countable(text);
    buffer = new char[DecodedRoom(characters.size())]();
    length = static_cast<int>(DecodeText(characters, buffer));
}
// NOLINTEND(performance-unnecessary-value-param)

} // namespace KELPKIT
