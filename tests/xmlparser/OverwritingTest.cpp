#include <Kelpkit/XMLParser.h>

#include "support/FailingCall.h"
#include "support/FolderTree.h"
#include "support/HandleCount.h"
#include "support/ImportPatch.h"
#include "xmlparser/Sharing.h"
#include "xmlparser/TreeFile.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <cwchar>
#include <string>
#include <utility>
#include <vector>

namespace
{

using test::FailingCall;
using test::HeldFile;
using test::ImportPatch;
using test::kShareAll;
using test::TreeFile;

// While it lives, saves can make no file in any folder.
class NoNewFiles
{
    const ImportPatch m_patch{L"XMLParser.dll", "CreateFileW",
                              +[](const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                                  DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
                                  if (disposition == OPEN_EXISTING)
                                      return ::CreateFileW(path, access, share, security, disposition, flags, model);
                                  ::SetLastError(ERROR_ACCESS_DENIED);
                                  return INVALID_HANDLE_VALUE;
                              }};
};

// A tree that was loaded from "<r/>", or one that is longer, and is saved over the other.
class XMLTreeOverwrite : public testing::TestWithParam<std::pair<const char*, const char*>>
{
protected:
    XMLTreeOverwrite() { m_file.Write(Before()); }

    static std::string Before() { return GetParam().second; }
    static std::string After() { return GetParam().first; }

    bool Save() const
    {
        const std::size_t handles = test::HandleCount();
        const bool isSaved = m_tree->SaveFile(m_file.Path());
        EXPECT_EQ(test::HandleCount(), handles);
        EXPECT_EQ(test::ListTree(m_file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
        return isSaved;
    }

    void ExpectNoSave() const
    {
        EXPECT_FALSE(Save());
        EXPECT_EQ(m_file.Bytes(), Before());
    }

    const TreeFile m_file{After()};
    const IXMLTreePtr m_tree = m_file.Tree();
    const NoNewFiles m_noNewFiles;
};

INSTANTIATE_TEST_SUITE_P(LongerOrShorter, XMLTreeOverwrite,
                         testing::Values(std::pair("<r/>", "<r>before</r>"), std::pair("<r>after</r>", "<r/>")));

} // namespace

TEST_P(XMLTreeOverwrite, SavesWhereNoFileCanBeMade)
{
    constexpr DWORD kAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE;
    ASSERT_TRUE(::SetFileAttributesW(m_file.Path().GetString(), kAttributes));
    EXPECT_TRUE(Save());
    EXPECT_EQ(m_file.Bytes(), After());
    EXPECT_EQ(::GetFileAttributesW(m_file.Path().GetString()), kAttributes);
}

TEST_P(XMLTreeOverwrite, PutsTheOldContentBackWhereWritingFails)
{
    static int s_writes;
    s_writes = 0;
    const ImportPatch patch(
        L"XMLParser.dll", "WriteFile",
        +[](HANDLE handle, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
            if (++s_writes > 2)
                return ::WriteFile(handle, bytes, size, written, nullptr);
            // All but one byte, and then no more.
            const BOOL isWritten = s_writes == 1 && ::WriteFile(handle, bytes, size - 1, written, nullptr);
            ::SetLastError(ERROR_DISK_FULL);
            return isWritten;
        });
    ExpectNoSave();
    EXPECT_EQ(s_writes, 3);
}

TEST_P(XMLTreeOverwrite, PutsTheOldContentBackWhereTheDiskDoesNotTakeTheNewOne)
{
    const FailingCall<decltype(::FlushFileBuffers)> failing(L"XMLParser.dll", "FlushFileBuffers", FALSE);
    ExpectNoSave();
}

TEST_P(XMLTreeOverwrite, PutsTheOldContentBackWhereTheEndCannotBeSet)
{
    static int s_calls;
    s_calls = 0;
    const ImportPatch patch(
        L"XMLParser.dll", "SetEndOfFile", +[](HANDLE file) -> BOOL { return ++s_calls > 1 && ::SetEndOfFile(file); });
    ExpectNoSave();
    EXPECT_EQ(s_calls, 2);
}

TEST_P(XMLTreeOverwrite, TouchesNothingWhereTheOldContentCannotBeRead)
{
    {
        const FailingCall<decltype(::ReadFile)> failing(L"XMLParser.dll", "ReadFile", FALSE);
        ExpectNoSave();
    }
    const FailingCall<decltype(::SetFilePointerEx)> failing(L"XMLParser.dll", "SetFilePointerEx", FALSE);
    ExpectNoSave();
}

TEST_P(XMLTreeOverwrite, FailsOnAMissingOrReadOnlyFile)
{
    const std::wstring other = m_file.Folder() / L"other.xml";
    EXPECT_FALSE(m_tree->SaveFile(other.c_str()));
    ASSERT_TRUE(::SetFileAttributesW(m_file.Path().GetString(), FILE_ATTRIBUTE_READONLY));
    ExpectNoSave();
}

TEST_P(XMLTreeOverwrite, FailsWhileAnotherHoldsTheFile)
{
    for (const DWORD access : test::kAccesses) {
        {
            const HeldFile holder(m_file.Path().GetString(), access, kShareAll, HeldFile::kForEver);
            EXPECT_FALSE(Save()) << access;
            EXPECT_GE(HeldFile::Now(), 500U) << access;
            EXPECT_LT(HeldFile::Now(), 1000U) << access;
        }
        EXPECT_EQ(m_file.Bytes(), Before()) << access;
    }
}

TEST_P(XMLTreeOverwrite, WaitsForAReaderThatLetsGo)
{
    const HeldFile reader(m_file.Path().GetString(), GENERIC_READ, kShareAll, 3);
    EXPECT_TRUE(m_tree->SaveFile(m_file.Path()));
    EXPECT_EQ(HeldFile::Now(), 3U);
    EXPECT_EQ(m_file.Bytes(), After());
}

TEST_P(XMLTreeOverwrite, CutsTheFileWhenTheNewContentIsOnTheDisk)
{
    static std::string s_calls;
    s_calls.clear();
    const ImportPatch write(
        L"XMLParser.dll", "WriteFile",
        +[](HANDLE handle, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
            s_calls += "write ";
            return ::WriteFile(handle, bytes, size, written, nullptr);
        });
    const ImportPatch flush(
        L"XMLParser.dll", "FlushFileBuffers", +[](HANDLE file) -> BOOL {
            s_calls += "flush ";
            return ::FlushFileBuffers(file);
        });
    const ImportPatch cut(
        L"XMLParser.dll", "SetEndOfFile", +[](HANDLE file) -> BOOL {
            s_calls += "cut ";
            return ::SetEndOfFile(file);
        });
    EXPECT_TRUE(Save());
    EXPECT_EQ(s_calls, "write flush cut flush ");
}

TEST_P(XMLTreeOverwrite, ShowsReadersNothingHalfWritten)
{
    const test::UnsharedWrites writes(m_file.Path().GetString());
    EXPECT_TRUE(Save());
    EXPECT_EQ(writes.Count(), 1);
}

TEST(XMLTreeSave, OverwritesAFileWhosePathIsAsLongAsCanBe)
{
    const TreeFile file("<r/>");
    const std::wstring stem = file.Folder() / L"";
    const std::wstring path = stem + std::wstring(MAX_PATH - 1 - stem.size(), L'x');
    test::WriteFileBytes(path, "<before/>");
    // As Windows does, which Wine does not.
    const ImportPatch patch(
        L"XMLParser.dll", "CreateFileW",
        +[](const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
            DWORD flags, HANDLE model) -> HANDLE {
            if (std::wcslen(name) < MAX_PATH)
                return ::CreateFileW(name, access, share, security, disposition, flags, model);
            ::SetLastError(ERROR_PATH_NOT_FOUND);
            return INVALID_HANDLE_VALUE;
        });
    EXPECT_TRUE(file.Tree()->SaveFile(path.c_str()));
    EXPECT_EQ(test::ReadFileBytes(path), "<r/>");
}

TEST(XMLTreeSave, OverwritesAFileWhoseNameIsAsLongAsCanBe)
{
    const TreeFile file("<r/>");
    const std::wstring path = L"\\\\?\\" + (file.Folder() / std::wstring(255, L'x'));
    test::WriteFileBytes(path, "<before/>");
    EXPECT_TRUE(file.Tree()->SaveFile(path.c_str()));
    EXPECT_EQ(test::ReadFileBytes(path), "<r/>");
    EXPECT_EQ(test::ListTree(file.Folder().Path()).size(), 2U);
    EXPECT_TRUE(::DeleteFileW(path.c_str()));
}

TEST(XMLTreeSave, OverwritesNothingThatItCanReplace)
{
    const TreeFile file("<r/>");
    static int s_openings;
    s_openings = 0;
    const ImportPatch patch(
        L"XMLParser.dll", "CreateFileW",
        +[](const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
            DWORD flags, HANDLE model) -> HANDLE {
            if (disposition == OPEN_EXISTING && (access & GENERIC_WRITE) != 0)
                ++s_openings;
            return ::CreateFileW(path, access, share, security, disposition, flags, model);
        });
    EXPECT_TRUE(file.Add(L"a", L"1"));
    const IXMLTreePtr tree = file.Tree();
    {
        const FailingCall<decltype(::WriteFile)> failing(L"XMLParser.dll", "WriteFile", FALSE);
        EXPECT_FALSE(tree->SaveFile(file.Path()));
    }
    const FailingCall<decltype(::MoveFileExW)> failing(L"XMLParser.dll", "MoveFileExW", FALSE);
    EXPECT_FALSE(tree->SaveFile(file.Path()));
    EXPECT_EQ(s_openings, 0);
    EXPECT_EQ(file.Bytes(), "<r><a>1</a></r>");
}
