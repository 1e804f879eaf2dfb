#include "support/Resources.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <type_traits>
#include <vector>

using test::CurrentResources;
using test::Resources;

namespace
{

// Changes by these, for a while.
template <class Take>
Resources Taken(const Take& take)
{
    CurrentResources();
    const Resources before = CurrentResources();
    Resources during = {};
    take([&during] { during = CurrentResources(); });
    const Resources after = CurrentResources();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects);
    EXPECT_EQ(after.userObjects, before.userObjects);
    EXPECT_EQ(after.threads, before.threads);
    return {during.handles - before.handles, during.gdiObjects - before.gdiObjects,
            during.userObjects - before.userObjects, during.threads - before.threads,
            during.privateBytes - before.privateBytes};
}

} // namespace

TEST(Resources, CountsHandles)
{
    const Resources taken = Taken([](const auto& look) {
        const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        look();
        ::CloseHandle(event);
    });
    EXPECT_EQ(taken.handles, 1U);
}

TEST(Resources, CountsGdiObjects)
{
    const Resources taken = Taken([](const auto& look) {
        const HBRUSH brush = ::CreateSolidBrush(0x123456);
        look();
        ::DeleteObject(brush);
    });
    EXPECT_EQ(taken.gdiObjects, 1U);
}

TEST(Resources, CountsWindows)
{
    const auto make = [] {
        return ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    };
    // With the first one of a thread comes one of the system's.
    const HWND first = make();
    const Resources taken = Taken([&make](const auto& look) {
        const HWND window = make();
        look();
        ::DestroyWindow(window);
    });
    ::DestroyWindow(first);
    EXPECT_EQ(taken.userObjects, 1U);
}

TEST(Resources, CountsThreads)
{
    // A thread of the system's own: where two threads of the C++ runtime meet, that may open a handle and keep it.
    const Resources taken = Taken([](const auto& look) {
        using Look = std::remove_reference_t<decltype(look)>;
        Look* work = &look;
        const HANDLE thread = ::CreateThread(
            nullptr, 0,
            [](void* argument) -> DWORD {
                (**static_cast<Look**>(argument))();
                return 0;
            },
            &work, 0, nullptr);
        ::WaitForSingleObject(thread, INFINITE);
        ::CloseHandle(thread);
    });
    EXPECT_EQ(taken.threads, 1U);
}

TEST(Resources, CountsPrivateBytes)
{
    constexpr std::size_t kSize = 64 << 20;
    const Resources taken = Taken([](const auto& look) {
        const std::vector<char> bytes(kSize, 'x');
        look();
    });
    EXPECT_GT(taken.privateBytes, kSize * 9 / 10);
    EXPECT_LT(taken.privateBytes, kSize * 11 / 10);
}
