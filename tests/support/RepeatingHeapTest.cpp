#include "support/RepeatingHeap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
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
    const std::unique_ptr<char[]> block(new char[30 * kLap]);
    std::fill_n(block.get(), 30 * kLap, 'x');
    block[kLap] = 'y';
    EXPECT_EQ(block[0], 'x');
    EXPECT_EQ(block[28 * kLap], 'y');
    EXPECT_EQ(block[29 * kLap], 'x');
}
