#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace bench
{

// What a CAD application's texts look like: names of its own and of its users, in many scripts.
struct Script {
    const char* name;
    const wchar_t* sample;
};

constexpr Script kAscii = {"ASCII", L"Layer_01 Colour-23 Bolt M8x40, hexagonal; plate 12.5 x 300 mm. "};
constexpr Script kChinese = {"Chinese", L"\u56FE\u5C42\u989C\u8272\u87BA\u6813\u516D\u89D2\u5934\u677F\u539A"
                                        L"\u6A21\u578B\u96F6\u4EF6\u88C5\u914D\u660E\u7EC6\u8868\u9F7F\u8F6E"};
constexpr Script kMixed = {"mixed", L"\u6A21\u578B gear_01.qmx \u5DF2\u6253\u5F00: 1204 \u4E2A\u96F6\u4EF6, "
                                    L"Layer_01 \u56FE\u5C42\u989C\u8272 23, M8x40 \u516D\u89D2\u5934\u87BA\u6813. "};

constexpr Script kFrench = {"French",
                            L"Le mod\u00E8le de la pi\u00E8ce a \u00E9t\u00E9 enregistr\u00E9 dans le dossier "
                            L"du projet; la c\u00F4te du per\u00E7age est \u00E0 v\u00E9rifier. "};
constexpr Script kRussian = {"Russian", L"\u041C\u043E\u0434\u0435\u043B\u044C \u0434\u0435\u0442\u0430\u043B\u0438 "
                                        L"\u0441\u043E\u0445\u0440\u0430\u043D\u0435\u043D\u0430 \u0432 "
                                        L"\u043F\u0430\u043F\u043A\u0435 \u043F\u0440\u043E\u0435\u043A\u0442\u0430. "};
// Chinese and ASCII, with an emoji in 40.
constexpr Script kChat = {"chat",
                          L"\u56FE\u7EB8\u5DF2\u66F4\u65B0 v2, \u8BF7\u770B\u4E00\u4E0B gear \u7684\u9F7F\u6570"
                          L"\U0001F600 \u597D\u7684, bolt M8 \u4E5F\u6539\u4E86, \u4E0B\u5348\u53D1\u7ED9\u4F60, "
                          L"\u8C22\u8C22\u5927\u5BB6 \U0001F44D "};

// ASCII, Latin-1, Chinese, and emoji at random, the same in every run.
inline std::wstring DenseText(std::size_t length)
{
    std::mt19937 engine(1);
    std::wstring text;
    while (text.size() < length) {
        const auto number = static_cast<unsigned>(engine());
        switch (length - text.size() == 1 ? 0 : number % 4) {
        case 0:
            text += static_cast<wchar_t>(L'a' + number / 4 % 26);
            break;
        case 1:
            text += static_cast<wchar_t>(0xC0 + number / 4 % 0x40);
            break;
        case 2:
            text += static_cast<wchar_t>(0x4E00 + number / 4 % 0x5000);
            break;
        default:
            text += L'\xD83D';
            text += static_cast<wchar_t>(0xDE00 + number / 4 % 0x40);
        }
    }
    return text;
}

constexpr Script kDense = {"dense", nullptr};

// The sample again and again, up to a length in units.
inline std::wstring Text(const Script& script, std::size_t length)
{
    if (script.sample == nullptr)
        return DenseText(length);
    const std::wstring sample = script.sample;
    std::wstring text;
    text.reserve(length + sample.size());
    while (text.size() < length)
        text += sample;
    text.resize(length);
    if ((text.back() & 0xFC00) == 0xD800)
        text.back() = L'.';
    return text;
}

// Bytes without any order, the same in every run.
inline std::string RandomBytes(std::size_t length)
{
    std::mt19937 engine(1);
    std::string bytes(length, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(engine());
    return bytes;
}

} // namespace bench
