#include "system/FaultGuard.h"

#include "support/LastError.h"
#include "support/Threads.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <intrin.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <numeric>
#include <stdexcept>
#include <vector>

using KELPKIT::RunGuarded;

namespace
{

// NOLINTBEGIN(clang-analyzer-core.*): faults are what is wanted
void ReadNowhere(void*)
{
    volatile int* volatile nowhere = nullptr;
    static_cast<void>(*nowhere);
}

void JumpNowhere(void*)
{
    void (*volatile nowhere)() = nullptr;
    nowhere();
}

void DivideByZero(void*)
{
    volatile int zero = 0;
    volatile int value = 1 % zero;
    static_cast<void>(value);
}
// NOLINTEND(clang-analyzer-core.*)

#if defined(_MSC_VER)
void ExecuteUnknown(void*)
{
    __ud2();
}

void ExecutePrivileged(void*)
{
    __halt();
}
#else
void ExecuteUnknown(void*)
{
    asm volatile("ud2");
}

void ExecutePrivileged(void*)
{
    asm volatile("hlt");
}
#endif

void Count(void* calls)
{
    auto* const count = static_cast<volatile int*>(calls);
    *count = *count + 1;
}

// A page that nobody may touch, and a handler that lets who touches it go on, as debuggers and garbage collectors do.
// It comes after all others.
class GuardedPage
{
public:
    GuardedPage()
    {
        s_page = static_cast<char*>(::VirtualAlloc(nullptr, 4096, MEM_COMMIT | MEM_RESERVE, PAGE_NOACCESS));
        if (s_page == nullptr)
            throw std::runtime_error("no memory can be guarded: " + test::LastErrorText());
        s_faults = 0;
        m_handler = ::AddVectoredExceptionHandler(FALSE, &LetGoOn);
    }
    GuardedPage(const GuardedPage&) = delete;
    GuardedPage& operator=(const GuardedPage&) = delete;
    ~GuardedPage()
    {
        ::RemoveVectoredExceptionHandler(m_handler);
        ::VirtualFree(s_page, 0, MEM_RELEASE);
    }

    // The faults that came as far as the handler.
    static int Faults() { return s_faults; }
    static void Touch(void*) { *const_cast<volatile char*>(s_page) = 'x'; }

private:
    static LONG CALLBACK LetGoOn(EXCEPTION_POINTERS* exception)
    {
        DWORD before = 0;
        if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION ||
            !::VirtualProtect(s_page, 4096, PAGE_READWRITE, &before) || before != PAGE_NOACCESS)
            return EXCEPTION_CONTINUE_SEARCH;
        ++s_faults;
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline char* s_page;
    static inline std::atomic<int> s_faults;

    void* m_handler;
};

// The last that is asked about exceptions of a thread, while it lives: counts those that come so far, and lets who
// raised them go on.
class LastFilter
{
public:
    LastFilter() : m_before(::SetUnhandledExceptionFilter(&LetGoOn)) { s_seen.clear(); }
    LastFilter(const LastFilter&) = delete;
    LastFilter& operator=(const LastFilter&) = delete;
    ~LastFilter() { ::SetUnhandledExceptionFilter(m_before); }

    // The codes of the exceptions.
    static const std::vector<DWORD>& Seen() { return s_seen; }

private:
    static LONG CALLBACK LetGoOn(EXCEPTION_POINTERS* exception)
    {
        s_seen.push_back(exception->ExceptionRecord->ExceptionCode);
        return EXCEPTION_CONTINUE_EXECUTION;
    }

    static inline std::vector<DWORD> s_seen;

    LPTOP_LEVEL_EXCEPTION_FILTER m_before;
};

struct Raising {
    DWORD code;
    bool finished;
};

// Raises an exception in a guard, in a thread with nobody around who would take it.
bool FinishesRaising(DWORD code)
{
    Raising raising = {code, false};
    const HANDLE thread = ::CreateThread(
        nullptr, 0,
        [](void* argument) -> DWORD {
            auto* const given = static_cast<Raising*>(argument);
            const auto raise = [](void* number) { ::RaiseException(*static_cast<DWORD*>(number), 0, 0, nullptr); };
            given->finished = RunGuarded(raise, &given->code);
            return 0;
        },
        &raising, 0, nullptr);
    EXPECT_EQ(::WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    ::CloseHandle(thread);
    return raising.finished;
}

} // namespace

TEST(FaultGuard, RunsTheAction)
{
    int calls = 0;
    EXPECT_TRUE(RunGuarded(&Count, &calls));
    EXPECT_EQ(calls, 1);
}

TEST(FaultGuard, TakesWhatTheProcessorRaises)
{
    EXPECT_FALSE(RunGuarded(&ReadNowhere, nullptr));
    EXPECT_FALSE(RunGuarded(&JumpNowhere, nullptr));
    EXPECT_FALSE(RunGuarded(&DivideByZero, nullptr));
    EXPECT_FALSE(RunGuarded(&ExecuteUnknown, nullptr));
    EXPECT_FALSE(RunGuarded(&ExecutePrivileged, nullptr));
}

TEST(FaultGuard, TakesEachKindOfFault)
{
    const LastFilter filter;
    for (const DWORD code :
         {EXCEPTION_ACCESS_VIOLATION, EXCEPTION_ARRAY_BOUNDS_EXCEEDED, EXCEPTION_DATATYPE_MISALIGNMENT,
          EXCEPTION_FLT_DENORMAL_OPERAND, EXCEPTION_FLT_DIVIDE_BY_ZERO, EXCEPTION_FLT_INEXACT_RESULT,
          EXCEPTION_FLT_INVALID_OPERATION, EXCEPTION_FLT_OVERFLOW, EXCEPTION_FLT_STACK_CHECK, EXCEPTION_FLT_UNDERFLOW,
          EXCEPTION_ILLEGAL_INSTRUCTION, EXCEPTION_IN_PAGE_ERROR, EXCEPTION_INT_DIVIDE_BY_ZERO, EXCEPTION_INT_OVERFLOW,
          EXCEPTION_PRIV_INSTRUCTION})
        EXPECT_FALSE(FinishesRaising(code)) << std::hex << code;
    EXPECT_TRUE(LastFilter::Seen().empty());
}

TEST(FaultGuard, PassesOnEachOtherKindOfException)
{
    constexpr DWORD kOfAnApplication = 0xE0000001;
    constexpr DWORD kHeapCorruption = 0xC0000374;
    const LastFilter filter;
    std::vector<DWORD> raised;
    for (const DWORD code :
         {EXCEPTION_BREAKPOINT, EXCEPTION_SINGLE_STEP, EXCEPTION_GUARD_PAGE, EXCEPTION_STACK_OVERFLOW,
          EXCEPTION_INVALID_DISPOSITION, EXCEPTION_NONCONTINUABLE_EXCEPTION, EXCEPTION_INVALID_HANDLE,
          DWORD{DBG_CONTROL_C}, DWORD{STATUS_NO_MEMORY}, kHeapCorruption, kOfAnApplication}) {
        raised.push_back(code);
        EXPECT_TRUE(FinishesRaising(code)) << std::hex << code;
    }
    EXPECT_EQ(LastFilter::Seen(), raised);
}

TEST(FaultGuard, GivesUpTheActionWhereItFaults)
{
    int steps = 0;
    EXPECT_FALSE(RunGuarded(
        [](void* count) {
            Count(count);
            ReadNowhere(nullptr);
            Count(count);
        },
        &steps));
    EXPECT_EQ(steps, 1);
}

TEST(FaultGuard, TakesOneFaultAfterAnother)
{
    for (int round = 0; round < 1000; ++round)
        ASSERT_FALSE(RunGuarded(&ReadNowhere, nullptr)) << round;
}

TEST(FaultGuard, LeavesTheCallersVariablesAsTheyWere)
{
    // More than there are registers, of both kinds.
    long long numbers[24];
    double halves[24];
    std::iota(std::begin(numbers), std::end(numbers), 1000);
    std::iota(std::begin(halves), std::end(halves), 0.5);
    long long sum = 0;
    double halfSum = 0;
    for (std::size_t i = 0; i < 24; ++i) {
        sum += numbers[i];
        halfSum += halves[i];
        EXPECT_FALSE(RunGuarded(&ReadNowhere, nullptr));
    }
    // 0 + 1 + ... + 23 is 276.
    EXPECT_EQ(sum, 24 * 1000 + 276);
    EXPECT_EQ(halfSum, 24 * 0.5 + 276);
}

TEST(FaultGuard, TakesAFaultDeepInTheAction)
{
    struct Deep {
        static int Fault(int depth) // NOLINT(misc-no-recursion): what is tested
        {
            volatile char room[1000] = {};
            if (depth == 0)
                ReadNowhere(nullptr);
            else
                Fault(depth - 1);
            return room[depth];
        }
    };
    EXPECT_FALSE(RunGuarded([](void*) { Deep::Fault(500); }, nullptr));
}

TEST(FaultGuard, TakesAFaultInTheInnermostGuard)
{
    struct Results {
        bool inner;
        bool innerAgain;
        int steps;
    };
    Results results = {true, true, 0};
    const auto nest = [](void* argument) {
        auto* const seen = static_cast<Results*>(argument);
        seen->inner = RunGuarded(&ReadNowhere, nullptr);
        Count(&seen->steps);
        seen->innerAgain = RunGuarded(&Count, &seen->steps);
        ReadNowhere(nullptr);
        Count(&seen->steps);
    };
    EXPECT_FALSE(RunGuarded(nest, &results));
    EXPECT_FALSE(results.inner);
    EXPECT_TRUE(results.innerAgain);
    EXPECT_EQ(results.steps, 2);
}

TEST(FaultGuard, LeavesFaultsOutsideToOthers)
{
    const GuardedPage page;
    int calls = 0;
    EXPECT_TRUE(RunGuarded(&Count, &calls));
    EXPECT_FALSE(RunGuarded(&ReadNowhere, nullptr));
    GuardedPage::Touch(nullptr);
    EXPECT_EQ(GuardedPage::Faults(), 1);
}

TEST(FaultGuard, LeavesFaultsOfOtherThreadsToOthers)
{
    const GuardedPage page;
    const auto touchElsewhere = [](void*) { test::InThreads(1, [](std::size_t) { GuardedPage::Touch(nullptr); }); };
    EXPECT_TRUE(RunGuarded(touchElsewhere, nullptr));
    EXPECT_EQ(GuardedPage::Faults(), 1);
}

TEST(FaultGuard, TakesFaultsOfEightThreadsAtOnce)
{
    std::atomic<int> taken = 0;
    test::InThreads(8, [&taken](std::size_t) {
        for (int round = 0; round < 100; ++round) {
            int calls = 0;
            if (!RunGuarded(&ReadNowhere, nullptr) && RunGuarded(&Count, &calls) && calls == 1)
                ++taken;
        }
    });
    EXPECT_EQ(taken, 800);
}

TEST(FaultGuard, LetsExceptionsThrough)
{
    const GuardedPage page;
    const auto raise = [](void*) { throw std::bad_alloc(); };
    EXPECT_THROW(RunGuarded(raise, nullptr), std::bad_alloc);
    GuardedPage::Touch(nullptr);
    EXPECT_EQ(GuardedPage::Faults(), 1) << "the guard is gone with the exception";
}

TEST(FaultGuard, LeavesExceptionsInsideTheActionAlone)
{
    int caught = 0;
    const auto raise = [](void* count) {
        try {
            throw std::runtime_error("inside");
        } catch (const std::runtime_error&) {
            Count(count);
        }
    };
    EXPECT_TRUE(RunGuarded(raise, &caught));
    EXPECT_EQ(caught, 1);
}

TEST(FaultGuard, LeavesNoticesToDebuggersAlone)
{
    EXPECT_TRUE(RunGuarded([](void*) { ::OutputDebugStringW(L"text"); }, nullptr));
}

TEST(FaultGuard, LeavesTheLastErrorToTheHandlersThatFollow)
{
    const GuardedPage page;
    static DWORD seen = 0;
    // First of all for now; the guard's own comes before it.
    void* const handler = ::AddVectoredExceptionHandler(TRUE, [](EXCEPTION_POINTERS*) -> LONG {
        seen = ::GetLastError();
        return EXCEPTION_CONTINUE_SEARCH;
    });
    const auto raiseElsewhere = [](void*) {
        test::InThreads(1, [](std::size_t) {
            ::SetLastError(4711);
            GuardedPage::Touch(nullptr);
        });
    };
    EXPECT_TRUE(RunGuarded(raiseElsewhere, nullptr));
    ::RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ(seen, 4711U);
}
