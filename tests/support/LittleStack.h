#pragma once

#include <windows.h>

#include <cstddef>

namespace test
{

// The bytes between the caller's frame and the end of the thread's stack.
inline std::size_t StackLeft()
{
    MEMORY_BASIC_INFORMATION stack = {};
    ::VirtualQuery(&stack, &stack, sizeof stack);
    // NOLINTNEXTLINE(clang-analyzer-core.StackAddressEscape): it is a difference
    return static_cast<std::size_t>(reinterpret_cast<char*>(&stack) - static_cast<char*>(stack.AllocationBase));
}

// Calls an action with no more than this many bytes of the thread's stack left.
template <class Action>
void WithLittleStack(std::size_t bytes, const Action& action)
{
    if (StackLeft() <= bytes) {
        action();
        return;
    }
    volatile char page[4096];
    page[0] = 0;
    WithLittleStack(bytes, action);
    static_cast<void>(page[0]); // keeps the page until now
}

} // namespace test
