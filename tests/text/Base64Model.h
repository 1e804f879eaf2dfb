#pragma once

// Base64 as it is described, to compare with.

#include <cstddef>
#include <string>

namespace test
{

inline const std::string kBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Encodes bit by bit.
inline std::string ModelEncode(const std::string& data)
{
    std::string text;
    unsigned bits = 0;
    int count = 0;
    for (const char c : data) {
        bits = bits << 8 | static_cast<unsigned char>(c);
        count += 8;
        while (count > 5) {
            text += kBase64Alphabet[bits >> (count - 6) & 63];
            count -= 6;
        }
    }
    if (count > 0)
        text += kBase64Alphabet[bits << (6 - count) & 63];
    while (text.size() % 4 != 0)
        text += '=';
    return text;
}

inline unsigned ModelBase64Value(char c)
{
    const std::size_t place = kBase64Alphabet.find(c);
    return place == std::string::npos ? 0 : static_cast<unsigned>(place);
}

inline std::string ModelDecode(const std::string& text)
{
    const std::string padded = text + std::string(4, '\0');
    std::string data;
    std::size_t position = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = padded[position];
        if (c == 13 || c == 10 || c == 1 || c == 2) {
            ++position;
            ++i;
            continue;
        }
        const unsigned c0 = ModelBase64Value(padded[position++]);
        const unsigned c1 = ModelBase64Value(padded[position++]);
        data += static_cast<char>((c0 * 64 + c1) / 16);
        if (padded[position] != '=') {
            const unsigned c2 = ModelBase64Value(padded[position++]);
            data += static_cast<char>((c1 * 64 + c2) / 4);
            if (padded[position] != '=')
                data += static_cast<char>(c2 * 64 + ModelBase64Value(padded[position++]));
        }
        i += 4;
    }
    return data;
}

} // namespace test
