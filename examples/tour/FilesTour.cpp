#include "Tour.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/SystemInfo.h>
#include <Kelpkit/Text.h>

#include <fstream>

using namespace KELPKIT;

void ShowFiles(Tour& tour)
{
    const std::wstring top = tour.Folder() + L"文件 files";
    const std::wstring file = top + L"\\a\\b\\archive.tar.gz";

    tour.Section(L"Files and folders");
    tour.Step(L"MakeDirectory, three levels", [&] {
        const bool result = MakeDirectory(top + L"\\a\\b");
        return Tour::Result{Text(result) + L", parents had to be made", result && CheckFolderExis(top + L"\\a\\b")};
    });
    tour.Step(L"MakeDirectory, one level more", [&] {
        const bool result = MakeDirectory(top + L"\\a\\b\\c");
        return Tour::Result{Text(result) + L", the first attempt made it",
                            !result && CheckFolderExis(top + L"\\a\\b\\c")};
    });
    tour.Step(L"GetFileDir, GetFileExtion", [&] {
        const bool right = GetFileDir(file) == top + L"\\a\\b\\" && GetFileExtion(file) == L"gz";
        return Tour::Result{L"...\\a\\b\\ and " + GetFileExtion(file), right};
    });
    tour.Step(L"GetFileSize", [&] {
        std::ofstream(file.c_str(), std::ios::binary) << std::string(2049, 'x');
        return Tour::Result{std::to_wstring(GetFileSize(file)) + L" bytes", GetFileSize(file) == 2049};
    });
    tour.Step(L"GetFileMD5", [&] {
        std::string digest;
        BuildMd5Code(std::string(2049, 'x'), digest);
        return Tour::Result{GetFileMD5(file), GetFileMD5(file) == AnsiToUnicode(digest)};
    });
    tour.Step(L"CheckFileValid of a missing file", [&] {
        std::wstring reason;
        const bool valid = CheckFileValid(top + L"\\missing", reason);
        return Tour::Result{Text(valid) + L", " + reason, !valid && reason == L"文件不存在!"};
    });
    tour.Step(L"CopyFolder, without *.gz", [&] {
        CFileFolderManageTool tool;
        tool.SetNoNeedFileExName(L"gz");
        const bool result = tool.CopyFolder(top, top + L" copy");
        const bool right =
            CheckFolderExis(top + L" copy\\a\\b\\c") && !CheckFileExis(top + L" copy\\a\\b\\archive.tar.gz");
        return Tour::Result{Text(result), result && right};
    });
    tour.Step(L"ClearFolder", [&] {
        const bool result = CFileFolderManageTool().ClearFolder(top + L" copy");
        return Tour::Result{Text(result), result && !CheckFolderExis(top + L" copy")};
    });
    tour.Step(L"CAutoCreateFolder", [&] {
        // Nobody else's name: a folder that is there already would be deleted, too.
        const std::wstring path = tour.Folder() + L"scoped-" + GenerateUUID();
        bool made = false;
        {
            const CAutoCreateFolder scoped(path);
            made = CheckFolderExis(path);
        }
        return Tour::Result{L"there in its scope only", made && !CheckFolderExis(path)};
    });
    tour.Step(L"DeleteDirectory", [&] {
        const bool deleted = DeleteDirectory(top);
        return Tour::Result{Text(deleted) + L", with everything in it", deleted && !CheckFolderExis(top)};
    });
}
