#include "support/FakedCalls.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>

namespace test
{
namespace
{

constexpr const char* kTest = "KELPKIT_RUNNING_TEST";

// The path of the file; empty where there is none.
struct Path {
    Path()
    {
        // Such as "xml:Z:\results\FilesTests-936.xml".
        const DWORD length = ::GetEnvironmentVariableW(L"GTEST_OUTPUT", text, kSize);
        wchar_t* const end = text + (length < kSize ? length : 0);
        if (end - text < 8 || std::wcsncmp(text, L"xml:", 4) != 0 || std::wcscmp(end - 4, L".xml") != 0) {
            text[0] = L'\0';
            return;
        }
        *std::copy(text + 4, end - 4, text) = L'\0';
        std::wcscat(text, L".calls");
    }

    static constexpr DWORD kSize = 1024;
    wchar_t text[kSize] = {};
};

} // namespace

void SetRunningTest(const char* name)
{
    ::SetEnvironmentVariableA(kTest, name);
}

void ForgetFakedCalls()
{
    if (::GetEnvironmentVariableA(kTest, nullptr, 0) == 0)
        ::DeleteFileW(Path().text);
}

void NoteFakedCall(const wchar_t* module, const char* function)
{
    char test[512] = {};
    if (::GetEnvironmentVariableA(kTest, test, sizeof test) == 0)
        return;
    const HANDLE file = ::CreateFileW(Path().text, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    char line[1024];
    const int length = std::snprintf(line, sizeof line, "%ls %s %s\n", module, function, test);
    DWORD written = 0;
    ::WriteFile(file, line, static_cast<DWORD>(length), &written, nullptr);
    ::CloseHandle(file);
}

} // namespace test
