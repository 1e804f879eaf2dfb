#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/TempFolder.h"

#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <string>

using namespace KELPKIT;
using test::FileHolder;
using test::ImportPatch;
using test::MakeSparseFile;
using test::TempFolder;
using test::WriteFileBytes;

namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::wstring g_validity;

bool IsValid(const std::wstring& path)
{
    g_validity = L"what was there before";
    return CheckFileValid(path, g_validity);
}

int SizeOfSparseFile(long long size)
{
    const TempFolder folder;
    MakeSparseFile(folder / L"big", size);
    return GetFileSize(folder / L"big");
}

} // namespace

TEST(CheckFolderExis, IsTrueForAFolder)
{
    EXPECT_TRUE(CheckFolderExis(L"C:\\Windows")) << test::LastErrorText();
    const TempFolder folder(L"模型 \xD83D\xDE00");
    EXPECT_TRUE(CheckFolderExis(folder.Path())) << test::LastErrorText();
}

TEST(CheckFolderExis, IsFalseBehindATrailingBackslash)
{
    EXPECT_FALSE(CheckFolderExis(L"C:\\Windows\\"));
    EXPECT_FALSE(CheckFolderExis(L"C:\\"));
}

TEST(CheckFolderExis, IsFalseForAFile)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a.txt", "a");
    EXPECT_FALSE(CheckFolderExis(folder / L"a.txt"));
}

TEST(CheckFolderExis, IsFalseForWhatIsMissing)
{
    const TempFolder folder;
    EXPECT_FALSE(CheckFolderExis(folder / L"missing"));
    EXPECT_FALSE(CheckFolderExis(folder / L"missing\\below"));
    EXPECT_FALSE(CheckFolderExis(L""));
    EXPECT_FALSE(CheckFolderExis(L"Q:\\nowhere"));
}

TEST(CheckFolderExis, TestsTheFirstMatchOfAWildcard)
{
    const TempFolder folder;
    ASSERT_TRUE(::CreateDirectoryW((folder / L"alpha").c_str(), nullptr)) << test::LastErrorText();
    WriteFileBytes(folder / L"beta", "b");
    EXPECT_TRUE(CheckFolderExis(folder / L"al*"));
    EXPECT_FALSE(CheckFolderExis(folder / L"be*"));
    EXPECT_FALSE(CheckFolderExis(folder / L"ga*"));
}

TEST(CheckFolderExis, EndsAtTheFirstZero)
{
    EXPECT_TRUE(CheckFolderExis(std::wstring(L"C:\\Windows\0\\nowhere", 19)));
}

TEST(CheckFolderExis, ClosesWhatItOpenedInEveryCase)
{
    static int closed = 0;
    const ImportPatch patch(
        "FindClose", +[](HANDLE find) -> BOOL {
            ++closed;
            return ::FindClose(find);
        });
    CheckFolderExis(L"C:\\Windows");
    EXPECT_EQ(closed, 1);
    CheckFolderExis(L"Q:\\nowhere");
    EXPECT_EQ(closed, 2);
}

TEST(CheckFileExis, IsTrueForAFileThatCanBeRead)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"模型 \xD83D\xDE00.qmx", "x");
    EXPECT_TRUE(CheckFileExis(folder / L"模型 \xD83D\xDE00.qmx")) << test::LastErrorText();
    WriteFileBytes(folder / L"read-only", "x");
    ASSERT_TRUE(::SetFileAttributesW((folder / L"read-only").c_str(),
                                     FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM))
        << test::LastErrorText();
    EXPECT_TRUE(CheckFileExis(folder / L"read-only")) << test::LastErrorText();
}

TEST(CheckFileExis, IsTrueForAnEmptyFile)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"empty", "");
    EXPECT_TRUE(CheckFileExis(folder / L"empty")) << test::LastErrorText();
}

TEST(CheckFileExis, IsFalseForAFolder)
{
    EXPECT_FALSE(CheckFileExis(L"C:\\Windows"));
    EXPECT_FALSE(CheckFileExis(L"C:\\Windows\\"));
}

TEST(CheckFileExis, IsFalseForWhatIsMissing)
{
    const TempFolder folder;
    EXPECT_FALSE(CheckFileExis(folder / L"missing"));
    EXPECT_FALSE(CheckFileExis(folder / L"missing\\a.txt"));
    EXPECT_FALSE(CheckFileExis(folder / L"a*"));
    EXPECT_FALSE(CheckFileExis(L""));
}

TEST(CheckFileExis, IsTrueWhileAnotherWritesTheFileAndShares)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "x");
    {
        const FileHolder writer(folder / L"a", GENERIC_READ | GENERIC_WRITE, kShareAll);
        EXPECT_TRUE(CheckFileExis(folder / L"a")) << test::LastErrorText();
    }
    const FileHolder writer(folder / L"a", GENERIC_WRITE, FILE_SHARE_READ);
    EXPECT_TRUE(CheckFileExis(folder / L"a")) << test::LastErrorText();
    EXPECT_EQ(GetFileSize(folder / L"a"), 1);
    EXPECT_TRUE(IsValid(folder / L"a"));
}

TEST(CheckFileExis, LetsOthersReadAndWriteTheFileMeanwhile)
{
    // Nothing is left open either: the file can be had for oneself afterwards.
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "x");
    EXPECT_TRUE(CheckFileExis(folder / L"a"));
    EXPECT_TRUE(IsValid(folder / L"a"));
    EXPECT_EQ(GetFileSize(folder / L"a"), 1);
    EXPECT_NO_THROW(FileHolder(folder / L"a", GENERIC_READ | GENERIC_WRITE, 0));
}

TEST(CheckFileExis, IsFalseWhileAnotherDeniesReading)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "x");
    const FileHolder holder(folder / L"a", GENERIC_READ | GENERIC_WRITE, 0);
    EXPECT_FALSE(CheckFileExis(folder / L"a"));
    EXPECT_EQ(GetFileSize(folder / L"a"), 0);
    EXPECT_FALSE(IsValid(folder / L"a"));
    EXPECT_EQ(g_validity, L"文件不存在!");
}

TEST(CheckFileExis, IsFalseWhereAccessIsDenied)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "x");
#if defined(_MSC_VER)
    const ImportPatch patch(
        L"msvcp140.dll", "_wfsopen", +[](const wchar_t*, const wchar_t*, int) -> std::FILE* {
            errno = EACCES;
            return nullptr;
        });
#else
    const ImportPatch patch(
        L"libstdc++-6.dll", "_wfopen", +[](const wchar_t*, const wchar_t*) -> std::FILE* {
            errno = EACCES;
            return nullptr;
        });
#endif
    EXPECT_FALSE(CheckFileExis(folder / L"a"));
    EXPECT_FALSE(IsValid(folder / L"a"));
    EXPECT_EQ(g_validity, L"文件不存在!");
    EXPECT_EQ(GetFileSize(folder / L"a"), 0);
}

TEST(CheckFileExis, TakesALongPathAsItStands)
{
    const TempFolder folder;
    std::wstring path = L"\\\\?\\" + folder.Path();
    for (int level = 0; level < 30; ++level) {
        path += L"\\level with a long name";
        ASSERT_TRUE(::CreateDirectoryW(path.c_str(), nullptr)) << test::LastErrorText();
    }
    EXPECT_TRUE(CheckFolderExis(path)) << test::LastErrorText();
    WriteFileBytes(path + L"\\a.txt", "abc");
    EXPECT_TRUE(CheckFileExis(path + L"\\a.txt")) << test::LastErrorText();
    EXPECT_EQ(GetFileSize(path + L"\\a.txt"), 3);
    EXPECT_TRUE(IsValid(path + L"\\a.txt"));
}

TEST(CheckFileValid, RefusesAnEmptyName)
{
    EXPECT_FALSE(IsValid(L""));
    EXPECT_EQ(g_validity, L"文件名为空");
}

TEST(CheckFileValid, RefusesAMissingFile)
{
    const TempFolder folder;
    EXPECT_FALSE(IsValid(folder / L"missing"));
    EXPECT_EQ(g_validity, L"文件不存在!");
    EXPECT_FALSE(IsValid(folder.Path())) << "a folder";
    EXPECT_EQ(g_validity, L"文件不存在!");
}

TEST(CheckFileValid, AcceptsAReadableFileAndClearsTheMessage)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "");
    EXPECT_TRUE(IsValid(folder / L"a"));
    EXPECT_EQ(g_validity, L"");
}

TEST(CheckFileValid, AcceptsTheMessageAsPath)
{
    const TempFolder folder;
    WriteFileBytes(folder / L"a", "");
    std::wstring both = folder / L"a";
    EXPECT_TRUE(CheckFileValid(both, both));
    EXPECT_EQ(both, L"");
}

TEST(GetFileSize, IsTheNumberOfBytes)
{
    const TempFolder folder;
    for (const std::size_t size : {0U, 1U, 511U, 512U, 513U, 100000U}) {
        WriteFileBytes(folder / L"a", std::string(size, '\n'));
        EXPECT_EQ(GetFileSize(folder / L"a"), static_cast<int>(size));
    }
}

TEST(GetFileSize, IsZeroForWhatCannotBeOpened)
{
    const TempFolder folder;
    EXPECT_EQ(GetFileSize(folder / L"missing"), 0);
    EXPECT_EQ(GetFileSize(folder.Path()), 0);
    EXPECT_EQ(GetFileSize(L""), 0);
}

TEST(GetFileSize, IsZeroForAPipeWhichHasNoEnd)
{
    const std::wstring name = L"\\\\.\\pipe\\kelpkit-" + std::to_wstring(::GetCurrentProcessId());
    const HANDLE pipe = ::CreateNamedPipeW(name.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 0, 0, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetFileSize(name), 0);
    EXPECT_EQ(::ConnectNamedPipe(pipe, nullptr), FALSE);
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_NO_DATA}) << "somebody has opened it, and closed it again";
    ::CloseHandle(pipe);
}

TEST(GetFileSize, KeepsTheLow32BitsOfAFileOver2GiB)
{
    EXPECT_EQ(SizeOfSparseFile(0x7FFFFFFFLL), 0x7FFFFFFF);
    EXPECT_EQ(SizeOfSparseFile(0x80000000LL), -0x7FFFFFFF - 1);
    EXPECT_EQ(SizeOfSparseFile(0xC0000000LL), -0x40000000);
}

TEST(GetFileSize, KeepsTheLow32BitsOfAFileOver4GiB)
{
    EXPECT_EQ(SizeOfSparseFile(0x100000000LL), 0);
    EXPECT_EQ(SizeOfSparseFile(0x100000005LL), 5);
    EXPECT_EQ(SizeOfSparseFile(0x180000000LL), -0x7FFFFFFF - 1);
}
