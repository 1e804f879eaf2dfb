#include "childexe/Doubles.h"

#include <Kelpkit/ChildExe.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

using namespace KELPKIT;
using test::Boxes;
using test::ChildWindow;
using test::Handles;
using test::HandlesOf;
using test::HostWindow;
using test::ImportPatch;
using test::Pauses;
using test::Searches;
using test::StartedPrograms;

namespace
{

constexpr DWORD kLongEnough = 30000;

class Event
{
public:
    explicit Event(const std::wstring& name) : m_handle(::CreateEventW(nullptr, TRUE, FALSE, name.c_str())) {}
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event() { ::CloseHandle(m_handle); }

    void Set() const { ::SetEvent(m_handle); }
    bool Wait() const { return ::WaitForSingleObject(m_handle, kLongEnough) == WAIT_OBJECT_0; }

private:
    HANDLE m_handle;
};

// The name of an event that no other test program uses at the same time.
std::wstring EventName()
{
    return L"kelpkit-" + std::to_wstring(::GetCurrentProcessId());
}

// The window of a process that has so many owners, one above the other.
HWND WindowOf(DWORD processId, int owners)
{
    HWND window = nullptr;
    while ((window = ::FindWindowExW(nullptr, window, L"KelpkitTestChild", nullptr)) != nullptr) {
        DWORD process = 0;
        ::GetWindowThreadProcessId(window, &process);
        int above = 0;
        for (HWND owner = window; (owner = ::GetWindow(owner, GW_OWNER)) != nullptr;)
            ++above;
        if (process == processId && above == owners)
            return window;
    }
    return nullptr;
}

HWND MainWindowOf(DWORD processId)
{
    return WindowOf(processId, 0);
}

// Looks once for a window of the process, as the object does by itself. The operation is private, but exported.
HWND LookForAWindow(ChildExe& child, DWORD processId)
{
#if defined(_MSC_VER)
    constexpr char kName[] = "?GetWndHandleByPID@ChildExe@KELPKIT@@AEAAPEAUHWND__@@K@Z";
#else
    constexpr char kName[] = "_ZN7KELPKIT8ChildExe17GetWndHandleByPIDEm";
#endif
    // A member function is called as a function whose first argument is the object.
    using Operation = HWND (*)(ChildExe*, DWORD);
    const FARPROC operation = ::GetProcAddress(::GetModuleHandleW(L"Kelpkit.dll"), kName);
    return reinterpret_cast<Operation>(reinterpret_cast<void*>(operation))(&child, processId);
}

class ChildExeStart : public testing::Test
{
protected:
    bool Create(const std::wstring& commandLine) { return child.CreateSubWindow(host.Handle(), commandLine.c_str()); }

    // Waits for a program that never shows a window; each message box gets the next of the answers.
    void CreateInVain(const std::vector<int>& answers)
    {
        const Event never(EventName());
        const Boxes boxes(answers);
        EXPECT_FALSE(Create(ChildWindow(L"--late " + EventName())));
    }

    StartedPrograms programs;
    HostWindow host;
    ChildExe child;
};

} // namespace

TEST_F(ChildExeStart, StartsTheProgramHidden)
{
    const Pauses pauses;
    ASSERT_TRUE(Create(ChildWindow()));
    const StartedPrograms::Start& start = StartedPrograms::Last();
    EXPECT_EQ(start.startup.cb, 104U);
    EXPECT_EQ(start.startup.dwFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
    EXPECT_EQ(start.startup.wShowWindow, SW_HIDE);
    EXPECT_EQ(start.startup.lpDesktop, nullptr);
    EXPECT_EQ(start.startup.lpTitle, nullptr);
    EXPECT_EQ(start.startup.hStdOutput, nullptr);
    EXPECT_EQ(start.application, L"");
    EXPECT_FALSE(start.hasAttributes);
    EXPECT_FALSE(start.inheritsHandles);
    EXPECT_EQ(start.flags, 0U);
    EXPECT_FALSE(start.hasEnvironment);
    EXPECT_FALSE(start.hasFolder);
}

TEST_F(ChildExeStart, CommandLineWithArgumentsIsPassedWhole)
{
    const Pauses pauses;
    const std::wstring commandLine = ChildWindow(L"\"C:\\零件 parts\\a.qmx\"  second \"\" -x=\"y z\"");
    ASSERT_TRUE(Create(commandLine));
    EXPECT_EQ(StartedPrograms::Last().commandLine, commandLine);
    wchar_t title[1024] = {};
    ::GetWindowTextW(MainWindowOf(StartedPrograms::Last().process.dwProcessId), title, 1024);
    EXPECT_EQ(title, commandLine) << "the program has shown it";
}

TEST_F(ChildExeStart, CommandLineStaysAsItIs)
{
    const Pauses pauses;
    const CString commandLine = ChildWindow(L"a b").c_str();
    ASSERT_TRUE(child.CreateSubWindow(host.Handle(), commandLine));
    EXPECT_EQ(commandLine.GetString(), ChildWindow(L"a b"));
}

TEST_F(ChildExeStart, WaitsUntilTheProgramIsIdleAndHalfASecondMore)
{
    static std::vector<std::string> calls;
    calls.clear();
    const ImportPatch wait(
        "WaitForInputIdle", +[](HANDLE process, DWORD milliseconds) -> DWORD {
            EXPECT_EQ(process, StartedPrograms::Last().process.hProcess);
            EXPECT_EQ(milliseconds, INFINITE);
            calls.emplace_back("idle");
            return ::WaitForInputIdle(process, milliseconds);
        });
    const ImportPatch search(
        "EnumWindows", +[](WNDENUMPROC procedure, LPARAM parameter) -> BOOL {
            calls.emplace_back("search");
            return ::EnumWindows(procedure, parameter);
        });
    const Pauses pauses([](DWORD milliseconds) { calls.push_back(std::to_string(milliseconds)); });
    ASSERT_TRUE(Create(ChildWindow()));
    EXPECT_EQ(calls, (std::vector<std::string>{"idle", "500", "search"}));
}

TEST_F(ChildExeStart, WaitsInEarnest)
{
    const std::uint64_t start = ::GetTickCount64();
    EXPECT_TRUE(Create(ChildWindow()));
    EXPECT_GE(::GetTickCount64() - start, 480U) << "by a clock that counts in steps";
}

TEST_F(ChildExeStart, FindsAWindowThatComesLate)
{
    const Event come(EventName());
    const Event shown(EventName() + L".shown");
    const Searches searches;
    const Pauses pauses([&](DWORD) {
        if (Pauses::All().size() == 8) {
            come.Set();
            EXPECT_TRUE(shown.Wait());
        }
    });
    EXPECT_TRUE(Create(ChildWindow(L"--late " + EventName())));
    EXPECT_EQ(Pauses::All(), (std::vector<DWORD>{500, 100, 100, 100, 100, 100, 100, 100}));
    EXPECT_EQ(Searches::Count(), 8);
    EXPECT_NE(child.HasSubWindow(), 0);
}

TEST_F(ChildExeStart, FindsTheOwnerOfAWindow)
{
    const Pauses pauses;
    ASSERT_TRUE(Create(ChildWindow(L"--owned")));
    ASSERT_TRUE(child.AddSubWindow(CRect(0, 0, 100, 100)));
    wchar_t title[1024] = {};
    ::GetWindowTextW(::GetWindow(host.Handle(), GW_CHILD), title, 1024);
    EXPECT_EQ(title, ChildWindow(L"--owned"));
    EXPECT_EQ(MainWindowOf(StartedPrograms::Last().process.dwProcessId), nullptr) << "it is in the host now";
}

TEST_F(ChildExeStart, FindsTheOwnerOfTheOwnerOfAWindow)
{
    const ImportPatch patch(
        "EnumWindows", +[](WNDENUMPROC procedure, LPARAM parameter) -> BOOL {
            const HWND window = WindowOf(StartedPrograms::Last().process.dwProcessId, 2);
            EXPECT_NE(window, nullptr);
            return procedure(window, parameter);
        });
    const Pauses pauses;
    ASSERT_TRUE(Create(ChildWindow(L"--owned")));
    EXPECT_EQ(HandlesOf(child).child, MainWindowOf(StartedPrograms::Last().process.dwProcessId));
}

TEST_F(ChildExeStart, LookingForAWindowChangesNoHandle)
{
    constexpr DWORD kNoProcess = 0xFFFFFFFF;
    const Pauses pauses;
    ASSERT_TRUE(Create(ChildWindow()));
    const DWORD processId = StartedPrograms::Last().process.dwProcessId;
    const Handles before = HandlesOf(child);
    EXPECT_EQ(LookForAWindow(child, kNoProcess), nullptr);
    EXPECT_EQ(HandlesOf(child), before);
    ChildExe other;
    EXPECT_EQ(LookForAWindow(other, processId), before.child);
    EXPECT_EQ(HandlesOf(other), Handles{});
}

TEST_F(ChildExeStart, TakesTheFirstWindowOfTheProcess)
{
    struct Record {
        DWORD processId;
        HWND found;
    };
    const ImportPatch patch(
        "EnumWindows", +[](WNDENUMPROC procedure, LPARAM parameter) -> BOOL {
            const auto& record = *reinterpret_cast<const Record*>(parameter);
            const DWORD processId = StartedPrograms::Last().process.dwProcessId;
            EXPECT_EQ(record.processId, processId);
            EXPECT_EQ(record.found, nullptr);
            EXPECT_TRUE(procedure(::GetDesktopWindow(), parameter)) << "it goes on past others";
            EXPECT_EQ(record.found, nullptr);
            const HWND window = MainWindowOf(processId);
            EXPECT_FALSE(procedure(window, parameter)) << "it stops there";
            EXPECT_EQ(record.found, window);
            return FALSE;
        });
    const Pauses pauses;
    EXPECT_TRUE(Create(ChildWindow()));
    EXPECT_NE(child.HasSubWindow(), 0);
}

TEST_F(ChildExeStart, ConsoleProgramsFail)
{
    const Pauses pauses;
    const Searches searches;
    const Event never(EventName());
    EXPECT_FALSE(Create(L"\"" + test::BesideThisProgram(L"ChildConsole.exe") + L"\" " + EventName()));
    EXPECT_EQ(Searches::Count(), 0);
    EXPECT_TRUE(Pauses::All().empty());
    EXPECT_TRUE(StartedPrograms::Runs(StartedPrograms::Last())) << "it goes on running";
    EXPECT_FALSE(child.CloseSubWindow());
}

TEST_F(ChildExeStart, ProgramsThatCannotBeStartedFail)
{
    const Pauses pauses;
    const Boxes boxes({});
    for (const wchar_t* const commandLine : {L"C:\\missing\\program.exe", L"", L"\"", L"C:\\Windows"}) {
        EXPECT_FALSE(Create(commandLine)) << commandLine;
        EXPECT_EQ(child.HasSubWindow(), 0);
        EXPECT_FALSE(child.CloseSubWindow());
    }
    EXPECT_TRUE(StartedPrograms::All().empty());
    EXPECT_TRUE(Pauses::All().empty());
    EXPECT_TRUE(Boxes::All().empty());
}

// Systems differ in what the wait returns for a program that ends during it.
TEST_F(ChildExeStart, ProgramsThatEndAtOnceFail)
{
    const Pauses pauses;
    const Searches searches;
    const Boxes boxes({IDNO});
    static DWORD result;
    const ImportPatch wait(
        "WaitForInputIdle", +[](HANDLE process, DWORD milliseconds) -> DWORD {
            result = ::WaitForInputIdle(process, milliseconds);
            return result;
        });
    EXPECT_FALSE(Create(ChildWindow(L"--end")));
    ASSERT_EQ(StartedPrograms::All().size(), 1U);
    EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
    const bool counted = result == 0;
    EXPECT_EQ(Searches::Count(), counted ? 81 : 0) << result;
    EXPECT_EQ(Boxes::All().size(), counted ? 1U : 0U) << result;
    EXPECT_EQ(HandlesOf(child), (Handles{host.Handle(), nullptr, nullptr}));
    EXPECT_FALSE(child.CloseSubWindow());
}

TEST_F(ChildExeStart, EndedProgramFailsAtOnceWhereTheWaitFails)
{
    const Pauses pauses;
    const Searches searches;
    const Boxes boxes({});
    const ImportPatch wait(
        "WaitForInputIdle", +[](HANDLE, DWORD) -> DWORD {
            EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
            return WAIT_FAILED;
        });
    EXPECT_FALSE(Create(ChildWindow(L"--end")));
    EXPECT_TRUE(Pauses::All().empty());
    EXPECT_EQ(Searches::Count(), 0);
    EXPECT_TRUE(Boxes::All().empty());
}

TEST_F(ChildExeStart, EndedProgramComesToTheQuestionWhereTheWaitSaysIdle)
{
    const Pauses pauses;
    const Searches searches;
    const Boxes boxes({IDYES, IDNO});
    const ImportPatch wait(
        "WaitForInputIdle", +[](HANDLE, DWORD) -> DWORD {
            EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
            return 0;
        });
    EXPECT_FALSE(Create(ChildWindow(L"--end")));
    ASSERT_EQ(Boxes::All().size(), 2U);
    EXPECT_EQ(Boxes::All()[0].failedSearches, 81);
    EXPECT_EQ(Boxes::All()[1].failedSearches, 162);
    EXPECT_EQ(child.HasSubWindow(), 0);
    EXPECT_FALSE(child.CloseSubWindow());
}

TEST_F(ChildExeStart, WaitThatFailsEndsTheStart)
{
    const Pauses pauses;
    for (const DWORD result : {DWORD{WAIT_FAILED}, DWORD{WAIT_TIMEOUT}}) {
        static DWORD answer;
        answer = result;
        const ImportPatch patch(
            "WaitForInputIdle", +[](HANDLE, DWORD) -> DWORD { return answer; });
        EXPECT_FALSE(Create(ChildWindow()));
        EXPECT_FALSE(child.CloseSubWindow());
    }
    EXPECT_TRUE(Pauses::All().empty());
}

TEST_F(ChildExeStart, SearchThatFailsFindsNothing)
{
    const Pauses pauses;
    {
        const ImportPatch patch(
            "EnumWindows", +[](WNDENUMPROC, LPARAM) -> BOOL { return FALSE; });
        CreateInVain({IDNO});
    }
    // Of a window that is just going.
    const ImportPatch patch(
        "GetWindowThreadProcessId", +[](HWND, DWORD*) -> DWORD { return 0; });
    CreateInVain({IDNO});
}

TEST_F(ChildExeStart, LaunchersAreNotFollowed)
{
    const Event go(EventName());
    const Boxes boxes({IDNO});
    const Pauses pauses([&](DWORD milliseconds) {
        if (milliseconds == 500) {
            go.Set();
            EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
        }
    });
    EXPECT_FALSE(
        Create(ChildWindow(L"--launch " + EventName() + L" \"" + test::BesideThisProgram(L"ChildWindow.exe") + L"\"")));
    EXPECT_EQ(Boxes::All().size(), 1U);
    // What it has launched has a window of its own.
    HWND launched = nullptr;
    EXPECT_TRUE(HostWindow::WaitUntil([&] {
        launched = ::FindWindowW(L"KelpkitTestChild", test::BesideThisProgram(L"ChildWindow.exe").c_str());
        return launched != nullptr;
    }));
    ::PostMessageW(launched, WM_CLOSE, 0, 0);
    EXPECT_TRUE(HostWindow::WaitUntil([&] { return !::IsWindow(launched); }));
}

TEST_F(ChildExeStart, AsksAfter81SearchesWhetherToWaitOn)
{
    const Pauses pauses;
    const Searches searches;
    CreateInVain({IDNO});
    ASSERT_EQ(Boxes::All().size(), 1U);
    const Boxes::Box& box = Boxes::All().front();
    EXPECT_EQ(box.owner, nullptr);
    EXPECT_EQ(box.text, L"启动exe超时,是否继续等待?");
    EXPECT_EQ(box.caption, L"提示");
    EXPECT_EQ(box.style, 0x34U);
    EXPECT_EQ(box.failedSearches, 81);
    EXPECT_EQ(Searches::Count(), 81);
    std::vector<DWORD> expected(81, 100);
    expected[0] = 500;
    EXPECT_EQ(Pauses::All(), expected);
}

TEST_F(ChildExeStart, EachYesBuys81MoreSearches)
{
    const Pauses pauses;
    const Searches searches;
    CreateInVain({IDYES, IDYES, IDNO});
    ASSERT_EQ(Boxes::All().size(), 3U);
    EXPECT_EQ(Boxes::All()[0].failedSearches, 81);
    EXPECT_EQ(Boxes::All()[1].failedSearches, 162);
    EXPECT_EQ(Boxes::All()[2].failedSearches, 243);
    EXPECT_EQ(Searches::Count(), 243);
    EXPECT_EQ(Pauses::All().size(), 1U + 242U);
}

TEST_F(ChildExeStart, AnyAnswerButYesEndsTheWait)
{
    const Pauses pauses;
    for (const int answer : {IDNO, IDCANCEL, 0}) {
        CreateInVain({answer});
        EXPECT_EQ(Boxes::All().size(), 1U) << answer;
    }
}

TEST_F(ChildExeStart, NoLeavesTheProgramRunningAndHostsNothing)
{
    const Pauses pauses;
    CreateInVain({IDNO});
    EXPECT_TRUE(StartedPrograms::Runs(StartedPrograms::Last()));
    EXPECT_EQ(child.HasSubWindow(), 0);
    EXPECT_FALSE(child.AddSubWindow(CRect(0, 0, 100, 100)));
    EXPECT_FALSE(child.CloseSubWindow());
}

TEST_F(ChildExeStart, WindowThatComesAfterYesIsFound)
{
    const Event come(EventName());
    const Event shown(EventName() + L".shown");
    const Pauses pauses([&](DWORD) {
        if (Boxes::All().size() == 1) {
            come.Set();
            EXPECT_TRUE(shown.Wait());
        }
    });
    const Boxes boxes({IDYES});
    EXPECT_TRUE(Create(ChildWindow(L"--late " + EventName())));
    EXPECT_EQ(Boxes::All().size(), 1U);
    EXPECT_NE(child.HasSubWindow(), 0);
}

TEST_F(ChildExeStart, ShowsTheBoxInEarnest)
{
    const Pauses pauses;
    const Event never(EventName());
    std::wstring text;
    std::thread user([&text] {
        HWND box = nullptr;
        for (DWORD waited = 0; waited < kLongEnough && box == nullptr; waited += 10) {
            ::Sleep(10);
            box = ::FindWindowW(L"#32770", L"提示");
        }
        wchar_t buffer[100] = {};
        // The text of the box; its icon is a static control, too.
        ::GetDlgItemTextW(box, 0xFFFF, buffer, 100);
        text = buffer;
        ::PostMessageW(box, WM_COMMAND, IDNO, 0);
    });
    EXPECT_FALSE(Create(ChildWindow(L"--late " + EventName())));
    user.join();
    EXPECT_EQ(text, L"启动exe超时,是否继续等待?");
}
