#include "Painter.h"

#include "Colors.h"
#include "Drawing.h"

#include <string>
#include <vector>

namespace
{

// Lengths of the design.
constexpr int kSmallText = 14;
constexpr int kLargeText = 18;
constexpr int kIndent = 20;
constexpr int kSwatch = 34;
constexpr int kFieldStarts[] = {70, 175, 352, 455};
constexpr int kNoticeStart = 690;

RECT Inflated(const RECT& rectangle, int by)
{
    return {rectangle.left - by, rectangle.top - by, rectangle.right + by, rectangle.bottom + by};
}

COLORREF TextColorOn(COLORREF color)
{
    // The eye takes green for the brightest component and blue for the darkest.
    const int brightness = (299 * GetRValue(color) + 587 * GetGValue(color) + 114 * GetBValue(color)) / 1000;
    return brightness > 140 ? style::kText : style::kWhite;
}

class Painter
{
public:
    Painter(HDC dc, const Grid& grid)
        : m_dc(dc), m_grid(grid), m_smallFont(MakeFont(grid.Scaled(kSmallText))),
          m_largeFont(MakeFont(grid.Scaled(kLargeText)))
    {
    }

    void PaintGrid() const
    {
        Fill(m_dc, m_grid.Area(), style::kBackground);
        for (int column = 0; column < Grid::kColumns; ++column)
            Write(std::to_wstring(Grid::HeadingOf(column)), m_grid.Heading(column), style::kFaintText, DT_CENTER);
        for (int row = 0; row < Grid::kRows; ++row)
            Write(L"+" + std::to_wstring(Grid::OffsetOf(row)), m_grid.RowLabel(row), style::kFaintText, DT_LEFT);
        Write(L"Named colours", m_grid.NamedCaption(), style::kFaintText, DT_LEFT);
        Write(L"Greys", m_grid.GreyCaption(), style::kFaintText, DT_LEFT);
        for (int index = Grid::kFirst; index <= Grid::kLast; ++index)
            PaintCell(index);
    }

    // Two rings around the cell, so that one of them shows beside any colour.
    void PaintSelection(int index) const
    {
        const RECT cell = m_grid.Cell(index);
        Fill(m_dc, Inflated(cell, m_grid.Scaled(4)), style::kText);
        Fill(m_dc, Inflated(cell, m_grid.Scaled(2)), style::kWhite);
        PaintCell(index);
    }

    void PaintStatus(const View& view) const
    {
        const RECT bar = m_grid.StatusBar();
        Fill(m_dc, bar, style::kBarBackground);
        Fill(m_dc, {bar.left, bar.top, bar.right, bar.top + m_grid.Scaled(1)}, style::kLine);
        if (view.selected == 0) {
            Write(L"Point at a colour, or use the arrow keys. Click, Ctrl+C or Enter copies its values. Esc closes.",
                  StatusPart(kIndent), style::kFaintText, DT_LEFT);
            return;
        }
        PaintSwatch(CadColor(view.selected));
        const std::vector<std::wstring> fields = DescribeColor(view.selected);
        for (std::size_t i = 0; i < fields.size(); ++i)
            WriteLarge(fields[i], StatusPart(kFieldStarts[i]));
        PaintNotice(view.notice);
    }

private:
    void Write(const std::wstring& text, const RECT& rectangle, COLORREF color, UINT alignment) const
    {
        ::Write(m_dc, m_smallFont.get(), text, rectangle, color, alignment);
    }

    void WriteLarge(const std::wstring& text, const RECT& rectangle) const
    {
        ::Write(m_dc, m_largeFont.get(), text, rectangle, style::kText, DT_LEFT);
    }

    void PaintCell(int index) const
    {
        const RECT cell = m_grid.Cell(index);
        const COLORREF color = CadColor(index);
        Fill(m_dc, cell, color);
        if (!Grid::IsHue(index))
            ::Write(m_dc, m_largeFont.get(), std::to_wstring(index), cell, TextColorOn(color), DT_CENTER);
    }

    // The status bar from a length of the design on.
    RECT StatusPart(int start) const
    {
        RECT part = m_grid.StatusBar();
        part.left = m_grid.Scaled(start);
        part.right -= m_grid.Scaled(kIndent);
        return part;
    }

    void PaintSwatch(COLORREF color) const
    {
        RECT swatch = StatusPart(kIndent);
        const int size = m_grid.Scaled(kSwatch);
        swatch.top += (swatch.bottom - swatch.top - size) / 2;
        swatch.bottom = swatch.top + size;
        swatch.right = swatch.left + size;
        Fill(m_dc, Inflated(swatch, m_grid.Scaled(1)), style::kLine);
        Fill(m_dc, swatch, color);
    }

    void PaintNotice(Notice notice) const
    {
        const RECT part = StatusPart(kNoticeStart);
        switch (notice) {
        case Notice::kNone:
            return Write(L"Click or Ctrl+C copies", part, style::kFaintText, DT_RIGHT);
        case Notice::kCopied:
            return Write(L"Copied to the clipboard", part, style::kText, DT_RIGHT);
        case Notice::kNotCopied:
            return Write(L"The clipboard is in use", part, style::kAlarmText, DT_RIGHT);
        }
    }

    HDC m_dc;
    const Grid& m_grid;
    GdiObject<HFONT> m_smallFont;
    GdiObject<HFONT> m_largeFont;
};

} // namespace

void Paint(HDC dc, const Grid& grid, const View& view)
{
    const Painter painter(dc, grid);
    painter.PaintGrid();
    if (view.selected != 0)
        painter.PaintSelection(view.selected);
    painter.PaintStatus(view);
}
