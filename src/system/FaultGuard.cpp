#include "system/FaultGuard.h"

#include "WindowsApi.h"

#if !defined(_MSC_VER)
// Returns once more where a fault was taken, which the compiler must know.
// NOLINTNEXTLINE(readability-redundant-declaration): that is what it adds
extern "C" __attribute__((returns_twice)) NTSYSAPI VOID NTAPI RtlCaptureContext(PCONTEXT context);
#endif

namespace KELPKIT
{
namespace
{

// Those that the processor raises, without the ones that debuggers and stacks grow by.
bool IsProcessorFault(DWORD code)
{
    switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_FLT_DENORMAL_OPERAND:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_STACK_CHECK:
    case EXCEPTION_FLT_UNDERFLOW:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_PRIV_INSTRUCTION:
        return true;
    default:
        return false;
    }
}

} // namespace

#if defined(_MSC_VER)

bool RunGuarded(void (*action)(void*), void* argument)
{
    __try {
        action(argument);
        return true;
    } __except (IsProcessorFault(GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

#else

// GCC has no __try. A vectored handler sees every exception of every thread; the guard that a thread is in, if any,
// stands in its slot. thread_local would allocate memory in the handler.
namespace
{

struct Slot {
    Slot() = default;
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;
    ~Slot() { ::TlsFree(index); }

    const DWORD index = ::TlsAlloc();
};

const Slot g_slot;

class Guard
{
public:
    Guard() = default;
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard()
    {
        ::TlsSetValue(g_slot.index, m_outer);
        ::RemoveVectoredExceptionHandler(m_handler);
    }

    // From here on, a fault of this thread leads back to where the place was captured.
    void Arm() { ::TlsSetValue(g_slot.index, this); }

    CONTEXT place = {};
    bool faulted = false;

private:
    static LONG CALLBACK TakeFault(EXCEPTION_POINTERS* exception)
    {
        if (!IsProcessorFault(exception->ExceptionRecord->ExceptionCode))
            return EXCEPTION_CONTINUE_SEARCH;
        const DWORD lastError = ::GetLastError(); // which TlsGetValue() sets
        auto* const guard = static_cast<Guard*>(::TlsGetValue(g_slot.index));
        ::SetLastError(lastError);
        if (guard == nullptr)
            return EXCEPTION_CONTINUE_SEARCH;
        guard->faulted = true;
        *exception->ContextRecord = guard->place;
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    void* m_outer = ::TlsGetValue(g_slot.index);
    void* m_handler = ::AddVectoredExceptionHandler(TRUE, &TakeFault);
};

} // namespace

bool RunGuarded(void (*action)(void*), void* argument)
{
    Guard guard;
    ::RtlCaptureContext(&guard.place);
    if (guard.faulted)
        return false;
    guard.Arm();
    action(argument);
    return true;
}

#endif

} // namespace KELPKIT
