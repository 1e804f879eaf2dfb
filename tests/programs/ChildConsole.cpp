// A console program for the tests, with a window all the same. Waits for the event of its argument.

#include <windows.h>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2)
        return 1;
    const HWND window = ::CreateWindowExW(0, L"STATIC", argv[1], WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr,
                                          nullptr, nullptr);
    const HANDLE event = ::OpenEventW(SYNCHRONIZE, FALSE, argv[1]);
    MSG message;
    do {
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
    } while (::MsgWaitForMultipleObjects(1, &event, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1);
    ::DestroyWindow(window);
    ::CloseHandle(event);
    return 0;
}
