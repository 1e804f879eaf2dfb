#pragma once

#include <windows.h>

// Makes the window in which programs are hosted, as a child of the frame, which destroys it. Null where it cannot.
HWND MakePane(HWND frame);
