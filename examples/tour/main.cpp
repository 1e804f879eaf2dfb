// A tour of Kelpkit: sets up the log, upgrades a model file, and shows each family of the library at work.
//
//     tour.exe [--show] [FOLDER]
//
// Works in FOLDER, or in a folder of its own below the temporary one, which it empties first. What it made stays there
// to be looked at. Of what identifies the machine it shows the first characters only, or with --show all. Ends with exit
// code 1 if anything is not as it should be.

#include "Tour.h"

#include <Kelpkit/Kelpkit.h>

#include <windows.h>

using namespace KELPKIT;

int wmain(int argc, wchar_t** argv)
{
    if (argc > 1 && argv[1] == std::wstring(kCrashArgument))
        Crash();
    if (argc > 1 && argv[1] == std::wstring(kThrowArgument))
        Throw();
    ::SetConsoleOutputCP(CP_UTF8);
    const bool showsIdentity = argc > 1 && argv[1] == std::wstring(L"--show");
    const int folderArgument = showsIdentity ? 2 : 1;
    const bool isFolderGiven = argc > folderArgument;
    const std::wstring temp = GetTempPathW();
    if (!isFolderGiven && temp.empty()) {
        Tour::Note(L"There is no temporary folder. Please name a folder to work in.");
        return 1;
    }
    const std::wstring folder = isFolderGiven ? argv[folderArgument] : temp + L"Kelpkit 之旅 tour";
    if (!isFolderGiven)
        DeleteDirectory(folder);

    Tour tour(folder + L"\\", showsIdentity);
    Tour::Note(L"Kelpkit's tour under ANSI code page " + std::to_wstring(::GetACP()) + L", working in");
    Tour::Note(tour.Folder());
    ShowModelUpgrade(tour);
    ShowLog(tour);
    ShowText(tour);
    ShowFiles(tour);
    ShowXmlConfig(tour);
    ShowColors(tour);
    ShowChildPrograms(tour);
    ShowSystem(tour);
    ShowTimes(tour);
    ShowCrash(tour);
    return tour.Summary() == 0 ? 0 : 1;
}
