#pragma once

#include <cstdint>
#include <string>

namespace test
{

// The path of a file in the folder of the running test program, where the test programs stand, too.
std::wstring BesideThisProgram(const std::wstring& name);

// A started program. It is killed at the end, unless it has ended. Throws std::runtime_error where it does not start.
class StartedProgram
{
public:
    explicit StartedProgram(std::wstring commandLine);
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;
    ~StartedProgram();

    std::uint32_t ProcessId() const { return m_processId; }

    // Waits for its end; false where that does not come within the time.
    bool HasEnded(std::uint32_t milliseconds) const;
    std::uint32_t ExitCode() const;

private:
    void* m_process = nullptr;
    std::uint32_t m_processId = 0;
};

// Runs a command line to its end and returns its exit code; throws std::runtime_error where it does not start, or does
// not end within the time, after which it is killed.
std::uint32_t Run(const std::wstring& commandLine, std::uint32_t milliseconds = 60000);

} // namespace test
