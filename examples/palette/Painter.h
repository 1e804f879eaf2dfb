#pragma once

#include "Grid.h"

// What came of the last attempt to copy.
enum class Notice { kNone, kCopied, kNotCopied };

struct View {
    // The colour that is pointed at, 0 for none.
    int selected = 0;
    Notice notice = Notice::kNone;
};

// Paints the whole client area.
void Paint(HDC dc, const Grid& grid, const View& view);
