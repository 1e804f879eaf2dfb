#include "PaletteWindow.h"

#include "Clipboard.h"
#include "Colors.h"

#include <windowsx.h>

#include <stdexcept>
#include <utility>

namespace
{

constexpr wchar_t kClassName[] = L"KelpkitPalette";
constexpr DWORD kStyle = WS_OVERLAPPEDWINDOW;
constexpr int kDesignDpi = 96;

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

void RegisterWindowClass(WNDPROC procedure)
{
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = procedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
    description.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = kClassName;
    if (::RegisterClassExW(&description) == 0)
        throw std::runtime_error("the window class cannot be registered");
}

int ScreenDpi()
{
    const MemoryDc screen(::CreateCompatibleDC(nullptr));
    return ::GetDeviceCaps(screen.get(), LOGPIXELSX);
}

// The size of a window whose client area has a part of the design's size, in hundredths.
SIZE WindowSize(int percent)
{
    const int dpi = ScreenDpi();
    RECT area{0, 0, ::MulDiv(Grid::kDesignWidth * percent / 100, dpi, kDesignDpi),
              ::MulDiv(Grid::kDesignHeight * percent / 100, dpi, kDesignDpi)};
    ::AdjustWindowRect(&area, kStyle, FALSE);
    return {area.right - area.left, area.bottom - area.top};
}

} // namespace

PaletteWindow::PaletteWindow()
{
    RegisterWindowClass(Procedure);
    const SIZE size = WindowSize(100);
    ::CreateWindowExW(0, kClassName, L"Kelpkit palette", kStyle, CW_USEDEFAULT, CW_USEDEFAULT, size.cx, size.cy,
                      nullptr, nullptr, ::GetModuleHandleW(nullptr), this);
    if (m_window == nullptr)
        throw std::runtime_error("the window cannot be made");
}

PaletteWindow::~PaletteWindow()
{
    if (m_window != nullptr)
        ::DestroyWindow(m_window);
    ::UnregisterClassW(kClassName, ::GetModuleHandleW(nullptr));
}

void PaletteWindow::RunUntilClosed(int command)
{
    ::ShowWindow(m_window, command);
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0)
        ::DispatchMessageW(&message);
    if (m_failure)
        std::rethrow_exception(m_failure);
}

LRESULT CALLBACK PaletteWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE) {
        auto* const made = static_cast<PaletteWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        made->m_window = window;
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
    }
    // A few messages come before WM_NCCREATE.
    auto* const self = reinterpret_cast<PaletteWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr)
        return ::DefWindowProcW(window, message, wParam, lParam);
    try {
        return self->Handle(message, wParam, lParam);
    } catch (...) {
        // The system's code, through which this was called, lets no exception pass.
        self->m_failure = std::current_exception();
        ::PostQuitMessage(0);
        return 0;
    }
}

LRESULT PaletteWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam)
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
    case WM_DESTROY:
        ::PostQuitMessage(0);
        return 0;
    case WM_NCDESTROY:
        // The last message.
        ::SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
        return ::DefWindowProcW(std::exchange(m_window, nullptr), message, wParam, lParam);
    default:
        return ::DefWindowProcW(m_window, message, wParam, lParam);
    }
}

void PaletteWindow::OnPaint()
{
    const PaintSession session(m_window);
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
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, m_window, 0};
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
        ::DestroyWindow(m_window);
        return;
    default:
        return;
    }
}

void PaletteWindow::OnMinMaxInfo(MINMAXINFO& info) const
{
    const SIZE least = WindowSize(60);
    info.ptMinTrackSize = {least.cx, least.cy};
}

void PaletteWindow::Step(Grid::Step step)
{
    Change({m_view.selected == 0 ? Grid::kFirst : Grid::Neighbour(m_view.selected, step), Notice::kNone});
}

void PaletteWindow::Change(const View& view)
{
    m_view = view;
    ::InvalidateRect(m_window, nullptr, FALSE);
}

void PaletteWindow::Copy()
{
    if (m_view.selected == 0)
        return;
    const bool copied = CopyToClipboard(m_window, ColorLine(m_view.selected));
    Change({m_view.selected, copied ? Notice::kCopied : Notice::kNotCopied});
}

Grid PaletteWindow::CurrentGrid() const
{
    RECT area{};
    ::GetClientRect(m_window, &area);
    return {static_cast<int>(area.right), static_cast<int>(area.bottom)};
}
