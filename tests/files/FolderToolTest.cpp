#include "support/CopyNeedFile.h"
#include "support/CurrentFolder.h"
#include "support/FailingCall.h"
#include "support/FileCallRecorder.h"
#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/FolderLink.h"
#include "support/FolderTree.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/OddLocale.h"
#include "support/TempFolder.h"

#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

using namespace KELPKIT;
using test::CopyNeedFile;
using test::Exists;
using test::FailingCall;
using test::FileCallRecorder;
using test::FileHolder;
using test::ListTree;
using test::MakeTree;
using test::ReadFileBytes;
using test::TempFolder;
using test::WriteFileBytes;

namespace
{

using Entries = std::vector<std::wstring>;

// What a copy of these entries holds with these exclusions.
Entries CopiedWithout(const std::wstring& paths, const std::wstring& extensions, const Entries& entries)
{
    const TempFolder folder;
    MakeTree(folder / L"src", entries);
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(paths);
    tool.SetNoNeedFileExName(extensions);
    EXPECT_TRUE(tool.CopyFolder(folder / L"src", folder / L"dst"));
    return ListTree(folder / L"dst");
}

Entries CopiedWithoutExtensions(const std::wstring& extensions, const Entries& entries)
{
    return CopiedWithout(L"", extensions, entries);
}

// Whether the tool leaves a file of this path out. There need not be such a file.
bool LeavesOut(CFileFolderManageTool& tool, const std::wstring& path)
{
    const FileCallRecorder recorder;
    EXPECT_EQ(CopyNeedFile(tool, path, L""), 0);
    return FileCallRecorder::Calls().empty();
}

// A tree of 300 folders in 30 and 5,000 files in them.
void MakeLargeTree(const std::wstring& folder)
{
    Entries entries;
    for (int i = 0; i < 30; ++i) {
        const std::wstring top = L"部件 " + std::to_wstring(i) + L"\\";
        entries.push_back(top);
        for (int j = 0; j < 9; ++j)
            entries.push_back(top + L"Sub" + std::to_wstring(j) + L"\\");
    }
    const Entries folders = entries;
    for (int i = 0; i < 5000; ++i)
        entries.push_back(folders[static_cast<std::size_t>(i) % folders.size()] + L"file" + std::to_wstring(i) +
                          L".dat");
    MakeTree(folder, entries);
}

} // namespace

TEST(SetNoNeedFileExName, FoldsCaseAndLooksAtTheLastDot)
{
    EXPECT_EQ(CopiedWithoutExtensions(L"DLL$Pdb", {L"B.PDB", L"a.dll", L"a.dll.bak", L"c.Dll", L"dll"}),
              (Entries{L"a.dll.bak", L"dll"}));
}

TEST(SetNoNeedFileExName, EntryWithALeadingDotExcludesNothing)
{
    EXPECT_EQ(CopiedWithoutExtensions(L".dll", {L"a.dll"}), Entries{L"a.dll"});
}

TEST(SetNoNeedFileExName, PathWithoutADotIsLookedUpWhole)
{
    // A working folder with a dot in its path would have another extension.
    const TempFolder folder;
    ASSERT_EQ(folder.Path().find(L'.'), std::wstring::npos);
    MakeTree(folder / L"src", {L"README", L"other"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFileExName(folder / L"SRC\\readme");
    tool.CopyFolder(folder / L"src", folder / L"dst");
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"other"});
}

TEST(SetNoNeedFileExName, DotOfAFolderCounts)
{
    EXPECT_EQ(CopiedWithoutExtensions(L"d\\name", {L"a.d\\", L"a.d\\name", L"a.d\\other"}),
              (Entries{L"a.d\\", L"a.d\\other"}));
}

TEST(SetNoNeedFileExName, SplitsAtEachDollarSign)
{
    const Entries entries = {L"2.a", L"3.b", L"4. b", L"5.a$b", L"none"};
    const std::pair<const wchar_t*, Entries> cases[] = {
        {L"", entries},
        {L"a", {L"3.b", L"4. b", L"5.a$b", L"none"}},
        {L"a$b", {L"4. b", L"5.a$b", L"none"}},
        {L"a$b$", {L"4. b", L"5.a$b", L"none"}},
        {L"$a", {L"3.b", L"4. b", L"5.a$b", L"none"}},
        {L"a$$b", {L"4. b", L"5.a$b", L"none"}},
        {L"$", entries},
        {L"$$$", entries},
        {L"a$ b", {L"3.b", L"5.a$b", L"none"}},
    };
    for (const auto& [list, copied] : cases)
        EXPECT_EQ(CopiedWithoutExtensions(list, entries), copied) << testing::PrintToString(std::wstring(list));
}

TEST(SetNoNeedFileExName, DoesNotKeepAFolderFromBeingCopied)
{
    EXPECT_EQ(CopiedWithoutExtensions(L"tmp", {L"a.tmp\\", L"a.tmp\\file", L"a.tmp\\x.tmp"}),
              (Entries{L"a.tmp\\", L"a.tmp\\file"}));
}

TEST(SetNoNeedFilePath, ExcludesAFolderWithAllThatIsInIt)
{
    const TempFolder folder;
    MakeTree(folder / L"Src", {L"Temp\\", L"Temp\\file", L"Temp\\sub\\", L"Temporary\\", L"Temporary\\file", L"file"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(folder / L"SRC\\TEMP");
    const FileCallRecorder recorder(folder / L"");
    EXPECT_TRUE(tool.CopyFolder(folder / L"Src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"Temporary\\", L"Temporary\\file", L"file"}));
    for (const std::wstring& call : FileCallRecorder::Calls())
        EXPECT_EQ(call.find(L"Temp\\"), std::wstring::npos) << testing::PrintToString(call);
}

TEST(SetNoNeedFilePath, ExcludesSingleFiles)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a", L"b", L"sub\\", L"sub\\a"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(folder / L"src\\a$" + (folder / L"src\\missing"));
    tool.CopyFolder(folder / L"src", folder / L"dst");
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"b", L"sub\\", L"sub\\a"}));
}

TEST(SetNoNeedFilePath, EntriesOfSeveralCallsAddUp)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a", L"b", L"c"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(folder / L"src\\a");
    tool.SetNoNeedFilePath(folder / L"src\\b");
    tool.SetNoNeedFilePath(folder / L"src\\a");
    tool.CopyFolder(folder / L"src", folder / L"dst");
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"c"});
}

TEST(SetNoNeedFilePath, ComparesWholePathsAsTheyAreBuilt)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a.txt"});
    for (const wchar_t* const entry :
         {L"a.txt", L"src\\a.txt\\", L"src/a.txt", L"src\\a.*", L"src\\a.tx", L" src\\a.txt"}) {
        CFileFolderManageTool tool;
        tool.SetNoNeedFilePath(folder / entry);
        tool.CopyFolder(folder / L"src", folder / L"dst");
        EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"a.txt"}) << testing::PrintToString(std::wstring(entry));
    }
}

TEST(SetNoNeedFilePath, SourceWithATrailingBackslashBuildsDoubledOnes)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a", L"b"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(folder / L"src\\a$" + (folder / L"src\\\\b"));
    EXPECT_TRUE(tool.CopyFolder(folder / L"src\\", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"a"});
}

TEST(SetNoNeedFileExName, EmptyEntryExcludesPathsThatEndInADot)
{
    for (const wchar_t* const list : {L"$", L"$x", L"x$$y"}) {
        CFileFolderManageTool tool;
        tool.SetNoNeedFileExName(list);
        EXPECT_TRUE(LeavesOut(tool, L"a.")) << testing::PrintToString(std::wstring(list));
        EXPECT_FALSE(LeavesOut(tool, L"a")) << testing::PrintToString(std::wstring(list));
        EXPECT_FALSE(LeavesOut(tool, L"a.b")) << testing::PrintToString(std::wstring(list));
    }
    for (const wchar_t* const list : {L"", L"x", L"x$y$"}) {
        CFileFolderManageTool tool;
        tool.SetNoNeedFileExName(list);
        EXPECT_FALSE(LeavesOut(tool, L"a.")) << testing::PrintToString(std::wstring(list));
    }
}

TEST(SetNoNeedFilePath, EmptyEntryExcludesTheEmptyPathOnly)
{
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(L"$x$");
    EXPECT_TRUE(LeavesOut(tool, L""));
    EXPECT_TRUE(LeavesOut(tool, L"X"));
    EXPECT_FALSE(LeavesOut(tool, L"a"));
    tool = {};
    tool.SetNoNeedFilePath(L"x$");
    EXPECT_FALSE(LeavesOut(tool, L""));
}

TEST(CFileFolderManageTool, LowersTheCaseAsTheGlobalLocaleDoesAtEachCall)
{
    CFileFolderManageTool asUsual;
    asUsual.SetNoNeedFilePath(L"B");
    asUsual.SetNoNeedFileExName(L"B");
    EXPECT_TRUE(LeavesOut(asUsual, L"b"));
    EXPECT_TRUE(LeavesOut(asUsual, L"x.b"));
    EXPECT_FALSE(LeavesOut(asUsual, L"a"));
    EXPECT_FALSE(LeavesOut(asUsual, L"x.a"));

    CFileFolderManageTool oddly;
    {
        // The lower-case form of a character is the next one.
        const test::OddLocale odd;
        oddly.SetNoNeedFilePath(L"b");
        oddly.SetNoNeedFileExName(L"b");
        EXPECT_TRUE(LeavesOut(asUsual, L"a"));
        EXPECT_TRUE(LeavesOut(asUsual, L"x.a"));
        EXPECT_FALSE(LeavesOut(asUsual, L"b"));
        EXPECT_FALSE(LeavesOut(asUsual, L"x.b"));
    }
    EXPECT_TRUE(LeavesOut(oddly, L"C"));
    EXPECT_TRUE(LeavesOut(oddly, L"x.C"));
    EXPECT_FALSE(LeavesOut(oddly, L"b"));
    EXPECT_FALSE(LeavesOut(oddly, L"x.b"));
}

TEST(CFileFolderManageTool, LowersOnlyAToZInTheDefaultLocale)
{
    CFileFolderManageTool tool;
    tool.SetNoNeedFileExName(L"AZÄΩЖ");
    EXPECT_TRUE(LeavesOut(tool, L"x.azÄΩЖ"));
    EXPECT_FALSE(LeavesOut(tool, L"x.azäωж"));
}

TEST(CopyNeedFile, CopiesOverAFileThatIsThere)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a", L"b"});
    CFileFolderManageTool tool;
    EXPECT_NE(CopyNeedFile(tool, folder / L"src\\a", folder / L"src\\b"), 0);
    EXPECT_EQ(ReadFileBytes(folder / L"src\\b"), ReadFileBytes(folder / L"src\\a"));
    EXPECT_EQ(CopyNeedFile(tool, folder / L"src\\missing", folder / L"src\\b"), 0);
}

TEST(CopyNeedFile, LeavesOutWhatIsExcludedByPathOrExtension)
{
    const TempFolder folder;
    const std::wstring source = folder / L"src\\";
    MakeTree(folder / L"src", {L"a.x", L"b.y", L"c.z"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(source + L"A.X");
    tool.SetNoNeedFileExName(L"Y");
    for (const wchar_t* const name : {L"a.x", L"b.y"}) {
        EXPECT_EQ(CopyNeedFile(tool, source + name, folder / L"copy"), 0) << testing::PrintToString(std::wstring(name));
        EXPECT_FALSE(Exists(folder / L"copy"));
    }
    // Only the source counts.
    for (const wchar_t* const copy : {L"copy", L"src\\a.x", L"copy.y"})
        EXPECT_NE(CopyNeedFile(tool, source + L"c.z", folder / copy), 0) << testing::PrintToString(std::wstring(copy));
}

TEST(CFileFolderManageTool, CopiesTakeTheExclusionsAlong)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a.x", L"b.y", L"c.z"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFileExName(L"x");
    tool.SetNoNeedFilePath(folder / L"src\\b.y");
    CFileFolderManageTool copy(tool);
    copy.CopyFolder(folder / L"src", folder / L"dst");
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"c.z"});

    CFileFolderManageTool assigned;
    assigned.SetNoNeedFileExName(L"z");
    assigned = tool;
    assigned.CopyFolder(folder / L"src", folder / L"dst");
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"c.z"});
}

TEST(CopyFolder, CopiesATreeWithContents)
{
    const TempFolder folder;
    const Entries entries = {L"Empty\\", L"a",           L"空 dir\\", L"空 dir\\\xD83D\xDE00.txt",
                             L"sub\\",   L"sub\\deep\\", L"sub\\a",   L"sub\\deep\\b"};
    MakeTree(folder / L"src", entries);
    CFileFolderManageTool tool;
    EXPECT_TRUE(tool.CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), ListTree(folder / L"src"));
    for (const std::wstring& entry : entries) {
        if (entry.back() != L'\\') {
            EXPECT_EQ(ReadFileBytes(folder / L"dst\\" + entry), ReadFileBytes(folder / L"src\\" + entry));
        }
    }
}

TEST(CopyFolder, TakesItsStepsInOrder)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"sub\\", L"sub\\x"});
    MakeTree(folder / L"dst", {L"old"});
    const FileCallRecorder recorder(folder / L"");
    CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst");
    EXPECT_EQ(FileCallRecorder::Calls(), (Entries{
                                             L"find dst\\*.*",
                                             L"delete dst\\old",
                                             L"remove dst",
                                             L"create dst",
                                             L"find src\\*.*",
                                             L"find dst\\sub\\*.*",
                                             L"remove dst\\sub",
                                             L"create dst\\sub",
                                             L"find src\\sub\\*.*",
                                             L"copy src\\sub\\x dst\\sub\\x",
                                             L"copy src\\sub dst\\sub",
                                         }));
}

TEST(CopyFolder, RemovesWhatTheDestinationHeld)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    MakeTree(folder / L"dst", {L"b.tmp", L"old\\", L"old\\c"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFileExName(L"tmp");
    tool.SetNoNeedFilePath(folder / L"dst\\old");
    EXPECT_TRUE(tool.CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"a"});
}

TEST(CopyFolder, IsFalseForAnEmptyArgumentAndTouchesNothing)
{
    const TempFolder folder;
    MakeTree(folder / L"dst", {L"a"});
    CFileFolderManageTool tool;
    EXPECT_FALSE(tool.CopyFolder(L"", folder / L"dst"));
    EXPECT_FALSE(tool.CopyFolder(folder / L"dst", L""));
    EXPECT_FALSE(tool.CopyFolder(std::wstring(L"\0x", 2), folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"a"});
}

TEST(CopyFolder, IsFalseForAnExcludedSourceAndTouchesNothing)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    MakeTree(folder / L"dst", {L"b"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(folder / L"SRC");
    EXPECT_FALSE(tool.CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"b"});
}

TEST(CopyFolder, IsTrueForAMissingSourceAndLeavesAnEmptyDestination)
{
    const TempFolder folder;
    MakeTree(folder / L"dst", {L"a"});
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"missing", folder / L"dst"));
    EXPECT_TRUE(Exists(folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{});
}

TEST(CopyFolder, MakesOneLevelOnly)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"no\\parent"));
    EXPECT_FALSE(Exists(folder / L"no"));
}

TEST(CopyFolder, CopiesEverythingElseWhereAFileIsHeldOpen)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a\\", L"a\\1", L"a\\held", L"a\\x\\", L"a\\x\\2", L"b\\", L"b\\3"});
    const FileHolder holder(folder / L"src\\a\\held", GENERIC_READ, 0);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"a\\", L"a\\1", L"a\\x\\", L"a\\x\\2", L"b\\", L"b\\3"}));
}

TEST(CopyFolder, IsTrueWhereNoFileCanBeCopied)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a\\", L"a\\1", L"b\\", L"2"});
    const FailingCall<decltype(::CopyFileW)> failing("CopyFileW", FALSE);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"a\\", L"b\\"}));
}

TEST(CopyFolder, CopiesAlsoWhereFoldersCannotBeIdentified)
{
    const TempFolder folder;
    const Entries entries = {L"a\\", L"a\\1", L"b\\", L"b\\2"};
    MakeTree(folder / L"src", entries);
    {
        const FailingCall<decltype(::CreateFileW)> failing("CreateFileW", -1);
        EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
        EXPECT_EQ(ListTree(folder / L"dst"), entries);
    }
    const FailingCall<decltype(::GetFileInformationByHandle)> failing("GetFileInformationByHandle", FALSE);
    const FailingCall<decltype(::GetFinalPathNameByHandleW)> failingToo("GetFinalPathNameByHandleW", 0);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), entries);
}

TEST(CopyFolder, CopiesReadOnlyHiddenEmptyAndLargeFiles)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"readonly", L"hidden"});
    WriteFileBytes(folder / L"src\\empty", "");
    test::MakeSparseFile(folder / L"src\\large", 300LL << 20);
    ::SetFileAttributesW((folder / L"src\\readonly").c_str(), FILE_ATTRIBUTE_READONLY);
    ::SetFileAttributesW((folder / L"src\\hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"empty", L"hidden", L"large", L"readonly"}));
    EXPECT_EQ(GetFileSize(folder / L"dst\\large"), 300 << 20);
    EXPECT_EQ(GetFileSize(folder / L"dst\\empty"), 0);
    EXPECT_NE(::GetFileAttributesW((folder / L"dst\\readonly").c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
}

TEST(CopyFolder, IsTrueWhereAReadOnlyFileStaysInTheDestination)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    MakeTree(folder / L"dst", {L"readonly"});
    ::SetFileAttributesW((folder / L"dst\\readonly").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"a", L"readonly"}));
}

TEST(CopyFolder, CopiesPathsUpToTheLimitOfOrdinaryOnes)
{
    const TempFolder folder;
    Entries entries;
    std::wstring path;
    while (folder.Path().size() + 5 + path.size() + 31 < 230) {
        path += std::wstring(30, L'长') + L"\\";
        entries.push_back(path);
    }
    entries.push_back(path + std::wstring(258 - (folder.Path().size() + 5 + path.size()), L'x'));
    MakeTree(folder / L"src", entries);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), ListTree(folder / L"src"));
    CFileFolderManageTool().ClearFolder(folder / L"dst");
    EXPECT_FALSE(Exists(folder / L"dst"));
}

TEST(CopyFolder, CopiesATreeOf5000FilesIn300Folders)
{
    const TempFolder folder;
    MakeLargeTree(folder / L"src");
    CFileFolderManageTool tool;
    tool.SetNoNeedFilePath(folder / L"src\\部件 7");
    tool.SetNoNeedFileExName(L"pdb");
    EXPECT_TRUE(tool.CopyFolder(folder / L"src", folder / L"dst"));
    Entries expected = ListTree(folder / L"src");
    expected.erase(std::remove_if(expected.begin(), expected.end(),
                                  [](const std::wstring& entry) { return entry.compare(0, 5, L"部件 7\\") == 0; }),
                   expected.end());
    EXPECT_TRUE(ListTree(folder / L"dst") == expected);
    EXPECT_TRUE(tool.ClearFolder(folder / L"dst"));
    EXPECT_FALSE(Exists(folder / L"dst"));
}

TEST(CopyFolder, CopiesThirtyLevels)
{
    const TempFolder folder;
    Entries entries;
    for (std::wstring path; entries.size() < 60;) {
        path += L"d\\";
        entries.push_back(path);
        entries.push_back(path + L"f");
    }
    MakeTree(folder / L"src", entries);
    CFileFolderManageTool tool;
    EXPECT_TRUE(tool.CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), ListTree(folder / L"src"));
}

TEST(CopyFolder, DestinationInsideTheSourceIsNotCopiedIntoItself)
{
    const TempFolder folder;
    for (const wchar_t* const source : {L"src", L"SRC", L"src\\"}) {
        CFileFolderManageTool().ClearFolder(folder / L"src");
        MakeTree(folder / L"src", {L"a", L"sub\\", L"sub\\b"});
        EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / source, folder / L"src\\sub\\copy"));
        EXPECT_EQ(ListTree(folder / L"src"), (Entries{L"a", L"sub\\", L"sub\\b", L"sub\\copy\\", L"sub\\copy\\a",
                                                      L"sub\\copy\\sub\\", L"sub\\copy\\sub\\b"}));
    }
}

TEST(CopyFolder, DestinationInsideTheSourceIsKnownByAnotherPath)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a", L"sub\\"});
    const test::FolderLink alias(folder / L"alias", folder / L"src");
    const Entries expected = {L"a", L"sub\\", L"sub\\copy\\", L"sub\\copy\\a", L"sub\\copy\\sub\\"};
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(L"\\\\?\\" + (folder / L"src"), folder / L"src\\sub\\copy"));
    EXPECT_EQ(ListTree(folder / L"src"), expected);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"alias\\sub\\copy"));
    EXPECT_EQ(ListTree(folder / L"src"), expected);
}

TEST(CopyFolder, SourceInsideTheDestinationIsDeletedWithIt)
{
    const TempFolder folder;
    MakeTree(folder / L"dst", {L"a", L"src\\", L"src\\b"});
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"dst\\src", folder / L"dst"));
    EXPECT_TRUE(Exists(folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{});
}

TEST(CopyFolder, FolderOntoItselfIsEmptied)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"src"));
    EXPECT_EQ(ListTree(folder / L"src"), Entries{});
}

TEST(CopyFolder, FollowsAFolderLink)
{
    const TempFolder folder;
    MakeTree(folder / L"elsewhere", {L"x"});
    MakeTree(folder / L"src", {L"a"});
    const test::FolderLink link(folder / L"src\\link", folder / L"elsewhere");
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), (Entries{L"a", L"link\\", L"link\\x"}));
    EXPECT_EQ(ListTree(folder / L"elsewhere"), Entries{L"x"});
}

TEST(CopyFolder, EndsForAFolderLinkToItsOwnParent)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    const test::FolderLink link(folder / L"src\\link", folder / L"src");
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_TRUE(Exists(folder / L"dst\\link\\a"));
}

TEST(CopyFolder, TextBehindAZeroCharacterDoesNotCount)
{
    const TempFolder folder;
    MakeTree(folder / L"src", {L"a"});
    CFileFolderManageTool tool;
    EXPECT_TRUE(tool.CopyFolder(folder / std::wstring(L"src\0x", 5), folder / std::wstring(L"dst\0x", 5)));
    EXPECT_EQ(ListTree(folder / L"dst"), Entries{L"a"});
    EXPECT_TRUE(tool.ClearFolder(folder / std::wstring(L"dst\0x", 5)));
    EXPECT_FALSE(Exists(folder / L"dst"));
}

TEST(ClearFolder, DeletesTheFolderWithEverythingInIt)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a", L"sub\\", L"sub\\b", L"sub\\deep\\", L"sub\\deep\\模型"});
    CFileFolderManageTool tool;
    tool.SetNoNeedFileExName(L"b");
    tool.SetNoNeedFilePath(folder / L"top\\a");
    EXPECT_TRUE(tool.ClearFolder(folder / L"top"));
    EXPECT_FALSE(Exists(folder / L"top"));
}

TEST(ClearFolder, TakesItsStepsInOrder)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"sub\\", L"sub\\x"});
    const FileCallRecorder recorder(folder / L"");
    CFileFolderManageTool().ClearFolder(folder / L"top");
    EXPECT_EQ(FileCallRecorder::Calls(), (Entries{
                                             L"find top\\*.*",
                                             L"find top\\sub\\*.*",
                                             L"delete top\\sub\\x",
                                             L"remove top\\sub",
                                             L"delete top\\sub",
                                             L"remove top",
                                         }));
}

TEST(ClearFolder, IsFalseForAnEmptyArgumentOnly)
{
    const TempFolder folder;
    EXPECT_FALSE(CFileFolderManageTool().ClearFolder(L""));
    EXPECT_FALSE(CFileFolderManageTool().ClearFolder(std::wstring(L"\0x", 2)));
    EXPECT_TRUE(CFileFolderManageTool().ClearFolder(folder / L"missing"));
}

TEST(ClearFolder, OfTheCurrentFolderDeletesWhatIsInIt)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a", L"sub\\", L"sub\\b"});
    MakeTree(folder / L"other", {L"c"});
    {
        const test::CurrentFolder current(folder / L"top");
        EXPECT_TRUE(CFileFolderManageTool().ClearFolder(L"."));
    }
    // Windows keeps the current folder itself.
    EXPECT_EQ(ListTree(folder / L"top"), Entries{});
    EXPECT_EQ(ListTree(folder / L"other"), Entries{L"c"});
}

TEST(ClearFolder, RefusesNoRoot)
{
    // Nothing is carried out: there may be such a drive.
    static Entries calls;
    calls.clear();
    const test::ImportPatch find(
        "FindFirstFileW", +[](const wchar_t* pattern, WIN32_FIND_DATAW*) {
            calls.push_back(std::wstring(L"find ") + pattern);
            return INVALID_HANDLE_VALUE;
        });
    const test::ImportPatch remove(
        "RemoveDirectoryW", +[](const wchar_t* path) {
            calls.push_back(std::wstring(L"remove ") + path);
            return FALSE;
        });
    EXPECT_TRUE(CFileFolderManageTool().ClearFolder(L"C:"));
    EXPECT_TRUE(CFileFolderManageTool().ClearFolder(L"C:\\"));
    EXPECT_EQ(calls, (Entries{L"find C:\\*.*", L"remove C:", L"find C:\\\\*.*", L"remove C:\\"}));
}

TEST(ClearFolder, KeepsReadOnlyFilesAndTheirFolders)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a", L"sub\\", L"sub\\readonly", L"sub\\b", L"other\\", L"other\\c"});
    ::SetFileAttributesW((folder / L"top\\sub\\readonly").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(CFileFolderManageTool().ClearFolder(folder / L"top"));
    EXPECT_EQ(ListTree(folder / L"top"), (Entries{L"sub\\", L"sub\\readonly"}));
}

TEST(ClearFolder, KeepsWhatIsHeldOpen)
{
    const TempFolder folder;
    MakeTree(folder / L"top", {L"a", L"held", L"z"});
    const FileHolder holder(folder / L"top\\held", GENERIC_READ, FILE_SHARE_READ);
    EXPECT_TRUE(CFileFolderManageTool().ClearFolder(folder / L"top"));
    EXPECT_EQ(ListTree(folder / L"top"), Entries{L"held"});
}

TEST(ClearFolder, FollowsAFolderLinkAndEmptiesWhatItLeadsTo)
{
    const TempFolder folder;
    MakeTree(folder / L"elsewhere", {L"x"});
    MakeTree(folder / L"top", {});
    const test::FolderLink link(folder / L"top\\link", folder / L"elsewhere");
    EXPECT_TRUE(CFileFolderManageTool().ClearFolder(folder / L"top"));
    EXPECT_FALSE(Exists(folder / L"elsewhere\\x"));
}
