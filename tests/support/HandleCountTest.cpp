#include "support/HandleCount.h"

#include <gtest/gtest.h>

#include <windows.h>

TEST(HandleCount, CountsEachHandleOfThisProcess)
{
    const std::size_t before = test::HandleCount();
    EXPECT_GT(before, 0U);
    const HANDLE one = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE two = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_EQ(test::HandleCount(), before + 2);
    ::CloseHandle(one);
    EXPECT_EQ(test::HandleCount(), before + 1);
    ::CloseHandle(two);
    EXPECT_EQ(test::HandleCount(), before);
}
