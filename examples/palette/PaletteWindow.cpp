#include "PaletteWindow.h"

#include "Clipboard.h"
#include "Colors.h"
#include "Drawing.h"

#include <windowsx.h>

PaletteWindow::PaletteWindow()
{
    Make(L"KelpkitPalette", L"Kelpkit palette", WS_OVERLAPPEDWINDOW, {Grid::kDesignWidth, Grid::kDesignHeight});
}

LRESULT PaletteWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ERASEBKGND:
        // Each paint covers everything.
        return TRUE;
    case WM_PAINT:
        OnPaint();
        return 0;
    case WM_MOUSEMOVE:
        OnMouseMove({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        return 0;
    case WM_MOUSELEAVE:
        OnMouseLeave();
        return 0;
    case WM_LBUTTONDOWN:
        OnClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        return 0;
    case WM_KEYDOWN:
        OnKey(wParam);
        return 0;
    case WM_GETMINMAXINFO:
        OnMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam));
        return 0;
    default:
        return Window::OnMessage(message, wParam, lParam);
    }
}

void PaletteWindow::OnPaint()
{
    const PaintSession session(Handle());
    const Grid grid = CurrentGrid();
    const RECT area = grid.Area();
    if (area.right == 0 || area.bottom == 0)
        return;
    if (!m_canvas || m_canvas->Width() != area.right || m_canvas->Height() != area.bottom)
        m_canvas = std::make_unique<Canvas>(area.right, area.bottom);
    Paint(m_canvas->Dc(), grid, m_view);
    ::BitBlt(session.Dc(), 0, 0, area.right, area.bottom, m_canvas->Dc(), 0, 0, SRCCOPY);
}

void PaletteWindow::OnMouseMove(POINT point)
{
    if (!m_mouseInside) {
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, Handle(), 0};
        m_mouseInside = ::TrackMouseEvent(&track) != FALSE;
    }
    // Windows sends this message for a mouse that rests, too; what the arrow keys have chosen stays then.
    if (point.x == m_mouse.x && point.y == m_mouse.y)
        return;
    m_mouse = point;
    const int index = CurrentGrid().IndexAt(point);
    if (index != m_view.selected)
        Change({index, Notice::kNone});
}

void PaletteWindow::OnClick(POINT point)
{
    // The arrow keys may have chosen another colour since the mouse came to rest.
    Change({CurrentGrid().IndexAt(point), Notice::kNone});
    Copy();
}

void PaletteWindow::OnMouseLeave()
{
    m_mouseInside = false;
    m_mouse = {-1, -1};
    Change(View{});
}

void PaletteWindow::OnKey(WPARAM key)
{
    switch (key) {
    case VK_LEFT:
        return Step(Grid::Step::kLeft);
    case VK_RIGHT:
        return Step(Grid::Step::kRight);
    case VK_UP:
        return Step(Grid::Step::kUp);
    case VK_DOWN:
        return Step(Grid::Step::kDown);
    case VK_RETURN:
        return Copy();
    case 'C':
        if (::GetKeyState(VK_CONTROL) < 0)
            Copy();
        return;
    case VK_ESCAPE:
        ::DestroyWindow(Handle());
        return;
    default:
        return;
    }
}

void PaletteWindow::OnMinMaxInfo(MINMAXINFO& info)
{
    const SIZE least = WindowSize({Grid::kDesignWidth * 60 / 100, Grid::kDesignHeight * 60 / 100});
    info.ptMinTrackSize = {least.cx, least.cy};
}

void PaletteWindow::Step(Grid::Step step)
{
    Change({m_view.selected == 0 ? Grid::kFirst : Grid::Neighbour(m_view.selected, step), Notice::kNone});
}

void PaletteWindow::Change(const View& view)
{
    m_view = view;
    ::InvalidateRect(Handle(), nullptr, FALSE);
}

void PaletteWindow::Copy()
{
    if (m_view.selected == 0)
        return;
    const bool copied = CopyToClipboard(Handle(), ColorLine(m_view.selected));
    Change({m_view.selected, copied ? Notice::kCopied : Notice::kNotCopied});
}

Grid PaletteWindow::CurrentGrid() const
{
    RECT area{};
    ::GetClientRect(Handle(), &area);
    return {static_cast<int>(area.right), static_cast<int>(area.bottom)};
}
