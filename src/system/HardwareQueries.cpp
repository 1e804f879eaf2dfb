#include "Kelpkit/SystemInfo.h"

#include "system/HardwareInfo.h"

namespace KELPKIT
{

std::wstring GetCPUId()
{
    return CHardwareInfo().ProcessorId().GetString();
}

std::wstring GetHDDId()
{
    return CHardwareInfo().FirstDiskId().GetString();
}

std::wstring GetHardwareCode()
{
    return CHardwareInfo().HardwareCode().GetString();
}

} // namespace KELPKIT
