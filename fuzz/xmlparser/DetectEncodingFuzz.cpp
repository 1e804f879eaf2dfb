#include "support/Fuzz.h"

#include "EncodingNames.h"

#include <optional>
#include <string>

using fuzz::Expect;
using xmlparser::Encoding;

namespace
{

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

// By mark, by the first two bytes, by declaration; nothing where the declaration names none that is known.
std::optional<Encoding> ModelDetected(const std::string& file)
{
    if (file.substr(0, 3) == "\xEF\xBB\xBF")
        return Encoding{65001, true};
    const std::string two = file.substr(0, 2);
    if (two == "\xFF\xFE")
        return Encoding{1200, true};
    if (two == "\xFE\xFF")
        return Encoding{1201, true};
    if (two == std::string{'<', '\0'})
        return Encoding{1200};
    if (two == std::string{'\0', '<'})
        return Encoding{1201};
    const std::string name = ModelDeclared(file);
    return name.empty() ? Encoding{} : xmlparser::EncodingNamed(name);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string file(data, data + size);
    const std::optional<Encoding> expected = ModelDetected(file);
    const std::unique_ptr<char[]> exact = fuzz::Exactly(file);
    const auto encoding = xmlparser::DetectEncoding({exact.get(), size});
    Expect(encoding.has_value() == expected.has_value(), "known as the model says");
    if (!encoding || !expected)
        return 0;
    Expect(encoding->codePage >= 437, "no code page is the system's");
    Expect(encoding->codePage == expected->codePage, "the code page is the model's");
    Expect(encoding->hasByteOrderMark == expected->hasByteOrderMark, "so is the mark");
    Expect(encoding->part == expected->part, "so is the part");
    return 0;
}
