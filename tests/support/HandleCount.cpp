#include "support/HandleCount.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace test
{

std::size_t HandleCount()
{
    DWORD count = 0;
    if (::GetProcessHandleCount(::GetCurrentProcess(), &count) && count != 0)
        return count;
    // Wine does not count, and its server may crash while it lists the handles of a process that is just starting. It
    // gives a new handle the lowest free number, multiples of four, so that a long run of free ones is the end.
    constexpr std::uintptr_t kFreeAtTheEnd = 1024;
    for (std::uintptr_t number = 4, free = 0; free < kFreeAtTheEnd; number += 4) {
        DWORD flags = 0;
        const bool isOpen = ::GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags);
        count += isOpen ? 1 : 0;
        free = isOpen ? 0 : free + 1;
    }
    return count;
}

} // namespace test
