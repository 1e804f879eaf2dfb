// A program with a window, for the tests to host. The title is its command line; it ends when the window is closed.
//
//     ChildWindow.exe [ANYTHING]
//     ChildWindow.exe --late EVENT            is idle without a window until the event is set; sets EVENT.shown then
//     ChildWindow.exe --launch EVENT PROGRAM  is idle until the event is set; starts PROGRAM then, and ends
//     ChildWindow.exe --owned                 has a second window, which the first one owns, and a third, which the second
//                                             one owns
//     ChildWindow.exe --refuse                does not close when it is asked to; its title says "refused" then
//     ChildWindow.exe --end                   ends at once

#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

constexpr wchar_t kClassName[] = L"KelpkitTestChild";

bool g_refuses = false;

struct HandleCloser {
    void operator()(HANDLE handle) const { ::CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

std::vector<std::wstring> Arguments()
{
    int count = 0;
    wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::wstring> arguments(words + 1, words + count);
    ::LocalFree(words);
    arguments.resize(3);
    return arguments;
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CLOSE && g_refuses) {
        ::SetWindowTextW(window, L"refused");
        return 0;
    }
    if (message == WM_DESTROY)
        ::PostQuitMessage(0);
    return ::DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeWindow(HWND owner)
{
    return ::CreateWindowExW(0, kClassName, ::GetCommandLineW(), owner == nullptr ? WS_OVERLAPPEDWINDOW : WS_POPUP, 0,
                             0, 400, 300, owner, nullptr, nullptr, nullptr);
}

// Takes messages until the event is set, as an idle program does.
void IdleUntil(const std::wstring& eventName)
{
    const Handle event(::OpenEventW(SYNCHRONIZE, FALSE, eventName.c_str()));
    HANDLE handle = event.get();
    do {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
    } while (::MsgWaitForMultipleObjects(1, &handle, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1);
}

void Launch(std::wstring commandLine)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process))
        return;
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
}

} // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPWSTR /*commandLine*/, int nShowCmd)
{
    const std::vector<std::wstring> arguments = Arguments();
    const std::wstring& way = arguments[0];
    g_refuses = way == L"--refuse";
    if (way == L"--end")
        return 0;
    if (way == L"--late" || way == L"--launch")
        IdleUntil(arguments[1]);
    if (way == L"--launch") {
        Launch(arguments[2]);
        return 0;
    }

    WNDCLASSW description{};
    description.lpfnWndProc = Procedure;
    description.lpszClassName = kClassName;
    ::RegisterClassW(&description);
    const HWND window = MakeWindow(nullptr);
    if (way == L"--owned")
        MakeWindow(MakeWindow(window));
    ::ShowWindow(window, nShowCmd);
    if (way == L"--late") {
        const Handle shown(::OpenEventW(EVENT_MODIFY_STATE, FALSE, (arguments[1] + L".shown").c_str()));
        ::SetEvent(shown.get());
    }

    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0)
        ::DispatchMessageW(&message);
    return 0;
}
