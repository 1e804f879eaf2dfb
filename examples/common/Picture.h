#pragma once

#include "Canvas.h"

#include <string>

// Writes a picture to a file: a BMP where the name ends in .bmp, else a PNG. False where it cannot.
bool WritePicture(const Canvas& canvas, const std::wstring& path);
