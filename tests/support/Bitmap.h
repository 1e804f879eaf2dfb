#pragma once

#include <windows.h>

#include <cstring>
#include <string>
#include <utility>

namespace test
{

// A BMP file of 24 bits to the pixel.
class Bitmap
{
public:
    explicit Bitmap(std::string bytes) : m_bytes(std::move(bytes))
    {
        std::memcpy(&m_file, m_bytes.data(), sizeof m_file);
        std::memcpy(&m_info, m_bytes.data() + sizeof m_file, sizeof m_info);
    }

    LONG Width() const { return m_info.biWidth; }
    LONG Height() const { return m_info.biHeight; }

    COLORREF At(LONG x, LONG y) const
    {
        const LONG rowSize = (m_info.biWidth * 3 + 3) / 4 * 4;
        const LONG place = rowSize * (m_info.biHeight - 1 - y) + 3 * x;
        const auto* const pixel = reinterpret_cast<const unsigned char*>(m_bytes.data()) + m_file.bfOffBits + place;
        return RGB(pixel[2], pixel[1], pixel[0]);
    }

private:
    std::string m_bytes;
    BITMAPFILEHEADER m_file = {};
    BITMAPINFOHEADER m_info = {};
};

} // namespace test
