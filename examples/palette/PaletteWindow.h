#pragma once

#include "Canvas.h"
#include "Painter.h"
#include "Window.h"

#include <memory>

// The window of the program.
class PaletteWindow : public Window
{
public:
    // Throws std::runtime_error where there can be no window.
    PaletteWindow();

private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void OnPaint();
    void OnMouseMove(POINT point);
    void OnClick(POINT point);
    void OnMouseLeave();
    void OnKey(WPARAM key);
    static void OnMinMaxInfo(MINMAXINFO& info);

    void Step(Grid::Step step);
    void Change(const View& view);
    void Copy();
    Grid CurrentGrid() const;

    View m_view;
    // Kept from one paint to the next, as long as the size stays.
    std::unique_ptr<Canvas> m_canvas;
    POINT m_mouse{-1, -1};
    bool m_mouseInside = false;
};
