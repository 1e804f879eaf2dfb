#pragma once

#include "support/Random.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace test
{

// RFC 4648, section 4, in its words: groups of 24 bits from left to right, each as four 6-bit numbers. To compare with.

// Table 1: the numbers and their characters.
inline char Base64Character(unsigned number)
{
    if (number < 26)
        return static_cast<char>('A' + number);
    if (number < 52)
        return static_cast<char>('a' + number - 26);
    if (number < 62)
        return static_cast<char>('0' + number - 52);
    return number == 62 ? '+' : '/';
}

// A character without a number counts as the first one.
inline unsigned Base64Number(char character)
{
    if (character >= 'A' && character <= 'Z')
        return static_cast<unsigned>(character - 'A');
    if (character >= 'a' && character <= 'z')
        return static_cast<unsigned>(character - 'a') + 26;
    if (character >= '0' && character <= '9')
        return static_cast<unsigned>(character - '0') + 52;
    return character == '+' ? 62 : character == '/' ? 63 : 0;
}

// A last group of 8 or 16 bits gets zero bits up to a multiple of 6, and "=" for the characters that it lacks.
inline std::string ModelEncode(const std::string& data)
{
    std::string text;
    for (std::size_t i = 0; i < data.size(); i += 3) {
        const std::string group = data.substr(i, 3);
        unsigned bits = 0;
        for (const char c : group + std::string(3 - group.size(), '\0'))
            bits = bits * 256 + static_cast<unsigned char>(c);
        const std::string characters = {Base64Character(bits / 64 / 64 / 64), Base64Character(bits / 64 / 64 % 64),
                                        Base64Character(bits / 64 % 64), Base64Character(bits % 64)};
        text += characters.substr(0, group.size() + 1) + std::string(3 - group.size(), '=');
    }
    return text;
}

// Two characters before "=" have the bits of one byte, three those of two, four those of three. A group counts for four
// characters of the text whatever its "=" leaves to the next one, and the end of the text lacks nothing but "A".
inline std::string ModelDecode(const std::string& text)
{
    std::string data;
    std::string_view rest = text;
    for (std::size_t counted = 0; counted < text.size();) {
        if (std::string_view("\r\n\1\2").find(rest.front()) != std::string_view::npos) {
            rest.remove_prefix(1);
            ++counted;
            continue;
        }
        std::string group(rest.substr(0, 4));
        group.resize(4, 'A');
        const std::size_t padding = group.find('=', 2);
        const std::size_t size = padding == std::string::npos ? 4 : padding;
        unsigned bits = 0;
        for (std::size_t i = 0; i < 4; ++i)
            bits = bits * 64 + (i < size ? Base64Number(group[i]) : 0);
        const std::string bytes = {static_cast<char>(bits / 256 / 256), static_cast<char>(bits / 256 % 256),
                                   static_cast<char>(bits % 256)};
        data += bytes.substr(0, size - 1);
        rest.remove_prefix(std::min(size, rest.size()));
        counted += 4;
    }
    return data;
}

inline std::string InLines(const std::string& text, std::size_t width)
{
    std::string lines;
    for (std::size_t i = 0; i < text.size(); i += width)
        lines += (i == 0 ? "" : "\r\n") + text.substr(i, width);
    return lines;
}

class Base64Random : public Random
{
public:
    using Random::Random;

    std::string Bytes(std::size_t length)
    {
        std::string bytes(length, '\0');
        for (char& c : bytes)
            c = static_cast<char>(Below(256));
        return bytes;
    }

    // Mostly the alphabet, with what matters to a decoder between.
    std::string AlmostText(std::size_t length)
    {
        const std::string others = std::string("====\r\n\1\2\0 -_.\x7F\x80\xAB\xFF", 17);
        const unsigned share = 1 + Below(20);
        std::string text(length, '\0');
        for (char& c : text)
            c = Below(share) == 0 ? others[Below(17)] : Base64Character(Below(64));
        return text;
    }

    // A text of one of the kinds that decoders meet.
    std::string Text()
    {
        const std::size_t length = Below(Below(10) == 0 ? 400 : 90);
        switch (Below(4)) {
        case 0:
            return ModelEncode(Bytes(length));
        case 1:
            return InLines(ModelEncode(Bytes(length)), 4 + Below(80));
        case 2:
            return Bytes(length);
        default:
            return AlmostText(length);
        }
    }
};

} // namespace test
