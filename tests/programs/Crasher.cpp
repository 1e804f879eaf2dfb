// Asks for crash dumps, then crashes:
//
//     Crasher.exe RECORDS WAY [OPTION ...]
//
// A test::CrashRecord of each exception goes to the file RECORDS, behind one that names the main thread. For the ways
// see kWays; the options are:
//
//     thread        in a second thread, the main thread waiting
//     two-threads   in two threads at once
//     twice         after asking for dumps twice
//     earlier       after asking when another filter was set already; if that is called, the exit code is 98
//     later         after setting that filter when dumps have been asked for
//     no-dump       without having asked
//     no-heap       where each use of the C runtime's heap ends the program with exit code 99

#include "support/Callers.h"
#include "support/CrashRecord.h"
#include "support/ImportPatch.h"

#include <Kelpkit/CrashReport.h>
#include <Kelpkit/Text.h>

#include <windows.h>

#include <dbghelp.h>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

#include <cstdint>
#include <cwchar>
#include <set>
#include <string>
#include <thread>

namespace
{

HANDLE g_records = INVALID_HANDLE_VALUE;
int* volatile g_nowhere = nullptr;
volatile int g_number = 0;
void (*volatile g_noFunction)() = nullptr;

void ReadFromNowhere()
{
    g_number = *static_cast<const volatile int*>(g_nowhere);
}

void WriteToNowhere()
{
    *static_cast<volatile int*>(g_nowhere) = 1;
}

void DivideByZero()
{
    g_number = 100 / g_number;
}

void RunNoInstruction()
{
#if defined(_MSC_VER)
    __ud2();
#else
    __asm__ volatile("ud2");
#endif
}

void RunPrivilegedInstruction()
{
#if defined(_MSC_VER)
    __halt();
#else
    __asm__ volatile("hlt");
#endif
}

void CallNoFunction()
{
    g_noFunction();
    ++g_number; // a call, not a jump
}

void RaiseOwnException()
{
    const ULONG_PTR arguments[] = {7, 8};
    ::RaiseException(0xE0001234, 0, 2, arguments);
}

void CrashInKelpkit()
{
    const std::string text = KELPKIT::CBase64::Encode(reinterpret_cast<const char*>(std::uintptr_t{16}), 3);
    g_number = static_cast<int>(text.size());
}

// Shows that the option no-heap does what it says.
void UseHeap()
{
    delete new std::string(1000, 'x');
}

struct Way {
    const wchar_t* name;
    void (*crash)();
};

constexpr Way kWays[] = {
    {L"read", &ReadFromNowhere},
    {L"write", &WriteToNowhere},
    {L"divide", &DivideByZero},
    {L"illegal", &RunNoInstruction},
    {L"privileged", &RunPrivilegedInstruction},
    {L"call", &CallNoFunction},
    {L"raise", &RaiseOwnException},
    {L"kelpkit", &CrashInKelpkit},
    {L"use-heap", &UseHeap},
};

void Record(const void* address, DWORD code)
{
    const test::CrashRecord record = {reinterpret_cast<std::uintptr_t>(address), code, ::GetCurrentThreadId()};
    DWORD written = 0;
    ::WriteFile(g_records, &record, sizeof record, &written, nullptr);
}

LONG WINAPI RecordException(EXCEPTION_POINTERS* exception)
{
    Record(exception->ExceptionRecord->ExceptionAddress, exception->ExceptionRecord->ExceptionCode);
    return EXCEPTION_CONTINUE_SEARCH;
}

LONG WINAPI OtherFilter(EXCEPTION_POINTERS*)
{
    ::TerminateProcess(::GetCurrentProcess(), 98);
    return EXCEPTION_CONTINUE_SEARCH;
}

// The system's dump writer may share the C runtime with this program, and needs memory.
void* WINAPI AllocateForDumpWriter(HANDLE heap, DWORD flags, SIZE_T size)
{
    if (test::IsCalledBy(::GetModuleHandleW(L"dbghelp.dll")))
        return ::HeapAlloc(heap, flags, size);
    ::TerminateProcess(::GetCurrentProcess(), 99);
    return nullptr;
}

void CrashWithoutHeap(void (*crash)())
{
#if defined(_MSC_VER)
    const wchar_t* const runtime = L"ucrtbase.dll";
#else
    const wchar_t* const runtime = L"msvcrt.dll";
#endif
    const test::ImportPatch allocation(runtime, "HeapAlloc", &AllocateForDumpWriter);
    crash();
}

void CrashInThreads(int count, void (*crash)())
{
    const HANDLE start = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread threads[2];
    for (int number = 0; number < count; ++number) {
        threads[number] = std::thread([start, crash] {
            ::WaitForSingleObject(start, INFINITE);
            crash();
        });
    }
    ::SetEvent(start);
    for (std::thread& thread : threads) {
        if (thread.joinable())
            thread.join();
    }
}

void AskForDumps(const std::set<std::wstring>& options)
{
    if (options.count(L"no-dump") != 0)
        return;
    if (options.count(L"earlier") != 0)
        ::SetUnhandledExceptionFilter(&OtherFilter);
    KELPKIT::StartCrashReport();
    if (options.count(L"twice") != 0)
        KELPKIT::StartCrashReport();
    if (options.count(L"later") != 0)
        ::SetUnhandledExceptionFilter(&OtherFilter);
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc < 3)
        return 1;
    g_records = ::CreateFileW(argv[1], GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    void (*crash)() = nullptr;
    for (const Way& way : kWays) {
        if (std::wcscmp(argv[2], way.name) == 0)
            crash = way.crash;
    }
    if (g_records == INVALID_HANDLE_VALUE || crash == nullptr)
        return 1;
    Record(nullptr, 0);
    ::AddVectoredExceptionHandler(1, &RecordException);
    // Wine would read the symbols of every module for a dump, which takes seconds.
    ::SymSetOptions(SYMOPT_DEFERRED_LOADS);
    const std::set<std::wstring> options(argv + 3, argv + argc);
    AskForDumps(options);
    if (options.count(L"two-threads") != 0)
        CrashInThreads(2, crash);
    else if (options.count(L"thread") != 0)
        CrashInThreads(1, crash);
    else if (options.count(L"no-heap") != 0)
        CrashWithoutHeap(crash);
    else
        crash();
    return 0;
}
