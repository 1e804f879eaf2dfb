#pragma once

#include "Kelpkit/Mfc.h"

namespace KELPKIT
{

// What the machine says of itself. The identifiers of processor and disks are asked for once in the life of the
// process, without a lock.
class CHardwareInfo
{
public:
    virtual ~CHardwareInfo() = default;

    CString ComputerName();
    CString ProcessorId();
    CString FirstDiskId();
    CString HardwareCode();
};

} // namespace KELPKIT
