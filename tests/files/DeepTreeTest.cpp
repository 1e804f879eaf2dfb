// Trees as deep as paths allow, for callers with little stack left. Stacks that overflow end the process, so each test
// has one of its own.

#include "support/ImportPatch.h"
#include "support/LittleStack.h"
#include "support/OwnProcess.h"

#include <Kelpkit/Files.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <cwchar>
#include <string>

using namespace KELPKIT;
using test::ImportPatch;
using test::InOwnProcess;
using test::WithLittleStack;

namespace
{

constexpr std::size_t kLittleStack = std::size_t{64} * 1024;
// The longest path that Windows takes.
constexpr std::size_t kLongestPath = 32766;

const std::wstring kTop = LR"(\\?\Q:\top)";

// While it lives, there is one tree for Kelpkit: kTop holds a folder "d", which holds a folder "d", and so on. Nothing
// is really made or deleted. One at a time.
class BottomlessTree
{
public:
    BottomlessTree() { s_made = s_removed = s_searches = 0; }

    static std::size_t Made() { return s_made; }
    static std::size_t Removed() { return s_removed; }
    // The searches that are not closed.
    static std::size_t Searches() { return s_searches; }

private:
    static HANDLE WINAPI Find(const wchar_t* pattern, WIN32_FIND_DATAW* entry)
    {
        if (std::wcsncmp(pattern, kTop.c_str(), kTop.size()) != 0 || std::wcslen(pattern) > kLongestPath) {
            ::SetLastError(ERROR_PATH_NOT_FOUND);
            return INVALID_HANDLE_VALUE;
        }
        *entry = {};
        entry->dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
        entry->cFileName[0] = L'd';
        ++s_searches;
        return &s_searches; // any but the invalid one
    }

    static inline std::size_t s_made;
    static inline std::size_t s_removed;
    static inline std::size_t s_searches;

    ImportPatch m_findFirst{"FindFirstFileW", Find};
    ImportPatch m_findNext{"FindNextFileW", +[](HANDLE, WIN32_FIND_DATAW*) { return FALSE; }};
    ImportPatch m_findClose{"FindClose", +[](HANDLE) {
                                --s_searches;
                                return TRUE;
                            }};
    ImportPatch m_open{"CreateFileW", +[](const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
                           return INVALID_HANDLE_VALUE;
                       }};
    ImportPatch m_create{"CreateDirectoryW", +[](const wchar_t*, SECURITY_ATTRIBUTES*) {
                             ++s_made;
                             return TRUE;
                         }};
    ImportPatch m_remove{"RemoveDirectoryW", +[](const wchar_t*) {
                             ++s_removed;
                             return TRUE;
                         }};
    ImportPatch m_attributes{"SetFileAttributesW", +[](const wchar_t*, DWORD) { return TRUE; }};
    ImportPatch m_copy{"CopyFileW", +[](const wchar_t*, const wchar_t*, BOOL) { return FALSE; }};
    ImportPatch m_delete{"DeleteFileW", +[](const wchar_t*) { return FALSE; }};
};

// How many folders are below kTop where each adds so many characters to the path.
std::size_t Levels(std::size_t characters)
{
    return (kLongestPath - std::wcslen(L"\\*.*") - kTop.size()) / characters + 1;
}

} // namespace

TEST(DeepTree, IsCleared)
{
    InOwnProcess([] {
        const BottomlessTree tree;
        WithLittleStack(kLittleStack, [] { EXPECT_TRUE(CFileFolderManageTool().ClearFolder(kTop)); });
        EXPECT_EQ(BottomlessTree::Removed(), Levels(2) + 1);
        EXPECT_EQ(BottomlessTree::Searches(), 0U);
    });
}

TEST(DeepTree, IsClearedAtTheEndOfAScope)
{
    InOwnProcess([] {
        const BottomlessTree tree;
        WithLittleStack(kLittleStack, [] { const CAutoCreateFolder scoped(kTop); });
        EXPECT_EQ(BottomlessTree::Removed(), Levels(2) + 1);
    });
}

TEST(DeepTree, IsCopied)
{
    InOwnProcess([] {
        const BottomlessTree tree;
        WithLittleStack(kLittleStack, [] { EXPECT_TRUE(CFileFolderManageTool().CopyFolder(kTop, LR"(\\?\Q:\copy)")); });
        EXPECT_EQ(BottomlessTree::Made(), Levels(2) + 1);
        EXPECT_EQ(BottomlessTree::Searches(), 0U);
    });
}

TEST(DeepTree, IsDeleted)
{
    InOwnProcess([] {
        const BottomlessTree tree;
        WithLittleStack(kLittleStack, [] { EXPECT_TRUE(DeleteDirectory(kTop)); });
        // Each level adds two backslashes.
        EXPECT_EQ(BottomlessTree::Removed(), Levels(3) + 1);
        EXPECT_EQ(BottomlessTree::Searches(), 0U);
    });
}
