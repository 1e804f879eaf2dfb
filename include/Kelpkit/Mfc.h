#pragma once

/// @file
/// The MFC types of Kelpkit's interface, with CWnd for applications that host windows: the real ones where the toolchain
/// has MFC, else stand-ins with the same names and behaviour, which applications may use as well.

#if defined(_MSC_VER) && __has_include(<afxwin.h>)
#include <afxwin.h>

#include <atlcomtime.h>
#else
#include "mfc/COleDateTime.h"
#include "mfc/CRect.h"
#include "mfc/CString.h"
#include "mfc/CWnd.h"
#endif
