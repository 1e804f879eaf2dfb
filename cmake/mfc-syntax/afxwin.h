// Stands in for MFC where its headers would be: the project's own types, behind the same condition.
#pragma once

#if defined(_WINDOWS_)
#error "MFC does not compile behind windows.h"
#endif
#include <windows.h>
#define _AFX

#include "mfc/CFileFind.h"
#include "mfc/COleDateTime.h"
#include "mfc/CRect.h"
#include "mfc/CString.h"
#include "mfc/CWnd.h"
