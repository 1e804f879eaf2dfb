#include "HostWindow.h"

#include "Drawing.h"
#include "Pane.h"

#include <Kelpkit/SystemInfo.h>

#include <commdlg.h>
#include <windowsx.h>

#include <iterator>
#include <stdexcept>

namespace
{

constexpr int kTextHeight = 14;
constexpr UINT_PTR kTimer = 1;
constexpr UINT kTimerMilliseconds = 500;
constexpr wchar_t kNothing[] = L"Nothing is hosted";

const wchar_t* Label(Button button)
{
    switch (button) {
    case Button::kOpen:
        return L"Open\u2026  Ctrl+O";
    case Button::kPalette:
        return L"Palette  Ctrl+P";
    case Button::kClose:
        break;
    }
    return L"Close  Ctrl+W";
}

// The file name of the program that a command line starts.
std::wstring NameOf(const std::wstring& commandLine)
{
    const bool isQuoted = commandLine.compare(0, 1, L"\"") == 0;
    const std::size_t start = isQuoted ? 1 : 0;
    const std::wstring path = commandLine.substr(start, commandLine.find(isQuoted ? L'"' : L' ', start) - start);
    return path.substr(path.rfind(L'\\') + 1);
}

// Asks for a program; empty where the user names none.
std::wstring AskForProgram(HWND owner)
{
    wchar_t path[1024] = L"";
    OPENFILENAMEW question{};
    question.lStructSize = sizeof question;
    question.hwndOwner = owner;
    question.lpstrFilter = L"Programs\0*.exe\0";
    question.lpstrFile = path;
    question.nMaxFile = static_cast<DWORD>(std::size(path));
    question.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    return ::GetOpenFileNameW(&question) ? path : L"";
}

} // namespace

HostWindow::HostWindow() : m_background(::CreateSolidBrush(style::kBackground))
{
    Make(L"KelpkitHost", L"Kelpkit host", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
         {Layout::kDesignWidth, Layout::kDesignHeight});
    m_font = MakeFont(CurrentLayout().Scaled(kTextHeight));
    m_pane = MakePane(Handle());
    if (m_pane == nullptr)
        throw std::runtime_error("the pane cannot be made");
    ::SendMessageW(m_pane, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.get()), FALSE);
    OnSize();
    Show(L"", kNothing);
    // No message tells that a hosted program has ended.
    ::SetTimer(Handle(), kTimer, kTimerMilliseconds, nullptr);
}

void HostWindow::Host(const std::wstring& commandLine)
{
    Show(NameOf(commandLine), L"Starting\u2026");
    ::UpdateWindow(Handle());
    m_starts = true;
    m_hosts = m_child.CreateSubWindow(m_pane, commandLine.c_str()) && m_child.AddSubWindow(HostedPlace());
    m_starts = false;
    if (m_hosts)
        Show(NameOf(commandLine), L"");
    else
        CloseProgram(L"This program cannot be hosted: " + commandLine);
}

HWND HostWindow::Hosted() const
{
    return m_hosts ? ::GetWindow(m_pane, GW_CHILD) : nullptr;
}

std::wstring HostWindow::Palette()
{
    return L"\"" + KELPKIT::GetSysRoot() + L"palette.exe\"";
}

LRESULT HostWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ERASEBKGND:
        // Each paint covers everything.
        return TRUE;
    case WM_PAINT:
        OnPaint();
        return 0;
    case WM_CTLCOLORSTATIC:
        return OnPaneColors(reinterpret_cast<HDC>(wParam));
    case WM_SIZE:
        OnSize();
        return 0;
    case WM_LBUTTONDOWN:
        OnClick({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        return 0;
    case WM_KEYDOWN:
        OnKey(wParam);
        return 0;
    case WM_TIMER:
        OnTimer();
        return 0;
    case WM_CLOSE:
        // Before the window is destroyed, and its children with it.
        m_child.CloseSubWindow();
        return Window::OnMessage(message, wParam, lParam);
    default:
        return Window::OnMessage(message, wParam, lParam);
    }
}

void HostWindow::OnPaint() const
{
    const PaintSession session(Handle());
    const Layout layout = CurrentLayout();
    RECT bar = layout.Bar();
    Fill(session.Dc(), bar, style::kBarBackground);
    for (const Button button : Layout::kButtons) {
        RECT place = layout.ButtonPlace(button);
        Fill(session.Dc(), place, style::kLine);
        ::InflateRect(&place, -layout.Scaled(1), -layout.Scaled(1));
        Fill(session.Dc(), place, style::kWhite);
        const bool enabled = button != Button::kClose || m_hosts;
        Write(session.Dc(), m_font.get(), Label(button), place, enabled ? style::kText : style::kLine, DT_CENTER);
    }
    Write(session.Dc(), m_font.get(), m_title, layout.Title(), style::kFaintText, DT_LEFT | DT_PATH_ELLIPSIS);
    bar.top = bar.bottom - layout.Scaled(1);
    Fill(session.Dc(), bar, style::kLine);
}

LRESULT HostWindow::OnPaneColors(HDC dc) const
{
    ::SetTextColor(dc, style::kFaintText);
    ::SetBkColor(dc, style::kBackground);
    return reinterpret_cast<LRESULT>(m_background.get());
}

void HostWindow::OnClick(POINT point)
{
    for (const Button button : Layout::kButtons) {
        if (CurrentLayout().IsOn(button, point))
            return Press(button);
    }
}

void HostWindow::OnKey(WPARAM key)
{
    if (::GetKeyState(VK_CONTROL) >= 0)
        return;
    if (key == 'O')
        Press(Button::kOpen);
    else if (key == 'P')
        Press(Button::kPalette);
    else if (key == 'W')
        Press(Button::kClose);
}

void HostWindow::OnSize()
{
    const RECT place = CurrentLayout().Pane();
    ::MoveWindow(m_pane, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
    m_child.MoveSubWindow(HostedPlace());
}

void HostWindow::OnTimer()
{
    if (m_hosts && m_child.HasSubWindow() == 0)
        CloseProgram(L"The program has ended");
}

void HostWindow::Press(Button button)
{
    // While Kelpkit asks whether to wait on, this window can be used.
    if (m_starts)
        return;
    switch (button) {
    case Button::kOpen:
        return OpenProgram();
    case Button::kPalette:
        return Host(Palette());
    case Button::kClose:
        return CloseProgram(kNothing);
    }
}

void HostWindow::OpenProgram()
{
    const std::wstring path = AskForProgram(Handle());
    if (!path.empty())
        Host(L"\"" + path + L"\"");
}

void HostWindow::CloseProgram(const std::wstring& message)
{
    m_child.CloseSubWindow();
    m_hosts = false;
    Show(L"", message);
}

void HostWindow::Show(const std::wstring& title, const std::wstring& message)
{
    m_title = title;
    ::SetWindowTextW(m_pane, message.c_str());
    const RECT bar = CurrentLayout().Bar();
    ::InvalidateRect(Handle(), &bar, FALSE);
}

Layout HostWindow::CurrentLayout() const
{
    RECT area{};
    ::GetClientRect(Handle(), &area);
    return {{area.right, area.bottom}, ScreenDpi()};
}

CRect HostWindow::HostedPlace() const
{
    CRect place;
    ::GetClientRect(m_pane, &place);
    return place;
}
