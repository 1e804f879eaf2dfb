#include "Kelpkit/Color.h"

#include "color/ColorRef.h"

#include <charconv>
#include <cwchar>
#include <iterator>

namespace KELPKIT
{
namespace
{

constexpr unsigned long kWhite = 0xFFFFFF;

// The integer that a piece starts with, saturated on every runtime, which _wtoi is not. Plain digits are read here, and
// `at` moves behind them; what else a piece may hold is the runtime's to know.
long Integer(const wchar_t*& at)
{
    long value = 0;
    const wchar_t* digit = at;
    for (; digit - at < 9 && *digit >= L'0' && *digit <= L'9'; ++digit)
        value = value * 10 + (*digit - L'0');
    if (*digit != L',' && *digit != L'\0')
        return std::wcstol(at, nullptr, 10);
    at = digit;
    return value;
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
    for (const wchar_t* at = text.c_str(); *at != L'\0';) {
        if (*at == L',') {
            ++at;
            continue;
        }
        if (count == 3)
            return kWhite;
        parts[count++] = static_cast<unsigned>(Integer(at));
        while (*at != L',' && *at != L'\0')
            ++at;
    }
    return count == 3 ? ColorRef(parts[0], parts[1], parts[2]) : kWhite;
}

std::wstring REFColorToRGB(unsigned long color)
{
    char text[sizeof "255,255,255,"];
    char* end = text;
    for (const int shift : {0, 8, 16}) {
        end = std::to_chars(end, std::end(text), color >> shift & 0xFF).ptr;
        *end++ = ',';
    }
    return {text, end - 1};
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
