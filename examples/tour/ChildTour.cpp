#include "Tour.h"

#include <Kelpkit/ChildExe.h>
#include <Kelpkit/SystemInfo.h>

#include <windows.h>

using namespace KELPKIT;

namespace
{

// A window that is never shown, to host programs in.
class Host
{
public:
    Host()
        : m_window(::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 980, 560, nullptr, nullptr, nullptr, nullptr))
    {
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() { ::DestroyWindow(m_window); }

    HWND Handle() const { return m_window; }
    bool HasChild() const { return ::GetWindow(m_window, GW_CHILD) != nullptr; }

private:
    HWND m_window;
};

} // namespace

void ShowChildPrograms(Tour& tour)
{
    tour.Section(L"Child programs");
    const Host host;
    ChildExe child;
    if (host.Handle() == nullptr)
        return Tour::Note(L"(there is no screen for windows)");
    tour.Step(L"CreateSubWindow of the palette", [&] {
        const bool result = child.CreateSubWindow(host.Handle(), (L"\"" + GetSysRoot() + L"palette.exe\"").c_str());
        return Tour::Result{Text(result), result && !host.HasChild()};
    });
    tour.Step(L"AddSubWindow", [&] {
        const bool result = child.AddSubWindow(CRect(0, 0, 980, 560));
        return Tour::Result{Text(result), result && host.HasChild()};
    });
    tour.Step(L"MoveSubWindow", [&] {
        const bool result = child.MoveSubWindow(CRect(10, 10, 610, 360)) != 0;
        return Tour::Result{Text(result), result};
    });
    tour.Step(L"HasSubWindow, CloseSubWindow", [&] {
        const bool had = child.HasSubWindow() != 0;
        const bool closed = child.CloseSubWindow();
        return Tour::Result{Text(had) + L", " + Text(closed), had && closed && child.HasSubWindow() == 0};
    });
}
