#include "support/LastError.h"
#include "support/Threads.h"

#include <Kelpkit/Mfc.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

class Window
{
public:
    Window()
        : m_handle(::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 100, 50, nullptr, nullptr, nullptr, nullptr))
    {
        ::ShowWindow(m_handle, SW_SHOWNOACTIVATE);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() { ::DestroyWindow(m_handle); }

    HWND Handle() const { return m_handle; }

private:
    HWND m_handle;
};

} // namespace

TEST(CWnd, IsTheSameForTheSameHandle)
{
    const Window one;
    const Window two;
    CWnd* const first = CWnd::FromHandle(one.Handle());
    CWnd* const second = CWnd::FromHandle(two.Handle());
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(CWnd::FromHandle(one.Handle()), first);
    EXPECT_EQ(first->m_hWnd, one.Handle());
    EXPECT_EQ(second->m_hWnd, two.Handle());
}

TEST(CWnd, IsNullForTheNullHandle)
{
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
}

TEST(CWnd, PostsMessages)
{
    const Window window;
    EXPECT_TRUE(CWnd::FromHandle(window.Handle())->PostMessage(WM_APP, 7, -8)) << test::LastErrorText();
    MSG message{};
    ASSERT_TRUE(::PeekMessageW(&message, window.Handle(), WM_APP, WM_APP, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7U);
    EXPECT_EQ(message.lParam, -8);
}

TEST(CWnd, PostsNothingToAWindowThatIsGone)
{
    HWND handle = nullptr;
    {
        const Window window;
        handle = window.Handle();
    }
    EXPECT_FALSE(CWnd::FromHandle(handle)->PostMessage(WM_APP));
}

TEST(CWnd, InvalidatesThePartOrTheWhole)
{
    const Window window;
    ::ValidateRect(window.Handle(), nullptr);
    const CRect part(10, 10, 30, 20);
    CWnd::FromHandle(window.Handle())->InvalidateRect(part, FALSE);
    CRect invalid;
    ::GetUpdateRect(window.Handle(), &invalid, FALSE);
    EXPECT_TRUE(::EqualRect(invalid, part));

    CWnd::FromHandle(window.Handle())->InvalidateRect(nullptr);
    ::GetUpdateRect(window.Handle(), &invalid, FALSE);
    const CRect whole(0, 0, 100, 50);
    EXPECT_TRUE(::EqualRect(invalid, whole));
}

TEST(CWnd, MayBeAskedForInManyThreads)
{
    test::InThreads(4, [](std::size_t number) {
        for (std::size_t i = 1; i <= 1000; ++i) {
            // Never touched, so it need be no window.
            const auto handle = reinterpret_cast<HWND>((number % 2 + 1) * i);
            EXPECT_EQ(CWnd::FromHandle(handle)->m_hWnd, handle);
        }
    });
}
