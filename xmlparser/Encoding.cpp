#include "Encoding.h"

#include "EncodingNames.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace xmlparser
{
namespace
{

constexpr std::string_view kWhiteSpace = " \t\r\n";

bool StartsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

// What the declaration that the file starts with gives as its encoding, in lower case; empty where it gives none.
std::string DeclaredEncoding(std::string_view file)
{
    if (!StartsWith(file, "<?xml") || kWhiteSpace.find(file.substr(5, 1)) == kWhiteSpace.npos)
        return {};
    const std::string_view declaration = file.substr(0, file.find("?>"));
    std::size_t at = declaration.find("encoding");
    if (at == declaration.npos)
        return {};
    at = declaration.find_first_of("\"'", at);
    if (at == declaration.npos)
        return {};
    std::string name(declaration.substr(at + 1, declaration.find(declaration[at], at + 1) - at - 1));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
    return name;
}

} // namespace

std::string_view ByteOrderMark(unsigned codePage)
{
    switch (codePage) {
    case Encoding::kUtf8:
        return "\xEF\xBB\xBF";
    case Encoding::kUtf16LittleEndian:
        return "\xFF\xFE";
    case Encoding::kUtf16BigEndian:
        return "\xFE\xFF";
    default:
        return {};
    }
}

std::optional<Encoding> DetectEncoding(std::string_view file)
{
    for (const unsigned codePage : {Encoding::kUtf8, Encoding::kUtf16LittleEndian, Encoding::kUtf16BigEndian}) {
        if (StartsWith(file, ByteOrderMark(codePage)))
            return Encoding{codePage, true};
    }
    using namespace std::string_view_literals;
    if (StartsWith(file, "<\0"sv))
        return Encoding{Encoding::kUtf16LittleEndian};
    if (StartsWith(file, "\0<"sv))
        return Encoding{Encoding::kUtf16BigEndian};
    const std::string name = DeclaredEncoding(file);
    return name.empty() ? Encoding{} : EncodingNamed(name);
}

} // namespace xmlparser
