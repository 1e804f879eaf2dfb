#pragma once

/// @file
/// Hosting of child programs: another program is started, and its main window is shown inside a window of this one.

#include "Export.h"
#include "Mfc.h"

namespace KELPKIT
{

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // by contract
#endif

/// Starts a program, finds its main window, and makes that a child of a window of the caller, the host.
///
///     ChildExe viewer;
///     CRect area;
///     ::GetClientRect(window, &area);
///     if (viewer.CreateSubWindow(window, L"\"C:\\App\\viewer.exe\" gear.qmx") && viewer.AddSubWindow(area))
///         ...                                     // it fills the window
///
/// All operations belong on the thread of the host. From AddSubWindow on, that thread and the program's share their
/// input: if one hangs, so does the other. Failures are reported by results only.
///
/// An object owns nothing: copies stand for the same window, and each of them closes it. Classes may derive from this one
/// and override the operations; its destructor is not virtual, so nothing derived may be deleted as a ChildExe.
class KELPKIT_API ChildExe // as a whole, for its virtual table; NOLINT(cppcoreguidelines-virtual-class-destructor)
{
public:
    /// Hosts nothing.
    ChildExe();

    /// Copies the handles only.
    ChildExe(const ChildExe& other);

    /// Copies the handles only: what this object hosted before is not closed.
    ChildExe& operator=(const ChildExe& other);

    /// Closes what is hosted, as CloseSubWindow does.
    ~ChildExe();

    /// Closes what is hosted, by CloseSubWindow, of a derived class where it has one; then starts a program, hidden, and
    /// looks for its main window. commandLine is the program, in double quotes where its path has blanks, with its
    /// arguments. Returns whether a window was found; it stays as it is until AddSubWindow. A null parent gives false, and
    /// nothing is started.
    ///
    /// Waits, without limit, until the program is idle, and then until it has a window. After each eight seconds or so
    /// without one, a message box asks in Chinese whether to go on waiting: Yes waits on; No gives false with nothing
    /// hosted, and the program is left as it is. False at once where the program cannot be started or has no message
    /// queue (console programs have none). A program that starts another one and ends is not followed.
    ///
    /// Whether a program has ended is not looked at. For one that ends before it is idle, the result is false at once
    /// if Windows' wait (WaitForInputIdle) fails; if the wait counts the program as idle, the search for its window
    /// runs in vain until the message box is answered. The box also comes for one that ends when it is idle and has no
    /// window yet.
    ///
    /// The window is the first of the program's top-level windows that the system lists, or the topmost one that it
    /// belongs to. The handles of the process and its thread are never closed.
    virtual bool CreateSubWindow(HWND parent, const CString& commandLine);

    /// Makes the window that was found a child of the host, without caption and frame, and shows it at rect, in pixels of
    /// the host's client area. The host then goes behind it in the order of windows. Returns false where there is no
    /// window, or Windows does not make it a child, restyle it or move it; it may be a child by then, and is hosted until
    /// CloseSubWindow.
    virtual bool AddSubWindow(const CRect& rect);

    /// Asks the window to close, by posting WM_CLOSE, and forgets it and the host. Does not wait, and ends no program: it
    /// may ask its user, or refuse. Returns false where nothing is hosted; true even if the program has ended.
    virtual bool CloseSubWindow();

    /// Posts WM_PAINT to the window, if there is one: it paints as much of itself as is not up to date.
    virtual void UpdateSubWindow();

    /// Whether the window exists: not 0 if it does; 0 if none was found, or if it is gone, as when the program has ended.
    virtual int HasSubWindow();

    /// Moves the window to rect, in pixels of the host's client area. Returns what Windows' MoveWindow does: 0 where it
    /// fails, or where there is no window. A negative width or height is passed on as it is.
    virtual int MoveSubWindow(const CRect& rect);

private:
    // Exported with the rest of the class.
    HANDLE CreateSubExeProcess(const CString& commandLine);
    bool IsExeHasRun(DWORD processId);
    HWND GetWndHandleByPID(DWORD processId);
    static BOOL CALLBACK EnumWindowsProc(HWND window, LPARAM search);

    HWND m_hHost = nullptr;
    HWND m_hChild = nullptr;
    // The process, later the child window: only a sign that something is hosted.
    HANDLE m_hHosting = nullptr;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

} // namespace KELPKIT
