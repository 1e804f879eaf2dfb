#pragma once

/// @file
/// Colours: conversions between COLORREF, "R,G,B" text, hexadecimal text and CAD colour indices.
///
/// A COLORREF is Windows' 32-bit value 0x00BBGGRR, with red in the low byte. It is an unsigned long here, which is the
/// same type. No function reports failure: texts that cannot be read give the colours named below. None throws anything
/// but std::bad_alloc and std::length_error.

#include "Export.h"

#include <string>

namespace KELPKIT
{

/// Three decimal integers with commas between, red first, to a COLORREF. Each is read as the C runtime's _wtoi reads it:
/// white space before it is skipped, what stands behind its digits is ignored, no digits are 0, and too large a number
/// is the largest int. Of each, the low 8 bits count. Commas in a row count as one; leading and trailing ones do not
/// count. White, 0xFFFFFF, where there are not three pieces. May be called from any thread.
///
///     "255,0,0"            0x0000FF
///     "0,128,255"          0xFF8000
///     " 10 , 20 , 30"      0x1E140A
///     "256,-1,0"           0x00FF00: no clamping
///     "a,b,c"              0x000000
///     "1,2"                0xFFFFFF
KELPKIT_API unsigned long RGBColorToREF(const std::wstring& text);

/// A COLORREF to "R,G,B" text: 0x00FF8000 gives "0,128,255". The top byte is ignored. May be called from any thread.
KELPKIT_API std::wstring REFColorToRGB(unsigned long color);

/// Hexadecimal digits, red first, to a COLORREF. What stands before the first "#" is ignored, with it. Of more than six
/// digits, the last six count; fewer are read as a number. Black, 0, for no digits; white, 0xFFFFFF, where any other
/// character stands among them. May be called from any thread.
///
///     "#FF8000", "ff8000"  0x0080FF
///     "80FF0000"           0x0000FF
///     "#F00"               0x000F00: the number 0xF00, which is no shorthand
///     "0x00FF00"           0xFFFFFF: the "x" is no digit
///     "#", ""              0x000000
KELPKIT_API unsigned long HexColorToREF(const std::wstring& text);

/// A CAD colour index, "1" to "255", to its COLORREF: "1" gives 0x0000FF, "100" gives 0x3FFF00. Any other text, such as
/// "0", "01" or " 1", gives black, 0.
///
/// The table behind it is filled by the first call, and each unknown text is added to it with the value 0; it is kept
/// until the library is unloaded. No lock guards it: callers must not be in this function at the same time.
KELPKIT_API unsigned long CADColorToREF(const std::wstring& index);

} // namespace KELPKIT
