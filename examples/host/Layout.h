#pragma once

#include <windows.h>

enum class Button { kOpen, kPalette, kClose };

// Where what stands in the client area: a bar with buttons, and below it the place of the hosted program.
class Layout
{
public:
    // The size of the client area at 96 dots per inch.
    static constexpr int kDesignWidth = 980;
    static constexpr int kDesignHeight = 608;

    static constexpr Button kButtons[] = {Button::kOpen, Button::kPalette, Button::kClose};

    // In pixels.
    Layout(SIZE client, int dpi) : m_client(client), m_dpi(dpi) {}

    RECT Bar() const { return {0, 0, m_client.cx, Scaled(48)}; }
    RECT ButtonPlace(Button button) const;
    RECT Title() const;
    RECT Pane() const { return {0, Bar().bottom, m_client.cx, m_client.cy}; }

    bool IsOn(Button button, POINT point) const;

    // A length of the design, in pixels.
    int Scaled(int length) const { return ::MulDiv(length, m_dpi, 96); }

private:
    SIZE m_client;
    int m_dpi;
};
