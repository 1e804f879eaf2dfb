#include "support/FailingHeap.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

using test::FailingHeap;

TEST(FailingHeap, FailsTheAllocationOfTheNumberAlone)
{
    const FailingHeap heap;
    FailingHeap::FailAt(2);
    const std::string first(100, 'x');
    EXPECT_THROW(std::string(100, 'x'), std::bad_alloc);
    EXPECT_NO_THROW(std::string(100, 'x'));
    EXPECT_TRUE(FailingHeap::Stop());
}

TEST(FailingHeap, SaysWhereNothingFailed)
{
    const FailingHeap heap;
    FailingHeap::FailAt(2);
    const std::string only(100, 'x');
    EXPECT_FALSE(FailingHeap::Stop());
    EXPECT_NO_THROW(std::string(100, 'x'));
}

TEST(FailingHeap, CountsWhatIsHeld)
{
    const FailingHeap heap;
    const std::ptrdiff_t before = FailingHeap::Held();
    {
        const std::string text(100, 'x');
        EXPECT_EQ(FailingHeap::Held(), before + 1);
    }
    EXPECT_EQ(FailingHeap::Held(), before);
}

TEST(FailingHeap, SparesWhatIsAllocatedForAModule)
{
    const FailingHeap heap(L"SupportTests.exe");
    FailingHeap::FailAt(1);
    EXPECT_NO_THROW(std::string(100, 'x'));
    EXPECT_FALSE(FailingHeap::Stop());
}

TEST(FailingHeap, SparesNoOtherModule)
{
    const FailingHeap heap(L"XMLParser.dll");
    FailingHeap::FailAt(1);
    EXPECT_THROW(std::string(100, 'x'), std::bad_alloc);
    EXPECT_TRUE(FailingHeap::Stop());
}
