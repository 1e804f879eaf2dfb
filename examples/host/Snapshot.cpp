#include "HostWindow.h"

#include "Snapshot.h"

#include <cstring>

namespace
{

struct ScreenDcReleaser {
    void operator()(HDC dc) const { ::ReleaseDC(nullptr, dc); }
};
using ScreenDc = std::unique_ptr<std::remove_pointer_t<HDC>, ScreenDcReleaser>;

void HandleMessages(DWORD milliseconds)
{
    const ULONGLONG end = ::GetTickCount64() + milliseconds;
    for (ULONGLONG now = ::GetTickCount64(); now < end; now = ::GetTickCount64()) {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    }
}

std::unique_ptr<Canvas> CopyOfScreen(HWND window)
{
    RECT area{};
    ::GetClientRect(window, &area);
    POINT corner{};
    ::ClientToScreen(window, &corner);
    auto copy = std::make_unique<Canvas>(area.right, area.bottom);
    const ScreenDc screen(::GetDC(nullptr));
    ::BitBlt(copy->Dc(), 0, 0, area.right, area.bottom, screen.get(), corner.x, corner.y, SRCCOPY);
    ::GdiFlush();
    return copy;
}

bool AreEqual(const Canvas& left, const Canvas& right)
{
    return left.Width() == right.Width() && left.Height() == right.Height() &&
           std::memcmp(left.Row(0), right.Row(0), left.RowSize() * static_cast<std::size_t>(left.Height())) == 0;
}

} // namespace

std::unique_ptr<Canvas> Snapshot(const HostWindow& window)
{
    constexpr int kMostTurns = 50;
    constexpr DWORD kTurnMilliseconds = 100;
    std::unique_ptr<Canvas> last;
    for (int turn = 0; turn < kMostTurns; ++turn) {
        HandleMessages(kTurnMilliseconds);
        // The first returns when the program has painted, the second when it waits again: what it painted is on its way.
        ::RedrawWindow(window.Hosted(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        ::SendMessageW(window.Hosted(), WM_NULL, 0, 0);
        std::unique_ptr<Canvas> next = CopyOfScreen(window.Handle());
        if (last && AreEqual(*last, *next))
            return next;
        last = std::move(next);
    }
    return nullptr;
}
