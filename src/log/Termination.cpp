#include "log/Termination.h"

#if defined(__MINGW32__)

#include <atomic>
#include <csignal>
#include <exception>

// By its address in the C++ runtime's DLL: the header's declaration gives that of a jump to it.
namespace __gnu_cxx
{
__declspec(dllimport) void __verbose_terminate_handler();
}

namespace KELPKIT::crash
{
namespace
{

constexpr DWORD kTermination = 0xE06B656C; // "kel", as an error of an application

LPTOP_LEVEL_EXCEPTION_FILTER g_filter = nullptr;
std::atomic<std::terminate_handler> g_handler = nullptr; // the application's; null for the runtime's own
std::atomic<void (*)(int)> g_abortHandler = SIG_DFL;

// The last thread that called OnTerminate.
std::atomic<DWORD> g_terminating = 0;

bool IsFilterInstalled()
{
    const LPTOP_LEVEL_EXCEPTION_FILTER installed = ::SetUnhandledExceptionFilter(g_filter);
    if (installed != g_filter)
        ::SetUnhandledExceptionFilter(installed);
    return installed == g_filter;
}

// Reports as for an exception that is raised here, but returns: an exception would end the process.
void Report()
{
    CONTEXT context;
    ::RtlCaptureContext(&context);
    EXCEPTION_RECORD exception = {};
    exception.ExceptionCode = kTermination;
    exception.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    exception.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    EXCEPTION_POINTERS pointers = {&exception, &context};
    g_filter(&pointers);
}

// Asks nothing about the C++ exception: in a thread that never threw, even that takes memory from the heap.
void OnTerminate()
{
    // The application's handler may call the one that it replaced, which is this one.
    const DWORD thread = ::GetCurrentThreadId();
    if (g_terminating.exchange(thread) == thread)
        return;
    const std::terminate_handler handler = g_handler;
    if (handler == nullptr) {
        ::RaiseException(kTermination, EXCEPTION_NONCONTINUABLE, 0, nullptr);
        return;
    }
    if (IsFilterInstalled())
        Report();
    handler();
}

// libgcc ends in abort, not in std::terminate, where nobody catches what `throw;` has thrown on.
void OnAbort(int signal)
{
    if (std::uncaught_exceptions() > 0)
        OnTerminate();
    void (*const handler)(int) = g_abortHandler;
    if (handler != SIG_DFL && handler != SIG_IGN)
        handler(signal);
}

void TakeTerminateHandler()
{
    const std::terminate_handler before = std::get_terminate();
    if (before == &OnTerminate)
        return;
    g_handler = before == &__gnu_cxx::__verbose_terminate_handler ? nullptr : before;
    std::set_terminate(&OnTerminate);
}

void TakeAbortHandler()
{
    void (*const before)(int) = std::signal(SIGABRT, &OnAbort);
    if (before != &OnAbort)
        g_abortHandler = before;
}

} // namespace

void ReportThrough(LPTOP_LEVEL_EXCEPTION_FILTER filter)
{
    g_filter = filter;
    ::SetUnhandledExceptionFilter(filter);
    TakeTerminateHandler();
    TakeAbortHandler();
}

} // namespace KELPKIT::crash

#else

void KELPKIT::crash::ReportThrough(LPTOP_LEVEL_EXCEPTION_FILTER filter)
{
    ::SetUnhandledExceptionFilter(filter);
}

#endif
