#include "Tour.h"

#include <Kelpkit/CrashReport.h>
#include <Kelpkit/Files.h>
#include <Kelpkit/SystemInfo.h>

#include <windows.h>

#include <dbghelp.h>

#include <cwchar>
#include <iterator>

using namespace KELPKIT;

namespace
{

int* volatile g_nowhere = nullptr;

std::wstring Hex(unsigned long value)
{
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"0x%08lX", value);
    return text;
}

// Starts the tour anew, to crash with this temporary folder; returns the exit code.
unsigned long CrashChild(const std::wstring& tempFolder)
{
    const std::wstring before = GetTempPathW();
    ::SetEnvironmentVariableW(L"TMP", tempFolder.c_str());
    std::wstring commandLine = L"\"" + GetSysRoot() + L"tour.exe\" " + kCrashArgument;
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

} // namespace

void Crash()
{
    StartCrashReport();
    // Wine would read the symbols of every module for a dump, which takes seconds.
    ::SymSetOptions(SYMOPT_DEFERRED_LOADS);
    *static_cast<volatile int*>(g_nowhere) = 1;
}

void ShowCrash(Tour& tour)
{
    const std::wstring folder = tour.Folder() + L"转储 dumps";
    std::wstring name;
    DeleteDirectory(folder); // dumps of an earlier tour
    MakeDirectory(folder);

    tour.Section(L"A program crashes, on purpose");
    tour.Step(L"StartCrashReport in a child", [&] {
        const unsigned long exitCode = CrashChild(folder);
        name = FindDump(folder);
        return Tour::Result{L"it ended with " + Hex(exitCode), exitCode == EXCEPTION_ACCESS_VIOLATION};
    });
    tour.Step(L"its dump", [&] {
        return Tour::Result{name, name.size() == 27 && name.substr(14) == L"_tour.exe.dmp"};
    });
    tour.Step(L"what the dump says", [&] {
        const MINIDUMP_EXCEPTION_STREAM exception = ReadException(Contents(folder + L"\\" + name));
        const unsigned long code = exception.ExceptionRecord.ExceptionCode;
        return Tour::Result{L"exception " + Hex(code) + L" in thread " + std::to_wstring(exception.ThreadId),
                            code == EXCEPTION_ACCESS_VIOLATION && exception.ThreadId != 0};
    });
}
