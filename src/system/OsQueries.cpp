#include "Kelpkit/SystemInfo.h"

#include "system/HardwareInfo.h"
#include "system/ParentReferences.h"

#include "WindowsApi.h"

namespace KELPKIT
{
namespace
{

OSVERSIONINFOW ReportedVersion()
{
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
#if defined(_MSC_VER)
#pragma warning(suppress : 4996) // the reported version is the one meant, also where it is not the true one
#endif
    ::GetVersionExW(&version);
    return version;
}

} // namespace

std::wstring GetSysRoot()
{
    // One more for the terminator, which not every version of Windows writes behind a path that it cuts.
    wchar_t path[MAX_PATH + 1] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring file = path;
    return CollapseParentReferences(file.substr(0, file.rfind(L'\\') + 1));
}

std::wstring GetTempPathW()
{
    // Where the path is too long, Windows tells the size that it wants and writes nothing.
    wchar_t path[MAX_PATH] = {};
    const DWORD length = ::GetTempPathW(MAX_PATH, path);
    return length < MAX_PATH ? std::wstring(path) : std::wstring();
}

std::wstring GetComputerNameW()
{
    return CHardwareInfo().ComputerName().GetString();
}

bool IsWindowsXP()
{
    const OSVERSIONINFOW version = ReportedVersion();
    return version.dwMajorVersion == 5 && version.dwMinorVersion >= 1;
}

bool IsWindows7()
{
    const OSVERSIONINFOW version = ReportedVersion();
    return version.dwMajorVersion == 6 && version.dwMinorVersion == 1;
}

bool IsWindows8()
{
    const OSVERSIONINFOW version = ReportedVersion();
    return version.dwMajorVersion == 6 && version.dwMinorVersion == 2;
}

} // namespace KELPKIT
