#include "Window.h"

#include "Handles.h"

#include <stdexcept>
#include <utility>

namespace
{

constexpr int kDesignDpi = 96;

void RegisterWindowClass(const wchar_t* name, WNDPROC procedure)
{
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = procedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
    description.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = name;
    if (::RegisterClassExW(&description) == 0)
        throw std::runtime_error("the window class cannot be registered");
}

} // namespace

Window::~Window()
{
    if (m_window != nullptr)
        ::DestroyWindow(m_window);
    if (m_className != nullptr)
        ::UnregisterClassW(m_className, ::GetModuleHandleW(nullptr));
}

void Window::Make(const wchar_t* className, const wchar_t* title, DWORD style, SIZE clientSize)
{
    RegisterWindowClass(className, Procedure);
    m_className = className;
    const SIZE size = WindowSize(clientSize);
    ::CreateWindowExW(0, className, title, style, CW_USEDEFAULT, CW_USEDEFAULT, size.cx, size.cy, nullptr, nullptr,
                      ::GetModuleHandleW(nullptr), this);
    if (m_window == nullptr)
        throw std::runtime_error("the window cannot be made");
}

void Window::RunUntilClosed(int command)
{
    ::ShowWindow(m_window, command);
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0)
        ::DispatchMessageW(&message);
    if (m_failure)
        std::rethrow_exception(m_failure);
}

SIZE Window::WindowSize(SIZE clientSize)
{
    const int dpi = ScreenDpi();
    RECT area{0, 0, ::MulDiv(static_cast<int>(clientSize.cx), dpi, kDesignDpi),
              ::MulDiv(static_cast<int>(clientSize.cy), dpi, kDesignDpi)};
    ::AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
    return {area.right - area.left, area.bottom - area.top};
}

int Window::ScreenDpi()
{
    const MemoryDc screen(::CreateCompatibleDC(nullptr));
    return ::GetDeviceCaps(screen.get(), LOGPIXELSX);
}

LRESULT CALLBACK Window::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE) {
        auto* const made = static_cast<Window*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        made->m_window = window;
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
    }
    // A few messages come before WM_NCCREATE.
    auto* const self = reinterpret_cast<Window*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr)
        return ::DefWindowProcW(window, message, wParam, lParam);
    try {
        return self->OnMessage(message, wParam, lParam);
    } catch (...) {
        // The system's code, through which this was called, lets no exception pass.
        self->m_failure = std::current_exception();
        ::PostQuitMessage(0);
        return 0;
    }
}

LRESULT Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
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
