#pragma once

#include "Canvas.h"
#include "Painter.h"

#include <exception>
#include <memory>

// The window of the program. It lives as long as the object, or until it is closed.
class PaletteWindow
{
public:
    // Throws std::runtime_error where there can be no window.
    PaletteWindow();
    PaletteWindow(const PaletteWindow&) = delete;
    PaletteWindow& operator=(const PaletteWindow&) = delete;
    ~PaletteWindow();

    // Shows the window and returns when it is closed. Throws what a message's handling has thrown.
    void RunUntilClosed(int command);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

    void OnPaint();
    void OnMouseMove(POINT point);
    void OnClick(POINT point);
    void OnMouseLeave();
    void OnKey(WPARAM key);
    void OnMinMaxInfo(MINMAXINFO& info) const;

    void Step(Grid::Step step);
    void Change(const View& view);
    void Copy();
    Grid CurrentGrid() const;

    HWND m_window = nullptr;
    View m_view;
    // Kept from one paint to the next, as long as the size stays.
    std::unique_ptr<Canvas> m_canvas;
    POINT m_mouse{-1, -1};
    bool m_mouseInside = false;
    std::exception_ptr m_failure;
};
