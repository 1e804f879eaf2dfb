// The CAD colours on the screen, as Kelpkit has them.
//
//     palette.exe                           shows them in a window
//     palette.exe --picture FILE [INDEX]    writes a picture of the window to FILE, a BMP where its name ends in .bmp,
//                                           else a PNG, with the colour INDEX (170 if not given) pointed at
//
// Exit codes: 0 done, 1 failed, 2 wrong arguments.

#include "Canvas.h"
#include "CommandLine.h"
#include "Painter.h"
#include "PaletteWindow.h"
#include "Picture.h"

#include <Kelpkit/Text.h>

#include <windows.h>

#include <exception>
#include <string>
#include <vector>

namespace
{

constexpr wchar_t kName[] = L"palette";
constexpr wchar_t kPictureOption[] = L"--picture";
constexpr int kPictureIndex = 170;

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
    Complain(kName, path + L" cannot be written");
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
        Complain(kName, L"usage: palette.exe [--picture FILE [INDEX]], with an INDEX from 1 to 255");
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
        Complain(kName, KELPKIT::AnsiToUnicode(exception.what()));
        return kFailed;
    }
}
