#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace bench
{

// What a CAD application's texts look like: names of its own and of its users, in either script.
struct Script {
    const char* name;
    const wchar_t* sample;
};

constexpr Script kAscii = {"ASCII", L"Layer_01 Colour-23 Bolt M8x40, hexagonal; plate 12.5 x 300 mm. "};
constexpr Script kChinese = {"Chinese", L"\u56FE\u5C42\u989C\u8272\u87BA\u6813\u516D\u89D2\u5934\u677F\u539A"
                                        L"\u6A21\u578B\u96F6\u4EF6\u88C5\u914D\u660E\u7EC6\u8868\u9F7F\u8F6E"};
constexpr Script kMixed = {"mixed", L"\u6A21\u578B gear_01.qmx \u5DF2\u6253\u5F00: 1204 \u4E2A\u96F6\u4EF6, "
                                    L"Layer_01 \u56FE\u5C42\u989C\u8272 23, M8x40 \u516D\u89D2\u5934\u87BA\u6813. "};

// The sample again and again, up to a length in units.
inline std::wstring Text(const Script& script, std::size_t length)
{
    const std::wstring sample = script.sample;
    std::wstring text;
    text.reserve(length + sample.size());
    while (text.size() < length)
        text += sample;
    text.resize(length);
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
