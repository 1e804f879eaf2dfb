#include "Clipboard.h"

#include <cstring>
#include <memory>

namespace
{

class OpenedClipboard
{
public:
    explicit OpenedClipboard(HWND window) : m_open(::OpenClipboard(window) != FALSE) {}
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;
    ~OpenedClipboard()
    {
        if (m_open)
            ::CloseClipboard();
    }

    explicit operator bool() const { return m_open; }

private:
    bool m_open;
};

struct GlobalDeleter {
    void operator()(HGLOBAL memory) const { ::GlobalFree(memory); }
};
using GlobalMemory = std::unique_ptr<void, GlobalDeleter>;

GlobalMemory CopyOf(const std::wstring& text)
{
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
    GlobalMemory memory(::GlobalAlloc(GMEM_MOVEABLE, size));
    void* const bytes = memory ? ::GlobalLock(memory.get()) : nullptr;
    if (bytes == nullptr)
        return nullptr;
    std::memcpy(bytes, text.c_str(), size);
    ::GlobalUnlock(memory.get());
    return memory;
}

} // namespace

bool CopyToClipboard(HWND window, const std::wstring& text)
{
    GlobalMemory memory = CopyOf(text);
    const OpenedClipboard clipboard(window);
    if (!memory || !clipboard || !::EmptyClipboard())
        return false;
    if (::SetClipboardData(CF_UNICODETEXT, memory.get()) == nullptr)
        return false;
    // The clipboard has taken it.
    static_cast<void>(memory.release());
    return true;
}
