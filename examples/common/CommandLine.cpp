#include "CommandLine.h"

#include <Kelpkit/Text.h>

#include <windows.h>

#include <shellapi.h>

#include <memory>

std::vector<std::wstring> Arguments()
{
    struct LocalDeleter {
        void operator()(HLOCAL memory) const { ::LocalFree(memory); }
    };
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalDeleter> words(::CommandLineToArgvW(::GetCommandLineW(), &count));
    return words ? std::vector<std::wstring>(words.get() + 1, words.get() + count) : std::vector<std::wstring>();
}

void Complain(const std::wstring& program, const std::wstring& message)
{
    // A program with windows has no error stream unless somebody gave it one. If it was started from a console, that
    // is where messages are looked for.
    if (::GetFileType(::GetStdHandle(STD_ERROR_HANDLE)) == FILE_TYPE_UNKNOWN)
        ::AttachConsole(ATTACH_PARENT_PROCESS);
    const HANDLE stream = ::GetStdHandle(STD_ERROR_HANDLE);
    const std::wstring line = program + L": " + message + L"\r\n";
    DWORD written = 0;
    if (::WriteConsoleW(stream, line.c_str(), static_cast<DWORD>(line.size()), &written, nullptr))
        return;
    const std::string bytes = KELPKIT::UnicodeToUTF8(line);
    ::WriteFile(stream, bytes.c_str(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}
