// The real one is read beforehand, with all headers of the system. This one tells the stand-in for MFC that it was here.
#define KELPKIT_WINDOWS_IS_INCLUDED
