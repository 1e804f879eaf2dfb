#include "system/HardwareInfo.h"

#include "Kelpkit/Text.h"
#include "WindowsApi.h"
#include "system/DiskIdInfo.h"
#include "system/ProcessorId.h"

#include <iterator>
#include <string>
#include <vector>

namespace KELPKIT
{
namespace
{

CString g_processorId;
std::vector<CString> g_diskIds;

const std::vector<CString>& DiskIds()
{
    if (g_diskIds.empty())
        g_diskIds = CDiskIDInfo().DiskIds();
    return g_diskIds;
}

} // namespace

CString CHardwareInfo::ComputerName()
{
    wchar_t name[200] = {};
    auto size = static_cast<DWORD>(std::size(name));
    return ::GetComputerNameW(name, &size) ? CString(name) : CString();
}

CString CHardwareInfo::ProcessorId()
{
    if (g_processorId.IsEmpty())
        g_processorId = AnsiToUnicode(ReadProcessorId()).c_str();
    return g_processorId;
}

CString CHardwareInfo::FirstDiskId()
{
    return DiskIds().front();
}

CString CHardwareInfo::HardwareCode()
{
    const CString processorId = ProcessorId();
    CString code;
    for (const CString& diskId : DiskIds()) {
        std::wstring digest;
        BuildMd5Code(std::wstring((processorId + diskId).GetString()), digest);
        code += (digest + L"-").c_str();
    }
    return code.TrimRight(L'-');
}

} // namespace KELPKIT
