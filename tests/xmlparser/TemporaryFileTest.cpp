#include "TemporaryFile.h"

#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <thread>
#include <vector>

using test::TempFolder;
using xmlparser::RemoveLeftovers;
using xmlparser::TemporaryName;

namespace
{

// Of a process that is not there.
constexpr const wchar_t* kLeftover = L".4294967292-1239.saving";

} // namespace

TEST(TemporaryName, IsTheFilesWithProcessAndThread)
{
    const std::wstring process = std::to_wstring(::GetCurrentProcessId());
    EXPECT_EQ(TemporaryName(L"C:\\a\\file.xml"),
              L"C:\\a\\file.xml." + process + L"-" + std::to_wstring(::GetCurrentThreadId()) + L".saving");
    EXPECT_EQ(TemporaryName(L"x"), TemporaryName(L"x"));
}

TEST(TemporaryName, DiffersFromThreadToThread)
{
    std::wstring other;
    std::thread([&other] { other = TemporaryName(L"x"); }).join();
    EXPECT_NE(TemporaryName(L"x"), other);
}

TEST(Leftovers, AreRemovedOfThisFileAndOfProcessesThatAreGone)
{
    const TempFolder folder;
    const std::wstring path = folder / L"file.xml";
    const std::wstring mine = TemporaryName(path);
    const std::wstring others = folder / L"file.xml.bak" + kLeftover;
    const std::wstring odd = folder / L"file.xml.04294967292-4.saving";
    for (const std::wstring& name : {path, path + kLeftover, path + L".4294967288-90.saving", mine, others, odd})
        test::WriteFileBytes(name, "x");
    RemoveLeftovers(path);
    for (const std::wstring& name : {path, mine, others, odd})
        EXPECT_TRUE(test::Exists(name)) << testing::PrintToString(name);
    EXPECT_EQ(test::ListTree(folder.Path()).size(), 4U);
}

TEST(Leftovers, AreFoundByPathsOfAnyForm)
{
    const TempFolder folder;
    for (const wchar_t* const between : {L"/", L"\\.\\", L"\\..\\sub.dir/"}) {
        const std::wstring sub = folder / L"sub.dir";
        ::CreateDirectoryW(sub.c_str(), nullptr);
        test::WriteFileBytes(sub + L"\\a" + kLeftover, "x");
        RemoveLeftovers(sub + between + L"a");
        EXPECT_FALSE(test::Exists(sub + L"\\a" + kLeftover)) << testing::PrintToString(between);
    }
}

TEST(Leftovers, NeedNotBeThere)
{
    const TempFolder folder;
    RemoveLeftovers(folder / L"file.xml");
    RemoveLeftovers(folder / L"missing\\file.xml");
    RemoveLeftovers(L"");
    EXPECT_TRUE(test::ListTree(folder.Path()).empty());
}
