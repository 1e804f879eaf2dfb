// Loads Kelpkit.dll, asks for crash dumps, frees the DLL, then raises an exception that nobody handles. Arguments are
// ignored.

#include <windows.h>

#include <dbghelp.h>

namespace
{

#if defined(_MSC_VER)
constexpr const char* kStartCrashReport = "?StartCrashReport@KELPKIT@@YAXXZ";
#else
constexpr const char* kStartCrashReport = "_ZN7KELPKIT16StartCrashReportEv";
#endif

} // namespace

int wmain()
{
    const HMODULE kelpkit = ::LoadLibraryW(L"Kelpkit.dll");
    const auto start =
        reinterpret_cast<void (*)()>(reinterpret_cast<void*>(::GetProcAddress(kelpkit, kStartCrashReport)));
    if (start == nullptr)
        return 1;
    start();
    if (!::FreeLibrary(kelpkit))
        return 2;
    // Wine would read the symbols of every module for a dump, which takes seconds.
    ::SymSetOptions(SYMOPT_DEFERRED_LOADS);
    const ULONG_PTR arguments[] = {7, 8};
    ::RaiseException(0xE0001234, 0, 2, arguments);
    return 3;
}
