#pragma once

#include "Kelpkit/Mfc.h"

#include <vector>

namespace KELPKIT
{

// The models of the disks as WMI has them, in its order; empty where any step of the query fails or takes too long. COM
// must be running on the thread.
std::vector<CString> QueryDiskModels();

} // namespace KELPKIT
