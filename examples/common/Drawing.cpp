#include "Drawing.h"

GdiObject<HFONT> MakeFont(int height)
{
    return GdiObject<HFONT>(::CreateFontW(-height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                          OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                                          DEFAULT_PITCH | FF_SWISS, L"Segoe UI"));
}

void Fill(HDC dc, const RECT& rectangle, COLORREF color)
{
    ::SetDCBrushColor(dc, color);
    ::FillRect(dc, &rectangle, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

void Write(HDC dc, HFONT font, const std::wstring& text, RECT rectangle, COLORREF color, UINT alignment)
{
    const Selection selection(dc, font);
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, color);
    ::DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &rectangle,
                alignment | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}
