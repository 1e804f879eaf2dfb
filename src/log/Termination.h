#pragma once

#include "WindowsApi.h"

namespace KELPKIT::crash
{

// Installs the unhandled-exception filter. mingw's C++ runtime ends a process by a call of the terminate handler, not
// by an exception that reaches Windows; so there, what calls std::terminate is reported to the filter, too.
void ReportThrough(LPTOP_LEVEL_EXCEPTION_FILTER filter);

} // namespace KELPKIT::crash
