#include "Kelpkit/CrashReport.h"

#include "WindowsApi.h"
#include "log/DumpPath.h"
#include "log/Termination.h"

#include <dbghelp.h>

#include <cstring>

namespace KELPKIT
{
namespace
{

// What runs after the crash must not allocate: the heap may be damaged, or locked by a suspended thread.

constexpr wchar_t kDriveRoot[] = L"C:\\";

// Found when dumps are asked for: after the crash it may be too late to load a DLL.
decltype(&::MiniDumpWriteDump) g_writeDump = nullptr;

struct Names {
    wchar_t folder[MAX_PATH] = {};
    wchar_t program[MAX_PATH] = {};
};

void FindProgram(Names& names)
{
    wchar_t* const path = names.folder; // scratch space until the folder is known
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    crash::CopyProgramName(path, names.program);
}

void FindFolder(Names& names)
{
    // Where the path is too long, Windows writes nothing, and the dump goes to the current folder.
    names.folder[0] = L'\0';
    if (::GetTempPathW(MAX_PATH, names.folder) == 0)
        std::memcpy(names.folder, kDriveRoot, sizeof kDriveRoot);
}

crash::DumpPath PathNow()
{
    Names names;
    FindProgram(names);
    FindFolder(names);
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    return {names.folder, now, names.program};
}

void WriteDump(EXCEPTION_POINTERS* exception)
{
    if (g_writeDump == nullptr)
        return;
    const crash::DumpPath path = PathNow();
    const HANDLE file = ::CreateFileW(path.Text(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    MINIDUMP_EXCEPTION_INFORMATION information = {};
    information.ThreadId = ::GetCurrentThreadId();
    information.ExceptionPointers = exception;
    information.ClientPointers = TRUE;
    g_writeDump(::GetCurrentProcess(), ::GetCurrentProcessId(), file, MiniDumpNormal, &information, nullptr, nullptr);
    ::CloseHandle(file);
}

LONG WINAPI ReportException(EXCEPTION_POINTERS* exception)
{
    // Back to the system's own crash report, which the application may have turned off.
    ::SetErrorMode(0);
    WriteDump(exception);
    return EXCEPTION_CONTINUE_SEARCH;
}

// The filter is called until the process ends, so this DLL must not be unloaded.
void StayLoaded()
{
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<const wchar_t*>(&ReportException), &module);
}

} // namespace

void StartCrashReport()
{
    StayLoaded();
    if (const HMODULE dbghelp = ::LoadLibraryW(L"dbghelp.dll"))
        g_writeDump = reinterpret_cast<decltype(g_writeDump)>(
            reinterpret_cast<void*>(::GetProcAddress(dbghelp, "MiniDumpWriteDump")));
    crash::ReportThrough(&ReportException);
}

} // namespace KELPKIT
