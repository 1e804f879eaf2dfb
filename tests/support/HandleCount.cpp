#include "support/HandleCount.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace test
{
namespace
{

// Of the system's list of all handles: SystemExtendedHandleInformation. GetProcessHandleCount is always 0 under Wine.
constexpr ULONG kHandles = 64;

struct Entry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT backTrace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

struct List {
    ULONG_PTR count;
    ULONG_PTR reserved;
    Entry entries[1];
};

} // namespace

std::size_t HandleCount()
{
    using Query = LONG NTAPI(ULONG, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<Query*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    constexpr LONG kTooSmall = static_cast<LONG>(0xC0000004);
    std::vector<std::byte> buffer(1 << 16);
    ULONG size = 0;
    LONG status = 0;
    while ((status = query(kHandles, buffer.data(), static_cast<ULONG>(buffer.size()), &size)) == kTooSmall)
        buffer.resize(buffer.size() * 2);
    if (status != 0)
        throw std::runtime_error("the system does not list its handles");
    const auto* const list = reinterpret_cast<const List*>(buffer.data());
    const ULONG_PTR own = ::GetCurrentProcessId();
    return static_cast<std::size_t>(std::count_if(list->entries, list->entries + list->count,
                                                  [own](const Entry& entry) { return entry.processId == own; }));
}

} // namespace test
