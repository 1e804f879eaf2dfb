// A frame with a bar of buttons, in which other programs are hosted.
//
//     host.exe [COMMAND LINE]                     hosts the program in a window; the palette if none is named
//     host.exe --picture FILE [COMMAND LINE]      writes a picture of that window to FILE, as the screen shows it: a BMP
//                                                 where its name ends in .bmp, else a PNG
//
// The command line is one argument. Exit codes: 0 done, 1 failed, 2 wrong arguments.

#include "HostWindow.h"

#include "CommandLine.h"
#include "Picture.h"
#include "Snapshot.h"

#include <Kelpkit/Text.h>

#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace
{

constexpr wchar_t kName[] = L"host";
constexpr wchar_t kPictureOption[] = L"--picture";

ExitCode Fail(const std::wstring& message)
{
    Complain(kName, message);
    return kFailed;
}

ExitCode MakePicture(const std::wstring& path, const std::wstring& commandLine)
{
    HostWindow window;
    ::ShowWindow(window.Handle(), SW_SHOWNORMAL);
    // Nothing else may stand before it.
    ::SetWindowPos(window.Handle(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE);
    window.Host(commandLine);
    if (window.Hosted() == nullptr)
        return Fail(commandLine + L" cannot be hosted");
    const std::unique_ptr<Canvas> picture = Snapshot(window);
    if (!picture)
        return Fail(commandLine + L" does not come to rest");
    return WritePicture(*picture, path) ? kDone : Fail(path + L" cannot be written");
}

ExitCode ShowWindowUntilClosed(const std::wstring& commandLine, int command)
{
    HostWindow window;
    ::ShowWindow(window.Handle(), command);
    window.Host(commandLine);
    window.RunUntilClosed(SW_SHOW);
    return kDone;
}

ExitCode Run(std::vector<std::wstring> arguments, int command)
{
    // Sizes in real pixels, as the palette has them.
    ::SetProcessDPIAware();
    const bool takesPicture = !arguments.empty() && arguments[0] == kPictureOption;
    const std::size_t options = takesPicture ? 2 : 0;
    if (arguments.size() < options || arguments.size() > options + 1) {
        Complain(kName, L"usage: host.exe [--picture FILE] [COMMAND LINE]");
        return kWrongArguments;
    }
    const std::wstring commandLine = arguments.size() > options ? arguments[options] : HostWindow::Palette();
    return takesPicture ? MakePicture(arguments[1], commandLine) : ShowWindowUntilClosed(commandLine, command);
}

} // namespace

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPWSTR /*commandLine*/, int nShowCmd)
{
    try {
        return Run(Arguments(), nShowCmd);
    } catch (const std::exception& exception) {
        return Fail(KELPKIT::AnsiToUnicode(exception.what()));
    }
}
