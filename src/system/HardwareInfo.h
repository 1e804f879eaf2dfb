#pragma once

#include "Kelpkit/Mfc.h"

namespace KELPKIT
{

// What the machine says of itself.
class CHardwareInfo
{
public:
    virtual ~CHardwareInfo() = default;

    CString ComputerName();
};

} // namespace KELPKIT
