#pragma once

/// @file
/// The MFC types of Kelpkit's interface, with CWnd for applications that host windows: MFC's own, or stand-ins with the
/// same names and behaviour, which applications may use as well. The stand-ins are subsets; their headers in `mfc` say
/// what they lack.
///
/// KELPKIT_USE_MFC says which, and must be what the library was built with: 1 for MFC's, 0 for the stand-ins. CMake's
/// targets define it. Only mingw, which has no MFC, does without.

#if !defined(KELPKIT_USE_MFC)
#if defined(_MSC_VER)
#error "Define KELPKIT_USE_MFC: as 0 where the name of the Kelpkit package says without-mfc, as 1 where it does not."
#else
/// 1 for MFC's own types, 0 for the stand-ins.
#define KELPKIT_USE_MFC 0
#endif
#endif

#if KELPKIT_USE_MFC

#include <afxwin.h>

#include <atlcomtime.h>

#else

#if defined(_AFXDLL) || defined(__AFX_H__) || defined(__ATLSTR_H__) || defined(__ATLCOMTIME_H__)
#error "This Kelpkit was built without MFC: its CString, CRect and COleDateTime are not MFC's. Use a package with MFC."
#endif
#include "mfc/COleDateTime.h"
#include "mfc/CRect.h"
#include "mfc/CString.h"
#include "mfc/CWnd.h"

#endif
