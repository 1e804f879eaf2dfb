#include "childexe/Doubles.h"
#include "support/FailingCall.h"
#include "support/HandleCount.h"
#include "support/LastError.h"

#include <Kelpkit/ChildExe.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace KELPKIT;
using test::ChildWindow;
using test::Handles;
using test::HandlesOf;
using test::HostWindow;
using test::ImportPatch;
using test::Pauses;
using test::Posts;
using test::StartedPrograms;

namespace
{

const CRect kPlace(10, 20, 310, 220);

bool operator==(const RECT& left, const RECT& right)
{
    return ::EqualRect(&left, &right) != FALSE;
}

// The main window of a program, wherever it is.
HWND WindowOf(const StartedPrograms::Start& start, HWND host)
{
    for (const HWND parent : {static_cast<HWND>(nullptr), host}) {
        HWND window = nullptr;
        while ((window = ::FindWindowExW(parent, window, L"KelpkitTestChild", nullptr)) != nullptr) {
            DWORD processId = 0;
            ::GetWindowThreadProcessId(window, &processId);
            if (processId == start.process.dwProcessId && ::GetWindow(window, GW_OWNER) == nullptr)
                return window;
        }
    }
    return nullptr;
}

// Where a window is, in client coordinates of its parent.
RECT PlaceOf(HWND window)
{
    RECT place{};
    ::GetWindowRect(window, &place);
    ::MapWindowPoints(nullptr, ::GetAncestor(window, GA_PARENT), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// Writes down the calls by which a window is adopted, and carries them out, save one that fails.
class Adoption
{
public:
    Adoption(HWND host, HWND child, std::string failing = "")
    {
        s_hostWindow = host;
        s_childWindow = child;
        s_failing = std::move(failing);
        s_calls.clear();
    }

    static const std::vector<std::string>& Calls() { return s_calls; }

private:
    static std::string Name(HWND window)
    {
        if (window == s_hostWindow)
            return " host";
        return window == s_childWindow ? " child" : " other";
    }

    // Whether the call is to be carried out.
    template <class... Numbers>
    static bool Note(const char* function, HWND window, const std::string& words, Numbers... numbers)
    {
        std::string call = function + Name(window) + words;
        for (const long long number : {static_cast<long long>(numbers)...})
            call += " " + std::to_string(number);
        s_calls.push_back(call);
        return function != s_failing;
    }

    static inline HWND s_hostWindow;
    static inline HWND s_childWindow;
    static inline std::string s_failing;
    static inline std::vector<std::string> s_calls;

    ImportPatch m_setParent{"SetParent", +[](HWND child, HWND parent) -> HWND {
                                return Note("SetParent", child, Name(parent), 0) ? ::SetParent(child, parent) : nullptr;
                            }};
    ImportPatch m_invalidate{"InvalidateRect", +[](HWND window, const RECT* area, BOOL erase) -> BOOL {
                                 return Note("InvalidateRect", window, area == nullptr ? " whole" : " part", erase) &&
                                        ::InvalidateRect(window, area, erase);
                             }};
    ImportPatch m_setStyle{"SetWindowLongW", +[](HWND window, int index, LONG value) -> LONG {
                               return Note("SetWindowLongW", window, "", index, value)
                                          ? ::SetWindowLongW(window, index, value)
                                          : 0;
                           }};
    ImportPatch m_move{"MoveWindow", +[](HWND window, int x, int y, int width, int height, BOOL repaint) -> BOOL {
                           return Note("MoveWindow", window, "", x, y, width, height, repaint) &&
                                  ::MoveWindow(window, x, y, width, height, repaint);
                       }};
    ImportPatch m_show{"ShowWindow", +[](HWND window, int command) -> BOOL {
                           return Note("ShowWindow", window, "", command) && ::ShowWindow(window, command);
                       }};
    ImportPatch m_setPosition{"SetWindowPos",
                              +[](HWND window, HWND after, int x, int y, int width, int height, UINT flags) -> BOOL {
                                  return Note("SetWindowPos", window, Name(after), x, y, width, height, flags) &&
                                         ::SetWindowPos(window, after, x, y, width, height, flags);
                              }};
    ImportPatch m_post{"PostMessageW", +[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> BOOL {
                           return Note("PostMessageW", window, "", message, wParam, lParam) &&
                                  ::PostMessageW(window, message, wParam, lParam);
                       }};
};

// A host, and what Kelpkit starts for it.
class ChildExeTest : public testing::Test
{
protected:
    bool Create(ChildExe& child, const std::wstring& arguments = L"") const
    {
        return child.CreateSubWindow(m_host.Handle(), ChildWindow(arguments).c_str());
    }
    bool Host(ChildExe& child, const std::wstring& arguments = L"") const
    {
        return Create(child, arguments) && child.AddSubWindow(kPlace);
    }

    HWND HostHandle() const { return m_host.Handle(); }
    HWND LastWindow() const { return WindowOf(StartedPrograms::Last(), m_host.Handle()); }

    static bool WaitUntilGone(HWND window)
    {
        return HostWindow::WaitUntil([window] { return !::IsWindow(window); });
    }

private:
    Pauses m_pauses;
    StartedPrograms m_programs;
    HostWindow m_host;
};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // as its base
#endif
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): as its base
class CountingChild : public ChildExe
{
public:
    bool CloseSubWindow() override
    {
        ++closed;
        return ChildExe::CloseSubWindow();
    }
    int MoveSubWindow(const CRect& rect) override
    {
        ++moved;
        return ChildExe::MoveSubWindow(rect);
    }

    int closed = 0;
    int moved = 0;
};

// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): as its base
class StubbornChild : public ChildExe
{
public:
    bool CloseSubWindow() override { return false; }
};

// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): as its base
class RecordingChild : public ChildExe
{
public:
    bool CreateSubWindow(HWND, const CString&) override { return Record("CreateSubWindow"); }
    bool AddSubWindow(const CRect&) override { return Record("AddSubWindow"); }
    bool CloseSubWindow() override { return Record("CloseSubWindow"); }
    void UpdateSubWindow() override { Record("UpdateSubWindow"); }
    int HasSubWindow() override { return Record("HasSubWindow"); }
    int MoveSubWindow(const CRect&) override { return Record("MoveSubWindow"); }

    std::vector<std::string> called;

private:
    bool Record(const char* operation)
    {
        called.emplace_back(operation);
        return false;
    }
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

} // namespace

TEST_F(ChildExeTest, HostsNothingAfterConstruction)
{
    const Posts posts;
    ChildExe child;
    EXPECT_FALSE(child.CloseSubWindow());
    EXPECT_FALSE(child.AddSubWindow(kPlace));
    EXPECT_EQ(child.HasSubWindow(), 0);
    EXPECT_EQ(child.MoveSubWindow(kPlace), 0);
    child.UpdateSubWindow();
    EXPECT_TRUE(Posts::All().empty());
}

TEST_F(ChildExeTest, HoldsHostWindowAndSignInThisOrder)
{
    ChildExe child;
    EXPECT_EQ(HandlesOf(child), Handles{});
    ASSERT_TRUE(Create(child));
    const HWND window = LastWindow();
    EXPECT_EQ(HandlesOf(child), (Handles{HostHandle(), window, StartedPrograms::Last().process.hProcess}));
    ASSERT_TRUE(child.AddSubWindow(kPlace));
    EXPECT_EQ(HandlesOf(child), (Handles{HostHandle(), window, window})) << "the window takes the process's place";
    ASSERT_TRUE(child.CloseSubWindow());
    EXPECT_EQ(HandlesOf(child), Handles{});
}

TEST_F(ChildExeTest, CreateFindsTheWindowAndLeavesItAsItIs)
{
    ChildExe child;
    EXPECT_TRUE(Create(child));
    const HWND window = LastWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(::GetAncestor(window, GA_PARENT), ::GetDesktopWindow());
    EXPECT_FALSE(::IsWindowVisible(window));
    EXPECT_EQ(::GetWindowLongW(window, GWL_STYLE) & WS_OVERLAPPEDWINDOW, WS_OVERLAPPEDWINDOW);
    EXPECT_NE(child.HasSubWindow(), 0);
}

TEST_F(ChildExeTest, AddMakesItAChildAtThePlace)
{
    ChildExe child;
    ASSERT_TRUE(Create(child));
    const HWND window = LastWindow();
    EXPECT_TRUE(child.AddSubWindow(kPlace)) << test::LastErrorText();
    EXPECT_EQ(::GetAncestor(window, GA_PARENT), HostHandle());
    EXPECT_EQ(::GetWindowLongW(window, GWL_STYLE), 0x50000000);
    EXPECT_TRUE(PlaceOf(window) == kPlace);
    EXPECT_TRUE(::IsWindowVisible(window));
    EXPECT_NE(child.HasSubWindow(), 0);
}

TEST_F(ChildExeTest, AddAndMoveAskNothingOfWindowsWithoutAWindow)
{
    ChildExe child;
    const Adoption adoption(HostHandle(), nullptr);
    EXPECT_FALSE(child.AddSubWindow(kPlace));
    EXPECT_EQ(child.MoveSubWindow(kPlace), 0);
    EXPECT_EQ(Adoption::Calls(), std::vector<std::string>());
}

TEST_F(ChildExeTest, AddCallsInItsOrder)
{
    ChildExe child;
    ASSERT_TRUE(Create(child));
    const Adoption adoption(HostHandle(), LastWindow());
    EXPECT_TRUE(child.AddSubWindow(kPlace));
    EXPECT_EQ(Adoption::Calls(),
              (std::vector<std::string>{"SetParent child host 0", "InvalidateRect child whole 1",
                                        "SetWindowLongW child -16 1342177280", "MoveWindow child 10 20 300 200 1",
                                        "ShowWindow child 5", "SetWindowPos host child 0 0 0 0 3",
                                        "PostMessageW child 15 0 0"}));
}

TEST_F(ChildExeTest, AddStopsAtTheStepThatFails)
{
    const struct {
        const char* failing;
        std::size_t calls;
        bool result;
    } cases[] = {
        {"SetParent", 1, false}, {"InvalidateRect", 7, true}, {"SetWindowLongW", 3, false}, {"MoveWindow", 4, false},
        {"ShowWindow", 7, true}, {"SetWindowPos", 7, true},   {"PostMessageW", 7, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.failing);
        ChildExe child;
        ASSERT_TRUE(Create(child));
        const HWND window = LastWindow();
        {
            const Adoption adoption(HostHandle(), window, c.failing);
            EXPECT_EQ(child.AddSubWindow(kPlace), c.result);
            EXPECT_EQ(Adoption::Calls().size(), c.calls);
        }
        const bool adopted = c.calls > 1;
        EXPECT_EQ(::GetAncestor(window, GA_PARENT), adopted ? HostHandle() : ::GetDesktopWindow());
        EXPECT_EQ(HandlesOf(child), (Handles{HostHandle(), window, window}));
        EXPECT_TRUE(child.CloseSubWindow());
        EXPECT_TRUE(WaitUntilGone(window));
    }
}

TEST_F(ChildExeTest, AddDoesNotCallWhatADerivedClassMakesOfMoving)
{
    CountingChild child;
    EXPECT_TRUE(Host(child));
    EXPECT_EQ(child.moved, 0);
}

TEST_F(ChildExeTest, AddMayBeCalledAgain)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    EXPECT_TRUE(child.AddSubWindow(CRect(0, 0, 50, 60)));
    EXPECT_TRUE(PlaceOf(LastWindow()) == CRect(0, 0, 50, 60));
}

TEST_F(ChildExeTest, CloseAfterCreateAsksTheWindowToClose)
{
    ChildExe child;
    ASSERT_TRUE(Create(child));
    const HWND window = LastWindow();
    const Posts posts;
    EXPECT_TRUE(child.CloseSubWindow());
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{{window, WM_CLOSE, 0, 0}}));
    EXPECT_FALSE(child.CloseSubWindow()) << "nothing is hosted any more";
    EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
}

TEST_F(ChildExeTest, CloseAfterAddAsksTheWindowToClose)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const HWND window = LastWindow();
    const Posts posts;
    EXPECT_TRUE(child.CloseSubWindow());
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{{window, WM_CLOSE, 0, 0}}));
    EXPECT_TRUE(WaitUntilGone(window));
    EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
}

TEST_F(ChildExeTest, CloseIsTrueAlsoWhereTheMessageCannotBePosted)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const HWND window = LastWindow();
    {
        const test::FailingCall<decltype(::PostMessageW)> failing("PostMessageW", FALSE);
        child.UpdateSubWindow();
        EXPECT_TRUE(child.CloseSubWindow());
    }
    EXPECT_TRUE(::IsWindow(window));
    EXPECT_FALSE(child.CloseSubWindow());
}

TEST_F(ChildExeTest, CloseForgetsWindowAndHost)
{
    ChildExe child;
    ASSERT_TRUE(Host(child, L"--refuse"));
    EXPECT_TRUE(child.CloseSubWindow());
    EXPECT_EQ(child.HasSubWindow(), 0);
    EXPECT_EQ(child.MoveSubWindow(kPlace), 0);
    EXPECT_FALSE(child.AddSubWindow(kPlace));
}

TEST_F(ChildExeTest, CloseAsksAndDoesNotEndAProgramThatRefuses)
{
    ChildExe child;
    ASSERT_TRUE(Host(child, L"--refuse"));
    const HWND window = LastWindow();
    EXPECT_TRUE(child.CloseSubWindow());
    EXPECT_TRUE(HostWindow::WaitUntil([window] {
        wchar_t title[100] = {};
        ::GetWindowTextW(window, title, 100);
        return std::wstring(title) == L"refused";
    }));
    EXPECT_TRUE(::IsWindow(window));
    EXPECT_TRUE(StartedPrograms::Runs(StartedPrograms::Last()));
}

TEST_F(ChildExeTest, DestructorAsksTheWindowToClose)
{
    HWND window = nullptr;
    const Posts posts;
    {
        ChildExe child;
        ASSERT_TRUE(Create(child));
        window = LastWindow();
    }
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{{window, WM_CLOSE, 0, 0}}));
    EXPECT_TRUE(StartedPrograms::HasEnded(StartedPrograms::Last()));
}

TEST_F(ChildExeTest, DestructorPostsNothingWhereNothingIsHosted)
{
    const Posts posts;
    {
        const ChildExe never;
        ChildExe child;
        ASSERT_TRUE(Create(child));
        child.CloseSubWindow();
    }
    EXPECT_EQ(Posts::All().size(), 1U);
}

TEST_F(ChildExeTest, DestructorClosesByItselfWhateverADerivedClassMakesOfClosing)
{
    const Posts posts;
    HWND window = nullptr;
    {
        StubbornChild child;
        ASSERT_TRUE(Create(child));
        window = LastWindow();
        EXPECT_FALSE(child.CloseSubWindow());
        EXPECT_TRUE(Posts::All().empty());
    }
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{{window, WM_CLOSE, 0, 0}}));
}

TEST_F(ChildExeTest, NullHostStartsNothingButClosesWhatWasHosted)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const HWND window = LastWindow();
    EXPECT_FALSE(child.CreateSubWindow(nullptr, ChildWindow().c_str()));
    EXPECT_EQ(StartedPrograms::All().size(), 1U);
    EXPECT_TRUE(WaitUntilGone(window));
    EXPECT_EQ(child.HasSubWindow(), 0);
    EXPECT_FALSE(child.CloseSubWindow());
}

TEST_F(ChildExeTest, CreateClosesWhatWasHostedBefore)
{
    CountingChild child;
    ASSERT_TRUE(Host(child));
    EXPECT_EQ(child.closed, 1) << "through the virtual table";
    const HWND first = LastWindow();
    ASSERT_TRUE(Host(child));
    EXPECT_EQ(child.closed, 2);
    const HWND second = LastWindow();
    EXPECT_NE(first, second);
    EXPECT_TRUE(WaitUntilGone(first));
    EXPECT_TRUE(::IsWindow(second));
    EXPECT_NE(child.HasSubWindow(), 0);
}

TEST_F(ChildExeTest, UpdatePostsAPaintMessage)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const Posts posts;
    child.UpdateSubWindow();
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{{LastWindow(), WM_PAINT, 0, 0}}));
}

TEST_F(ChildExeTest, MovesTheWindow)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    EXPECT_NE(child.MoveSubWindow(CRect(-5, 7, 95, 57)), 0);
    EXPECT_TRUE(PlaceOf(LastWindow()) == CRect(-5, 7, 95, 57));
}

TEST_F(ChildExeTest, MoveReturnsWhatWindowsReturns)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const ImportPatch patch(
        "MoveWindow", +[](HWND, int, int, int, int, BOOL) -> BOOL { return 77; });
    EXPECT_EQ(child.MoveSubWindow(kPlace), 77);
}

TEST_F(ChildExeTest, NegativeWidthIsPassedOnUnchanged)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const Adoption adoption(HostHandle(), LastWindow());
    child.MoveSubWindow(CRect(100, 50, 40, 20));
    EXPECT_EQ(Adoption::Calls(), std::vector<std::string>{"MoveWindow child 100 50 -60 -30 1"});
}

TEST_F(ChildExeTest, HasNoWindowOnceTheProgramHasEndedByItself)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    const HWND window = LastWindow();
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    ASSERT_TRUE(WaitUntilGone(window));
    EXPECT_EQ(child.HasSubWindow(), 0);
    EXPECT_EQ(child.MoveSubWindow(kPlace), 0);
    EXPECT_FALSE(child.AddSubWindow(kPlace));
    EXPECT_TRUE(child.CloseSubWindow()) << "the handles are still set";
}

TEST_F(ChildExeTest, HasNoWindowOnceTheProgramWasKilled)
{
    ChildExe child;
    ASSERT_TRUE(Host(child));
    ::TerminateProcess(StartedPrograms::Last().process.hProcess, 1);
    EXPECT_TRUE(HostWindow::WaitUntil([&child] { return child.HasSubWindow() == 0; }));
    EXPECT_TRUE(child.CloseSubWindow());
}

TEST_F(ChildExeTest, CopiesStandForTheSameWindow)
{
    const Posts posts;
    HWND window = nullptr;
    {
        ChildExe child;
        ASSERT_TRUE(Create(child, L"--refuse"));
        window = LastWindow();
        ChildExe copy(child);
        EXPECT_EQ(HandlesOf(copy), HandlesOf(child));
        EXPECT_NE(copy.HasSubWindow(), 0);
        EXPECT_TRUE(copy.AddSubWindow(kPlace)) << "the host is copied, too";
        EXPECT_TRUE(copy.CloseSubWindow());
        EXPECT_NE(child.HasSubWindow(), 0);
    }
    const Posts::Post paint{window, WM_PAINT, 0, 0};
    const Posts::Post close{window, WM_CLOSE, 0, 0};
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{paint, close, close})) << "each closes it";
}

TEST_F(ChildExeTest, AssignmentClosesNothing)
{
    ChildExe child;
    ASSERT_TRUE(Create(child));
    const HWND former = LastWindow();
    ChildExe other;
    ASSERT_TRUE(Create(other));
    const HWND window = LastWindow();
    const Posts posts;
    child = other;
    EXPECT_EQ(HandlesOf(child), HandlesOf(other));
    EXPECT_TRUE(Posts::All().empty());
    EXPECT_TRUE(child.CloseSubWindow());
    EXPECT_EQ(Posts::All(), (std::vector<Posts::Post>{{window, WM_CLOSE, 0, 0}}));
    EXPECT_TRUE(::IsWindow(former)) << "nobody stands for it any more";
}

TEST_F(ChildExeTest, TwoProgramsLiveInOneHost)
{
    ChildExe one;
    ChildExe two;
    ASSERT_TRUE(Host(one));
    const HWND first = LastWindow();
    ASSERT_TRUE(Host(two));
    const HWND second = LastWindow();
    EXPECT_EQ(::GetAncestor(first, GA_PARENT), HostHandle());
    EXPECT_EQ(::GetAncestor(second, GA_PARENT), HostHandle());
    EXPECT_TRUE(one.CloseSubWindow());
    EXPECT_TRUE(WaitUntilGone(first));
    EXPECT_NE(two.HasSubWindow(), 0);
}

TEST_F(ChildExeTest, FiftyProgramsLeaveOnlyTheHandlesOfTheContract)
{
    constexpr std::size_t kCount = 50;
    ChildExe child;
    static std::size_t leftByTheWait;
    {
        // The first one of all brings more along. And Wine's own wait leaves a handle open.
        const ImportPatch patch(
            "WaitForInputIdle", +[](HANDLE process, DWORD milliseconds) -> DWORD {
                const std::size_t before = test::HandleCount();
                const DWORD result = ::WaitForInputIdle(process, milliseconds);
                leftByTheWait = test::HandleCount() - before;
                return result;
            });
        ASSERT_TRUE(Host(child));
        const HWND window = LastWindow();
        ASSERT_TRUE(child.CloseSubWindow());
        ASSERT_TRUE(WaitUntilGone(window));
    }

    const std::size_t before = test::HandleCount();
    std::vector<HWND> windows;
    for (std::size_t i = 0; i < kCount; ++i) {
        ASSERT_TRUE(Host(child));
        windows.push_back(LastWindow());
        ASSERT_TRUE(child.CloseSubWindow());
    }
    for (const HWND window : windows)
        EXPECT_TRUE(WaitUntilGone(window));
    EXPECT_EQ(test::HandleCount(), before + kCount * (2 + leftByTheWait)) << "of a process and a thread for each";
    EXPECT_EQ(::GetWindow(HostHandle(), GW_CHILD), nullptr);
    for (const StartedPrograms::Start& start : StartedPrograms::All())
        EXPECT_TRUE(StartedPrograms::HasEnded(start));
}

TEST_F(ChildExeTest, OperationsStandInTheOrderOfTheirSlots)
{
    RecordingChild child;
    // A member function is called as a function whose first argument is the object.
    using Operation = int (*)(ChildExe*, const void*, const void*);
    const auto* const slots = *reinterpret_cast<const Operation* const*>(static_cast<ChildExe*>(&child));
    for (int slot = 0; slot < 6; ++slot)
        slots[slot](&child, nullptr, nullptr);
    EXPECT_EQ(child.called, (std::vector<std::string>{"CreateSubWindow", "AddSubWindow", "CloseSubWindow",
                                                      "UpdateSubWindow", "HasSubWindow", "MoveSubWindow"}));
}

TEST_F(ChildExeTest, HoldsAVirtualTableAndThreeHandles)
{
    static_assert(!std::has_virtual_destructor_v<ChildExe>);
    EXPECT_EQ(sizeof(ChildExe), 4 * sizeof(void*));
}
