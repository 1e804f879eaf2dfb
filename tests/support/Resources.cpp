#include "support/Resources.h"

#include "support/HandleCount.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

namespace test
{
namespace
{

// Wine has the table of GDI objects where Windows has it, but does not count it.
std::size_t CountGdiTable()
{
    struct Entry {
        void* object;
        ULONG owner;
        USHORT unique;
        BYTE type;
        BYTE flags;
        void* userPointer;
    };
    constexpr std::size_t kPlaceInProcessBlock = 0xF8;
    constexpr std::size_t kEntries = 0x10000;
    const auto processBlock = reinterpret_cast<const char*(WINAPI*)()>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb")));
    const auto* const entries = *reinterpret_cast<const Entry* const*>(processBlock() + kPlaceInProcessBlock);
    std::size_t count = 0;
    for (std::size_t i = 0; entries != nullptr && i < kEntries; ++i)
        count += entries[i].type == 0 ? 0U : 1U;
    return count;
}

BOOL CALLBACK CountOwn(HWND window, LPARAM count)
{
    DWORD processId = 0;
    ::GetWindowThreadProcessId(window, &processId);
    *reinterpret_cast<std::size_t*>(count) += processId == ::GetCurrentProcessId() ? 1U : 0U;
    return TRUE;
}

std::size_t CountWindows()
{
    std::size_t count = 0;
    ::EnumChildWindows(::GetDesktopWindow(), &CountOwn, reinterpret_cast<LPARAM>(&count));
    ::EnumChildWindows(HWND_MESSAGE, &CountOwn, reinterpret_cast<LPARAM>(&count));
    return count;
}

std::size_t CountThreads()
{
    std::size_t count = 0;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof thread;
    for (BOOL isThere = ::Thread32First(snapshot, &thread); isThere; isThere = ::Thread32Next(snapshot, &thread))
        count += thread.th32OwnerProcessID == ::GetCurrentProcessId() ? 1U : 0U;
    ::CloseHandle(snapshot);
    return count;
}

std::size_t PrivateBytes()
{
    PROCESS_MEMORY_COUNTERS memory = {};
    ::K32GetProcessMemoryInfo(::GetCurrentProcess(), &memory, sizeof memory);
    return memory.PagefileUsage;
}

} // namespace

Resources CurrentResources()
{
    const std::size_t gdi = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    const std::size_t user = ::GetGuiResources(::GetCurrentProcess(), GR_USEROBJECTS);
    return {HandleCount(), gdi != 0 ? gdi : CountGdiTable(), user != 0 ? user : CountWindows(), CountThreads(),
            PrivateBytes()};
}

} // namespace test
