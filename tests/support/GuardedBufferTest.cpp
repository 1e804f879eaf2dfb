#include "support/GuardedBuffer.h"

#include <gtest/gtest.h>

#include <cstring>

using test::GuardedBuffer;

TEST(GuardedBuffer, HoldsWhatItIsMadeFor)
{
    for (const std::size_t size : {1U, 4096U, 4097U, 100000U}) {
        const GuardedBuffer buffer(size);
        std::memset(buffer.Last(size), 'x', size);
        EXPECT_EQ(*buffer.Last(1), 'x');
    }
}

TEST(GuardedBuffer, NobodyMayTouchWhatIsBehindIt)
{
    const GuardedBuffer buffer(10);
    MEMORY_BASIC_INFORMATION behind;
    ASSERT_NE(::VirtualQuery(buffer.Last(0), &behind, sizeof behind), 0U) << test::LastErrorText();
    EXPECT_EQ(behind.Protect, static_cast<DWORD>(PAGE_NOACCESS));
}
