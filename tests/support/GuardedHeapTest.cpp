#include "support/GuardedHeap.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

using test::GuardedHeap;

namespace
{

constexpr std::size_t kPage = 4096;

// The compiler must not know what is read and written.
volatile std::ptrdiff_t g_place = 0;

} // namespace

TEST(GuardedHeap, EndsBlocksAtAPage)
{
    const GuardedHeap heap;
    for (const std::size_t size : {1U, 33U, 1000U, 5000U}) {
        const auto block = std::make_unique<char[]>(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get() + size) % kPage, 0U);
        std::memset(block.get(), 'x', size);
    }
    EXPECT_EQ(GuardedHeap::Damaged(), 0U);
}

TEST(GuardedHeap, EndsBlocksSoFarBeforeAPage)
{
    const GuardedHeap heap(5);
    const auto block = std::make_unique<char[]>(33);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get() + 33 + 5) % kPage, 0U);
}

TEST(GuardedHeap, ServesWhatIsTooLargeAsEver)
{
    const GuardedHeap heap;
    const std::string text(100000, 'x');
    EXPECT_EQ(text.back(), 'x');
}

TEST(GuardedHeap, EndsTheProgramThatReadsTooFar)
{
    const GuardedHeap heap;
    const auto block = std::make_unique<char[]>(33);
    g_place = 33;
    EXPECT_DEATH(g_place = block.get()[g_place] == 'x' ? 1 : 0, "");
}

TEST(GuardedHeap, CountsBlocksThatWereWrittenAround)
{
    for (const std::ptrdiff_t place : {33, 37, -1}) {
        const std::size_t before = GuardedHeap::Damaged();
        {
            const GuardedHeap heap(5);
            const auto block = std::make_unique<char[]>(33);
            g_place = place;
            static_cast<volatile char*>(block.get())[g_place] = 'x';
        }
        EXPECT_EQ(GuardedHeap::Damaged(), before + 1) << place;
    }
}

TEST(GuardedHeap, TakesBackBlocksAfterItsEnd)
{
    std::unique_ptr<std::string> text;
    {
        const GuardedHeap heap;
        text = std::make_unique<std::string>(100, 'x');
    }
    *text += std::string(1000, 'y');
    EXPECT_EQ(text->size(), 1100U);
}
