#include "Colors.h"

#include <Kelpkit/Color.h>

#include <array>
#include <cstddef>
#include <cwchar>
#include <iterator>

using namespace KELPKIT;

namespace
{

using Table = std::array<COLORREF, 256>;

Table MakeTable()
{
    Table table{};
    for (std::size_t index = 1; index < table.size(); ++index)
        table[index] = CADColorToREF(std::to_wstring(index));
    return table;
}

std::wstring Formatted(const wchar_t* format, unsigned long value)
{
    wchar_t text[32];
    std::swprintf(text, std::size(text), format, value);
    return text;
}

} // namespace

COLORREF CadColor(int index)
{
    // Asked for once, since each paint needs them all.
    static const Table table = MakeTable();
    return table.at(static_cast<std::size_t>(index));
}

std::vector<std::wstring> DescribeColor(int index)
{
    const COLORREF color = CadColor(index);
    const unsigned long redFirst = RGB(GetBValue(color), GetGValue(color), GetRValue(color));
    return {L"Index " + std::to_wstring(index), L"RGB " + REFColorToRGB(color), Formatted(L"#%06lX", redFirst),
            L"COLORREF " + Formatted(L"0x%08lX", color)};
}

std::wstring ColorLine(int index)
{
    std::wstring line;
    for (const std::wstring& part : DescribeColor(index))
        line += (line.empty() ? L"" : L"   ") + part;
    return line;
}
