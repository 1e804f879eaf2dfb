#include "Tour.h"

#include <Kelpkit/Color.h>

#include <cwchar>
#include <iterator>

using namespace KELPKIT;

namespace
{

std::wstring Value(unsigned long color)
{
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"0x%08lX", color);
    return text;
}

} // namespace

void ShowColors(Tour& tour)
{
    tour.Section(L"Colours");
    tour.Step(L"RGBColorToREF of 0,128,255", [] {
        const unsigned long color = RGBColorToREF(L"0,128,255");
        return Tour::Result{Value(color) + L", and back " + REFColorToRGB(color),
                            color == 0xFF8000 && REFColorToRGB(color) == L"0,128,255"};
    });
    tour.Step(L"HexColorToREF of #FF8000", [] {
        const unsigned long color = HexColorToREF(L"#FF8000");
        return Tour::Result{Value(color), color == 0x0080FF};
    });
    tour.Step(L"CADColorToREF of 100", [] {
        const unsigned long color = CADColorToREF(L"100");
        return Tour::Result{Value(color) + L", " + REFColorToRGB(color), color == 0x3FFF00};
    });
}
