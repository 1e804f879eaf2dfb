#include "Kelpkit/CrashReport.h"

#include "WindowsApi.h"
#include "log/Termination.h"

#include <dbghelp.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <initializer_list>

namespace KELPKIT
{
namespace
{

// What runs after the crash must not allocate: the heap may be damaged, or locked by a thread that stands still.

constexpr wchar_t kDriveRoot[] = L"C:\\";

// Found when dumps are asked for: after the crash it may be too late to load a DLL.
decltype(&::MiniDumpWriteDump) g_writeDump = nullptr;

struct Names {
    wchar_t folder[MAX_PATH] = {};
    wchar_t program[MAX_PATH] = {};
};

// The path of the dump, which is cut where it gets too long.
class DumpPath
{
public:
    const wchar_t* Text() const { return m_text; }

    void Append(wchar_t c)
    {
        if (m_length < MAX_PATH - 1)
            m_text[m_length++] = c;
    }

    void Append(const wchar_t* text)
    {
        for (; *text != L'\0'; ++text)
            Append(*text);
    }

    // Of at least so many digits.
    void AppendNumber(unsigned number, int digits)
    {
        if (number > 9 || digits > 1)
            AppendNumber(number / 10, digits - 1);
        Append(static_cast<wchar_t>(L'0' + number % 10));
    }

private:
    wchar_t m_text[MAX_PATH] = {};
    std::size_t m_length = 0;
};

void FindProgram(Names& names)
{
    wchar_t* const path = names.folder; // lent until the folder is known
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const wchar_t* const backslash = std::wcsrchr(path, L'\\');
    if (backslash == nullptr)
        return;
    // By contract as many bytes as the path has characters, which cuts a name that is longer than half the path, be it
    // in the middle of a character.
    const std::size_t nameBytes = std::wcslen(backslash + 1) * sizeof(wchar_t);
    std::memcpy(names.program, backslash + 1, std::min(nameBytes, std::wcslen(path)));
}

void FindFolder(Names& names)
{
    // Where the path is too long, Windows writes nothing, and the dump goes to the current folder.
    names.folder[0] = L'\0';
    if (::GetTempPathW(MAX_PATH, names.folder) == 0)
        std::memcpy(names.folder, kDriveRoot, sizeof kDriveRoot);
}

void BuildPath(DumpPath& path)
{
    Names names;
    FindProgram(names);
    FindFolder(names);
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    path.Append(names.folder);
    path.AppendNumber(now.wYear, 4);
    for (const WORD field : {now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond})
        path.AppendNumber(field, 2);
    path.Append(L'_');
    path.Append(names.program);
    path.Append(L".dmp");
}

void WriteDump(EXCEPTION_POINTERS* exception)
{
    if (g_writeDump == nullptr)
        return;
    DumpPath path;
    BuildPath(path);
    const HANDLE file = ::CreateFileW(path.Text(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    MINIDUMP_EXCEPTION_INFORMATION information = {};
    information.ThreadId = ::GetCurrentThreadId();
    information.ExceptionPointers = exception;
    information.ClientPointers = TRUE;
    g_writeDump(::GetCurrentProcess(), ::GetCurrentProcessId(), file, MiniDumpNormal, &information, nullptr, nullptr);
    ::CloseHandle(file);
}

LONG WINAPI ReportException(EXCEPTION_POINTERS* exception)
{
    // Back to the system's own crash report, which the application may have turned off.
    ::SetErrorMode(0);
    WriteDump(exception);
    return EXCEPTION_CONTINUE_SEARCH;
}

// The filter is called until the process ends, so this DLL must not be unloaded.
void StayLoaded()
{
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<const wchar_t*>(&ReportException), &module);
}

} // namespace

void StartCrashReport()
{
    StayLoaded();
    if (const HMODULE dbghelp = ::LoadLibraryW(L"dbghelp.dll"))
        g_writeDump = reinterpret_cast<decltype(g_writeDump)>(
            reinterpret_cast<void*>(::GetProcAddress(dbghelp, "MiniDumpWriteDump")));
    crash::ReportThrough(&ReportException);
}

} // namespace KELPKIT
