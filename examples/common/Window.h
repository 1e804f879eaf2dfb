#pragma once

#include <windows.h>

#include <exception>

// A window with a frame. It lives as long as the object, or until it is closed, which ends the program's message loop.
class Window
{
public:
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window();

    // Shows the window and returns when it is closed. Throws what a message's handling has thrown.
    void RunUntilClosed(int command);

    // The handle, null once the window is closed.
    HWND Handle() const { return m_window; }

protected:
    Window() = default;

    // Makes the window, with a client area of this size at 96 dots per inch, and of its own class. Throws
    // std::runtime_error where it cannot.
    void Make(const wchar_t* className, const wchar_t* title, DWORD style, SIZE clientSize);

    // Handles a message; what a derived class does not handle belongs here.
    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // The size of a window with a client area of this size at 96 dots per inch.
    static SIZE WindowSize(SIZE clientSize);

    static int ScreenDpi();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND m_window = nullptr;
    const wchar_t* m_className = nullptr;
    std::exception_ptr m_failure;
};
