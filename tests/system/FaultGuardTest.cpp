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
