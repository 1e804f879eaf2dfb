#pragma once

// Stand-in for MFC's CWnd, for toolchains without MFC: a window by its handle, as far as applications that host child
// programs use it.

#include "CRect.h"

#include <map>
#include <mutex>

// The whole of windows.h would be much for a public header.
#if !defined(_WINUSER_)
extern "C" {
__declspec(dllimport) BOOL __stdcall InvalidateRect(HWND window, const RECT* area, BOOL erase);
__declspec(dllimport) BOOL __stdcall PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
}
#endif

class CWnd
{
public:
    // The window of a handle, the same object for the same handle; null for null. The object is not the caller's.
    static CWnd* FromHandle(HWND window)
    {
        static std::mutex mutex;
        static std::map<HWND, CWnd> windows;
        if (window == nullptr)
            return nullptr;
        const std::lock_guard<std::mutex> lock(mutex);
        CWnd& found = windows[window];
        found.m_hWnd = window;
        return &found;
    }

    // The whole area where there is no rectangle.
    void InvalidateRect(const RECT* area, BOOL erase = TRUE) { ::InvalidateRect(m_hWnd, area, erase); }

    // Named as windows.h makes it of PostMessage.
    BOOL PostMessageW(UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return ::PostMessageW(m_hWnd, message, wParam, lParam);
    }

    HWND m_hWnd = nullptr;
};
