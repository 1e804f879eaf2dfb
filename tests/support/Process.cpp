#include "support/Process.h"

#include "support/LastError.h"

#include <windows.h>

#include <stdexcept>

namespace test
{

std::wstring BesideThisProgram(const std::wstring& name)
{
    wchar_t path[MAX_PATH + 1] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + name;
}

StartedProgram::StartedProgram(std::wstring commandLine)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    BOOL isStarted = FALSE;
    // Once in thousands of times, Wine cannot start a program and calls that an internal error.
    for (int tries = 0; tries < 3; ++tries) {
        isStarted = ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                     &startup, &process);
        if (isStarted || ::GetLastError() != ERROR_INTERNAL_ERROR)
            break;
    }
    if (!isStarted)
        throw std::runtime_error("the program does not start: " + LastErrorText());
    ::CloseHandle(process.hThread);
    m_process = process.hProcess;
    m_processId = process.dwProcessId;
}

StartedProgram::~StartedProgram()
{
    if (!HasEnded(0)) {
        ::TerminateProcess(m_process, 1);
        ::WaitForSingleObject(m_process, INFINITE);
    }
    ::CloseHandle(m_process);
}

bool StartedProgram::HasEnded(std::uint32_t milliseconds) const
{
    return ::WaitForSingleObject(m_process, milliseconds) == WAIT_OBJECT_0;
}

std::uint32_t StartedProgram::ExitCode() const
{
    DWORD exitCode = 0;
    ::GetExitCodeProcess(m_process, &exitCode);
    return exitCode;
}

std::uint32_t Run(const std::wstring& commandLine, std::uint32_t milliseconds)
{
    const StartedProgram program(commandLine);
    if (!program.HasEnded(milliseconds))
        throw std::runtime_error("the program hangs");
    return program.ExitCode();
}

} // namespace test
