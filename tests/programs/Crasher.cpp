// Asks for crash dumps, then crashes:
//
//     Crasher.exe RECORDS WAY [OPTION ...]
//
// A test::CrashRecord of each exception goes to the file RECORDS, behind one that names the main thread. For the ways
// see kWays; the options are:
//
//     thread        in a second thread, the main thread waiting
//     system-thread the same in a thread of CreateThread
//     crt-thread    the same in a thread of _beginthreadex
//     two-threads   in two threads at once
//     twice         after asking for dumps twice
//     earlier       after asking when another filter was set already; if that is called, the exit code is 98
//     later         after setting that filter when dumps have been asked for
//     no-dump       without having asked
//     no-heap       after ForbidHeap()
//     handler       after setting a terminate handler, then asking; if that is called, the exit code is 97 where the
//                   current exception is the one of the way "throw", else 96
//     later-handler after asking, then setting that handler
//     returning     after setting a terminate handler that returns, then asking
//     chained       after asking, then setting a terminate handler that calls the one before it, then asking again
//     stack-kept    after keeping 128 KiB of the thread's stack for the handling of its overflow
//     abort-handler after setting a handler of SIGABRT, then asking; if that is called, the exit code is 95
//     raising       after setting handlers of the C runtime that raise an exception of code 0xE0000001, then asking

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

#include <process.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <exception>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

// Not in the unnamed namespace, where the compiler knows every class and calls Plate's function.
namespace drawing
{

class Part
{
public:
    Part();
    virtual ~Part() = default;
    virtual void Draw() = 0;
};

void Show(Part& part)
{
    part.Draw();
}

void (*volatile g_show)(Part&) = &Show;

Part::Part()
{
    g_show(*this);
}

class Plate : public Part
{
public:
    void Draw() override {}
};

} // namespace drawing

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

void Throw()
{
    throw std::runtime_error("plate 7");
}

// The system's dump writer may share the C runtime with this program, and needs memory.
void* WINAPI AllocateForDumpWriter(HANDLE heap, DWORD flags, SIZE_T size)
{
    if (test::IsCalledBy(::GetModuleHandleW(L"dbghelp.dll")))
        return ::HeapAlloc(heap, flags, size);
    ::TerminateProcess(::GetCurrentProcess(), 99);
    return nullptr;
}

std::optional<test::ImportPatch> g_noHeap;

// From now on each use of the C runtime's heap ends the program with exit code 99.
void ForbidHeap()
{
#if defined(_MSC_VER)
    const wchar_t* const runtime = L"ucrtbase.dll";
#else
    const wchar_t* const runtime = L"msvcrt.dll";
#endif
    g_noHeap.emplace(runtime, "HeapAlloc", &AllocateForDumpWriter);
}

void ThrowOn()
{
    try {
        Throw();
    } catch (...) {
        throw;
    }
}

// Throwing takes memory, throwing on does not.
void ThrowOnWithoutHeap()
{
    try {
        Throw();
    } catch (...) {
        ForbidHeap();
        throw;
    }
}

void (*volatile g_throw)() = &Throw;

void ThrowWhereNoneMayLeave() noexcept
{
    g_throw();
}

void Terminate()
{
    std::terminate();
}

void Abort()
{
    std::abort();
}

void CallPureFunction()
{
    const drawing::Plate plate;
}

void PassInvalidParameter()
{
    std::FILE* volatile noFile = nullptr;
    std::fclose(noFile);
}

int UseStack(volatile char* caller)
{
    volatile char page[4096];
    page[0] = caller[0];
    return page[0] == 0 ? UseStack(page) + page[0] : 0;
}

void OverflowStack()
{
    volatile char start = 0;
    g_number = UseStack(&start);
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
    {L"throw", &Throw},
    {L"throw-on", &ThrowOn},
    {L"throw-on-without-heap", &ThrowOnWithoutHeap},
    {L"noexcept", &ThrowWhereNoneMayLeave},
    {L"terminate", &Terminate},
    {L"abort", &Abort},
    {L"pure", &CallPureFunction},
    {L"parameter", &PassInvalidParameter},
    {L"stack", &OverflowStack},
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

[[noreturn]] void OwnTerminateHandler()
{
    UINT exitCode = 96;
    try {
        if (std::current_exception() != nullptr)
            throw;
    } catch (const std::runtime_error& exception) {
        if (exception.what() == std::string("plate 7"))
            exitCode = 97;
    }
    ::TerminateProcess(::GetCurrentProcess(), exitCode);
    std::abort();
}

std::terminate_handler g_handlerBefore = nullptr;

void ChainedTerminateHandler()
{
    g_handlerBefore();
}

[[noreturn]] void RaiseFromRuntime()
{
    ::RaiseException(0xE0000001, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    std::abort();
}

// What docs/crash.md gives for the ends of a process without an exception.
void RaiseWhereTheRuntimeEnds()
{
    std::signal(SIGABRT, [](int) { RaiseFromRuntime(); });
    ::_set_invalid_parameter_handler(
        [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) { RaiseFromRuntime(); });
#if defined(_MSC_VER)
    ::_set_purecall_handler([] { RaiseFromRuntime(); });
#endif
}

void CrashInSystemThread(void (*crash)())
{
    static void (*s_crash)() = nullptr;
    s_crash = crash;
    const HANDLE thread = ::CreateThread(
        nullptr, 0,
        [](void*) -> DWORD {
            s_crash();
            return 0;
        },
        nullptr, 0, nullptr);
    ::WaitForSingleObject(thread, INFINITE);
}

void CrashInRuntimesThread(void (*crash)())
{
    static void (*s_crash)() = nullptr;
    s_crash = crash;
    const std::uintptr_t thread = ::_beginthreadex(
        nullptr, 0,
        [](void*) -> unsigned {
            s_crash();
            return 0;
        },
        nullptr, 0, nullptr);
    ::WaitForSingleObject(reinterpret_cast<HANDLE>(thread), INFINITE);
}

void CrashWithoutHeap(void (*crash)())
{
    ForbidHeap();
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
    if (options.count(L"handler") != 0)
        std::set_terminate(&OwnTerminateHandler);
    if (options.count(L"returning") != 0)
        std::set_terminate([] {});
    if (options.count(L"abort-handler") != 0)
        std::signal(SIGABRT, [](int) { ::TerminateProcess(::GetCurrentProcess(), 95); });
    KELPKIT::StartCrashReport();
    if (options.count(L"chained") != 0)
        g_handlerBefore = std::set_terminate(&ChainedTerminateHandler);
    if (options.count(L"later-handler") != 0)
        std::set_terminate(&OwnTerminateHandler);
    if (options.count(L"twice") != 0 || options.count(L"chained") != 0)
        KELPKIT::StartCrashReport();
    if (options.count(L"later") != 0)
        ::SetUnhandledExceptionFilter(&OtherFilter);
}

void Crash(const std::set<std::wstring>& options, void (*crash)())
{
    if (options.count(L"two-threads") != 0)
        CrashInThreads(2, crash);
    else if (options.count(L"thread") != 0)
        CrashInThreads(1, crash);
    else if (options.count(L"system-thread") != 0)
        CrashInSystemThread(crash);
    else if (options.count(L"crt-thread") != 0)
        CrashInRuntimesThread(crash);
    else if (options.count(L"no-heap") != 0)
        CrashWithoutHeap(crash);
    else
        crash();
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
    if (options.count(L"raising") != 0)
        RaiseWhereTheRuntimeEnds();
    AskForDumps(options);
    ULONG keptStack = 128 * 1024;
    if (options.count(L"stack-kept") != 0)
        ::SetThreadStackGuarantee(&keptStack);
    Crash(options, crash);
    return 0;
}
