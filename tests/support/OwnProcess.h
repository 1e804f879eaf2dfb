#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace test
{

// Runs the body of a test in a process of its own, for what a process does only once. Expectations in it count. A test
// has nothing else in its own body: that process runs through it, too.
template <class Body>
void InOwnProcess(const Body& body)
{
    // Not 0, with which Wine ends a process whose stack has no room left to raise the overflow.
    constexpr int kDone = 42;
    const auto runAndExit = [&body] {
        body();
        const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
        for (int i = 0; i < result.total_part_count(); ++i) {
            const testing::TestPartResult& part = result.GetTestPartResult(i);
            std::cerr << part.file_name() << ":" << part.line_number() << ": " << part.message() << std::endl;
        }
        std::exit(result.Failed() ? 1 : kDone);
    };
    EXPECT_EXIT(runAndExit(), testing::ExitedWithCode(kDone), "");
}

} // namespace test
