// The CAD colours on the screen, as Kelpkit has them.
//
//     palette.exe                           shows them in a window
//     palette.exe --picture FILE [INDEX]    writes a picture of the window to FILE, a BMP where its name ends in .bmp,
//                                           else a PNG, with the colour INDEX (170 if not given) pointed at
//
// Exit codes: 0 done, 1 failed, 2 wrong arguments.

#include "Canvas.h"
#include "Painter.h"
#include "PaletteWindow.h"
#include "Picture.h"

#include <Kelpkit/Text.h>

#include <shellapi.h>

#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace
{

enum ExitCode { kDone, kFailed, kWrongArguments };

constexpr wchar_t kPictureOption[] = L"--picture";
constexpr int kPictureIndex = 170;

void Complain(const std::wstring& message)
{
    // A program with windows has no error stream unless somebody gave it one. If it was started from a console, that
    // is where messages are looked for.
    if (::GetFileType(::GetStdHandle(STD_ERROR_HANDLE)) == FILE_TYPE_UNKNOWN)
        ::AttachConsole(ATTACH_PARENT_PROCESS);
    const HANDLE stream = ::GetStdHandle(STD_ERROR_HANDLE);
    const std::wstring line = L"palette: " + message + L"\r\n";
    DWORD written = 0;
    if (::WriteConsoleW(stream, line.c_str(), static_cast<DWORD>(line.size()), &written, nullptr))
        return;
    const std::string bytes = KELPKIT::UnicodeToUTF8(line);
    ::WriteFile(stream, bytes.c_str(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::vector<std::wstring> Arguments()
{
    struct LocalDeleter {
        void operator()(HLOCAL memory) const { ::LocalFree(memory); }
    };
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalDeleter> words(::CommandLineToArgvW(::GetCommandLineW(), &count));
    return words ? std::vector<std::wstring>(words.get() + 1, words.get() + count) : std::vector<std::wstring>();
}

// The colour that an argument names, 0 for none.
int ToIndex(const std::wstring& text)
{
    for (int index = Grid::kFirst; index <= Grid::kLast; ++index) {
        if (text == std::to_wstring(index))
            return index;
    }
    return 0;
}

ExitCode MakePicture(const std::wstring& path, int index)
{
    const Canvas canvas(Grid::kDesignWidth, Grid::kDesignHeight);
    Paint(canvas.Dc(), Grid(canvas.Width(), canvas.Height()), {index, Notice::kNone});
    if (WritePicture(canvas, path))
        return kDone;
    Complain(path + L" cannot be written");
    return kFailed;
}

ExitCode ShowWindowUntilClosed(int command)
{
    // Sizes in real pixels; the window does the scaling itself.
    ::SetProcessDPIAware();
    PaletteWindow window;
    window.RunUntilClosed(command);
    return kDone;
}

ExitCode Run(const std::vector<std::wstring>& arguments, int command)
{
    if (arguments.empty())
        return ShowWindowUntilClosed(command);
    const std::size_t count = arguments.size();
    const int index = count == 3 ? ToIndex(arguments[2]) : kPictureIndex;
    if (count < 2 || count > 3 || arguments[0] != kPictureOption || index == 0) {
        Complain(L"usage: palette.exe [--picture FILE [INDEX]], with an INDEX from 1 to 255");
        return kWrongArguments;
    }
    return MakePicture(arguments[1], index);
}

} // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPWSTR /*commandLine*/, int nShowCmd)
{
    try {
        return Run(Arguments(), nShowCmd);
    } catch (const std::exception& exception) {
        Complain(KELPKIT::AnsiToUnicode(exception.what()));
        return kFailed;
    }
}
