#include "support/OwnProcess.h"

#include "support/EnvironmentVariable.h"
#include "support/Process.h"

#include <gtest/gtest.h>

using test::InOwnProcess;

namespace
{

int g_runs = 0;

} // namespace

TEST(InOwnProcess, RunsTheBodyElsewhere)
{
    InOwnProcess([] {
        ++g_runs;
        EXPECT_EQ(g_runs, 1);
    });
    InOwnProcess([] {
        ++g_runs;
        EXPECT_EQ(g_runs, 1);
    });
    EXPECT_EQ(g_runs, 0);
}

// For the test below: fails, as it should.
TEST(InOwnProcess, DISABLED_WithAFailedExpectation)
{
    InOwnProcess([] { EXPECT_EQ(g_runs, 1); });
}

TEST(InOwnProcess, FailsWithAFailedExpectation)
{
    // The report of this run must not be the other's.
    const test::EnvironmentVariable noReport(L"GTEST_OUTPUT", L"");
    EXPECT_EQ(test::Run(L"\"" + test::BesideThisProgram(L"SupportTests.exe") +
                        L"\" --gtest_also_run_disabled_tests --gtest_filter=InOwnProcess.DISABLED_*"),
              1U);
}
