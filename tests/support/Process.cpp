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

std::uint32_t Run(const std::wstring& commandLine, std::uint32_t milliseconds)
{
    std::wstring writable = commandLine;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(nullptr, writable.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("the program does not start: " + LastErrorText());
    const bool ended = ::WaitForSingleObject(process.hProcess, milliseconds) == WAIT_OBJECT_0;
    DWORD exitCode = 0;
    if (ended)
        ::GetExitCodeProcess(process.hProcess, &exitCode);
    else
        ::TerminateProcess(process.hProcess, 1);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    if (!ended)
        throw std::runtime_error("the program hangs");
    return exitCode;
}

} // namespace test
