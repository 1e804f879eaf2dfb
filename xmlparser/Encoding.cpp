#include "Encoding.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace xmlparser
{
namespace
{

constexpr std::string_view kWhiteSpace = " \t\r\n";

struct NamedEncoding {
    std::string_view name;
    unsigned codePage;
    Encoding::Part part = Encoding::Part::kAll;
};

constexpr NamedEncoding kNamedEncodings[] = {
    {"utf-8", Encoding::kUtf8},
    {"utf8", Encoding::kUtf8},
    {"us-ascii", Encoding::kUtf8, Encoding::Part::kAscii},
    {"gb2312", Encoding::kGbk, Encoding::Part::kGb2312},
    {"gbk", Encoding::kGbk},
    {"gb18030", Encoding::kGb18030},
    {"big5", 950},
    {"shift_jis", 932},
    {"euc-kr", 949},
    {"koi8-r", 20866},
};

// Names that end in a number: ISO-8859-n is code page 28590 + n, windows-n is n.
struct NumberedEncoding {
    std::string_view prefix;
    unsigned base;
};

constexpr NumberedEncoding kNumberedEncodings[] = {{"iso-8859-", 28590}, {"windows-", 0}, {"cp", 0}};

// The numbers below stand for "the system's" code pages, whichever these are.
constexpr unsigned kLeastCodePage = 437;

bool StartsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

std::optional<unsigned> Number(std::string_view digits)
{
    if (digits.empty() || digits.size() > 5 || digits.find_first_not_of("0123456789") != digits.npos)
        return std::nullopt;
    unsigned number = 0;
    for (const char digit : digits)
        number = number * 10 + static_cast<unsigned>(digit - '0');
    return number;
}

std::optional<Encoding> EncodingNamed(std::string_view lowerCaseName)
{
    for (const NamedEncoding& encoding : kNamedEncodings) {
        if (encoding.name == lowerCaseName)
            return Encoding{encoding.codePage, false, encoding.part};
    }
    for (const NumberedEncoding& encoding : kNumberedEncodings) {
        if (!StartsWith(lowerCaseName, encoding.prefix))
            continue;
        const auto number = Number(lowerCaseName.substr(encoding.prefix.size()));
        if (number && encoding.base + *number >= kLeastCodePage)
            return Encoding{encoding.base + *number};
    }
    return std::nullopt;
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
