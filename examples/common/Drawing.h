#pragma once

#include "Handles.h"

#include <string>

// The examples' own colours.
namespace style
{
constexpr COLORREF kBackground = RGB(0xE2, 0xE4, 0xE7);
constexpr COLORREF kBarBackground = RGB(0xF6, 0xF7, 0xF8);
constexpr COLORREF kLine = RGB(0xB8, 0xBC, 0xC2);
constexpr COLORREF kText = RGB(0x22, 0x25, 0x2A);
constexpr COLORREF kFaintText = RGB(0x58, 0x5D, 0x66);
constexpr COLORREF kAlarmText = RGB(0xB0, 0x20, 0x20);
constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);
} // namespace style

// A font of this height, in pixels.
GdiObject<HFONT> MakeFont(int height);

void Fill(HDC dc, const RECT& rectangle, COLORREF color);

// A line of text, halfway up the rectangle. The alignment is that of DrawTextW.
void Write(HDC dc, HFONT font, const std::wstring& text, RECT rectangle, COLORREF color, UINT alignment);

// BeginPaint and EndPaint.
class PaintSession
{
public:
    explicit PaintSession(HWND window) : m_window(window), m_dc(::BeginPaint(window, &m_paint)) {}
    PaintSession(const PaintSession&) = delete;
    PaintSession& operator=(const PaintSession&) = delete;
    ~PaintSession() { ::EndPaint(m_window, &m_paint); }

    HDC Dc() const { return m_dc; }

private:
    HWND m_window;
    PAINTSTRUCT m_paint{};
    HDC m_dc;
};
