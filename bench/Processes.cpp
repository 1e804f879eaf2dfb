#include "Processes.h"

#include <windows.h>

#include <stdexcept>

namespace bench
{

std::wstring ProgramPath(const std::wstring& name)
{
    wchar_t path[MAX_PATH] = L"";
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring self = path;
    return self.substr(0, self.rfind(L'\\') + 1) + name;
}

unsigned long Run(std::wstring commandLine)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process;
    if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process))
        throw std::runtime_error("a program does not start");
    ::WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process.hProcess, &exitCode);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return exitCode;
}

} // namespace bench
