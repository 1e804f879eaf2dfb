#include "File.h"

#include "support/FailingCall.h"
#include "support/FileContents.h"
#include "support/FileHolder.h"
#include "support/FolderTree.h"
#include "support/ImportPatch.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

using namespace std::string_literals;
using test::FailingCall;
using test::FileHolder;
using test::ImportPatch;
using test::TempFolder;
using xmlparser::ReadWholeFile;
using xmlparser::WriteWholeFile;

namespace
{

constexpr const wchar_t* kThisProgram = L"XmlParserUnitTests.exe";

// A function of the system by its address: what is called by name here is replaced, too.
template <class Function>
Function* SystemFunction(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), name)));
}

const auto g_createFile = SystemFunction<decltype(::CreateFileW)>("CreateFileW");
const auto g_readFile = SystemFunction<decltype(::ReadFile)>("ReadFile");
const auto g_writeFile = SystemFunction<decltype(::WriteFile)>("WriteFile");

// Bytes that differ from place to place, zeros among them.
std::string Bytes(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    return bytes;
}

// What the file holds; nothing where it cannot be read.
std::optional<std::string> Read(const std::wstring& path)
{
    std::string bytes = "left from before";
    return ReadWholeFile(path.c_str(), bytes) ? std::optional(bytes) : std::nullopt;
}

// A folder with the file "file.xml", which holds "old".
class WholeFile : public testing::Test
{
protected:
    WholeFile() { test::WriteFileBytes(m_path, "old"); }

    // Nothing was written, and nothing lies beside the file.
    void ExpectNoWrite(const std::string& bytes) const
    {
        EXPECT_FALSE(WriteWholeFile(m_path, bytes));
        ExpectFile("old");
    }

    void ExpectFile(const std::string& bytes) const
    {
        EXPECT_TRUE(test::ReadFileBytes(m_path) == bytes);
        EXPECT_EQ(test::ListTree(m_folder.Path()), std::vector<std::wstring>{L"file.xml"});
    }

    const TempFolder m_folder;
    const std::wstring m_path = m_folder / L"file.xml";
};

// While it lives, no file can be made.
class NoNewFiles
{
    const ImportPatch m_patch{kThisProgram, "CreateFileW",
                              +[](const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                                  DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
                                  if (disposition == OPEN_EXISTING)
                                      return g_createFile(path, access, share, security, disposition, flags, model);
                                  ::SetLastError(ERROR_ACCESS_DENIED);
                                  return INVALID_HANDLE_VALUE;
                              }};
};

// While it lives, the system takes few bytes at a time.
class SlowDisk
{
public:
    SlowDisk() { s_writes = 0; }

    static int Writes() { return s_writes; }

private:
    static inline int s_writes;

    const ImportPatch m_patch{kThisProgram, "WriteFile",
                              +[](HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
                                  ++s_writes;
                                  return g_writeFile(file, bytes, std::min<DWORD>(size, 3), written, nullptr);
                              }};
};

LONGLONG g_size = 0;

BOOL WINAPI GiveSize(HANDLE /*unused*/, LARGE_INTEGER* size)
{
    size->QuadPart = g_size;
    return TRUE;
}

} // namespace

TEST_F(WholeFile, IsReadAtAnySize)
{
    // Around the piece that is read at once.
    for (const std::size_t size : std::initializer_list<std::size_t>{0, 1, 16383, 16384, 16385, 32768, 100000}) {
        const std::string bytes = Bytes(size);
        test::WriteFileBytes(m_path, bytes);
        EXPECT_TRUE(Read(m_path) == bytes) << size;
    }
}

TEST_F(WholeFile, IsReadOnlyIfItIsOne)
{
    EXPECT_FALSE(Read(m_folder / L"missing.xml"));
    EXPECT_FALSE(Read(m_folder.Path()));
    EXPECT_FALSE(Read(L""));
}

TEST_F(WholeFile, IsReadWhileOthersShareIt)
{
    {
        const FileHolder writer(m_path, GENERIC_WRITE, FILE_SHARE_READ);
        EXPECT_EQ(Read(m_path), "old");
    }
    const FileHolder owner(m_path, GENERIC_READ, 0);
    EXPECT_FALSE(Read(m_path));
}

TEST_F(WholeFile, IsReadAsFarAsItGoesWhereItShrinks)
{
    const std::string bytes = Bytes(20000);
    test::WriteFileBytes(m_path, bytes);
    const ImportPatch patch(kThisProgram, "GetFileSizeEx", &GiveSize);
    g_size = 50000;
    EXPECT_TRUE(Read(m_path) == bytes);
    g_size = 16384;
    EXPECT_TRUE(Read(m_path) == bytes.substr(0, 16384));
    g_size = 16383;
    EXPECT_FALSE(Read(m_path)) << "more was read than there is";
}

TEST_F(WholeFile, IsNotReadFrom2GiBOn)
{
    const std::wstring large = m_folder / L"large.xml";
    test::MakeSparseFile(large, 1LL << 31);
    EXPECT_FALSE(Read(large));
    test::WriteFileBytes(m_path, Bytes(20000));
    const ImportPatch patch(kThisProgram, "GetFileSizeEx", &GiveSize);
    g_size = (1LL << 32) + 20000;
    EXPECT_FALSE(Read(m_path)) << "not the low half of the size";
}

TEST_F(WholeFile, IsNotReadWhereACallFails)
{
    test::WriteFileBytes(m_path, Bytes(20000));
    {
        const FailingCall<decltype(::GetFileSizeEx)> failing(kThisProgram, "GetFileSizeEx", FALSE);
        EXPECT_FALSE(Read(m_path));
    }
    static int s_reads;
    for (const int failing : {1, 2}) {
        s_reads = failing;
        const ImportPatch patch(
            kThisProgram, "ReadFile", +[](HANDLE file, void* bytes, DWORD size, DWORD* read, OVERLAPPED*) -> BOOL {
                return --s_reads > 0 && g_readFile(file, bytes, size, read, nullptr);
            });
        EXPECT_FALSE(Read(m_path)) << failing;
        EXPECT_EQ(s_reads, 0);
    }
}

TEST_F(WholeFile, IsReplaced)
{
    for (const std::string& bytes : {"new"s, ""s, "a\0b\0"s, "x"s, Bytes(100000)}) {
        EXPECT_TRUE(WriteWholeFile(m_path, bytes));
        ExpectFile(bytes);
    }
}

TEST_F(WholeFile, IsMade)
{
    ASSERT_TRUE(::DeleteFileW(m_path.c_str()));
    EXPECT_TRUE(WriteWholeFile(m_path, "new"));
    ExpectFile("new");
    EXPECT_FALSE(WriteWholeFile(m_folder / L"missing\\file.xml", "new"));
    EXPECT_FALSE(WriteWholeFile(m_folder.Path(), "new"));
    EXPECT_FALSE(WriteWholeFile(L"", "new"));
    ExpectFile("new");
}

TEST_F(WholeFile, IsWrittenInAsManyPiecesAsTheSystemTakes)
{
    const std::string bytes = Bytes(10);
    {
        const SlowDisk slow;
        EXPECT_TRUE(WriteWholeFile(m_path, bytes));
        EXPECT_EQ(SlowDisk::Writes(), 4);
    }
    ExpectFile(bytes);
    const NoNewFiles noNewFiles;
    const SlowDisk slow;
    EXPECT_TRUE(WriteWholeFile(m_path, bytes.substr(0, 5)));
    EXPECT_EQ(SlowDisk::Writes(), 2);
    ExpectFile(bytes.substr(0, 5));
}

TEST_F(WholeFile, StaysAsItWasWhereAPieceIsNotTaken)
{
    static int s_writes;
    for (const int failing : {1, 2, 4}) {
        s_writes = failing;
        const ImportPatch patch(
            kThisProgram, "WriteFile",
            +[](HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
                if (--s_writes > 0)
                    return g_writeFile(file, bytes, std::min<DWORD>(size, 3), written, nullptr);
                *written = 0;
                ::SetLastError(ERROR_DISK_FULL);
                return FALSE;
            });
        ExpectNoWrite(Bytes(10));
        EXPECT_EQ(s_writes, 0) << "no more is tried";
    }
}

TEST_F(WholeFile, StaysAsItWasWhereACallFails)
{
    {
        const FailingCall<decltype(::FlushFileBuffers)> failing(kThisProgram, "FlushFileBuffers", FALSE);
        ExpectNoWrite("new");
    }
    const FailingCall<decltype(::MoveFileExW)> failing(kThisProgram, "MoveFileExW", FALSE);
    ExpectNoWrite("new");
}

TEST_F(WholeFile, IsWrittenOverWhereNoneCanBeMade)
{
    const NoNewFiles noNewFiles;
    for (const std::string& bytes : {"longer than before"s, "short"s, ""s}) {
        EXPECT_TRUE(WriteWholeFile(m_path, bytes));
        ExpectFile(bytes);
    }
    EXPECT_FALSE(WriteWholeFile(m_folder / L"missing.xml", "new"));
}

TEST_F(WholeFile, HasItsContentBackWhereWritingOverFails)
{
    const NoNewFiles noNewFiles;
    static int s_writes;
    for (const std::string& bytes : {"longer than before"s, "x"s}) {
        s_writes = 0;
        const ImportPatch patch(
            kThisProgram, "WriteFile",
            +[](HANDLE file, const void* from, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
                g_writeFile(file, from, size, written, nullptr);
                return ++s_writes > 1;
            });
        ExpectNoWrite(bytes);
        EXPECT_EQ(s_writes, 2);
    }
    for (const char* const name : {"FlushFileBuffers", "SetFilePointerEx"}) {
        const FailingCall<BOOL()> failing(kThisProgram, name, FALSE);
        ExpectNoWrite("longer than before");
    }
}

TEST_F(WholeFile, IsNotWrittenThatIsReadOnly)
{
    ASSERT_TRUE(::SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_READONLY));
    ExpectNoWrite("new");
    const NoNewFiles noNewFiles;
    ExpectNoWrite("new");
}
