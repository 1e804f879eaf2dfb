#pragma once

#include "support/Random.h"

#include <cstddef>
#include <string>

namespace test
{

inline const std::string kBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The codec bit by bit, to compare with.
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
            c = Below(share) == 0 ? others[Below(17)] : kBase64Alphabet[Below(64)];
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
