#include "Kelpkit/Color.h"

#include "color/ColorRef.h"

#include <map>

namespace KELPKIT
{
namespace
{

std::map<std::wstring, unsigned long> g_cadColors;

// The named colours, from index 1 on.
constexpr unsigned long kNamed[] = {
    ColorRef(255, 0, 0),     ColorRef(255, 255, 0),   ColorRef(0, 255, 0),
    ColorRef(0, 255, 255),   ColorRef(0, 0, 255),     ColorRef(255, 0, 255),
    ColorRef(255, 255, 255), ColorRef(128, 128, 128), ColorRef(192, 192, 192),
};

// The grey ramp, from index 250 on.
constexpr unsigned kGreys[] = {51, 91, 132, 173, 214, 255};

// Indices 10 to 249: 24 hues, 15 degrees apart, each in five values with full and half saturation. From hue, saturation
// and value as usual, in whole numbers: components are cut off, not rounded, and fractions of floating point would show.
unsigned long Hue(unsigned index)
{
    constexpr unsigned kTenthsOfValue[] = {10, 8, 6, 5, 3};
    const unsigned quarters = index / 10 - 1; // of 60 degrees
    const unsigned place = quarters % 4;
    const unsigned saturation = index % 2 == 0 ? 2 : 1; // in halves
    const unsigned value = 255 * kTenthsOfValue[index % 10 / 2];

    const unsigned most = value / 10;
    const unsigned least = value * (2 - saturation) / 20;
    const unsigned falling = value * (8 - saturation * place) / 80;
    const unsigned rising = value * (8 - saturation * (4 - place)) / 80;
    switch (quarters / 4) {
    case 0:
        return ColorRef(most, rising, least);
    case 1:
        return ColorRef(falling, most, least);
    case 2:
        return ColorRef(least, most, rising);
    case 3:
        return ColorRef(least, falling, most);
    case 4:
        return ColorRef(rising, least, most);
    default:
        return ColorRef(most, least, falling);
    }
}

unsigned long CadColor(unsigned index)
{
    if (index < 10)
        return kNamed[index - 1];
    if (index < 250)
        return Hue(index);
    const unsigned grey = kGreys[index - 250];
    return ColorRef(grey, grey, grey);
}

std::map<std::wstring, unsigned long> WholeTable()
{
    std::map<std::wstring, unsigned long> colors;
    for (unsigned i = 1; i <= 255; ++i)
        colors[std::to_wstring(i)] = CadColor(i);
    return colors;
}

} // namespace

unsigned long CADColorToREF(const std::wstring& index)
{
    if (g_cadColors.empty())
        g_cadColors = WholeTable();
    // By contract a text that is no index becomes a key, too, with the value 0.
    return g_cadColors[index];
}

} // namespace KELPKIT
