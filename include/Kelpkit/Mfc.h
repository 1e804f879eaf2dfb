#pragma once

/// The MFC types that stand in Kelpkit's interface: the real ones where the toolchain has MFC, else stand-ins with the
/// same names and behaviour, which applications may use as well.

#if defined(_MSC_VER) && __has_include(<afxwin.h>)
#include <afxwin.h>

#include <atlcomtime.h>
#else
#include "mfc/COleDateTime.h"
#include "mfc/CString.h"
#endif
