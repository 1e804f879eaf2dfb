#include "Grid.h"
#include "Layout.h"

#include "support/Bitmap.h"
#include "support/FileContents.h"
#include "support/FolderTree.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <Kelpkit/Color.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <tlhelp32.h>

#include <string>

using test::TempFolder;

namespace
{

constexpr DWORD kLongEnough = 30000;

std::wstring HostCommand(const std::wstring& arguments = L"")
{
    return L"\"" + test::BesideThisProgram(L"host.exe") + L"\" " + arguments;
}

// In real pixels, as the host sees the screen.
int Dpi()
{
    ::SetProcessDPIAware();
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

// The layout of the client area with which the host starts.
Layout FirstLayout()
{
    const int dpi = Dpi();
    return {{::MulDiv(Layout::kDesignWidth, dpi, 96), ::MulDiv(Layout::kDesignHeight, dpi, 96)}, dpi};
}

template <class Condition>
bool WaitUntil(const Condition& condition)
{
    constexpr DWORD kPause = 10;
    for (DWORD waited = 0; waited < kLongEnough; waited += kPause) {
        if (condition())
            return true;
        ::Sleep(kPause);
    }
    return false;
}

// The process that another has started, 0 if none runs.
DWORD ChildOf(DWORD processId)
{
    const HANDLE list = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    DWORD found = 0;
    for (BOOL more = ::Process32FirstW(list, &entry); more && found == 0; more = ::Process32NextW(list, &entry)) {
        if (entry.th32ParentProcessID == processId)
            found = entry.th32ProcessID;
    }
    ::CloseHandle(list);
    return found;
}

// The running host, ended at the end.
class Host
{
public:
    explicit Host(const std::wstring& commandLine) : m_program(commandLine) {}

    HWND Window() const
    {
        HWND window = nullptr;
        WaitUntil([&] {
            window = ::FindWindowW(L"KelpkitHost", nullptr);
            return window != nullptr;
        });
        return window;
    }
    DWORD Child() const { return ChildOf(m_program.ProcessId()); }
    bool HasEnded() const { return m_program.HasEnded(kLongEnough); }

private:
    test::StartedProgram m_program;
};

HWND HostedIn(HWND window)
{
    const HWND pane = ::GetWindow(window, GW_CHILD);
    return pane == nullptr ? nullptr : ::GetWindow(pane, GW_CHILD);
}

RECT OnScreen(HWND window)
{
    RECT place{};
    ::GetWindowRect(window, &place);
    return place;
}

// Whether the hosted window fills the client area below the bar.
bool Fills(HWND hosted, HWND window)
{
    RECT client{};
    ::GetClientRect(window, &client);
    RECT expected = Layout({client.right, client.bottom}, Dpi()).Pane();
    ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&expected), 2);
    const RECT place = OnScreen(hosted);
    return ::EqualRect(&place, &expected) != FALSE;
}

void Click(HWND window, Button button)
{
    const RECT place = FirstLayout().ButtonPlace(button);
    ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(place.left + 5, place.top + 5));
}

} // namespace

TEST(HostLayout, BarAndPaneShareTheClientArea)
{
    for (const int dpi : {96, 120, 144, 192}) {
        for (const SIZE& size : {SIZE{980, 608}, SIZE{700, 1000}, SIZE{1600, 400}}) {
            const Layout layout(size, dpi);
            EXPECT_EQ(layout.Bar().left, 0);
            EXPECT_EQ(layout.Bar().top, 0);
            EXPECT_EQ(layout.Bar().right, size.cx);
            EXPECT_EQ(layout.Bar().bottom, 48 * dpi / 96);
            EXPECT_EQ(layout.Pane().left, 0);
            EXPECT_EQ(layout.Pane().top, layout.Bar().bottom);
            EXPECT_EQ(layout.Pane().right, size.cx);
            EXPECT_EQ(layout.Pane().bottom, size.cy);
        }
    }
}

TEST(HostLayout, ButtonsStandApartInTheBar)
{
    const Layout layout({Layout::kDesignWidth, Layout::kDesignHeight}, 96);
    LONG end = 0;
    for (const Button button : Layout::kButtons) {
        const RECT place = layout.ButtonPlace(button);
        EXPECT_GT(place.left, end);
        EXPECT_GT(place.top, 0);
        EXPECT_LT(place.bottom, layout.Bar().bottom);
        for (const Button other : Layout::kButtons)
            EXPECT_EQ(layout.IsOn(other, {place.left, place.top}), other == button);
        end = place.right;
    }
    EXPECT_GT(layout.Title().left, end);
    EXPECT_LT(layout.Title().right, Layout::kDesignWidth);
}

TEST(HostPicture, ShowsThePixelsOfTheChildInsideTheClientArea)
{
    const TempFolder folder(L"主 host");
    ASSERT_EQ(test::Run(HostCommand(L"--picture \"" + (folder / L"h.bmp") + L"\"")), 0U);
    const test::Bitmap picture(test::ReadFileBytes(folder / L"h.bmp"));
    const Layout layout = FirstLayout();
    const RECT pane = layout.Pane();
    ASSERT_EQ(picture.Width(), pane.right);
    ASSERT_EQ(picture.Height(), pane.bottom);
    const Grid grid(static_cast<int>(pane.right - pane.left), static_cast<int>(pane.bottom - pane.top));
    for (int index = Grid::kFirst; index <= Grid::kLast; ++index) {
        // Near the corners, as in the palette's own picture.
        const RECT cell = grid.Cell(index);
        const COLORREF color = KELPKIT::CADColorToREF(std::to_wstring(index));
        EXPECT_EQ(picture.At(pane.left + cell.left + 3, pane.top + cell.top + 3), color) << index;
        EXPECT_EQ(picture.At(pane.left + cell.right - 4, pane.top + cell.bottom - 4), color) << index;
    }
    // The host's own: a button, white in its line, on the bar.
    const RECT button = layout.ButtonPlace(Button::kOpen);
    EXPECT_EQ(picture.At(2, 2), RGB(0xF6, 0xF7, 0xF8));
    EXPECT_EQ(picture.At(button.left, button.top), RGB(0xB8, 0xBC, 0xC2));
    EXPECT_EQ(picture.At(button.left + 3, button.top + 3), RGB(0xFF, 0xFF, 0xFF));
}

TEST(HostPicture, SaysByItsExitCodeWhatWentWrong)
{
    const TempFolder folder;
    EXPECT_EQ(test::Run(HostCommand(L"--picture \"" + (folder / L"h.bmp") + L"\" C:\\missing.exe")), 1U);
    EXPECT_FALSE(test::Exists(folder / L"h.bmp"));
    EXPECT_EQ(test::Run(HostCommand(L"--picture")), 2U);
    EXPECT_EQ(test::Run(HostCommand(L"one two")), 2U);
}

TEST(HostProgram, HostsAProgramThatFollowsItsFrameUntilItIsClosed)
{
    const Host host(HostCommand());
    const HWND window = host.Window();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return Fills(HostedIn(window), window); }));
    const HWND first = HostedIn(window);

    ::SetWindowPos(window, nullptr, 0, 0, 700, 500, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(WaitUntil([&] { return Fills(first, window); }));

    Click(window, Button::kClose);
    EXPECT_TRUE(WaitUntil([&] { return !::IsWindow(first) && host.Child() == 0; }));

    Click(window, Button::kPalette);
    EXPECT_TRUE(WaitUntil([&] { return Fills(HostedIn(window), window); }));
    EXPECT_NE(host.Child(), 0U);

    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(host.HasEnded());
    EXPECT_TRUE(WaitUntil([&] { return host.Child() == 0; })) << "no program is left behind";
}

TEST(HostProgram, NoticesThatTheProgramHasEnded)
{
    const Host host(HostCommand());
    const HWND window = host.Window();
    ASSERT_TRUE(WaitUntil([&] { return Fills(HostedIn(window), window); }));
    const HWND hosted = HostedIn(window);
    ::PostMessageW(hosted, WM_CLOSE, 0, 0);
    const auto message = [&] {
        wchar_t text[100] = {};
        ::SendMessageW(::GetWindow(window, GW_CHILD), WM_GETTEXT, 100, reinterpret_cast<LPARAM>(text));
        return std::wstring(text);
    };
    EXPECT_TRUE(WaitUntil([&] { return message() == L"The program has ended"; }));
}
