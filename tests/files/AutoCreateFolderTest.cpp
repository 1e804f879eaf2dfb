#include "support/CurrentFolder.h"
#include "support/FileCallRecorder.h"
#include "support/FolderTree.h"
#include "support/TempFolder.h"

#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::CurrentFolder;
using test::ListTree;
using test::MakeTree;
using test::TempFolder;

TEST(CAutoCreateFolder, MakesTheFolderAndDeletesItWithEverythingInIt)
{
    const TempFolder folder;
    {
        const CAutoCreateFolder scoped(folder / L"工作 work");
        EXPECT_TRUE(CheckFolderExis(folder / L"工作 work"));
        MakeTree(folder / L"工作 work\\sub", {L"a", L"deep\\", L"deep\\b"});
    }
    EXPECT_EQ(ListTree(folder.Path()).size(), 0U);
}

TEST(CAutoCreateFolder, DoesNotMakeParents)
{
    const TempFolder folder;
    {
        const CAutoCreateFolder scoped(folder / L"no\\parent");
        EXPECT_FALSE(CheckFolderExis(folder / L"no"));
    }
    EXPECT_EQ(ListTree(folder.Path()).size(), 0U);
}

TEST(CAutoCreateFolder, TakesOverAFolderThatIsThere)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a"});
    {
        const CAutoCreateFolder scoped(folder / L"top");
        EXPECT_TRUE(CheckFileExis(folder / L"top\\a"));
    }
    EXPECT_FALSE(CheckFolderExis(folder / L"top"));
}

TEST(CAutoCreateFolder, RelativePathIsDeletedInTheFolderThatIsCurrentAtTheEnd)
{
    const TempFolder folder;
    MakeTree(folder / L"here", {});
    MakeTree(folder / L"there", {L"work\\", L"work\\a"});
    const CurrentFolder here(folder / L"here");
    auto scoped = std::make_unique<CAutoCreateFolder>(L"work");
    {
        const CurrentFolder there(folder / L"there");
        scoped.reset();
    }
    EXPECT_EQ(ListTree(folder.Path()), (std::vector<std::wstring>{L"here\\", L"here\\work\\", L"there\\"}));
}

TEST(CAutoCreateFolder, EmptyPathDoesNothing)
{
    const TempFolder folder;
    MakeTree(folder / L"here", {L"a", L"sub\\", L"sub\\b"});
    const CurrentFolder current(folder / L"here");
    const test::FileCallRecorder recorder;
    {
        const CAutoCreateFolder scoped(L"");
        // It is given to the system as it is, which refuses it.
        EXPECT_EQ(test::FileCallRecorder::Calls(), std::vector<std::wstring>{L"create "});
    }
    EXPECT_EQ(test::FileCallRecorder::Calls().size(), 1U);
    EXPECT_EQ(ListTree(folder / L"here"), (std::vector<std::wstring>{L"a", L"sub\\", L"sub\\b"}));
}

TEST(CAutoCreateFolder, PathOfAFileDeletesNothing)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a"});
    {
        const CAutoCreateFolder scoped(folder / L"top\\a");
    }
    EXPECT_TRUE(CheckFileExis(folder / L"top\\a"));
}

TEST(CAutoCreateFolder, EveryCopyDeletesTheFolder)
{
    const TempFolder folder;
    auto first = std::make_unique<CAutoCreateFolder>(folder / L"top");
    auto second = std::make_unique<CAutoCreateFolder>(*first);
    first.reset();
    EXPECT_FALSE(CheckFolderExis(folder / L"top"));
    second.reset();

    auto third = std::make_unique<CAutoCreateFolder>(folder / L"top");
    auto fourth = std::make_unique<CAutoCreateFolder>(*third);
    third.reset();
    MakeTree(folder / L"top", {L"made again"});
    fourth.reset();
    EXPECT_FALSE(CheckFolderExis(folder / L"top"));
}

TEST(CAutoCreateFolder, CopyMakesNoFolder)
{
    const TempFolder folder;
    const CAutoCreateFolder scoped(folder / L"top");
    ::RemoveDirectoryW((folder / L"top").c_str());
    const CAutoCreateFolder copy(scoped); // NOLINT(performance-unnecessary-copy-initialization): it is the test
    EXPECT_FALSE(CheckFolderExis(folder / L"top"));
}

TEST(CAutoCreateFolder, AssignmentTouchesNeitherFolder)
{
    const TempFolder folder;
    {
        CAutoCreateFolder one(folder / L"one");
        const CAutoCreateFolder two(folder / L"two");
        one = two;
        EXPECT_TRUE(CheckFolderExis(folder / L"one"));
        EXPECT_TRUE(CheckFolderExis(folder / L"two"));
    }
    EXPECT_TRUE(CheckFolderExis(folder / L"one")) << "nobody stands for it any more";
    EXPECT_FALSE(CheckFolderExis(folder / L"two"));
}

TEST(CAutoCreateFolder, KeepsReadOnlyFilesAndTheirFolders)
{
    const TempFolder folder;
    {
        const CAutoCreateFolder scoped(folder / L"top");
        MakeTree(folder / L"top\\sub", {L"readonly", L"a"});
        ::SetFileAttributesW((folder / L"top\\sub\\readonly").c_str(), FILE_ATTRIBUTE_READONLY);
    }
    EXPECT_EQ(ListTree(folder.Path()), (std::vector<std::wstring>{L"top\\", L"top\\sub\\", L"top\\sub\\readonly"}));
}
