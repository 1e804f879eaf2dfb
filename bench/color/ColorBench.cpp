#include "Bench.h"

#include "Kelpkit/Color.h"

#include <boost/lexical_cast.hpp>

#include <cstddef>
#include <cwchar>
#include <map>
#include <string>

namespace bench
{
namespace
{

unsigned long Color(long red, long green, long blue)
{
    return static_cast<unsigned long>((red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16);
}

unsigned long FromRgbByWcstol(const std::wstring& text)
{
    wchar_t* at = nullptr;
    const long red = std::wcstol(text.c_str(), &at, 10);
    const long green = std::wcstol(at + 1, &at, 10);
    return Color(red, green, std::wcstol(at + 1, nullptr, 10));
}

std::wstring ToRgbBySwprintf(unsigned long color)
{
    wchar_t text[12];
    const int length = std::swprintf(text, 12, L"%lu,%lu,%lu", color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
    return {text, static_cast<std::size_t>(length)};
}

std::wstring ToRgbByLexicalCast(unsigned long color)
{
    return boost::lexical_cast<std::wstring>(color & 0xFF) + L',' +
           boost::lexical_cast<std::wstring>(color >> 8 & 0xFF) + L',' +
           boost::lexical_cast<std::wstring>(color >> 16 & 0xFF);
}

unsigned long FromHexByWcstoul(const std::wstring& text)
{
    const unsigned long value = std::wcstoul(text.c_str() + 1, nullptr, 16);
    return Color(static_cast<long>(value >> 16), static_cast<long>(value >> 8), static_cast<long>(value));
}

void RegisterComparisons()
{
    const auto& rgb = Keep<std::wstring>(L"18,134,240");
    Comparison("\"R,G,B\" text to colour", "\"18,134,240\"")
        .Kelpkit([&rgb] { return KELPKIT::RGBColorToREF(rgb); })
        .Peer(
            "wcstol", [&rgb] { return FromRgbByWcstol(rgb); }, 0.6);

    const unsigned long& color = Keep(KELPKIT::RGBColorToREF(rgb));
    Comparison("colour to text", "\"18,134,240\"")
        .Kelpkit([&color] { return KELPKIT::REFColorToRGB(color); })
        .Peer(
            "swprintf", [&color] { return ToRgbBySwprintf(color); }, 0.6)
        .Peer("lexical_cast", [&color] { return ToRgbByLexicalCast(color); });

    const auto& hex = Keep<std::wstring>(L"#1286F0");
    Comparison("hexadecimal to colour", "\"#1286F0\"")
        .Kelpkit([&hex] { return KELPKIT::HexColorToREF(hex); })
        .Peer(
            "wcstoul", [&hex] { return FromHexByWcstoul(hex); }, 0.5);

    const auto& index = Keep<std::wstring>(L"127");
    Comparison("CAD colour index to colour", "\"127\"")
        .Kelpkit([&index] { return KELPKIT::CADColorToREF(index); })
        .Peer("wcstol and std::map", [&index] {
            static const auto colors = [] {
                std::map<long, unsigned long> table;
                for (long i = 1; i < 256; ++i)
                    table[i] = KELPKIT::CADColorToREF(std::to_wstring(i));
                return table;
            }();
            return colors.at(std::wcstol(index.c_str(), nullptr, 10));
        });
}

// Unknown indices become keys for good, so that many make the table larger.
void FillCadColors(std::size_t keys)
{
    static std::size_t filled = 0;
    for (; filled < keys; ++filled)
        KELPKIT::CADColorToREF(L"unknown " + std::to_wstring(filled));
}

} // namespace

void Register()
{
    RegisterComparisons();

    Growth("\"R,G,B\" text to colour, digits", [](std::size_t size) {
        const std::wstring& text = Keep(L"1,2," + std::wstring(size, L'0'));
        return [&text] { return KELPKIT::RGBColorToREF(text); };
    });
    Growth("hexadecimal to colour, digits", [](std::size_t size) {
        const std::wstring& text = Keep(std::wstring(size, L'A'));
        return [&text] { return KELPKIT::HexColorToREF(text); };
    });
    Growth("CAD colour index to colour, keys", [](std::size_t size) {
        return [size] {
            FillCadColors(size);
            return KELPKIT::CADColorToREF(L"127");
        };
    });
}

} // namespace bench
