#include "support/PageTouches.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

using test::PageTouches;

namespace
{

constexpr std::size_t kPages = 100;
constexpr std::size_t kSize = kPages * 4096;

} // namespace

TEST(PageTouches, CountsEachPageOnceForEachPass)
{
    const PageTouches touches;
    const std::unique_ptr<char[]> block(new char[kSize]);
    std::fill_n(block.get(), kSize, 'x');
    EXPECT_NEAR(static_cast<double>(PageTouches::Count()), kPages, 2);
    EXPECT_EQ(std::count(block.get(), block.get() + kSize, 'x'), static_cast<std::ptrdiff_t>(kSize));
    EXPECT_NEAR(static_cast<double>(PageTouches::Count()), 2.0 * kPages, 4);
}

TEST(PageTouches, CountsNothingForWhatLiesCloseTogether)
{
    const PageTouches touches;
    const std::string text(kSize, 'x');
    const std::size_t before = PageTouches::Count();
    EXPECT_EQ(std::count(text.begin(), text.begin() + 3 * 4096, 'x'), 3 * 4096);
    const std::size_t once = PageTouches::Count() - before;
    for (int pass = 0; pass < 100; ++pass)
        EXPECT_EQ(std::count(text.begin(), text.begin() + 3 * 4096, 'x'), 3 * 4096);
    EXPECT_EQ(PageTouches::Count() - before, once);
}

TEST(PageTouches, LeavesSmallBlocksAlone)
{
    const PageTouches touches;
    const std::string text(1000, 'x');
    EXPECT_EQ(PageTouches::Count(), 0U);
}

TEST(PageTouches, EndsItsCountAtTheMost)
{
    const PageTouches touches;
    const std::string text(kSize, 'x');
    for (std::size_t pass = 0; pass < PageTouches::kMost / kPages + 10; ++pass)
        EXPECT_EQ(std::count(text.begin(), text.end(), 'x'), static_cast<std::ptrdiff_t>(kSize));
    EXPECT_EQ(PageTouches::Count(), PageTouches::kMost);
}
