#pragma once

#include <windows.h>

// Where each colour stands. Indices 10 to 249 are a grid: a column for each hue, from 10 to 240, the even indices in
// the upper half and the odd ones in the lower. Below it stand, in larger cells, the named colours 1 to 9 and the greys
// 250 to 255. Rectangles are in pixels of the client area, whose size they follow.
class Grid
{
public:
    static constexpr int kFirst = 1;
    static constexpr int kLast = 255;
    static constexpr int kColumns = 24;
    static constexpr int kRows = 10;
    // The size of the client area at which lengths are as designed.
    static constexpr int kDesignWidth = 980;
    static constexpr int kDesignHeight = 560;

    enum class Step { kLeft, kRight, kUp, kDown };

    Grid(int width, int height);

    RECT Area() const { return {0, 0, m_width, m_height}; }
    RECT Cell(int index) const;
    RECT Heading(int column) const;
    RECT RowLabel(int row) const;
    RECT NamedCaption() const;
    RECT GreyCaption() const;
    RECT StatusBar() const;

    // The colour at a point, 0 for none. A cell reaches up to the next one, so that there are no holes between them.
    int IndexAt(POINT point) const;

    // A length of the design, in pixels: at least one.
    int Scaled(int length) const;

    // The colour of a column's heading, and what a row adds to it.
    static int HeadingOf(int column) { return 10 * (column + 1); }
    static int OffsetOf(int row) { return row < kRows / 2 ? kRows - 2 - 2 * row : 2 * row - kRows + 1; }

    static bool IsHue(int index) { return index >= 10 && index < 250; }

    // The colour beside another, or the same one at the edge.
    static int Neighbour(int index, Step step);

private:
    // The cell with the space up to the next one.
    RECT Slot(int index) const;
    RECT HueSlot(int column, int row) const;
    RECT LargeSlot(int position) const;
    RECT Caption(int position, int count) const;

    int m_width;
    int m_height;
    // Of one slot of the grid. Large ones are one and a half times as wide and twice as high.
    int m_slotWidth;
    int m_slotHeight;
    int m_left;
    int m_top;
    int m_largeTop;
};
