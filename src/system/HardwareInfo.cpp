#include "system/HardwareInfo.h"

#include "WindowsApi.h"

namespace KELPKIT
{

CString CHardwareInfo::ComputerName()
{
    wchar_t name[200] = {};
    DWORD size = 200;
    return ::GetComputerNameW(name, &size) ? CString(name) : CString();
}

} // namespace KELPKIT
