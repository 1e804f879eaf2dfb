#include "support/LastError.h"

#include <windows.h>

namespace test
{

std::string LastErrorText()
{
    const DWORD error = ::GetLastError();
    char text[512] = {};
    DWORD length = ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                    MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), text, sizeof text, nullptr);
    while (length > 0 && (text[length - 1] == '\n' || text[length - 1] == '\r'))
        --length;
    return "Windows error " + std::to_string(error) + ": " + std::string(text, length);
}

} // namespace test
