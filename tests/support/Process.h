#pragma once

#include <cstdint>
#include <string>

namespace test
{

// The path of a file in the folder of the running test program, where the test programs stand, too.
std::wstring BesideThisProgram(const std::wstring& name);

// Runs a command line to its end and returns its exit code; throws std::runtime_error where it does not start, or does
// not end within the time, after which it is killed.
std::uint32_t Run(const std::wstring& commandLine, std::uint32_t milliseconds = 60000);

} // namespace test
