#pragma once

// Colours as texts, as they are described, to compare with.

#include <Kelpkit/Text.h>

#include <algorithm>
#include <cstddef>
#include <cwctype>
#include <string>
#include <vector>

namespace test
{

// The rule by which numbers are read, in words: white space, a sign, digits; saturated.
inline int ModelInteger(const std::wstring& piece)
{
    std::size_t i = 0;
    while (i < piece.size() && std::iswspace(piece[i]))
        ++i;
    bool negative = false;
    if (i < piece.size() && (piece[i] == L'-' || piece[i] == L'+'))
        negative = piece[i++] == L'-';
    long long value = 0;
    for (; i < piece.size() && piece[i] >= L'0' && piece[i] <= L'9'; ++i)
        value = std::min(value * 10 + (piece[i] - L'0'), 3000000000LL);
    value = negative ? -value : value;
    return static_cast<int>(std::min(std::max(value, -2147483648LL), 2147483647LL));
}

// The low 8 bits of each component.
inline unsigned long ModelColorRef(unsigned red, unsigned green, unsigned blue)
{
    return red % 256 + green % 256 * 256 + blue % 256 * 65536;
}

inline unsigned long ModelRGBColorToREF(const std::wstring& text)
{
    std::vector<std::wstring> pieces;
    KELPKIT::StringMulitSplit(text, L",", pieces);
    if (pieces.size() != 3)
        return 0xFFFFFF;
    return ModelColorRef(static_cast<unsigned>(ModelInteger(pieces[0])), static_cast<unsigned>(ModelInteger(pieces[1])),
                         static_cast<unsigned>(ModelInteger(pieces[2])));
}

inline unsigned long ModelHexColorToREF(std::wstring text)
{
    text = text.substr(text.find(L'#') + 1);
    unsigned value = 0;
    for (const wchar_t c : text) {
        const std::size_t digit = std::wstring(L"0123456789abcdefABCDEF").find(c);
        if (digit == std::wstring::npos)
            return 0xFFFFFF;
        value = value * 16 + static_cast<unsigned>(digit < 16 ? digit : digit - 6);
    }
    return ModelColorRef(value >> 16, value >> 8, value);
}

} // namespace test
