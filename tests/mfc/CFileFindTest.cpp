#include "support/FolderTree.h"
#include "support/TempFolder.h"

#include <Kelpkit/Mfc.h>
#if !defined(_AFX)
#include "mfc/CFileFind.h"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using test::MakeTree;
using test::TempFolder;

TEST(CFileFind, ShowsEachEntryAfterAStep)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a.txt", L"sub\\", L"零件"});
    CFileFind finder;
    std::vector<std::wstring> names;
    std::vector<std::wstring> folders;
    BOOL more = finder.FindFile((folder / L"top\\*.*").c_str());
    EXPECT_TRUE(more);
    while (more) {
        more = finder.FindNextFile();
        if (finder.IsDots())
            continue;
        names.emplace_back(finder.GetFileName().GetString());
        if (finder.MatchesMask(FILE_ATTRIBUTE_DIRECTORY))
            folders.emplace_back(finder.GetFileName().GetString());
        EXPECT_EQ(finder.IsDirectory(), finder.MatchesMask(FILE_ATTRIBUTE_DIRECTORY));
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"a.txt", L"sub", L"零件"}));
    EXPECT_EQ(folders, std::vector<std::wstring>{L"sub"});
}

TEST(CFileFind, FindsASingleFile)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a.txt", L"b.txt"});
    CFileFind finder;
    ASSERT_TRUE(finder.FindFile((folder / L"top\\b.txt").c_str()));
    EXPECT_FALSE(finder.FindNextFile()) << "it is the last one";
    EXPECT_STREQ(finder.GetFileName(), L"b.txt");
    EXPECT_FALSE(finder.IsDots());
}

TEST(CFileFind, FindsNothingThatIsMissing)
{
    const TempFolder folder;
    CFileFind finder;
    EXPECT_FALSE(finder.FindFile((folder / L"missing\\*.*").c_str()));
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_STREQ(finder.GetFileName(), L"");
}

TEST(CFileFind, FindsAllThatIsInTheCurrentFolderUnlessToldWhat)
{
    CFileFind finder;
    ASSERT_TRUE(finder.FindFile(nullptr));
    finder.FindNextFile();
    const CString first = finder.GetFileName();
    ASSERT_TRUE(finder.FindFile(L"*.*"));
    finder.FindNextFile();
    EXPECT_STREQ(finder.GetFileName(), first);
}

TEST(CFileFind, LetsGoOfTheFolder)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {});
    CFileFind finder;
    finder.FindFile((folder / L"top\\*.*").c_str());
    finder.Close();
    finder.Close();
    EXPECT_FALSE(finder.FindNextFile());
    EXPECT_TRUE(::RemoveDirectoryW((folder / L"top").c_str()));
}

TEST(CFileFind, ANewSearchEndsTheOneBefore)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a"});
    CFileFind finder;
    finder.FindFile((folder / L"*.*").c_str());
    ASSERT_TRUE(finder.FindFile((folder / L"top\\a").c_str()));
    finder.FindNextFile();
    EXPECT_STREQ(finder.GetFileName(), L"a");
}
