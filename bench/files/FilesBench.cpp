#include "Bench.h"

#include "Kelpkit/Files.h"

#include "support/TempFolder.h"

#include <windows.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace bench
{
namespace
{

namespace fs = std::filesystem;

const test::TempFolder& Folder()
{
    static const test::TempFolder folder;
    return folder;
}

// Calls use(name, isFolder) for everything in a folder.
template <class Use>
void ForEach(const std::wstring& folder, const Use& use)
{
    WIN32_FIND_DATAW entry;
    const HANDLE find = ::FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (find == INVALID_HANDLE_VALUE)
        return;
    do {
        const std::wstring name = entry.cFileName;
        if (name != L"." && name != L"..")
            use(name, (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
    } while (::FindNextFileW(find, &entry));
    ::FindClose(find);
}

// What is written in place of a function that copies a tree where there is none.
void CopyTree(const std::wstring& from, const std::wstring& to)
{
    ::CreateDirectoryW(to.c_str(), nullptr);
    ForEach(from, [&](const std::wstring& name, bool isFolder) {
        const std::wstring source = from + L'\\' + name;
        const std::wstring target = to + L'\\' + name;
        if (isFolder)
            CopyTree(source, target);
        else
            ::CopyFileW(source.c_str(), target.c_str(), FALSE);
    });
}

void ClearTree(const std::wstring& folder)
{
    ForEach(folder, [&](const std::wstring& name, bool isFolder) {
        const std::wstring path = folder + L'\\' + name;
        if (isFolder) {
            ClearTree(path);
            ::RemoveDirectoryW(path.c_str());
        } else {
            ::DeleteFileW(path.c_str());
        }
    });
}

// A folder with so many small files, fifty to a folder.
std::wstring MakeTree(const std::wstring& name, std::size_t files)
{
    const fs::path root = Folder() / name;
    for (std::size_t i = 0; i < files; ++i) {
        const fs::path folder = root / std::to_wstring(i / 50);
        fs::create_directories(folder);
        std::ofstream(folder / (std::to_wstring(i) + L".txt")) << std::string(100 + i % 900, 'x');
    }
    return root.wstring();
}

void CompareTrees()
{
    const std::wstring& source = Keep(MakeTree(L"source", 5'000));
    const std::wstring& target = Keep(Folder() / L"target");
    const auto remove = [&] {
        ClearTree(target);
        ::RemoveDirectoryW(target.c_str());
    };
    Comparison("copy a tree", "5,000 small files")
        .KelpkitAfter(remove, [&] { return KELPKIT::CFileFolderManageTool().CopyFolder(source, target); })
        .PeerAfter(
            remove, "a loop of bare calls",
            [&] {
                CopyTree(source, target);
                return 0;
            },
            1.03)
        .PeerAfter(remove, "std::filesystem", [&] {
            fs::copy(source, target, fs::copy_options::recursive);
            return 0;
        });

    const auto fill = [&] { CopyTree(source, target); };
    Comparison("clear a tree", "5,000 small files")
        .KelpkitAfter(fill, [&] { return KELPKIT::CFileFolderManageTool().ClearFolder(target); })
        .PeerAfter(
            fill, "a loop of bare calls",
            [&] {
                ClearTree(target);
                return 0;
            },
            1.03)
        .PeerAfter(fill, "std::filesystem", [&] { return fs::remove_all(target); });
}

void CompareQueries()
{
    const std::wstring& path = Keep(MakeTree(L"queries", 1) + L"\\0\\0.txt");
    Comparison("whether a file exists", "it does")
        .Kelpkit([&path] { return KELPKIT::CheckFileExis(path); })
        .Peer("GetFileAttributesW", [&path] { return ::GetFileAttributesW(path.c_str()); })
        .Peer("std::filesystem", [&path] { return fs::is_regular_file(path); });
    Comparison("size of a file", "100 bytes")
        .Kelpkit([&path] { return KELPKIT::GetFileSize(path); })
        .Peer("GetFileAttributesExW",
              [&path] {
                  WIN32_FILE_ATTRIBUTE_DATA data = {};
                  ::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data);
                  return data.nFileSizeLow;
              })
        .Peer("std::filesystem", [&path] { return fs::file_size(path); });
    Comparison("folder of a path", std::to_string(path.size()) + " units")
        .Kelpkit([&path] { return KELPKIT::GetFileDir(path); })
        .Peer("std::filesystem", [&path] { return fs::path(path).parent_path().wstring(); });
}

} // namespace

void Register()
{
    CompareTrees();
    CompareQueries();

    Growth(
        "copy a tree over itself, files",
        [](std::size_t size) {
            const std::wstring& source = Keep(MakeTree(L"growth" + std::to_wstring(size), size));
            return [&source] { return KELPKIT::CFileFolderManageTool().CopyFolder(source, Folder() / L"copy"); };
        },
        5);
    Growth("copy of a text, units", [](std::size_t size) {
        const std::wstring& text = Keep(std::wstring(size, L'x'));
        return [&text] { return std::wstring(text); };
    });
    Growth("folder of a path, units", [](std::size_t size) {
        const std::wstring& path = Keep(std::wstring(size, L'x') + L"\\y");
        return [&path] { return KELPKIT::GetFileDir(path); };
    });
}

} // namespace bench
