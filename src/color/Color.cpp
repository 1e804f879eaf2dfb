#include "Kelpkit/Color.h"

#include "color/ColorRef.h"

#include <boost/lexical_cast.hpp>

#include <cwchar>

namespace KELPKIT
{
namespace
{

constexpr unsigned long kWhite = 0xFFFFFF;

// The integer that a piece starts with, saturated on every runtime, which _wtoi is not. A few digits are read here;
// what else a piece may hold is the runtime's to know.
long Integer(const wchar_t* piece)
{
    long value = 0;
    for (int i = 0; i < 9; ++i) {
        const wchar_t c = piece[i];
        if (i > 0 && (c == L',' || c == L'\0'))
            return value;
        if (c < L'0' || c > L'9')
            break;
        value = value * 10 + (c - L'0');
    }
    return std::wcstol(piece, nullptr, 10);
}

// The value of a hexadecimal digit, or -1.
int HexDigit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    return -1;
}

} // namespace

unsigned long RGBColorToREF(const std::wstring& text)
{
    unsigned parts[3];
    int count = 0;
    for (const wchar_t* at = text.c_str(); true; at += std::wcscspn(at, L",")) {
        at += std::wcsspn(at, L",");
        if (*at == L'\0')
            break;
        if (count == 3)
            return kWhite;
        parts[count++] = static_cast<unsigned>(Integer(at));
    }
    return count == 3 ? ColorRef(parts[0], parts[1], parts[2]) : kWhite;
}

std::wstring REFColorToRGB(unsigned long color)
{
    const auto part = [color](int shift) { return boost::lexical_cast<std::wstring>(color >> shift & 0xFF); };
    return part(0) + L',' + part(8) + L',' + part(16);
}

unsigned long HexColorToREF(const std::wstring& text)
{
    unsigned value = 0;
    const std::size_t mark = text.find(L'#');
    for (std::size_t i = mark == text.npos ? 0 : mark + 1; i < text.size(); ++i) {
        const int digit = HexDigit(text[i]);
        if (digit < 0)
            return kWhite;
        value = value << 4 | static_cast<unsigned>(digit);
    }
    return ColorRef(value >> 16, value >> 8, value);
}

} // namespace KELPKIT
