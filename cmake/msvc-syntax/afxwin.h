// MFC's stand-in: the project's own types, where MFC's headers would have them.
#pragma once

#if defined(KELPKIT_WINDOWS_IS_INCLUDED)
#error MFC does not compile behind windows.h
#endif
#define _AFX

#include "mfc/CFileFind.h"
#include "mfc/COleDateTime.h"
#include "mfc/CRect.h"
#include "mfc/CString.h"
#include "mfc/CWnd.h"
