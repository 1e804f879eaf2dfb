#include "Pane.h"

namespace
{

// Wine 8 lets a window of another program paint only if one between it and the frame names the frame's X window; else the
// place stays as it is. Windows knows no such property.
void NameXWindow(HWND pane, HWND frame)
{
    constexpr wchar_t kProperty[] = L"__wine_x11_whole_window";
    const HANDLE xWindow = ::GetPropW(frame, kProperty);
    if (xWindow != nullptr)
        ::SetPropW(pane, kProperty, xWindow);
}

} // namespace

HWND MakePane(HWND frame)
{
    const HWND pane =
        ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | SS_CENTER | SS_CENTERIMAGE, 0, 0,
                          0, 0, frame, nullptr, nullptr, nullptr);
    if (pane != nullptr)
        NameXWindow(pane, frame);
    return pane;
}
