#pragma once

// Replacing and splitting as they are described, to compare with.

#include <Kelpkit/Text.h>

#include <cstddef>
#include <string>
#include <vector>

namespace test
{

// Replacement one hit at a time.
template <class Text>
Text SlowlyReplaced(Text text, const Text& pattern, const Text& replacement)
{
    for (std::size_t at = 0; !pattern.empty() && (at = text.find(pattern, at)) != Text::npos; at += replacement.size())
        text.replace(at, pattern.size(), replacement);
    return text;
}

// The rule of StringSplitBySize, byte by byte.
inline std::vector<std::wstring> SlowlySplitBySize(const std::wstring& source, int width)
{
    const std::string bytes = KELPKIT::UnicodeToAnsi(source);
    std::vector<std::wstring> pieces;
    std::string piece;
    int units = 0;
    int halves = 0;
    std::size_t i = 0;
    while (i < bytes.size()) {
        if ((bytes[i] & 0x80) != 0) {
            piece += bytes.substr(i, 2);
            i += 2;
            units += 1;
        } else {
            piece += bytes[i];
            i += 1;
            halves += 1;
            if (halves == 2) {
                halves = 0;
                units += 1;
            }
        }
        if (units >= width) {
            pieces.push_back(KELPKIT::AnsiToUnicode(piece));
            piece.clear();
            units = 0;
            halves = 0;
        }
    }
    if (!piece.empty() && piece != "\n\r")
        pieces.push_back(KELPKIT::AnsiToUnicode(piece));
    return pieces;
}

} // namespace test
