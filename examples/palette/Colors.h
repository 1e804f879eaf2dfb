#pragma once

#include <windows.h>

#include <string>
#include <vector>

// The CAD colours, as Kelpkit has them. Indices are 1 to 255.

COLORREF CadColor(int index);

// What there is to say of a colour: its index, its components, and both ways to write it as a number.
std::vector<std::wstring> DescribeColor(int index);

// The same as one line.
std::wstring ColorLine(int index);
