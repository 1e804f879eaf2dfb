#pragma once

#include <cstdint>

namespace test
{

// What Crasher.exe writes down of an exception at the moment when it is raised.
struct CrashRecord {
    std::uint64_t address;
    std::uint32_t code;
    std::uint32_t threadId;
};

} // namespace test
