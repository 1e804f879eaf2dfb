#include "Bench.h"
#include "Processes.h"

#include "Kelpkit/SystemInfo.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <windows.h>

#include <objbase.h>

#include <stdexcept>
#include <string>

namespace bench
{
namespace
{

// Seconds that a new process takes to load a DLL.
double LoadTime(const std::wstring& dll)
{
    const unsigned long microseconds = Run(L'"' + ProgramPath(L"LoadDll.exe") + L"\" " + dll);
    if (microseconds == 0)
        throw std::runtime_error("a DLL cannot be loaded");
    return 1e-6 * static_cast<double>(microseconds);
}

void RegisterLoading()
{
    Comparison("load the DLL", "in a new process")
        .KelpkitMeasured([] { return LoadTime(L"Kelpkit.dll"); })
        .PeerMeasured(
            "log4cplus", [] { return LoadTime(KELPKIT_BENCH_LOG4CPLUS); }, 1.2);
    Comparison("start a program that loads the DLL", "from start to end")
        .Kelpkit([] { return LoadTime(L"Kelpkit.dll"); })
        .Peer("log4cplus", [] { return LoadTime(KELPKIT_BENCH_LOG4CPLUS); });
}

void RegisterUuid()
{
    Comparison("UUID", "as text")
        .Kelpkit([] { return KELPKIT::GenerateUUID(); })
        .Peer("Boost.Uuid, freshly seeded",
              [] { return boost::uuids::to_wstring(boost::uuids::random_generator_mt19937()()); })
        .Peer("Boost.Uuid, seeded once",
              [] {
                  static boost::uuids::random_generator_mt19937 generator;
                  return boost::uuids::to_wstring(generator());
              })
        .Peer("CoCreateGuid", [] {
            GUID guid;
            ::CoCreateGuid(&guid);
            wchar_t text[39] = L"";
            ::StringFromGUID2(guid, text, 39);
            return std::wstring(text, 38);
        });
}

std::wstring ComputerName()
{
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    return ::GetComputerNameW(name, &size) ? std::wstring(name, size) : std::wstring();
}

std::wstring TempPath()
{
    wchar_t path[MAX_PATH + 1];
    return {path, ::GetTempPathW(MAX_PATH + 1, path)};
}

std::wstring ModulePath()
{
    wchar_t path[MAX_PATH];
    return {path, ::GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

DWORD WindowsVersion()
{
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    ::GetVersionExW(&version);
    return version.dwMajorVersion;
}

void RegisterQueries()
{
    constexpr const char* kBare = "the bare system call";
    Comparison("query", "computer name").Kelpkit([] { return KELPKIT::GetComputerNameW(); }).Peer(kBare, ComputerName);
    Comparison("query", "temporary folder").Kelpkit([] { return KELPKIT::GetTempPathW(); }).Peer(kBare, TempPath);
    Comparison("query", "folder of the program").Kelpkit([] { return KELPKIT::GetSysRoot(); }).Peer(kBare, ModulePath);
    Comparison("query", "version of Windows").Kelpkit([] { return KELPKIT::IsWindows7(); }).Peer(kBare, WindowsVersion);
}

} // namespace

void Register()
{
    RegisterLoading();
    RegisterUuid();
    RegisterQueries();
}

} // namespace bench
