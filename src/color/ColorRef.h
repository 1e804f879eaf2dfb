#pragma once

namespace KELPKIT
{

// The COLORREF of the low 8 bits of each component.
constexpr unsigned long ColorRef(unsigned red, unsigned green, unsigned blue)
{
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}

} // namespace KELPKIT
