// Loads a DLL of its folder: LoadDll NAME. The exit code is the time in microseconds; 0 if there is none.

#include <windows.h>

#include <algorithm>

int wmain(int argc, wchar_t** argv)
{
    if (argc != 2)
        return 0;
    LARGE_INTEGER frequency;
    LARGE_INTEGER begin;
    LARGE_INTEGER end;
    ::QueryPerformanceFrequency(&frequency);
    ::QueryPerformanceCounter(&begin);
    const HMODULE dll = ::LoadLibraryW(argv[1]);
    ::QueryPerformanceCounter(&end);
    if (dll == nullptr)
        return 0;
    return static_cast<int>(std::max((end.QuadPart - begin.QuadPart) * 1'000'000 / frequency.QuadPart, 1LL));
}
