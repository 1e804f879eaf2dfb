#include "support/Fuzz.h"

#include "Encoding.h"

#include <map>
#include <string>

using fuzz::Expect;
using xmlparser::Encoding;

namespace
{

const std::map<std::string, unsigned> kCodePages = {
    {"utf-8", 65001},   {"utf8", 65001}, {"us-ascii", 65001}, {"gb2312", 936}, {"gbk", 936},
    {"gb18030", 54936}, {"big5", 950},   {"shift_jis", 932},  {"euc-kr", 949}, {"koi8-r", 20866},
};

// The code page of a name in lower case, or 0.
unsigned ModelCodePage(const std::string& name)
{
    if (const auto found = kCodePages.find(name); found != kCodePages.end())
        return found->second;
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    if (name.size() - digits < 1 || name.size() - digits > 5)
        return 0;
    const std::map<std::string, unsigned> bases = {{"iso-8859-", 28590}, {"windows-", 0}, {"cp", 0}};
    const auto base = bases.find(name.substr(0, digits));
    const unsigned codePage =
        base == bases.end() ? 0 : base->second + static_cast<unsigned>(std::stoul(name.substr(digits)));
    return codePage < 437 ? 0 : codePage;
}

// What stands in the quotes behind the first "encoding" of the declaration, in lower case.
std::string ModelDeclared(const std::string& file)
{
    if (file.compare(0, 5, "<?xml") != 0 ||
        (file.size() > 5 && std::string(" \t\r\n").find(file[5]) == std::string::npos))
        return "";
    const std::string declaration = file.substr(0, file.find("?>"));
    std::size_t at = declaration.find("encoding");
    while (at < declaration.size() && declaration[at] != '"' && declaration[at] != '\'')
        ++at;
    std::string name;
    for (std::size_t i = at + 1; at < declaration.size() && i < declaration.size() && declaration[i] != declaration[at];
         ++i)
        name +=
            declaration[i] >= 'A' && declaration[i] <= 'Z' ? static_cast<char>(declaration[i] + 32) : declaration[i];
    return name;
}

// By mark, by the first two bytes, by declaration; the code page is 0 where the declaration names none that is known.
Encoding ModelDetected(const std::string& file)
{
    if (file.substr(0, 3) == "\xEF\xBB\xBF")
        return {65001, true};
    const std::string two = file.substr(0, 2);
    if (two == "\xFF\xFE")
        return {1200, true};
    if (two == "\xFE\xFF")
        return {1201, true};
    if (two == std::string{'<', '\0'})
        return {1200};
    if (two == std::string{'\0', '<'})
        return {1201};
    const std::string name = ModelDeclared(file);
    if (name.empty())
        return {};
    const auto part = name == "us-ascii" ? Encoding::Part::kAscii
                      : name == "gb2312" ? Encoding::Part::kGb2312
                                         : Encoding::Part::kAll;
    return {ModelCodePage(name), false, part};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string file(data, data + size);
    const Encoding expected = ModelDetected(file);
    const std::unique_ptr<char[]> exact = fuzz::Exactly(file);
    const auto encoding = xmlparser::DetectEncoding({exact.get(), size});
    Expect(encoding.has_value() == (expected.codePage != 0), "known as the model says");
    if (!encoding)
        return 0;
    Expect(encoding->codePage == expected.codePage, "the code page is the model's");
    Expect(encoding->hasByteOrderMark == expected.hasByteOrderMark, "so is the mark");
    Expect(encoding->part == expected.part, "so is the part");
    return 0;
}
