#include <Kelpkit/DateTime.h> // first: MFC stands no windows.h before it
#include <Kelpkit/Files.h>
#include <Kelpkit/SystemInfo.h>

#include "support/ImportPatch.h"

#include "support/DeletionGuard.h"
#include "support/FileContents.h"
#include "support/LastError.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <oleauto.h>

#include <cwchar>
#include <stdexcept>

using test::DeletionGuard;
using test::ImportPatch;
using test::TempFolder;

namespace
{

DWORD WINAPI ShortTempPath(DWORD, wchar_t* buffer)
{
    std::wcscpy(buffer, L"Q:\\");
    return 3;
}

DWORD WINAPI OtherTempPath(DWORD, wchar_t* buffer)
{
    std::wcscpy(buffer, L"R:\\");
    return 3;
}

HRESULT WINAPI FirstOfJuly2000(DATE, ULONG, UDATE* parts)
{
    *parts = {{2000, 7, 6, 1, 0, 0, 0, 0}, 183};
    return S_OK;
}

HRESULT WINAPI FailingBreakDown(DATE, ULONG, UDATE*)
{
    return E_INVALIDARG;
}

} // namespace

TEST(ImportPatch, LastsUntilTheScopeEnds)
{
    const std::wstring before = KELPKIT::GetTempPathW();
    {
        const ImportPatch patch("GetTempPathW", &ShortTempPath);
        EXPECT_EQ(KELPKIT::GetTempPathW(), L"Q:\\");
    }
    EXPECT_EQ(KELPKIT::GetTempPathW(), before);
}

TEST(ImportPatch, NestsInTheOrderOfTheScopes)
{
    const ImportPatch outer("GetTempPathW", &ShortTempPath);
    {
        const ImportPatch inner("GetTempPathW", &OtherTempPath);
        EXPECT_EQ(KELPKIT::GetTempPathW(), L"R:\\");
        wchar_t path[MAX_PATH + 1] = {};
        inner.Original<DWORD WINAPI(DWORD, wchar_t*)>()(MAX_PATH, path);
        EXPECT_STREQ(path, L"Q:\\");
    }
    EXPECT_EQ(KELPKIT::GetTempPathW(), L"Q:\\");
}

TEST(ImportPatch, ConcernsThePatchedDllOnly)
{
    const ImportPatch patch("GetTempPathW", &ShortTempPath);
    wchar_t path[MAX_PATH + 1] = {};
    ::GetTempPathW(MAX_PATH, path);
    EXPECT_STRNE(path, L"Q:\\");
}

TEST(ImportPatch, GivesTheOriginalFunction)
{
    const ImportPatch patch("GetTempPathW", &ShortTempPath);
    wchar_t path[MAX_PATH + 1] = {};
    patch.Original<DWORD WINAPI(DWORD, wchar_t*)>()(MAX_PATH, path);
    EXPECT_STRNE(path, L"Q:\\");
    EXPECT_STRNE(path, L"");
}

TEST(ImportPatch, ReplacesAFunctionThatIsImportedAtItsFirstCall)
{
    const auto text = [] { return KELPKIT::OleDateTimeToString(COleDateTime(45356.0)); };
    {
        const ImportPatch patch("VarUdateFromDate", &FirstOfJuly2000);
        EXPECT_EQ(text(), L"2000-07-01");
        EXPECT_EQ(text(), L"2000-07-01");
        {
            const ImportPatch inner("VarUdateFromDate", &FailingBreakDown);
            EXPECT_EQ(text(), L"Invalid DateTime");
            UDATE parts = {};
            EXPECT_EQ(inner.Original<decltype(FirstOfJuly2000)>()(45356, 0, &parts), S_OK);
            EXPECT_EQ(parts.st.wYear, 2000);
        }
        EXPECT_EQ(text(), L"2000-07-01");
        UDATE parts = {};
        EXPECT_EQ(patch.Original<decltype(FirstOfJuly2000)>()(45356, 0, &parts), S_OK);
        EXPECT_EQ(parts.st.wYear, 2024);
    }
    EXPECT_EQ(text(), L"2024-03-05");
}

TEST(ImportPatch, ThrowsForAFunctionThatIsNotImported)
{
    EXPECT_THROW(ImportPatch("NoSuchFunction", &ShortTempPath), std::runtime_error);
}

TEST(ImportPatch, ThrowsForAModuleThatIsNotLoaded)
{
    EXPECT_THROW(ImportPatch(L"nosuch.dll", "GetTempPathW", &ShortTempPath), std::runtime_error);
}

TEST(TempFolder, IsNewAndEmptyAndGoneAfterwards)
{
    std::wstring path;
    {
        const TempFolder folder(L"临时 x");
        const TempFolder other;
        EXPECT_NE(folder.Path(), other.Path());
        path = folder.Path();
        EXPECT_TRUE(KELPKIT::CheckFolderExis(path)) << test::LastErrorText();
        test::WriteFileBytes(folder / L"a.txt", "a");
        EXPECT_TRUE(::SetFileAttributesW((folder / L"a.txt").c_str(), FILE_ATTRIBUTE_READONLY));
        EXPECT_TRUE(::CreateDirectoryW((folder / L"sub").c_str(), nullptr)) << test::LastErrorText();
        EXPECT_EQ(test::ReadFileBytes(folder / L"a.txt"), "a");
    }
    EXPECT_FALSE(KELPKIT::CheckFolderExis(path));
}

TEST(DeletionGuard, RefusesWhatIsNotInATemporaryFolder)
{
    // The guard of the whole test program is at work here; this folder is no TempFolder.
    const std::wstring& prefix = test::TempFolderPrefix();
    const std::wstring outside = prefix.substr(0, prefix.rfind(L'\\') + 1) + L"kelpkit outside";
    ASSERT_TRUE(::CreateDirectoryW(outside.c_str(), nullptr)) << test::LastErrorText();
    const std::size_t before = DeletionGuard::Refused().size();
    EXPECT_FALSE(KELPKIT::DeleteDirectory(outside));
    EXPECT_EQ(DeletionGuard::Refused().size(), before + 1);
    EXPECT_TRUE(::RemoveDirectoryW(outside.c_str())) << test::LastErrorText();
}

TEST(DeletionGuard, RefusesAWayOutOfATemporaryFolder)
{
    const TempFolder folder;
    const std::wstring& prefix = test::TempFolderPrefix();
    const std::wstring outside = prefix.substr(0, prefix.rfind(L'\\') + 1) + L"kelpkit outside";
    ASSERT_TRUE(::CreateDirectoryW(outside.c_str(), nullptr)) << test::LastErrorText();
    EXPECT_FALSE(KELPKIT::DeleteDirectory(folder / L"..\\kelpkit outside"));
    EXPECT_TRUE(::RemoveDirectoryW(outside.c_str())) << test::LastErrorText();
}

TEST(LastErrorText, SaysTheErrorInNumbersAndWords)
{
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    const std::string text = test::LastErrorText();
    EXPECT_EQ(text.find("Windows error 2: "), 0U) << text;
    EXPECT_GT(text.size(), 20U) << text;
}
