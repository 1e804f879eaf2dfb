#include "support/RepeatingHeap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

using test::RepeatingHeap;

TEST(RepeatingHeap, HoldsTextsThatRepeatThemselves)
{
    constexpr std::size_t kSize = 300 << 20;
    const RepeatingHeap heap;
    const std::string text(kSize, 'x');
    EXPECT_EQ(static_cast<std::size_t>(std::count(text.begin(), text.end(), 'x')), kSize);
    EXPECT_EQ(text.c_str()[kSize], '\0');
}

TEST(RepeatingHeap, RepeatsItsMemoryBetweenTheFirstAndTheLastPart)
{
    constexpr std::size_t kLap = 12 << 20;
    const RepeatingHeap heap;
    std::string text(30 * kLap - 1, 'x');
    text[kLap] = 'y';
    EXPECT_EQ(text[0], 'x');
    EXPECT_EQ(text[28 * kLap], 'y');
    EXPECT_EQ(text[29 * kLap], 'x');
}
