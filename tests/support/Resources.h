#pragma once

#include <cstddef>

namespace test
{

// What this process has of the system at a time.
struct Resources {
    std::size_t handles;
    std::size_t gdiObjects;
    std::size_t userObjects; // under Wine, which does not count them: windows
    std::size_t threads;
    std::size_t privateBytes;
};

Resources CurrentResources();

} // namespace test
