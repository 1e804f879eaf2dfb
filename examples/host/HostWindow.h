#pragma once

#include <Kelpkit/ChildExe.h>

#include "Handles.h"
#include "Layout.h"
#include "Window.h"

#include <string>

// The window of the program: hosts one other program at a time.
class HostWindow : public Window
{
public:
    // Throws std::runtime_error where there can be no window.
    HostWindow();

    // Starts a program and hosts it, in the place of the one before. Waits for its window. Where it has none, the pane
    // says so.
    void Host(const std::wstring& commandLine);

    // The window of the hosted program, null if there is none.
    HWND Hosted() const;

    // The command line of the palette, which is there to be hosted.
    static std::wstring Palette();

private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void OnPaint() const;
    void OnClick(POINT point);
    void OnKey(WPARAM key);
    void OnSize();
    void OnTimer();
    LRESULT OnPaneColors(HDC dc) const;

    void Press(Button button);
    void OpenProgram();
    void CloseProgram(const std::wstring& message);
    void Show(const std::wstring& title, const std::wstring& message);

    Layout CurrentLayout() const;
    CRect HostedPlace() const;

    KELPKIT::ChildExe m_child;
    bool m_starts = false;
    bool m_hosts = false;
    std::wstring m_title;
    HWND m_pane = nullptr;
    GdiObject<HFONT> m_font;
    GdiObject<HBRUSH> m_background;
};
