#pragma once

#include "support/FileHolder.h"
#include "support/ImportPatch.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <optional>
#include <string>

namespace test
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Every access that a share mode may refuse.
constexpr DWORD kAccesses[] = {GENERIC_READ, GENERIC_WRITE, DELETE};

// A file that another program holds open until the clock of XMLParser.dll shows a certain time. That clock starts at 0,
// and only the DLL's own waits move it on. One at a time.
class HeldFile
{
public:
    // Later than any save may end.
    static constexpr ULONGLONG kForEver = 10000;

    HeldFile(const std::wstring& path, DWORD access, DWORD share, ULONGLONG until, DWORD disposition = OPEN_EXISTING)
    {
        s_now = 0;
        s_until = until;
        s_holder.emplace(path, access, share, disposition);
    }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile() { s_holder.reset(); }

    // In milliseconds.
    static ULONGLONG Now() { return s_now; }

private:
    static inline ULONGLONG s_now;
    static inline ULONGLONG s_until;
    static inline std::optional<FileHolder> s_holder;

    ImportPatch m_sleep{L"XMLParser.dll", "Sleep", +[](DWORD milliseconds) {
                            s_now += milliseconds;
                            if (s_now >= s_until)
                                s_holder.reset();
                        }};
    ImportPatch m_clock{L"XMLParser.dll", "GetTickCount64", +[]() -> ULONGLONG { return s_now; }};
};

// Somebody has the file open and shares it with nobody.
inline void ExpectNobodyCanOpen(const std::wstring& path)
{
    for (const DWORD access : kAccesses) {
        const HANDLE file = ::CreateFileW(path.c_str(), access, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr);
        const DWORD error = ::GetLastError();
        EXPECT_EQ(file, INVALID_HANDLE_VALUE) << access;
        EXPECT_EQ(error, DWORD{ERROR_SHARING_VIOLATION}) << access;
        if (file != INVALID_HANDLE_VALUE)
            ::CloseHandle(file);
    }
}

// While it lives, XMLParser.dll writes only to a file that nobody else can open. One at a time.
class UnsharedWrites
{
public:
    explicit UnsharedWrites(const std::wstring& path)
    {
        s_path = path;
        s_count = 0;
    }

    static int Count() { return s_count; }

private:
    static inline std::wstring s_path;
    static inline int s_count;

    ImportPatch m_write{L"XMLParser.dll", "WriteFile",
                        +[](HANDLE handle, const void* bytes, DWORD size, DWORD* written, OVERLAPPED*) -> BOOL {
                            ++s_count;
                            ExpectNobodyCanOpen(s_path);
                            return ::WriteFile(handle, bytes, size, written, nullptr);
                        }};
};

} // namespace test
