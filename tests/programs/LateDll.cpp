// Checks that Kelpkit.dll loads a DLL of the system when it first needs it:
//
//     LateDll.exe DLL
//
// The exit code is 0 if that is so, 1 if the DLL was there before, 2 if it is not there after a call that needs it.

#include <Kelpkit/Kelpkit.h> // first: MFC stands no windows.h before it

#include "support/ImportPatch.h"

#include <windows.h>

#include <cwchar>

namespace
{

// Whoever may not write to the drives learns of them by way of COM.
void AskForDiskWithoutRights()
{
    const test::ImportPatch patch(
        "CreateFileW", +[](const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) -> HANDLE {
            return INVALID_HANDLE_VALUE;
        });
    KELPKIT::GetHDDId();
}

struct Need {
    const wchar_t* dll;
    void (*call)();
};

const Need kNeeds[] = {
    {L"bcrypt.dll", [] { KELPKIT::GenerateUUID(); }},
    {L"dbghelp.dll", [] { KELPKIT::StartCrashReport(); }},
    {L"ole32.dll", &AskForDiskWithoutRights},
    {L"oleaut32.dll", [] { KELPKIT::StringToOleDateTime(L"2024-03-05"); }},
    {L"shlwapi.dll", [] { KELPKIT::CLogMsg::SetLogPath(L""); }},
    {L"user32.dll", [] { KELPKIT::OleDateTimeToString(COleDateTime(1e300)); }},
};

} // namespace

int wmain(int argc, wchar_t** argv)
{
    for (const Need& need : kNeeds) {
        if (argc != 2 || std::wcscmp(argv[1], need.dll) != 0)
            continue;
        if (::GetModuleHandleW(need.dll) != nullptr)
            return 1;
        need.call();
        return ::GetModuleHandleW(need.dll) != nullptr ? 0 : 2;
    }
    return 3;
}
