#pragma once

#include <windows.h>

#include <string>

// Puts a text on the clipboard, which the window then owns. False where it cannot, as when another program has the
// clipboard open.
bool CopyToClipboard(HWND window, const std::wstring& text);
