#include "system/ParentReferences.h"

#include <gtest/gtest.h>

using KELPKIT::CollapseParentReferences;

TEST(ParentReferences, GoWithTheNameBeforeThem)
{
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\bin\\.."), L"C:\\app");
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\bin\\..\\data"), L"C:\\app\\data");
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\bin\\x64\\..\\..\\data"), L"C:\\app\\data");
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\bin\\..\\lib\\..\\data"), L"C:\\app\\data");
}

TEST(ParentReferences, StayWhereNoNameIsBeforeThem)
{
    for (const wchar_t* const path :
         {L"", L"C:\\app", L"\\..", L"a\\..", L"ab\\..", L"abc\\..", L"C:\\..", L"..\\app", L"C:/app/.."})
        EXPECT_EQ(CollapseParentReferences(path), path);
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\..\\..\\data"), L"C:\\..\\data");
}

TEST(ParentReferences, TakeTwoNamesOrNoneBehindANameOfOneCharacter)
{
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\b\\.."), L"C:");
    EXPECT_EQ(CollapseParentReferences(L"C:\\b\\.."), L"C:\\b\\..");
    EXPECT_EQ(CollapseParentReferences(L"\\ab\\.."), L"");
}

TEST(ParentReferences, AreFoundInNamesThatBeginWithTwoDots)
{
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\bin\\..old"), L"C:\\appold");
    EXPECT_EQ(CollapseParentReferences(L"C:\\app\\bin\\..."), L"C:\\app.");
}

TEST(ParentReferences, AreFoundBehindZeros)
{
    const std::wstring path(L"C:\\app\0\\bin\\..", 14);
    EXPECT_EQ(CollapseParentReferences(path), path.substr(0, 7));
}
