#include "support/HandleCount.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <vector>

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

TEST(HandleCount, CountsBehindClosedHandles)
{
    std::vector<HANDLE> handles(900);
    const std::size_t before = test::HandleCount();
    for (HANDLE& handle : handles)
        handle = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE last = handles.back();
    handles.pop_back();
    for (const HANDLE handle : handles)
        ::CloseHandle(handle);
    EXPECT_EQ(test::HandleCount(), before + 1);
    ::CloseHandle(last);
    EXPECT_EQ(test::HandleCount(), before);
}
