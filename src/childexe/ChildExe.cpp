#include "Kelpkit/ChildExe.h"

#include "WindowsApi.h"

namespace KELPKIT
{
namespace
{

// What an enumeration of windows looks for, and what it has found.
struct Search {
    DWORD processId;
    HWND found;
};

} // namespace

ChildExe::ChildExe() = default;
ChildExe::ChildExe(const ChildExe&) = default;
ChildExe& ChildExe::operator=(const ChildExe&) = default;

ChildExe::~ChildExe()
{
    ChildExe::CloseSubWindow();
}

bool ChildExe::CreateSubWindow(HWND parent, const CString& commandLine)
{
    CloseSubWindow();
    if (parent == nullptr)
        return false;
    m_hHost = parent;
    m_hHosting = CreateSubExeProcess(commandLine);
    return m_hChild != nullptr;
}

bool ChildExe::AddSubWindow(const CRect& rect)
{
    if (m_hChild == nullptr || m_hHost == nullptr)
        return false;
    m_hHosting = m_hChild;
    if (::SetParent(m_hChild, m_hHost) == nullptr)
        return false;
    CWnd::FromHandle(m_hChild)->InvalidateRect(nullptr, TRUE);
    if (::SetWindowLongW(m_hChild, GWL_STYLE, WS_CHILD | WS_VISIBLE) == 0)
        return false;
    if (!ChildExe::MoveSubWindow(rect))
        return false;
    ::ShowWindow(m_hChild, SW_SHOW);
    // By contract it is the host that goes behind the child, and not the child that comes to the front.
    ::SetWindowPos(m_hHost, m_hChild, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    ::PostMessageW(m_hChild, WM_PAINT, 0, 0);
    return true;
}

bool ChildExe::CloseSubWindow()
{
    if (m_hHosting == nullptr)
        return false;
    ::PostMessageW(m_hChild, WM_CLOSE, 0, 0);
    m_hHost = nullptr;
    m_hChild = nullptr;
    m_hHosting = nullptr;
    return true;
}

void ChildExe::UpdateSubWindow()
{
    if (m_hChild != nullptr)
        CWnd::FromHandle(m_hChild)->PostMessageW(WM_PAINT);
}

int ChildExe::HasSubWindow()
{
    return m_hChild == nullptr ? 0 : ::IsWindow(m_hChild);
}

int ChildExe::MoveSubWindow(const CRect& rect)
{
    if (m_hChild == nullptr)
        return 0;
    return ::MoveWindow(m_hChild, rect.left, rect.top, rect.Width(), rect.Height(), TRUE);
}

HANDLE ChildExe::CreateSubExeProcess(const CString& commandLine)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    CString writable = commandLine;
    // By contract both handles stay open.
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, writable.GetBuffer(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process))
        return nullptr;
    if (::WaitForInputIdle(process.hProcess, INFINITE) != 0)
        return nullptr;
    ::Sleep(500);
    return IsExeHasRun(process.dwProcessId) ? process.hProcess : nullptr;
}

bool ChildExe::IsExeHasRun(DWORD processId)
{
    constexpr int kMostPasses = 80;
    int failedPasses = 0;
    while ((m_hChild = GetWndHandleByPID(processId)) == nullptr) {
        if (++failedPasses > kMostPasses) {
            constexpr UINT kStyle = MB_YESNO | MB_ICONEXCLAMATION;
            if (::MessageBoxW(nullptr, L"启动exe超时,是否继续等待?", L"提示", kStyle) != IDYES)
                break;
            failedPasses = 0;
        }
        ::Sleep(100);
    }
    return m_hChild != nullptr;
}

HWND ChildExe::GetWndHandleByPID(DWORD processId)
{
    Search search{processId, nullptr};
    ::EnumWindows(EnumWindowsProc, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

BOOL CALLBACK ChildExe::EnumWindowsProc(HWND window, LPARAM search)
{
    auto& sought = *reinterpret_cast<Search*>(search);
    DWORD processId = 0;
    ::GetWindowThreadProcessId(window, &processId);
    if (processId != sought.processId)
        return TRUE;
    sought.found = window;
    while (const HWND above = ::GetParent(sought.found))
        sought.found = above;
    return FALSE;
}

} // namespace KELPKIT
