#pragma once

// What the units under test, and the headers that they include, need of Windows' headers, and no more.

#include <cstdint>

using BOOL = int;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = unsigned;
using LPARAM = std::intptr_t;
using WPARAM = std::uintptr_t;
using HWND = struct Window*;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;
constexpr int MAXINT = 0x7FFFFFFF;

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

// Says that these are declared; nothing calls them.
#define _WINUSER_
BOOL InvalidateRect(HWND window, const RECT* area, BOOL erase);
BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
