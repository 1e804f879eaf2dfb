#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

// Fonts, bitmaps and their like.
struct GdiDeleter {
    void operator()(HGDIOBJ object) const { ::DeleteObject(object); }
};
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDeleter>;

struct DcDeleter {
    void operator()(HDC dc) const { ::DeleteDC(dc); }
};
using MemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, DcDeleter>;

// Puts an object to use in a device context, and the one of before back at the end.
class Selection
{
public:
    Selection(HDC dc, HGDIOBJ object) : m_dc(dc), m_previous(::SelectObject(dc, object)) {}
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
    ~Selection() { ::SelectObject(m_dc, m_previous); }

private:
    HDC m_dc;
    HGDIOBJ m_previous;
};
