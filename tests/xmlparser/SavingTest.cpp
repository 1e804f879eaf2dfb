#include <Kelpkit/XMLParser.h>

#include "support/FailingCall.h"
#include "support/FileHolder.h"
#include "support/FolderTree.h"
#include "support/HandleCount.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/Threads.h"
#include "xmlparser/Sharing.h"
#include "xmlparser/TreeFile.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace
{

using test::FailingCall;
using test::FileHolder;
using test::HeldFile;
using test::ImportPatch;
using test::kShareAll;
using test::TreeFile;

// The end of the name under which this thread writes beside the file.
std::wstring TemporaryEnding()
{
    return L"." + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(::GetCurrentThreadId()) +
           L".saving";
}

// The end of such a name for a process that is not there.
constexpr const wchar_t* kLeftoverEnding = L".4294967292-4.saving";

// The save fails, the file is as it was, and nothing lies beside it.
void ExpectNoSave(const TreeFile& file)
{
    const std::string before = file.Bytes();
    const IXMLTreePtr tree = file.Tree();
    EXPECT_TRUE(tree->AddChild(L"new", L"1"));
    const std::size_t handles = test::HandleCount();
    EXPECT_FALSE(tree->SaveFile(file.Path()));
    EXPECT_EQ(test::HandleCount(), handles);
    EXPECT_EQ(file.Bytes(), before);
    EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
}

// It waited for longer than a moment and less than a second.
void ExpectToHaveGivenUp()
{
    EXPECT_GE(HeldFile::Now(), 500U);
    EXPECT_LT(HeldFile::Now(), 1000U);
}

std::vector<std::byte> Dacl(const CString& path)
{
    DWORD size = 0;
    ::GetFileSecurityW(path.GetString(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::byte> descriptor(size);
    EXPECT_TRUE(::GetFileSecurityW(path.GetString(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size));
    return descriptor;
}

// The access rights with which saves make their files, while it lives. One at a time.
class GivenRights
{
public:
    GivenRights() { s_rights.clear(); }

    static const std::vector<std::byte>& Bytes() { return s_rights; }

private:
    static void Note(const SECURITY_ATTRIBUTES* security)
    {
        s_rights.clear();
        if (security == nullptr || !::IsValidSecurityDescriptor(security->lpSecurityDescriptor))
            return;
        const auto* const bytes = static_cast<const std::byte*>(security->lpSecurityDescriptor);
        s_rights.assign(bytes, bytes + ::GetSecurityDescriptorLength(security->lpSecurityDescriptor));
    }

    static inline std::vector<std::byte> s_rights;

    ImportPatch m_patch{L"XMLParser.dll", "CreateFileW",
                        +[](const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                            DWORD disposition, DWORD flags, HANDLE model) -> HANDLE {
                            if (disposition == CREATE_NEW)
                                Note(security);
                            return ::CreateFileW(path, access, share, security, disposition, flags, model);
                        }};
};

// The whole content of the file, read as others read it.
std::string ReadShared(const CString& path)
{
    const FileHolder file(path.GetString(), GENERIC_READ, kShareAll);
    std::string bytes(1 << 20, '\0');
    DWORD size = 0;
    EXPECT_TRUE(::ReadFile(file.Handle(), bytes.data(), static_cast<DWORD>(bytes.size()), &size, nullptr));
    bytes.resize(size);
    return bytes;
}

} // namespace

TEST(XMLTreeSave, LeavesNothingBesideTheFile)
{
    const TreeFile file("<r/>");
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(file.Bytes(), "<r><a>1</a></r>");
    EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
}

TEST(XMLTreeSave, MakesAnotherFile)
{
    const TreeFile file("<r/>");
    const std::wstring other = file.Folder() / L"其他 other.xml";
    EXPECT_TRUE(file.Tree()->SaveFile(other.c_str()));
    EXPECT_EQ(test::ReadFileBytes(other), "<r/>");
}

TEST(XMLTreeSave, KeepsAttributesAndAccessRights)
{
    const TreeFile file("<r/>");
    for (const DWORD attributes :
         std::initializer_list<DWORD>{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE,
                                      FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_NORMAL}) {
        ASSERT_TRUE(::SetFileAttributesW(file.Path().GetString(), attributes)) << test::LastErrorText();
        const DWORD before = ::GetFileAttributesW(file.Path().GetString());
        const std::vector<std::byte> rights = Dacl(file.Path());
        EXPECT_TRUE(file.Add(L"a", L"1"));
        EXPECT_EQ(::GetFileAttributesW(file.Path().GetString()), before);
        EXPECT_EQ(Dacl(file.Path()), rights);
    }
}

TEST(XMLTreeSave, MakesTheFileWithTheOldOnesAccessRights)
{
    const TreeFile file("<r/>");
    const std::vector<std::byte> rights = Dacl(file.Path());
    ASSERT_FALSE(rights.empty());
    const GivenRights given;
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(GivenRights::Bytes(), rights);
}

TEST(XMLTreeSave, MakesTheFileWithAccessRightsOfAnySize)
{
    const TreeFile file("<r/>");
    const std::vector<std::byte> rights = Dacl(file.Path());
    const GivenRights given;
    const ImportPatch large(
        L"XMLParser.dll", "GetFileSecurityW",
        +[](const wchar_t* path, SECURITY_INFORMATION wanted, void* descriptor, DWORD size, DWORD* needed) -> BOOL {
            constexpr DWORD kNeeded = 60000;
            if (size >= kNeeded)
                return ::GetFileSecurityW(path, wanted, descriptor, size, needed);
            *needed = kNeeded;
            ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return FALSE;
        });
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(GivenRights::Bytes(), rights);
}

TEST(XMLTreeSave, FailsOnAReadOnlyFile)
{
    const TreeFile file("<r/>");
    ASSERT_TRUE(::SetFileAttributesW(file.Path().GetString(), FILE_ATTRIBUTE_READONLY));
    ExpectNoSave(file);
}

TEST(XMLTreeSave, FailsInAMissingFolderAndOnAFolder)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    EXPECT_FALSE(tree->SaveFile((file.Folder() / L"missing\\a.xml").c_str()));
    EXPECT_FALSE(tree->SaveFile(file.Folder().Path().c_str()));
    EXPECT_FALSE(tree->SaveFile(L""));
    EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
}

TEST(XMLTreeSave, FailsWhileAnotherHoldsTheFile)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    EXPECT_TRUE(tree->AddChild(L"new", L"1"));
    {
        const HeldFile holder(file.Path().GetString(), GENERIC_READ, 0, HeldFile::kForEver);
        EXPECT_FALSE(tree->SaveFile(file.Path()));
        EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
    }
    EXPECT_EQ(file.Bytes(), "<r/>");
    EXPECT_TRUE(tree->SaveFile(file.Path())) << "the tree is still good";
    EXPECT_EQ(file.Bytes(), "<r><new>1</new></r>");
}

TEST(XMLTreeSave, WaitsForAReaderThatLetsGo)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    const HeldFile reader(file.Path().GetString(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, 3);
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    EXPECT_EQ(HeldFile::Now(), 3U);
}

TEST(XMLTreeSave, GivesUpAfterLessThanASecond)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    const HeldFile reader(file.Path().GetString(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          HeldFile::kForEver);
    EXPECT_FALSE(tree->SaveFile(file.Path()));
    ExpectToHaveGivenUp();
}

TEST(XMLTreeSave, FailsOnAFullDisk)
{
    const TreeFile file("<r/>");
    const ImportPatch patch(
        L"XMLParser.dll", "WriteFile",
        +[](HANDLE handle, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
            ::WriteFile(handle, bytes, size / 2, written, nullptr);
            ::SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
    ExpectNoSave(file);
}

TEST(XMLTreeSave, FailsWhereWritingGetsNowhere)
{
    const TreeFile file("<r/>");
    const ImportPatch patch(
        L"XMLParser.dll", "WriteFile", +[](HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) -> BOOL {
            *written = 0;
            return TRUE;
        });
    ExpectNoSave(file);
}

TEST(XMLTreeSave, FailsWhereTheTextCannotBeConverted)
{
    const TreeFile file("<?xml version=\"1.0\" encoding=\"GBK\"?><r>\xD6\xD0</r>");
    const IXMLTreePtr tree = file.Tree();
    const std::string before = file.Bytes();
    for (const char* const name : {"MultiByteToWideChar", "WideCharToMultiByte"}) {
        const FailingCall<int()> failing(L"XMLParser.dll", name, 0);
        EXPECT_FALSE(tree->SaveFile(file.Path())) << name;
    }
    EXPECT_EQ(file.Bytes(), before);
    EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
}

TEST(XMLTreeSave, DoesWithoutTheOldAccessRightsWhereTheyCannotBeRead)
{
    const TreeFile file("<r/>");
    const FailingCall<decltype(::GetFileSecurityW)> failing(L"XMLParser.dll", "GetFileSecurityW", FALSE);
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(file.Bytes(), "<r><a>1</a></r>");
}

TEST(XMLTreeSave, LeavesToTheNextOneWhatItCannotDelete)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    {
        const FailingCall<decltype(::MoveFileExW)> move(L"XMLParser.dll", "MoveFileExW", FALSE);
        const FailingCall<decltype(::DeleteFileW)> remove(L"XMLParser.dll", "DeleteFileW", FALSE);
        EXPECT_FALSE(tree->SaveFile(file.Path()));
    }
    EXPECT_TRUE(test::Exists((file.Folder() / L"file.xml") + TemporaryEnding()));
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
}

TEST(XMLTreeSave, FailsWhereTheDiskDoesNotTakeTheFile)
{
    const TreeFile file("<r/>");
    const ImportPatch patch(
        L"XMLParser.dll", "FlushFileBuffers", +[](HANDLE) -> BOOL {
            ::SetLastError(ERROR_GEN_FAILURE);
            return FALSE;
        });
    ExpectNoSave(file);
}

TEST(XMLTreeSave, FailsWhereTheFileCannotBePutInPlace)
{
    const TreeFile file("<r/>");
    const ImportPatch patch(
        L"XMLParser.dll", "MoveFileExW", +[](const wchar_t*, const wchar_t*, DWORD) -> BOOL {
            ::SetLastError(ERROR_NOT_SAME_DEVICE);
            return FALSE;
        });
    ExpectNoSave(file);
}

TEST(XMLTreeSave, FlushesBeforeItReplaces)
{
    const TreeFile file("<r/>");
    static std::string s_calls;
    s_calls.clear();
    const ImportPatch flush(
        L"XMLParser.dll", "FlushFileBuffers", +[](HANDLE handle) -> BOOL {
            s_calls += "flush ";
            return ::FlushFileBuffers(handle);
        });
    const ImportPatch move(
        L"XMLParser.dll", "MoveFileExW", +[](const wchar_t* from, const wchar_t* to, DWORD flags) -> BOOL {
            s_calls += "move ";
            EXPECT_EQ(flags, DWORD{MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH});
            return ::MoveFileExW(from, to, flags);
        });
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(s_calls, "flush move ");
}

TEST(XMLTreeSave, TakesThePlaceOfWhatAKilledProcessLeft)
{
    const TreeFile file("<r/>");
    // Of a process and thread with the same numbers as these, of another one, and under the name in capitals.
    for (const std::wstring& name : {L"file.xml" + TemporaryEnding(), std::wstring(L"file.xml") + kLeftoverEnding,
                                     std::wstring(L"FILE.XML") + kLeftoverEnding}) {
        const std::wstring leftover = file.Folder() / name;
        test::WriteFileBytes(leftover, "<r><half");
        ASSERT_TRUE(::SetFileAttributesW(leftover.c_str(), FILE_ATTRIBUTE_HIDDEN));
        EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
        EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
    }
    EXPECT_EQ(file.Bytes(), "<r/>");
}

TEST(XMLTreeSave, LeavesFilesAloneThatAreNotItsOwn)
{
    const TreeFile file("<r/>");
    const std::wstring live = std::to_wstring(::GetCurrentProcessId()) + L"-4.saving";
    const std::vector<std::wstring> names = {L"file.xml.saving",
                                             L"file.xml.-.saving",
                                             L"file.xml.4294967292.saving",
                                             L"file.xml.04294967292-4.saving",
                                             L"file.xml.4294967292-4.saving.bak",
                                             L"file.xml.4294967292-4x.saving",
                                             L"file.xml.4294967292- 4.saving",
                                             L"file.xml.4294967292-4-4.saving",
                                             L"file.xml.99999999999-4.saving",
                                             L"file.xml.old.4294967292-4.saving",
                                             L"file.xm.4294967292-4.saving",
                                             L"other.xml.4294967292-4.saving",
                                             L"file.xml." + live};
    for (const std::wstring& name : names)
        test::WriteFileBytes(file.Folder() / name, "theirs");
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(test::ListTree(file.Folder().Path()).size(), names.size() + 1);
    for (const std::wstring& name : names)
        EXPECT_TRUE(test::Exists(file.Folder() / name)) << name;
}

TEST(XMLTreeSave, LeavesFilesAloneOfProcessesThatCannotBeSeen)
{
    const TreeFile file("<r/>");
    const std::wstring leftover = (file.Folder() / L"file.xml") + kLeftoverEnding;
    test::WriteFileBytes(leftover, "<r><half");
    {
        // As for a process of another user.
        const ImportPatch denied(
            L"XMLParser.dll", "OpenProcess", +[](DWORD, BOOL, DWORD) -> HANDLE {
                ::SetLastError(ERROR_ACCESS_DENIED);
                return nullptr;
            });
        EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
    }
    {
        const ImportPatch open(
            L"XMLParser.dll", "OpenProcess", +[](DWORD access, BOOL inherits, DWORD) {
                return ::OpenProcess(access, inherits, ::GetCurrentProcessId());
            });
        const FailingCall<decltype(::WaitForSingleObject)> wait(L"XMLParser.dll", "WaitForSingleObject",
                                                                static_cast<std::intptr_t>(WAIT_FAILED));
        EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
    }
    EXPECT_TRUE(test::Exists(leftover));
}

TEST(XMLTreeSave, DoesNotNeedToFindLeftovers)
{
    const TreeFile file("<r/>");
    for (const wchar_t* const name : {L"file.xml.4294967288-4.saving", L"file.xml.4294967292-4.saving"})
        test::WriteFileBytes(file.Folder() / name, "<r><half");
    const std::size_t handles = test::HandleCount();
    {
        const FailingCall<decltype(::FindFirstFileW)> failing(L"XMLParser.dll", "FindFirstFileW",
                                                              reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE));
        EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
    }
    EXPECT_EQ(test::ListTree(file.Folder().Path()).size(), 3U);
    {
        const FailingCall<decltype(::FindNextFileW)> failing(L"XMLParser.dll", "FindNextFileW", FALSE);
        EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
    }
    EXPECT_EQ(test::ListTree(file.Folder().Path()).size(), 2U);
    EXPECT_TRUE(file.Tree()->SaveFile(file.Path()));
    EXPECT_EQ(test::ListTree(file.Folder().Path()).size(), 1U);
    EXPECT_EQ(test::HandleCount(), handles);
}

TEST(XMLTreeSave, WaitsForAnotherWriterThatLetsGo)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    const HeldFile writer((file.Folder() / L"file.xml") + TemporaryEnding(), GENERIC_WRITE, 0, 3, CREATE_NEW);
    EXPECT_TRUE(tree->AddChild(L"new", L"1"));
    EXPECT_TRUE(tree->SaveFile(file.Path()));
    EXPECT_EQ(HeldFile::Now(), 3U);
    EXPECT_EQ(file.Bytes(), "<r><new>1</new></r>");
    EXPECT_EQ(test::ListTree(file.Folder().Path()), std::vector<std::wstring>{L"file.xml"});
}

TEST(XMLTreeSave, WaitsForAnotherWriterAndGivesUp)
{
    const TreeFile file("<r/>");
    const IXMLTreePtr tree = file.Tree();
    const std::wstring temporary = (file.Folder() / L"file.xml") + TemporaryEnding();
    {
        const HeldFile writer(temporary, GENERIC_WRITE, 0, HeldFile::kForEver, CREATE_NEW);
        EXPECT_FALSE(tree->SaveFile(file.Path()));
        ExpectToHaveGivenUp();
        EXPECT_TRUE(test::Exists(temporary)) << "it is the other writer's";
    }
    EXPECT_TRUE(tree->SaveFile(file.Path()));
}

TEST(XMLTreeSave, SharesTheFileThatItWritesWithNobody)
{
    const TreeFile file("<r/>");
    const test::UnsharedWrites writes((file.Folder() / L"file.xml") + TemporaryEnding());
    EXPECT_TRUE(file.Add(L"a", L"1"));
    EXPECT_EQ(writes.Count(), 1);
}

TEST(XMLTreeSave, ShowsReadersTheOldFileOrTheNewOne)
{
    const TreeFile file("<r><a>0</a></r>");
    const CString path = file.Path();
    std::atomic<bool> isOver = false;
    std::string last = file.Bytes();
    test::InThreads(3, [&](std::size_t number) {
        if (number == 0) {
            for (std::size_t i = 1; i <= 50; ++i) {
                const std::wstring text(i * 100, L'x');
                if (file.Add(L"a", text))
                    last = file.Bytes();
            }
            isOver = true;
            return;
        }
        while (!isOver) {
            const std::string bytes = ReadShared(path);
            const std::string end = "</a></r>";
            EXPECT_EQ(bytes.substr(0, 6), "<r><a>");
            EXPECT_EQ(bytes.substr(bytes.size() - std::min(bytes.size(), end.size())), end);
            ::Sleep(1);
        }
    });
    EXPECT_NE(last, "<r><a>0</a></r>");
    EXPECT_EQ(file.Bytes(), last);
}
