// This program has a text for dates that are none among its resources.

#include <Kelpkit/DateTime.h>

#include <gtest/gtest.h>

using namespace KELPKIT;

TEST(InvalidDateText, IsThatOfTheProgramsResources)
{
    EXPECT_EQ(OleDateTimeToString(StringToOleDateTime(L"abc")), L"日期无效");
    EXPECT_EQ(OleDateTimeToString(COleDateTime(1e300)), L"日期无效");
    EXPECT_STREQ(COleDateTime(1e300).Format(L"%Y"), L"日期无效");
}

TEST(InvalidDateText, IsForDatesThatAreNoneOnly)
{
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    EXPECT_EQ(OleDateTimeToString(null), L"");
    EXPECT_EQ(OleDateTimeToString(COleDateTime(2024, 3, 5, 14, 30, 0)), L"2024-03-05");
}
