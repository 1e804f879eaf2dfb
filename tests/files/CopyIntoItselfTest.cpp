// How CopyFolder knows its destination inside the source, on file systems that say less of a folder than others, too.

#include "support/FolderLink.h"
#include "support/FolderTree.h"
#include "support/ImportPatch.h"
#include "support/TempFolder.h"

#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <iterator>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::ImportPatch;
using test::ListTree;
using test::MakeTree;
using test::TempFolder;

namespace
{

using Entries = std::vector<std::wstring>;

// While it lives, each folder has the same index for Kelpkit. One at a time.
class SameIndex
{
public:
    enum class Created {
        kAtATimeOfItsOwn,
        kNobodyKnowsWhen,
    };

    explicit SameIndex(DWORD half, Created created = Created::kAtATimeOfItsOwn)
    {
        s_half = half;
        s_created = created;
    }

private:
    static BOOL WINAPI Fake(HANDLE folder, BY_HANDLE_FILE_INFORMATION* information)
    {
        const BOOL result = ::GetFileInformationByHandle(folder, information);
        // Times may be the same by chance; the true indexes are not.
        information->ftCreationTime = {0, 0};
        if (s_created == Created::kAtATimeOfItsOwn)
            information->ftCreationTime = {information->nFileIndexLow, information->nFileIndexHigh};
        information->nFileIndexHigh = s_half;
        information->nFileIndexLow = s_half;
        return result;
    }

    static inline DWORD s_half;
    static inline Created s_created;

    ImportPatch m_patch{"GetFileInformationByHandle", Fake};
};

// While it lives, one number alone tells folders apart for Kelpkit. One at a time.
class OneNumberDiffers
{
public:
    using Number = DWORD BY_HANDLE_FILE_INFORMATION::*;

    explicit OneNumberDiffers(Number number) { s_number = number; }

private:
    static BOOL WINAPI Fake(HANDLE folder, BY_HANDLE_FILE_INFORMATION* information)
    {
        const BOOL result = ::GetFileInformationByHandle(folder, information);
        const DWORD trueIndex = information->nFileIndexLow;
        information->ftCreationTime = {7, 7};
        information->dwVolumeSerialNumber = 7;
        information->nFileIndexHigh = 7;
        information->nFileIndexLow = 7;
        information->*s_number = trueIndex;
        return result;
    }

    static inline Number s_number;

    ImportPatch m_patch{"GetFileInformationByHandle", Fake};
};

void ExpectCopiesSubfolders()
{
    const TempFolder folder;
    const Entries entries = {L"a\\", L"a\\1", L"a\\b\\", L"a\\b\\2", L"c\\", L"c\\3"};
    MakeTree(folder / L"src", entries);
    EXPECT_TRUE(CFileFolderManageTool().CopyFolder(folder / L"src", folder / L"dst"));
    EXPECT_EQ(ListTree(folder / L"dst"), entries);
}

std::wstring ShortPath(const std::wstring& path)
{
    wchar_t buffer[MAX_PATH] = {};
    ::GetShortPathNameW(path.c_str(), buffer, static_cast<DWORD>(std::size(buffer)));
    return buffer;
}

// By whatever path source and destination are named.
void ExpectCopiesNothingIntoItself()
{
    const TempFolder folder;
    const std::wstring source = folder / L"the source folder";
    MakeTree(source, {L"a", L"sub folder\\"});
    const test::FolderLink link(folder / L"link", source);
    const Entries expected = {L"a", L"sub folder\\", L"sub folder\\copy\\", L"sub folder\\copy\\a",
                              L"sub folder\\copy\\sub folder\\"};
    for (const std::wstring& from : {source, folder / L"THE Source Folder", source + L"\\", L"\\\\?\\" + source,
                                     ShortPath(source), folder / L"link"}) {
        for (const std::wstring& to :
             {source + L"\\sub folder", folder / L"link\\SUB FOLDER", ShortPath(source) + L"\\\\sub folder"}) {
            EXPECT_TRUE(CFileFolderManageTool().CopyFolder(from, to + L"\\copy"));
            EXPECT_EQ(ListTree(source), expected) << testing::PrintToString(from) << testing::PrintToString(to);
        }
    }
}

} // namespace

TEST(CopyFolder, CopiesSubfoldersWhereTheFileSystemHasNoIndexForThem)
{
    for (const DWORD half : {0UL, ~0UL}) {
        const SameIndex none(half);
        ExpectCopiesSubfolders();
    }
}

TEST(CopyFolder, CopiesSubfoldersThatHaveTheIndexOfTheDestination)
{
    for (const SameIndex::Created created :
         {SameIndex::Created::kAtATimeOfItsOwn, SameIndex::Created::kNobodyKnowsWhen}) {
        const SameIndex same(7, created);
        ExpectCopiesSubfolders();
    }
}

TEST(CopyFolder, CopiesSubfoldersThatAreMadeAtTheTimeOfTheDestination)
{
    for (const OneNumberDiffers::Number number :
         {&BY_HANDLE_FILE_INFORMATION::dwVolumeSerialNumber, &BY_HANDLE_FILE_INFORMATION::nFileIndexHigh,
          &BY_HANDLE_FILE_INFORMATION::nFileIndexLow}) {
        const OneNumberDiffers differs(number);
        ExpectCopiesSubfolders();
        ExpectCopiesNothingIntoItself();
    }
}

TEST(CopyFolder, CopiesSubfoldersWhoseIndexDiffersInTheHighestBit)
{
    const ImportPatch oneBit(
        "GetFileInformationByHandle", +[](HANDLE folder, BY_HANDLE_FILE_INFORMATION* information) -> BOOL {
            wchar_t path[MAX_PATH] = {};
            ::GetFinalPathNameByHandleW(folder, path, MAX_PATH, VOLUME_NAME_NT);
            const bool isDestination = std::wstring(path).find(L"\\dst") != std::wstring::npos;
            *information = {};
            information->ftCreationTime = {7, 7};
            information->nFileIndexHigh = isDestination ? 0x80000007 : 7;
            return TRUE;
        });
    ExpectCopiesSubfolders();
}

TEST(CopyFolder, DestinationInsideTheSourceIsKnownByItsIndex)
{
    const ImportPatch noPath(
        "GetFinalPathNameByHandleW", +[](HANDLE, wchar_t*, DWORD, DWORD) { return DWORD{0}; });
    ExpectCopiesNothingIntoItself();
}

TEST(CopyFolder, DestinationInsideTheSourceIsKnownWithoutAnIndex)
{
    for (const DWORD half : {0UL, ~0UL}) {
        const SameIndex none(half);
        ExpectCopiesNothingIntoItself();
    }
    const ImportPatch noInformation(
        "GetFileInformationByHandle", +[](HANDLE, BY_HANDLE_FILE_INFORMATION*) { return FALSE; });
    ExpectCopiesNothingIntoItself();
}

TEST(CopyFolder, DestinationInsideTheSourceIsKnownOnAVolumeWithoutALetter)
{
    const SameIndex none(0);
    const ImportPatch deviceOnly(
        "GetFinalPathNameByHandleW", +[](HANDLE folder, wchar_t* path, DWORD size, DWORD form) -> DWORD {
            return (form & VOLUME_NAME_NT) != 0 ? ::GetFinalPathNameByHandleW(folder, path, size, form) : 0;
        });
    ExpectCopiesNothingIntoItself();
}

TEST(CopyFolder, DestinationInsideTheSourceIsKnownWhereOneFolderTellsNoIndex)
{
    static bool s_tells;
    const ImportPatch everyOther(
        "GetFileInformationByHandle", +[](HANDLE folder, BY_HANDLE_FILE_INFORMATION* information) -> BOOL {
            s_tells = !s_tells;
            return s_tells ? ::GetFileInformationByHandle(folder, information) : FALSE;
        });
    for (const bool first : {false, true}) {
        s_tells = first;
        ExpectCopiesNothingIntoItself();
    }
}

TEST(CopyFolder, DestinationInsideTheSourceIsKnownAmongFoldersOfOneIndex)
{
    for (const SameIndex::Created created :
         {SameIndex::Created::kAtATimeOfItsOwn, SameIndex::Created::kNobodyKnowsWhen}) {
        const SameIndex same(7, created);
        ExpectCopiesNothingIntoItself();
    }
}
