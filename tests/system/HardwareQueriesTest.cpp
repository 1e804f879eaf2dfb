#include <Kelpkit/SystemInfo.h>

#include "support/FailingCall.h"
#include "support/OwnProcess.h"

#include <gtest/gtest.h>

#include <intrin.h>

#include <cstdio>
#include <cstring>
#include <regex>
#include <string>

using namespace KELPKIT;

TEST(GetCPUId, IsWhatTheProcessorSays)
{
    int leaf0[4];
    int leaf1[4];
    int leaf3[4];
    __cpuid(leaf0, 0);
    __cpuid(leaf1, 1);
    __cpuid(leaf3, 3);
    char vendor[13] = {};
    const int words[] = {leaf0[1], leaf0[3], leaf0[2]};
    std::memcpy(vendor, words, sizeof words);
    wchar_t expected[64];
    std::swprintf(expected, std::size(expected), L"%hs-%08X-%08X-%08X%08X", vendor, leaf1[0], leaf1[3], leaf3[3],
                  leaf3[2]);
    EXPECT_EQ(GetCPUId(), expected);
}

TEST(GetCPUId, HasFourPartsTheLastOfSixteenDigits)
{
    EXPECT_TRUE(std::regex_match(GetCPUId(), std::wregex(L"[^-]{1,12}-[0-9A-F]{8}-[0-9A-F]{8}-[0-9A-F]{16}")))
        << testing::PrintToString(GetCPUId());
}

#if defined(__GNUC__)
// Where the compiler has no __try. What it has instead calls these functions.
TEST(GetCPUId, IsReadAlsoWhereFaultsCannotBeTaken)
{
    test::InOwnProcess([] {
        const test::FailingCall<decltype(::AddVectoredExceptionHandler)> handler("AddVectoredExceptionHandler", 0);
        const test::FailingCall<decltype(::RemoveVectoredExceptionHandler)> end("RemoveVectoredExceptionHandler", 0);
        const test::FailingCall<decltype(::TlsSetValue)> slot("TlsSetValue", FALSE);
        EXPECT_EQ(GetCPUId().size(), std::wstring(L"GenuineIntel-000306C3-BFEBFBFF-0000000000000000").size());
    });
}
#endif

TEST(GetCPUId, IsTheSameInEveryCall)
{
    EXPECT_EQ(GetCPUId(), GetCPUId());
}
