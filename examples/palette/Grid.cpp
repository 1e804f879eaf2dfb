#include "Grid.h"

#include <algorithm>
#include <cmath>

namespace
{

// Lengths of the design.
constexpr int kMargin = 20;
constexpr int kRowLabelWidth = 28;
constexpr int kHeadingHeight = 24;
constexpr int kSplit = 12;
constexpr int kSpace = 22;
constexpr int kCaptionHeight = 24;
constexpr int kStatusHeight = 64;
constexpr int kCellGap = 2;

constexpr int kNamed = 9;
constexpr int kLarge = 15;
constexpr int kLargeWidthInHalves = 3;

// The place of a colour: its column and row in the grid, or its position among the large cells.
int ColumnOf(int index)
{
    return index / 10 - 1;
}

int RowOf(int index)
{
    const int offset = index % 10;
    return offset % 2 == 0 ? (Grid::kRows - 2 - offset) / 2 : (offset + Grid::kRows - 1) / 2;
}

int PositionOf(int index)
{
    return index <= kNamed ? index - 1 : index - 250 + kNamed;
}

int HueAt(int column, int row)
{
    return Grid::HeadingOf(column) + Grid::OffsetOf(row);
}

int LargeAt(int position)
{
    return position < kNamed ? position + 1 : position - kNamed + 250;
}

// Where a large cell begins, in halves of a slot's width: the named ones from the left on, the greys up to the right.
int LargeStartInHalves(int position)
{
    return kLargeWidthInHalves * position + (position < kNamed ? 0 : 2 * Grid::kColumns - kLargeWidthInHalves * kLarge);
}

int LargeBelow(int column)
{
    int position = kLarge - 1;
    while (position > 0 && LargeStartInHalves(position) > 2 * column + 1)
        --position;
    return LargeAt(position);
}

int HueAbove(int position)
{
    return HueAt((LargeStartInHalves(position) + 1) / 2, Grid::kRows - 1);
}

int HueNeighbour(int index, Grid::Step step)
{
    const int column = ColumnOf(index);
    const int row = RowOf(index);
    switch (step) {
    case Grid::Step::kLeft:
        return HueAt(std::max(column - 1, 0), row);
    case Grid::Step::kRight:
        return HueAt(std::min(column + 1, Grid::kColumns - 1), row);
    case Grid::Step::kUp:
        return HueAt(column, std::max(row - 1, 0));
    case Grid::Step::kDown:
        break;
    }
    return row + 1 < Grid::kRows ? HueAt(column, row + 1) : LargeBelow(column);
}

int LargeNeighbour(int index, Grid::Step step)
{
    const int position = PositionOf(index);
    switch (step) {
    case Grid::Step::kLeft:
        return LargeAt(std::max(position - 1, 0));
    case Grid::Step::kRight:
        return LargeAt(std::min(position + 1, kLarge - 1));
    case Grid::Step::kUp:
        return HueAbove(position);
    case Grid::Step::kDown:
        break;
    }
    return index;
}

bool Contains(const RECT& rectangle, POINT point)
{
    return point.x >= rectangle.left && point.x < rectangle.right && point.y >= rectangle.top &&
           point.y < rectangle.bottom;
}

} // namespace

Grid::Grid(int width, int height) : m_width(width), m_height(height)
{
    // The cells get what the rest leaves, ten rows in the grid and two for the large ones; the rest does not stretch
    // with the longer side.
    const int freeWidth = width - 2 * Scaled(kMargin) - Scaled(kRowLabelWidth);
    const int fixedHeight = Scaled(kMargin) + Scaled(kHeadingHeight) + Scaled(kSplit) + 2 * Scaled(kSpace) +
                            Scaled(kCaptionHeight) + Scaled(kStatusHeight);
    m_slotWidth = std::max(freeWidth / kColumns, 1);
    m_slotHeight = std::max((height - fixedHeight) / (kRows + 2), 1);
    m_left = (width - Scaled(kRowLabelWidth) - kColumns * m_slotWidth) / 2 + Scaled(kRowLabelWidth);
    m_top = Scaled(kMargin) + Scaled(kHeadingHeight);
    m_largeTop = m_top + kRows * m_slotHeight + Scaled(kSplit) + Scaled(kSpace) + Scaled(kCaptionHeight);
}

int Grid::Scaled(int length) const
{
    const double scale =
        std::min(static_cast<double>(m_width) / kDesignWidth, static_cast<double>(m_height) / kDesignHeight);
    return std::max(static_cast<int>(std::lround(length * scale)), 1);
}

RECT Grid::Cell(int index) const
{
    RECT cell = Slot(index);
    cell.right -= Scaled(kCellGap);
    cell.bottom -= Scaled(kCellGap);
    return cell;
}

RECT Grid::Heading(int column) const
{
    const RECT first = HueSlot(column, 0);
    return {first.left, first.top - Scaled(kHeadingHeight), first.right - Scaled(kCellGap), first.top};
}

RECT Grid::RowLabel(int row) const
{
    const RECT first = HueSlot(0, row);
    return {first.left - Scaled(kRowLabelWidth), first.top, first.left, first.bottom - Scaled(kCellGap)};
}

RECT Grid::NamedCaption() const
{
    return Caption(0, kNamed);
}

RECT Grid::GreyCaption() const
{
    return Caption(kNamed, kLarge - kNamed);
}

RECT Grid::StatusBar() const
{
    return {0, m_height - Scaled(kStatusHeight), m_width, m_height};
}

int Grid::IndexAt(POINT point) const
{
    for (int index = kFirst; index <= kLast; ++index) {
        if (Contains(Slot(index), point))
            return index;
    }
    return 0;
}

int Grid::Neighbour(int index, Step step)
{
    return IsHue(index) ? HueNeighbour(index, step) : LargeNeighbour(index, step);
}

RECT Grid::Slot(int index) const
{
    return IsHue(index) ? HueSlot(ColumnOf(index), RowOf(index)) : LargeSlot(PositionOf(index));
}

RECT Grid::HueSlot(int column, int row) const
{
    const int left = m_left + column * m_slotWidth;
    const int top = m_top + row * m_slotHeight + (row < kRows / 2 ? 0 : Scaled(kSplit));
    return {left, top, left + m_slotWidth, top + m_slotHeight};
}

RECT Grid::LargeSlot(int position) const
{
    const int start = LargeStartInHalves(position);
    const int left = m_left + start * m_slotWidth / 2;
    const int right = m_left + (start + kLargeWidthInHalves) * m_slotWidth / 2;
    return {left, m_largeTop, right, m_largeTop + 2 * m_slotHeight};
}

RECT Grid::Caption(int position, int count) const
{
    const int left = static_cast<int>(LargeSlot(position).left);
    const int right = static_cast<int>(LargeSlot(position + count - 1).right);
    return {left, m_largeTop - Scaled(kCaptionHeight), right, m_largeTop};
}
