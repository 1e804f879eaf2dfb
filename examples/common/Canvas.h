#pragma once

#include "Handles.h"

#include <cstddef>

// A bitmap in memory to paint on: 24 bits to the pixel, blue first, the lowest row first, as BMP files have it.
class Canvas
{
public:
    // Throws std::runtime_error where the system has no memory for it.
    Canvas(int width, int height);

    HDC Dc() const { return m_dc.get(); }
    int Width() const { return m_width; }
    int Height() const { return m_height; }

    // A row, counted from the bottom. Rows stand one behind the other, each filled up to whole groups of four bytes.
    BYTE* Row(int row) const { return m_bits + RowSize() * static_cast<std::size_t>(row); }
    std::size_t RowSize() const { return (static_cast<std::size_t>(m_width) * 3 + 3) / 4 * 4; }

private:
    int m_width;
    int m_height;
    // In this order: a bitmap can be deleted only when no device context uses it.
    GdiObject<HBITMAP> m_bitmap;
    MemoryDc m_dc;
    BYTE* m_bits = nullptr;
};
