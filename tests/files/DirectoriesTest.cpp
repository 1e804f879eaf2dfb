#include "support/FailingCall.h"
#include "support/FileCallRecorder.h"
#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/FolderLink.h"
#include "support/FolderTree.h"
#include "support/LastError.h"
#include "support/TempFolder.h"

#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

using namespace KELPKIT;
using test::Exists;
using test::FailingCall;
using test::FileCallRecorder;
using test::FileHolder;
using test::TempFolder;
using test::WriteFileBytes;

TEST(MakeDirectory, ReturnsFalseWhenTheFirstAttemptCreates)
{
    const TempFolder folder;
    EXPECT_FALSE(MakeDirectory(folder / L"new"));
    EXPECT_TRUE(CheckFolderExis(folder / L"new"));
}

TEST(MakeDirectory, ReturnsTrueWhenTheFolderExists)
{
    const TempFolder folder;
    EXPECT_TRUE(MakeDirectory(folder.Path()));
}

TEST(MakeDirectory, ReturnsTrueWhenParentsWereMade)
{
    const TempFolder folder;
    EXPECT_TRUE(MakeDirectory(folder / L"one\\two"));
    EXPECT_TRUE(CheckFolderExis(folder / L"one"));
    EXPECT_TRUE(CheckFolderExis(folder / L"one\\two"));
}

TEST(MakeDirectory, Makes30LevelsWithForeignNames)
{
    const TempFolder folder;
    std::wstring path = folder.Path();
    for (int level = 0; level < 30; ++level)
        path += L"\\层\xD83D\xDE00";
    EXPECT_TRUE(MakeDirectory(path));
    EXPECT_TRUE(CheckFolderExis(path)) << test::LastErrorText();
}

TEST(MakeDirectory, RefusesTheRootAndShorterPathsUntouched)
{
    const FileCallRecorder recorder;
    for (const wchar_t* const path : {L"", L"C", L"C:", L"C:\\", L"abc", L"..", L"Q:\\"})
        EXPECT_FALSE(MakeDirectory(path));
    EXPECT_FALSE(MakeDirectory(std::wstring(L"C:\\\0longer", 10)));
    EXPECT_EQ(FileCallRecorder::Calls(), std::vector<std::wstring>());
}

TEST(MakeDirectory, TakesATrailingBackslashAsItStands)
{
    const TempFolder folder;
    EXPECT_FALSE(MakeDirectory(folder / L"new\\")) << "the first attempt creates it";
    EXPECT_TRUE(CheckFolderExis(folder / L"new"));
    EXPECT_TRUE(MakeDirectory(folder / L"new\\")) << "no folder is found by that name, but the parent by its own";
    EXPECT_TRUE(MakeDirectory(folder / L"one\\two\\"));
    EXPECT_TRUE(CheckFolderExis(folder / L"one\\two"));
}

TEST(MakeDirectory, TakesARelativePath)
{
    // The current folder of the tests is the temporary one.
    const TempFolder folder;
    const std::wstring name = folder.Path().substr(folder.Path().rfind(L'\\') + 1);
    EXPECT_TRUE(MakeDirectory(name));
    EXPECT_FALSE(MakeDirectory(name + L"\\sub"));
    EXPECT_TRUE(CheckFolderExis(folder / L"sub"));
}

TEST(MakeDirectory, ReturnsFalseWithoutABackslashWhenTheAttemptFails)
{
    EXPECT_FALSE(MakeDirectory(L"a?b*"));
}

TEST(MakeDirectory, ReturnsTrueThoughNothingCouldBeMade)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"file", "x");
    EXPECT_TRUE(MakeDirectory(folder / L"file\\sub"));
    EXPECT_FALSE(CheckFolderExis(folder / L"file\\sub"));
    EXPECT_TRUE(MakeDirectory(L"Q:\\one\\two"));
    EXPECT_FALSE(CheckFolderExis(L"Q:\\one"));
}

TEST(MakeDirectory, LeavesAForwardSlashToTheSystem)
{
    const FileCallRecorder recorder;
    EXPECT_FALSE(MakeDirectory(L"Q:/one/two"));
    EXPECT_EQ(FileCallRecorder::Calls(), (std::vector<std::wstring>{L"find Q:/one/two", L"create Q:/one/two"}));
}

TEST(MakeDirectory, TriesEachLevelUpwardsAndThenDownAgain)
{
    const TempFolder folder;
    const FileCallRecorder recorder;
    const std::wstring& top = folder.Path();
    EXPECT_TRUE(MakeDirectory(top + L"\\a\\b\\c"));
    EXPECT_EQ(FileCallRecorder::Calls(),
              (std::vector<std::wstring>{L"find " + top + L"\\a\\b\\c", L"create " + top + L"\\a\\b\\c",
                                         L"find " + top + L"\\a\\b", L"create " + top + L"\\a\\b",
                                         L"find " + top + L"\\a", L"create " + top + L"\\a", // this one succeeds
                                         L"create " + top + L"\\a\\b", L"create " + top + L"\\a\\b\\c"}));
}

TEST(MakeDirectory, EndsForAPathOfThousandsOfLevels)
{
    std::wstring path = L"Q:";
    for (int level = 0; level < 3000; ++level)
        path += L"\\x";
    EXPECT_TRUE(MakeDirectory(path));
    EXPECT_TRUE(MakeDirectory(std::wstring(3000, L'\\')));
}

TEST(MakeDirectory, PassesALongPathOnAsItStands)
{
    const TempFolder folder;
    std::wstring path = L"\\\\?\\" + folder.Path();
    for (int level = 0; level < 30; ++level)
        path += L"\\level with a long name";
    EXPECT_TRUE(MakeDirectory(path));
    EXPECT_TRUE(CheckFolderExis(path)) << test::LastErrorText();
}

TEST(DeleteDirectory, RemovesAFolderWithEverythingInIt)
{
    const TempFolder folder;
    const std::wstring top = folder / L"树 \xD83C\xDF33";
    std::wstring level = top;
    for (int i = 0; i < 30; ++i) {
        ASSERT_TRUE(::CreateDirectoryW(level.c_str(), nullptr)) << test::LastErrorText();
        WriteFileBytes(level + L"\\模型 \xD83D\xDE00.qmx", "x");
        level += L"\\k";
    }
    EXPECT_TRUE(DeleteDirectory(top)) << test::LastErrorText();
    EXPECT_FALSE(Exists(top));
}

TEST(DeleteDirectory, RemovesReadOnlyHiddenAndSystemFiles)
{
    const TempFolder folder;
    const std::wstring top = folder / L"top";
    MakeDirectory(top + L"\\sub");
    constexpr DWORD kAll = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    for (const DWORD attributes :
         {DWORD{FILE_ATTRIBUTE_READONLY}, DWORD{FILE_ATTRIBUTE_HIDDEN}, DWORD{FILE_ATTRIBUTE_SYSTEM}, kAll}) {
        for (const wchar_t* const place : {L"\\", L"\\sub\\"}) {
            const std::wstring file = top + place + std::to_wstring(attributes);
            WriteFileBytes(file, "x");
            ASSERT_TRUE(::SetFileAttributesW(file.c_str(), attributes)) << test::LastErrorText();
        }
    }
    ASSERT_TRUE(::SetFileAttributesW((top + L"\\sub").c_str(), FILE_ATTRIBUTE_READONLY)) << test::LastErrorText();
    EXPECT_TRUE(DeleteDirectory(top)) << test::LastErrorText();
    EXPECT_FALSE(Exists(top));
}

TEST(DeleteDirectory, RemovesAFolderOf5000Entries)
{
    const TempFolder folder;
    const std::wstring top = folder / L"top";
    MakeDirectory(top);
    for (int i = 0; i < 5000; ++i)
        WriteFileBytes(top + L"\\file " + std::to_wstring(i), "");
    EXPECT_TRUE(DeleteDirectory(top)) << test::LastErrorText();
    EXPECT_FALSE(Exists(top));
}

TEST(DeleteDirectory, ReturnsFalseForAMissingFolder)
{
    const TempFolder folder;
    EXPECT_FALSE(DeleteDirectory(folder / L"missing"));
}

TEST(DeleteDirectory, ReturnsFalseForAFileAndLeavesIt)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"file", "x");
    EXPECT_FALSE(DeleteDirectory(folder / L"file"));
    EXPECT_TRUE(Exists(folder / L"file"));
}

TEST(DeleteDirectory, RefusesTheRootAndShorterPathsUntouched)
{
    const FileCallRecorder recorder;
    for (const wchar_t* const path : {L"", L"C", L"C:", L"C:\\", L".", L"..", L"..\\", L"\\", L"Q:\\"})
        EXPECT_FALSE(DeleteDirectory(path));
    EXPECT_EQ(FileCallRecorder::Calls(), std::vector<std::wstring>());
}

TEST(DeleteDirectory, RefusesARootWithAZeroBehindIt)
{
    // To the system the path ends there, so it must not count as longer.
    const FileCallRecorder recorder;
    EXPECT_FALSE(DeleteDirectory(std::wstring(L"Q:\\\0longer", 10)));
    EXPECT_EQ(FileCallRecorder::Calls(), std::vector<std::wstring>());
}

TEST(DeleteDirectory, AlwaysAppendsABackslash)
{
    const TempFolder folder;
    const std::wstring top = folder / L"top";
    MakeDirectory(top + L"\\sub");
    WriteFileBytes(top + L"\\sub\\file", "x");
    const FileCallRecorder recorder;
    EXPECT_TRUE(DeleteDirectory(top));
    EXPECT_EQ(FileCallRecorder::Calls(),
              (std::vector<std::wstring>{L"find " + top + L"\\*.*", L"normal " + top + L"\\sub\\",
                                         L"find " + top + L"\\sub\\\\*.*", L"normal " + top + L"\\sub\\\\file",
                                         L"delete " + top + L"\\sub\\\\file", L"remove " + top + L"\\sub\\\\",
                                         L"remove " + top + L"\\"}));
}

TEST(DeleteDirectory, TakesATrailingBackslash)
{
    const TempFolder folder;
    MakeDirectory(folder / L"top\\sub");
    WriteFileBytes(folder / L"top\\sub\\file", "x");
    EXPECT_TRUE(DeleteDirectory(folder / L"top\\")) << test::LastErrorText();
    EXPECT_FALSE(Exists(folder / L"top"));
}

TEST(DeleteDirectory, PassesALongPathOnAsItStands)
{
    const TempFolder folder;
    const std::wstring top = L"\\\\?\\" + (folder / L"top");
    MakeDirectory(top);
    WriteFileBytes(top + L"\\file", "x");
    const FileCallRecorder recorder;
    EXPECT_TRUE(DeleteDirectory(top)) << test::LastErrorText();
    EXPECT_EQ(FileCallRecorder::Calls(),
              (std::vector<std::wstring>{L"find " + top + L"\\*.*", L"normal " + top + L"\\file",
                                         L"delete " + top + L"\\file", L"remove " + top + L"\\"}));
}

TEST(DeleteDirectory, LeavesWhatIsHeldOpenAndDeletesTheRest)
{
    const TempFolder folder;
    const std::wstring top = folder / L"top";
    for (const wchar_t* const sub : {L"\\a", L"\\b", L"\\c"}) {
        MakeDirectory(top + sub);
        WriteFileBytes(top + sub + L"\\file", "x");
        WriteFileBytes(top + sub + L"\\other", "x");
    }
    {
        const FileHolder holder(top + L"\\b\\file", GENERIC_READ, 0);
        EXPECT_FALSE(DeleteDirectory(top));
        EXPECT_TRUE(Exists(top + L"\\b\\file"));
        EXPECT_FALSE(Exists(top + L"\\b\\other"));
        EXPECT_FALSE(Exists(top + L"\\a"));
        EXPECT_FALSE(Exists(top + L"\\c"));
    }
    EXPECT_TRUE(DeleteDirectory(top)) << test::LastErrorText();
}

TEST(DeleteDirectory, ReturnsFalseWhereTheSearchBreaksOff)
{
    const TempFolder folder;
    MakeDirectory(folder / L"top");
    WriteFileBytes(folder / L"top\\file", "x");
    {
        const FailingCall<decltype(::FindNextFileW)> failing("FindNextFileW", FALSE);
        EXPECT_FALSE(DeleteDirectory(folder / L"top"));
    }
    EXPECT_TRUE(Exists(folder / L"top\\file"));
    EXPECT_TRUE(DeleteDirectory(folder / L"top")) << test::LastErrorText();
}

TEST(DeleteDirectory, DeletesAlsoWhereAttributesCannotBeSet)
{
    const TempFolder folder;
    MakeDirectory(folder / L"top\\sub");
    WriteFileBytes(folder / L"top\\sub\\file", "x");
    const FailingCall<decltype(::SetFileAttributesW)> failing("SetFileAttributesW", FALSE);
    EXPECT_TRUE(DeleteDirectory(folder / L"top")) << test::LastErrorText();
    EXPECT_FALSE(Exists(folder / L"top"));
}

TEST(DeleteDirectory, DeletesAFileThatIsHeldOpenWithDeleteSharing)
{
    const TempFolder folder;
    MakeDirectory(folder / L"top");
    WriteFileBytes(folder / L"top\\file", "x");
    {
        const FileHolder holder(folder / L"top\\file", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE);
        DeleteDirectory(folder / L"top");
    }
    // The name goes with the last handle at the latest.
    EXPECT_FALSE(Exists(folder / L"top\\file"));
}

TEST(DeleteDirectory, FollowsAFolderLinkAndEmptiesWhatItLeadsTo)
{
    const TempFolder folder;
    MakeDirectory(folder / L"elsewhere");
    WriteFileBytes(folder / L"elsewhere\\file", "x");
    MakeDirectory(folder / L"top");
    const test::FolderLink link(folder / L"top\\link", folder / L"elsewhere");
    ASSERT_TRUE(Exists(folder / L"top\\link\\file"));
    // Windows removes the link itself as well; Wine cannot.
    DeleteDirectory(folder / L"top");
    EXPECT_FALSE(Exists(folder / L"elsewhere\\file"));
}

TEST(DeleteDirectory, EndsForAFolderLinkToItsOwnParent)
{
    const TempFolder folder;
    MakeDirectory(folder / L"top");
    WriteFileBytes(folder / L"top\\file", "x");
    const test::FolderLink link(folder / L"top\\link", folder / L"top");
    DeleteDirectory(folder / L"top");
    EXPECT_FALSE(Exists(folder / L"top\\file"));
}
