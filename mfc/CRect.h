#pragma once

// Stand-in for MFC's CRect, for toolchains without MFC: the same names with the same results, as far as applications
// that host child programs use them.

#if defined(_MSC_VER)
#include <windows.h> // its parts do not compile alone there
#else
#include <windef.h>
#endif

class CRect : public RECT
{
public:
    // Empty, at the origin.
    CRect() : CRect(0, 0, 0, 0) {}
    CRect(int newLeft, int newTop, int newRight, int newBottom) : RECT()
    {
        left = newLeft;
        top = newTop;
        right = newRight;
        bottom = newBottom;
    }
    CRect(const RECT& rectangle) : RECT(rectangle) {} // NOLINT(google-explicit-constructor): as the real one

    operator RECT*() { return this; }             // NOLINT(google-explicit-constructor): likewise
    operator const RECT*() const { return this; } // NOLINT(google-explicit-constructor): likewise

    // Negative where the sides are the wrong way round.
    int Width() const { return static_cast<int>(right - left); }
    int Height() const { return static_cast<int>(bottom - top); }
};
