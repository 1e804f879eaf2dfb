#include "Bench.h"
#include "Processes.h"

#include "Kelpkit/ChildExe.h"

#include <windows.h>

#include <string>

namespace bench
{
namespace
{

// The window of a program that was started, found as it is found where there is no class for it.
struct Started {
    PROCESS_INFORMATION process;
    HWND window;
};

BOOL CALLBACK FindWindowOf(HWND window, LPARAM started)
{
    auto& found = *reinterpret_cast<Started*>(started);
    DWORD processId = 0;
    ::GetWindowThreadProcessId(window, &processId);
    if (processId != found.process.dwProcessId)
        return TRUE;
    found.window = window;
    return FALSE;
}

// The same steps, with the half second that is waited by contract.
HWND HostByHand(HWND host, std::wstring commandLine, const RECT& area)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    Started started = {};
    ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                     &started.process);
    ::WaitForInputIdle(started.process.hProcess, INFINITE);
    ::Sleep(500);
    while (::EnumWindows(FindWindowOf, reinterpret_cast<LPARAM>(&started)) != FALSE)
        ::Sleep(100);
    ::SetParent(started.window, host);
    ::InvalidateRect(started.window, nullptr, TRUE);
    ::SetWindowLongW(started.window, GWL_STYLE, WS_CHILD | WS_VISIBLE);
    ::MoveWindow(started.window, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
    ::ShowWindow(started.window, SW_SHOW);
    ::SetWindowPos(host, started.window, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    ::PostMessageW(started.window, WM_PAINT, 0, 0);
    ::CloseHandle(started.process.hThread);
    ::CloseHandle(started.process.hProcess);
    return started.window;
}

} // namespace

void Register()
{
    static const HWND host = ::CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640, 480,
                                               nullptr, nullptr, nullptr, nullptr);
    const std::wstring& command = Keep(L'"' + ProgramPath(L"palette.exe") + L'"');
    Comparison("host a program and close it", "the palette")
        .Kelpkit([&command] {
            KELPKIT::ChildExe child;
            return child.CreateSubWindow(host, command.c_str()) && child.AddSubWindow({0, 0, 600, 400});
        })
        .Peer("bare calls", [&command] {
            const HWND window = HostByHand(host, command, {0, 0, 600, 400});
            return ::PostMessageW(window, WM_CLOSE, 0, 0);
        });
}

} // namespace bench
