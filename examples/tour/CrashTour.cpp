#include "Tour.h"

#include <Kelpkit/CrashReport.h>
#include <Kelpkit/Files.h>
#include <Kelpkit/SystemInfo.h>

#include <windows.h>

#include <dbghelp.h>

#include <cwchar>
#include <iterator>
#include <stdexcept>

using namespace KELPKIT;

namespace
{

int* volatile g_nowhere = nullptr;

// What a C++ exception that nobody catches ends a process with.
#if defined(_MSC_VER)
constexpr unsigned long kUncaughtException = 0xE06D7363;
#else
constexpr unsigned long kUncaughtException = 0xE06B656C;
#endif

std::wstring Hex(unsigned long value)
{
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"0x%08lX", value);
    return text;
}

// Starts the tour anew, to crash in this way with this temporary folder; returns the exit code.
unsigned long CrashChild(const std::wstring& argument, const std::wstring& tempFolder)
{
    const std::wstring before = GetTempPathW();
    ::SetEnvironmentVariableW(L"TMP", tempFolder.c_str());
    std::wstring commandLine = L"\"" + GetSysRoot() + L"tour.exe\" " + argument;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    const BOOL started =
        ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
    ::SetEnvironmentVariableW(L"TMP", before.c_str());
    if (!started)
        return 0;
    ::WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process.hProcess, &exitCode);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return exitCode;
}

// The name of the first dump in a folder.
std::wstring FindDump(const std::wstring& folder)
{
    WIN32_FIND_DATAW entry;
    const HANDLE find = ::FindFirstFileW((folder + L"\\*.dmp").c_str(), &entry);
    if (find == INVALID_HANDLE_VALUE)
        return L"";
    ::FindClose(find);
    return entry.cFileName;
}

// The exception that a dump tells of; zeros where it tells of none.
MINIDUMP_EXCEPTION_STREAM ReadException(std::string dump)
{
    MINIDUMP_EXCEPTION_STREAM exception = {};
    void* stream = nullptr;
    ULONG size = 0;
    if (!dump.empty() && ::MiniDumpReadDumpStream(dump.data(), ExceptionStream, nullptr, &stream, &size) &&
        size >= sizeof exception)
        exception = *static_cast<const MINIDUMP_EXCEPTION_STREAM*>(stream);
    return exception;
}

void StartReport()
{
    StartCrashReport();
    // Wine would read the symbols of every module for a dump, which takes seconds.
    ::SymSetOptions(SYMOPT_DEFERRED_LOADS);
}

// Has a child crash in a way that gives an exception of this code, and looks at what it leaves.
void ShowDump(Tour& tour, const std::wstring& way, const std::wstring& argument, unsigned long code)
{
    const std::wstring folder = tour.Folder() + L"转储 dumps\\" + argument.substr(2);
    std::wstring name;
    DeleteDirectory(folder); // dumps of an earlier tour
    MakeDirectory(folder);

    tour.Step(way, [&] {
        const unsigned long exitCode = CrashChild(argument, folder);
        name = FindDump(folder);
        return Tour::Result{L"it ended with " + Hex(exitCode), exitCode == code};
    });
    tour.Step(L"its dump", [&] {
        return Tour::Result{name, name.size() == 27 && name.substr(14) == L"_tour.exe.dmp"};
    });
    tour.Step(L"what the dump says", [&] {
        const MINIDUMP_EXCEPTION_STREAM exception = ReadException(Contents(folder + L"\\" + name));
        const unsigned long found = exception.ExceptionRecord.ExceptionCode;
        return Tour::Result{L"exception " + Hex(found) + L" in thread " + std::to_wstring(exception.ThreadId),
                            found == code && exception.ThreadId != 0};
    });
}

} // namespace

void Crash()
{
    StartReport();
    *static_cast<volatile int*>(g_nowhere) = 1;
}

void Throw()
{
    StartReport();
    throw std::runtime_error("nobody catches this");
}

void ShowCrash(Tour& tour)
{
    tour.Section(L"A program crashes, on purpose");
    ShowDump(tour, L"a child writes to address 0", kCrashArgument, EXCEPTION_ACCESS_VIOLATION);
    ShowDump(tour, L"a child throws, nobody catches", kThrowArgument, kUncaughtException);
}
