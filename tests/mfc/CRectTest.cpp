#include <Kelpkit/Mfc.h>

#include <gtest/gtest.h>

#include <windows.h>

TEST(CRect, IsEmptyUnlessGivenItsSides)
{
    const CRect rectangle;
    EXPECT_EQ(rectangle.left, 0);
    EXPECT_EQ(rectangle.top, 0);
    EXPECT_EQ(rectangle.right, 0);
    EXPECT_EQ(rectangle.bottom, 0);
}

TEST(CRect, HoldsItsSidesAsTheyAre)
{
    const CRect rectangle(40, -2, 10, 7);
    EXPECT_EQ(rectangle.left, 40);
    EXPECT_EQ(rectangle.top, -2);
    EXPECT_EQ(rectangle.right, 10);
    EXPECT_EQ(rectangle.bottom, 7);
}

TEST(CRect, IsMadeOfAPlainRectangle)
{
    const RECT plain{1, 2, 30, 40};
    const CRect rectangle = plain;
    EXPECT_TRUE(::EqualRect(&rectangle, &plain));
}

TEST(CRect, MeasuresWithItsSign)
{
    EXPECT_EQ(CRect(10, 20, 40, 25).Width(), 30);
    EXPECT_EQ(CRect(10, 20, 40, 25).Height(), 5);
    EXPECT_EQ(CRect(40, 25, 10, 20).Width(), -30);
    EXPECT_EQ(CRect(40, 25, 10, 20).Height(), -5);
}

TEST(CRect, PassesToWindowsWithAndWithoutItsAddress)
{
    CRect rectangle;
    EXPECT_TRUE(::SetRect(&rectangle, 1, 2, 3, 4));
    EXPECT_EQ(rectangle.bottom, 4);
    EXPECT_TRUE(::OffsetRect(rectangle, 10, 20));
    EXPECT_EQ(rectangle.left, 11);
    const CRect same(11, 22, 13, 24);
    EXPECT_TRUE(::EqualRect(rectangle, same));
}
