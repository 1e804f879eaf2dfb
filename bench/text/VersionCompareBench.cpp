#include "Bench.h"
#include "TextBench.h"

#include "Kelpkit/Text.h"

#include <windows.h>

#include <shlwapi.h>

#include <cstddef>
#include <string>

namespace bench
{

void RegisterVersionCompare()
{
    const auto& older = Keep<std::wstring>(L"2.10.3");
    const auto& newer = Keep<std::wstring>(L"2.10.12");
    Comparison("version comparison", R"("2.10.3" with "2.10.12")")
        .Kelpkit([&] { return KELPKIT::ALargeB(older, newer); })
        .Peer(
            "StrCmpLogicalW", [&] { return ::StrCmpLogicalW(older.c_str(), newer.c_str()); }, 0.15);

    Growth("version comparison, units", [](std::size_t size) {
        std::wstring version;
        while (version.size() < size)
            version += L"10.";
        const std::wstring& text = Keep(version);
        return [&text] { return KELPKIT::ALargeB(text, text); };
    });
}

} // namespace bench
