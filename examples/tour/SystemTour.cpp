#include "Tour.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/SystemInfo.h>

using namespace KELPKIT;

namespace
{

// The end of a path that is too long for a line.
std::wstring Shortened(const std::wstring& path)
{
    constexpr std::size_t kMost = 50;
    return path.size() <= kMost ? path : L"..." + path.substr(path.size() - kMost);
}

} // namespace

void ShowSystem(Tour& tour)
{
    tour.Section(L"The system");
    tour.Step(L"GetSysRoot", [] {
        return Tour::Result{Shortened(GetSysRoot()), CheckFileExis(GetSysRoot() + L"tour.exe")};
    });
    tour.Step(L"GetTempPathW", [] {
        const std::wstring path = GetTempPathW();
        return Tour::Result{Shortened(path), !path.empty() && path.back() == L'\\'};
    });
    tour.Step(L"GetComputerNameW", [] { return Tour::Result{GetComputerNameW(), !GetComputerNameW().empty()}; });
    tour.Step(L"GetHostIP", [] {
        // A host whose name does not resolve has none, which is no fault of the library.
        const std::wstring address = GetHostIP();
        return Tour::Result{address.empty() ? L"(the name does not resolve)" : address, true};
    });
    tour.Step(L"GetCPUId", [&tour] {
        const std::wstring id = GetCPUId();
        return Tour::Result{tour.Identity(id), id.size() > 32 && id == GetCPUId()};
    });
    tour.Step(L"GetHDDId", [&tour] {
        const std::wstring id = GetHDDId();
        return Tour::Result{id.empty() ? L"(no disk tells)" : tour.Identity(id), id == GetHDDId()};
    });
    tour.Step(L"GetHardwareCode", [&tour] {
        const std::wstring code = GetHardwareCode();
        return Tour::Result{tour.Identity(code), code.size() % 33 == 32};
    });
    tour.Step(L"GenerateUUID", [] {
        const std::wstring uuid = GenerateUUID();
        return Tour::Result{uuid, uuid.size() == 36 && uuid != GenerateUUID()};
    });
    tour.Step(L"IsWindowsXP, 7, 8", [] {
        const bool is[] = {IsWindowsXP(), IsWindows7(), IsWindows8()};
        return Tour::Result{Text(is[0]) + L", " + Text(is[1]) + L", " + Text(is[2]), is[0] + is[1] + is[2] <= 1};
    });
}
