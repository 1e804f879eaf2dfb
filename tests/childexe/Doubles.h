#pragma once

#include <Kelpkit/ChildExe.h> // first: MFC stands no windows.h before it

#include "support/ImportPatch.h"
#include "support/Process.h"

#include <windows.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace test
{

// A command line that starts the program ChildWindow with these arguments.
inline std::wstring ChildWindow(const std::wstring& arguments = L"")
{
    return L"\"" + BesideThisProgram(L"ChildWindow.exe") + L"\" " + arguments;
}

// The members of a ChildExe, in their order.
struct Handles {
    HWND host;
    HWND child;
    HANDLE hosting;

    bool operator==(const Handles& other) const
    {
        return host == other.host && child == other.child && hosting == other.hosting;
    }
};

// They are private, and follow the virtual table's address.
inline Handles HandlesOf(const KELPKIT::ChildExe& object)
{
    static_assert(sizeof(KELPKIT::ChildExe) == sizeof(void*) + sizeof(Handles));
    Handles handles{};
    std::memcpy(&handles, reinterpret_cast<const char*>(&object) + sizeof(void*), sizeof handles);
    return handles;
}

// Each of these replaces calls of Kelpkit's while it lives, and notes them. One at a time of each.

// Programs are started as ever. At the end they are ended, if they still run, and their handles, which Kelpkit leaves
// open, are closed.
class StartedPrograms
{
public:
    struct Start {
        std::wstring application;
        std::wstring commandLine;
        bool hasAttributes;
        BOOL inheritsHandles;
        DWORD flags;
        bool hasEnvironment;
        bool hasFolder;
        STARTUPINFOW startup;
        PROCESS_INFORMATION process;
    };

    StartedPrograms() { s_all.clear(); }
    StartedPrograms(const StartedPrograms&) = delete;
    StartedPrograms& operator=(const StartedPrograms&) = delete;
    ~StartedPrograms()
    {
        for (const Start& start : s_all) {
            ::TerminateProcess(start.process.hProcess, 1);
            ::WaitForSingleObject(start.process.hProcess, INFINITE);
            ::CloseHandle(start.process.hThread);
            ::CloseHandle(start.process.hProcess);
        }
    }

    static const std::vector<Start>& All() { return s_all; }
    static const Start& Last() { return s_all.back(); }

    static bool HasEnded(const Start& start)
    {
        constexpr DWORD kLongEnough = 30000;
        return ::WaitForSingleObject(start.process.hProcess, kLongEnough) == WAIT_OBJECT_0;
    }
    static bool Runs(const Start& start) { return ::WaitForSingleObject(start.process.hProcess, 0) == WAIT_TIMEOUT; }

private:
    static inline std::vector<Start> s_all;

    ImportPatch m_create{"CreateProcessW",
                         +[](const wchar_t* application, wchar_t* commandLine, SECURITY_ATTRIBUTES* process,
                             SECURITY_ATTRIBUTES* thread, BOOL inherits, DWORD flags, void* environment,
                             const wchar_t* folder, STARTUPINFOW* startup, PROCESS_INFORMATION* information) {
                             const BOOL done = ::CreateProcessW(application, commandLine, process, thread, inherits,
                                                                flags, environment, folder, startup, information);
                             if (done) {
                                 s_all.push_back({application == nullptr ? L"" : application, commandLine,
                                                  process != nullptr || thread != nullptr, inherits, flags,
                                                  environment != nullptr, folder != nullptr, *startup, *information});
                             }
                             return done;
                         }};
};

// Pauses last no time.
class Pauses
{
public:
    using Action = std::function<void(DWORD milliseconds)>;

    // The action is called in the place of each pause.
    explicit Pauses(const Action& action = nullptr)
    {
        s_action = action;
        s_all.clear();
    }

    // In milliseconds.
    static const std::vector<DWORD>& All() { return s_all; }

private:
    static inline Action s_action;
    static inline std::vector<DWORD> s_all;

    ImportPatch m_sleep{"Sleep", +[](DWORD milliseconds) {
                            s_all.push_back(milliseconds);
                            if (s_action)
                                s_action(milliseconds);
                        }};
};

// Messages are posted as ever.
class Posts
{
public:
    struct Post {
        HWND window;
        UINT message;
        WPARAM wParam;
        LPARAM lParam;

        bool operator==(const Post& other) const
        {
            return window == other.window && message == other.message && wParam == other.wParam &&
                   lParam == other.lParam;
        }
    };

    Posts() { s_all.clear(); }

    static const std::vector<Post>& All() { return s_all; }

private:
    static inline std::vector<Post> s_all;

    ImportPatch m_post{"PostMessageW", +[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
                           s_all.push_back({window, message, wParam, lParam});
                           return ::PostMessageW(window, message, wParam, lParam);
                       }};
};

// Searches through all windows are only counted.
class Searches
{
public:
    Searches() { s_count = 0; }

    static int Count() { return s_count; }

private:
    static inline int s_count = 0;

    ImportPatch m_enumerate{"EnumWindows", +[](WNDENUMPROC procedure, LPARAM parameter) {
                                ++s_count;
                                return ::EnumWindows(procedure, parameter);
                            }};
};

// Message boxes do not show; they get the answers of a list, one after the other, then 0.
class Boxes
{
public:
    struct Box {
        HWND owner;
        std::wstring text;
        std::wstring caption;
        UINT style;
        int failedSearches;
    };

    explicit Boxes(const std::vector<int>& answers)
    {
        s_answers = answers;
        s_all.clear();
    }

    static const std::vector<Box>& All() { return s_all; }

private:
    static inline std::vector<int> s_answers;
    static inline std::vector<Box> s_all;

    ImportPatch m_box{"MessageBoxW", +[](HWND owner, const wchar_t* text, const wchar_t* caption, UINT style) {
                          s_all.push_back({owner, text, caption, style, Searches::Count()});
                          return s_all.size() <= s_answers.size() ? s_answers[s_all.size() - 1] : 0;
                      }};
};

// A window to host others in.
class HostWindow
{
public:
    HostWindow()
    {
        WNDCLASSW description{};
        description.lpfnWndProc = ::DefWindowProcW;
        description.lpszClassName = kClassName;
        ::RegisterClassW(&description);
        // Without a frame: Wine waits for a window manager to take one off.
        m_window = ::CreateWindowExW(0, kClassName, L"host", WS_POPUP | WS_CLIPCHILDREN, 0, 0, 800, 600, nullptr,
                                     nullptr, nullptr, nullptr);
        ::ShowWindow(m_window, SW_SHOWNOACTIVATE);
    }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    ~HostWindow() { ::DestroyWindow(m_window); }

    HWND Handle() const { return m_window; }

    // Handles messages until the condition holds, or half a minute has passed; returns whether it holds.
    template <class Condition>
    static bool WaitUntil(const Condition& condition)
    {
        constexpr int kLongEnough = 3000;
        for (int turn = 0; turn < kLongEnough; ++turn) {
            MSG message;
            while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
                ::DispatchMessageW(&message);
            if (condition())
                return true;
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        return false;
    }

private:
    static constexpr wchar_t kClassName[] = L"KelpkitTestHost";

    HWND m_window;
};

} // namespace test
