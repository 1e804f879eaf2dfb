// COleDateTime is in the stand-in for afxwin.h.
