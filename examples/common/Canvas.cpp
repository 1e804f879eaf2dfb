#include "Canvas.h"

#include <stdexcept>

Canvas::Canvas(int width, int height) : m_width(width), m_height(height), m_dc(::CreateCompatibleDC(nullptr))
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    m_bitmap.reset(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!m_dc || !m_bitmap)
        throw std::runtime_error("no memory for a bitmap");
    m_bits = static_cast<BYTE*>(bits);
    ::SelectObject(m_dc.get(), m_bitmap.get());
}
