#include "Painter.h"

#include "Colors.h"
#include "Handles.h"

#include <string>
#include <vector>

namespace
{

constexpr COLORREF kBackground = RGB(0xE2, 0xE4, 0xE7);
constexpr COLORREF kStatusBackground = RGB(0xF6, 0xF7, 0xF8);
constexpr COLORREF kLine = RGB(0xB8, 0xBC, 0xC2);
constexpr COLORREF kText = RGB(0x22, 0x25, 0x2A);
constexpr COLORREF kFaintText = RGB(0x58, 0x5D, 0x66);
constexpr COLORREF kAlarmText = RGB(0xB0, 0x20, 0x20);
constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);

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
    return brightness > 140 ? kText : kWhite;
}

class Painter
{
public:
    Painter(HDC dc, const Grid& grid)
        : m_dc(dc), m_grid(grid), m_smallFont(MakeFont(kSmallText)), m_largeFont(MakeFont(kLargeText))
    {
        ::SetBkMode(dc, TRANSPARENT);
    }

    void PaintGrid() const
    {
        Fill(m_grid.Area(), kBackground);
        for (int column = 0; column < Grid::kColumns; ++column)
            Write(std::to_wstring(Grid::HeadingOf(column)), m_grid.Heading(column), kFaintText, DT_CENTER);
        for (int row = 0; row < Grid::kRows; ++row)
            Write(L"+" + std::to_wstring(Grid::OffsetOf(row)), m_grid.RowLabel(row), kFaintText, DT_LEFT);
        Write(L"Named colours", m_grid.NamedCaption(), kFaintText, DT_LEFT);
        Write(L"Greys", m_grid.GreyCaption(), kFaintText, DT_LEFT);
        for (int index = Grid::kFirst; index <= Grid::kLast; ++index)
            PaintCell(index);
    }

    // Two rings around the cell, so that one of them shows beside any colour.
    void PaintSelection(int index) const
    {
        const RECT cell = m_grid.Cell(index);
        Fill(Inflated(cell, m_grid.Scaled(4)), kText);
        Fill(Inflated(cell, m_grid.Scaled(2)), kWhite);
        PaintCell(index);
    }

    void PaintStatus(const View& view) const
    {
        const RECT bar = m_grid.StatusBar();
        Fill(bar, kStatusBackground);
        Fill({bar.left, bar.top, bar.right, bar.top + m_grid.Scaled(1)}, kLine);
        if (view.selected == 0) {
            Write(L"Point at a colour, or use the arrow keys. Click, Ctrl+C or Enter copies its values. Esc closes.",
                  StatusPart(kIndent), kFaintText, DT_LEFT);
            return;
        }
        PaintSwatch(CadColor(view.selected));
        const std::vector<std::wstring> fields = DescribeColor(view.selected);
        for (std::size_t i = 0; i < fields.size(); ++i)
            WriteLarge(fields[i], StatusPart(kFieldStarts[i]));
        PaintNotice(view.notice);
    }

private:
    GdiObject<HFONT> MakeFont(int size) const
    {
        return GdiObject<HFONT>(::CreateFontW(-m_grid.Scaled(size), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                                              DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                              ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Segoe UI"));
    }

    void Fill(const RECT& rectangle, COLORREF color) const
    {
        ::SetDCBrushColor(m_dc, color);
        ::FillRect(m_dc, &rectangle, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
    }

    void WriteWith(HFONT font, const std::wstring& text, RECT rectangle, COLORREF color, UINT alignment) const
    {
        const Selection selection(m_dc, font);
        ::SetTextColor(m_dc, color);
        ::DrawTextW(m_dc, text.c_str(), static_cast<int>(text.size()), &rectangle,
                    alignment | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }

    void Write(const std::wstring& text, const RECT& rectangle, COLORREF color, UINT alignment) const
    {
        WriteWith(m_smallFont.get(), text, rectangle, color, alignment);
    }

    void WriteLarge(const std::wstring& text, const RECT& rectangle) const
    {
        WriteWith(m_largeFont.get(), text, rectangle, kText, DT_LEFT);
    }

    void PaintCell(int index) const
    {
        const RECT cell = m_grid.Cell(index);
        const COLORREF color = CadColor(index);
        Fill(cell, color);
        if (!Grid::IsHue(index))
            WriteWith(m_largeFont.get(), std::to_wstring(index), cell, TextColorOn(color), DT_CENTER);
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
        Fill(Inflated(swatch, m_grid.Scaled(1)), kLine);
        Fill(swatch, color);
    }

    void PaintNotice(Notice notice) const
    {
        const RECT part = StatusPart(kNoticeStart);
        switch (notice) {
        case Notice::kNone:
            return Write(L"Click or Ctrl+C copies", part, kFaintText, DT_RIGHT);
        case Notice::kCopied:
            return Write(L"Copied to the clipboard", part, kText, DT_RIGHT);
        case Notice::kNotCopied:
            return Write(L"The clipboard is in use", part, kAlarmText, DT_RIGHT);
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
