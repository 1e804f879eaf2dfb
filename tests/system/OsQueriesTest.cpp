// Before windows.h, which would bring in the older Winsock.
#include <winsock2.h>

#include "support/ImportPatch.h"
#include "support/LastError.h"

#include <Kelpkit/SystemInfo.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <utility>

using test::ImportPatch;

namespace
{

std::wstring g_modulePath;

// Copies what fits and terminates it, as Windows does.
DWORD WINAPI FakeGetModuleFileName(HMODULE module, wchar_t* buffer, DWORD size)
{
    EXPECT_EQ(module, nullptr);
    EXPECT_EQ(size, 260U);
    const std::size_t copied = g_modulePath.copy(buffer, size - 1);
    buffer[copied] = L'\0';
    return copied < g_modulePath.size() ? size : static_cast<DWORD>(copied);
}

std::wstring SysRootOf(const std::wstring& modulePath)
{
    g_modulePath = modulePath;
    const ImportPatch patch("GetModuleFileNameW", &FakeGetModuleFileName);
    return KELPKIT::GetSysRoot();
}

std::wstring g_tempPath;

// Copies a path that fits with its terminator; else tells the size that it wants.
DWORD WINAPI FakeGetTempPath(DWORD size, wchar_t* buffer)
{
    EXPECT_EQ(size, 260U);
    if (g_tempPath.size() >= size)
        return static_cast<DWORD>(g_tempPath.size() + 1);
    std::wmemcpy(buffer, g_tempPath.c_str(), g_tempPath.size() + 1);
    return static_cast<DWORD>(g_tempPath.size());
}

OSVERSIONINFOW g_version;

BOOL WINAPI FakeGetVersionEx(OSVERSIONINFOW* version)
{
    EXPECT_EQ(version->dwOSVersionInfoSize, 276U);
    *version = g_version;
    return TRUE;
}

// Which of the three tests are true of a version, as "XP", "7", "8" or "".
std::string TrueTests(DWORD major, DWORD minor)
{
    g_version = {};
    g_version.dwMajorVersion = major;
    g_version.dwMinorVersion = minor;
    const ImportPatch patch("GetVersionExW", &FakeGetVersionEx);
    return std::string(KELPKIT::IsWindowsXP() ? "XP" : "") + (KELPKIT::IsWindows7() ? "7" : "") +
           (KELPKIT::IsWindows8() ? "8" : "");
}

// Counts the starts and ends of Winsock, which are carried out, too.
class WinsockCounter
{
public:
    WinsockCounter() { s_started = s_ended = 0; }

    static int Started() { return s_started; }
    static int Ended() { return s_ended; }

private:
    static inline int s_started;
    static inline int s_ended;

    ImportPatch m_startup{"WSAStartup", +[](WORD version, WSADATA* data) {
                              EXPECT_EQ(version, 0x0202);
                              ++s_started;
                              return ::WSAStartup(version, data);
                          }};
    ImportPatch m_cleanup{"WSACleanup", +[] {
                              ++s_ended;
                              return ::WSACleanup();
                          }};
};

// A host entry with these addresses.
char g_addresses[2][4] = {{static_cast<char>(192), static_cast<char>(168), 0, 7}, {10, 0, 0, 1}};
char* g_addressList[3] = {g_addresses[0], g_addresses[1], nullptr};
hostent g_host = {nullptr, nullptr, AF_INET, 4, g_addressList};

} // namespace

TEST(GetSysRoot, IsTheFolderOfTheRunningProgram)
{
    wchar_t path[MAX_PATH + 1] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    EXPECT_EQ(KELPKIT::GetSysRoot(), program.substr(0, program.rfind(L'\\') + 1));
}

TEST(GetSysRoot, FoldsParentReferences)
{
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"C:\\App\\bin\\host.exe", L"C:\\App\\bin\\"}, {L"C:\\host.exe", L"C:\\"},
        {L"C:\\a\\bc\\..\\d\\x.exe", L"C:\\a\\d\\"},    {L"C:\\ab\\..\\x.exe", L"C:\\"},
        {L"C:\\one\\two\\..\\..\\x.exe", L"C:\\"},      {L"C:\\one\\two\\..\\three\\..\\x.exe", L"C:\\one\\"},
        {L"C:\\模型\\图纸\\..\\x.exe", L"C:\\模型\\"},  {L"\\\\server\\share\\ab\\..\\x.exe", L"\\\\server\\share\\"},
    };
    for (const auto& [module, root] : cases)
        EXPECT_EQ(SysRootOf(module), root) << testing::PrintToString(module);
}

TEST(GetSysRoot, FoldsTwoNamesBehindANameOfOneCharacter)
{
    EXPECT_EQ(SysRootOf(L"C:\\dir\\a\\..\\x.exe"), L"C:\\");
    EXPECT_EQ(SysRootOf(L"C:\\one\\two\\a\\..\\b\\x.exe"), L"C:\\one\\b\\");
}

TEST(GetSysRoot, LeavesAReferenceWithoutAnEarlierName)
{
    EXPECT_EQ(SysRootOf(L"C:\\a\\..\\x.exe"), L"C:\\a\\..\\");
    EXPECT_EQ(SysRootOf(L"C:\\..\\x.exe"), L"C:\\..\\");
    EXPECT_EQ(SysRootOf(L"\\..\\x.exe"), L"\\..\\");
    EXPECT_EQ(SysRootOf(L"a\\..\\bcd\\..\\x.exe"), L"a\\..\\bcd\\..\\") << "the first one ends it";
}

TEST(GetSysRoot, TakesANameThatBeginsWithTwoDotsForAReference)
{
    EXPECT_EQ(SysRootOf(L"C:\\dir\\..name\\x.exe"), L"C:name\\");
}

TEST(GetSysRoot, IsEmptyWithoutABackslash)
{
    EXPECT_EQ(SysRootOf(L"x.exe"), L"");
    EXPECT_EQ(SysRootOf(L""), L"");
}

TEST(GetSysRoot, LeavesThePathCutWhereWindowsCutsIt)
{
    const std::wstring folder = L"C:\\" + std::wstring(200, L'a') + L"\\";
    EXPECT_EQ(SysRootOf(folder + std::wstring(100, L'b') + L"\\x.exe"), folder);
    EXPECT_EQ(SysRootOf(folder + std::wstring(54, L'b') + L"\\x.exe"), folder + std::wstring(54, L'b') + L"\\");
}

TEST(GetTempPathW, IsWhatWindowsReports)
{
    wchar_t path[MAX_PATH + 1] = {};
    ::GetTempPathW(MAX_PATH, path);
    EXPECT_EQ(KELPKIT::GetTempPathW(), path);
    EXPECT_EQ(KELPKIT::GetTempPathW().back(), L'\\');
}

TEST(GetTempPathW, IsEmptyWhereWindowsFails)
{
    const ImportPatch patch(
        "GetTempPathW", +[](DWORD, wchar_t*) -> DWORD { return 0; });
    EXPECT_EQ(KELPKIT::GetTempPathW(), L"");
}

TEST(GetTempPathW, IsWholeUpToTheLongestPathThatFits)
{
    const ImportPatch patch("GetTempPathW", &FakeGetTempPath);
    for (const std::size_t length : {3U, 258U, 259U}) {
        g_tempPath = L"Q:" + std::wstring(length - 3, L'x') + L"\\";
        EXPECT_EQ(KELPKIT::GetTempPathW(), g_tempPath) << length;
    }
    for (const std::size_t length : {260U, 261U, 32000U}) {
        g_tempPath = L"Q:" + std::wstring(length - 3, L'x') + L"\\";
        EXPECT_EQ(KELPKIT::GetTempPathW(), L"") << length;
    }
}

TEST(GetTempPathW, IsEmptyWhereThePathIsTooLong)
{
    static DWORD returned = 0;
    const ImportPatch patch(
        "GetTempPathW", +[](DWORD size, wchar_t* buffer) -> DWORD {
            EXPECT_EQ(size, 260U);
            std::wmemset(buffer, L'x', size - 1);
            return returned;
        });
    for (const DWORD size : {260U, 261U, 262U, 300U}) {
        returned = size;
        EXPECT_EQ(KELPKIT::GetTempPathW(), L"") << size << ", whatever the buffer holds";
    }
}

TEST(GetComputerNameW, IsWhatWindowsReports)
{
    wchar_t name[200] = {};
    DWORD size = 200;
    ASSERT_TRUE(::GetComputerNameW(name, &size)) << test::LastErrorText();
    EXPECT_EQ(KELPKIT::GetComputerNameW(), name);
    EXPECT_NE(KELPKIT::GetComputerNameW(), L"");
}

TEST(GetComputerNameW, KeepsForeignNames)
{
    const ImportPatch patch(
        "GetComputerNameW", +[](wchar_t* name, DWORD* size) -> BOOL {
            EXPECT_EQ(*size, 200U);
            std::wcscpy(name, L"设计-7");
            *size = 4;
            return TRUE;
        });
    EXPECT_EQ(KELPKIT::GetComputerNameW(), L"设计-7");
}

TEST(GetComputerNameW, IsEmptyWhereWindowsFails)
{
    const ImportPatch patch(
        "GetComputerNameW", +[](wchar_t* name, DWORD*) -> BOOL {
            std::wcscpy(name, L"half a na");
            return FALSE;
        });
    EXPECT_EQ(KELPKIT::GetComputerNameW(), L"");
}

TEST(GetHostIP, IsTheFirstAddressThatTheResolverLists)
{
    const ImportPatch patch(
        "gethostbyname", +[](const char*) { return &g_host; });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"192.168.0.7");
}

TEST(GetHostIP, AsksForTheNameOfTheHost)
{
    const ImportPatch name(
        "gethostname", +[](char* buffer, int size) {
            EXPECT_EQ(size, 256);
            std::strcpy(buffer, "kelp");
            return 0;
        });
    const ImportPatch resolver(
        "gethostbyname", +[](const char* asked) {
            EXPECT_STREQ(asked, "kelp");
            return &g_host;
        });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"192.168.0.7");
}

TEST(GetHostIP, IsEmptyWithoutNameResolution)
{
    const WinsockCounter counter;
    const ImportPatch patch(
        "gethostbyname", +[](const char*) -> hostent* { return nullptr; });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"");
    EXPECT_EQ(WinsockCounter::Started(), 1);
    EXPECT_EQ(WinsockCounter::Ended(), 1);
}

TEST(GetHostIP, IsEmptyForAHostWithoutAddresses)
{
    static char* noAddresses[] = {nullptr};
    static hostent host = {nullptr, nullptr, AF_INET, 4, noAddresses};
    const ImportPatch patch(
        "gethostbyname", +[](const char*) { return &host; });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"");
}

TEST(GetHostIP, IsEmptyWhereTheAddressHasNoText)
{
    const WinsockCounter counter;
    const ImportPatch resolver(
        "gethostbyname", +[](const char*) { return &g_host; });
    const ImportPatch text(
        "inet_ntoa", +[](in_addr) -> char* { return nullptr; });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"");
    EXPECT_EQ(WinsockCounter::Ended(), 1);
}

TEST(GetHostIP, IsEmptyWhereTheHostHasNoName)
{
    const WinsockCounter counter;
    const ImportPatch name(
        "gethostname", +[](char*, int) { return SOCKET_ERROR; });
    const ImportPatch resolver(
        "gethostbyname", +[](const char*) -> hostent* {
            ADD_FAILURE() << "there is no name to resolve";
            return nullptr;
        });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"");
    EXPECT_EQ(WinsockCounter::Ended(), 1);
}

TEST(GetHostIP, EndsWinsockAlsoWhereItDidNotStart)
{
    static int ended = 0;
    ended = 0;
    const ImportPatch startup(
        "WSAStartup", +[](WORD, WSADATA*) { return WSASYSNOTREADY; });
    const ImportPatch cleanup(
        "WSACleanup", +[] {
            ++ended;
            return SOCKET_ERROR;
        });
    EXPECT_EQ(KELPKIT::GetHostIP(), L"");
    EXPECT_EQ(ended, 1);
}

TEST(GetHostIP, StartsAndEndsWinsockOnceInEachCall)
{
    const WinsockCounter counter;
    const ImportPatch resolver(
        "gethostbyname", +[](const char*) { return &g_host; });
    for (int call = 1; call <= 3; ++call) {
        KELPKIT::GetHostIP();
        EXPECT_EQ(WinsockCounter::Started(), call);
        EXPECT_EQ(WinsockCounter::Ended(), call);
    }
}

TEST(GetHostIP, LeavesTheWinsockOfTheCallerRunning)
{
    WSADATA data;
    ASSERT_EQ(::WSAStartup(MAKEWORD(2, 2), &data), 0);
    const ImportPatch resolver(
        "gethostbyname", +[](const char*) { return &g_host; });
    KELPKIT::GetHostIP();
    const SOCKET socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    EXPECT_NE(socket, INVALID_SOCKET);
    ::closesocket(socket);
    EXPECT_EQ(::WSACleanup(), 0);
}

TEST(IsWindows, ComparesWithTheReportedVersion)
{
    const struct {
        DWORD major;
        DWORD minor;
        const char* trueTests;
    } cases[] = {
        {4, 0, ""},  {4, 10, ""}, {5, 0, ""}, {5, 1, "XP"}, {5, 2, "XP"}, {5, 3, "XP"}, {6, 0, ""},  {6, 1, "7"},
        {6, 2, "8"}, {6, 3, ""},  {6, 4, ""}, {7, 1, ""},   {10, 0, ""},  {10, 1, ""},  {10, 2, ""}, {0, 0, ""},
    };
    for (const auto& [major, minor, trueTests] : cases)
        EXPECT_EQ(TrueTests(major, minor), trueTests) << major << "." << minor;
}

TEST(IsWindows, IsFalseWhereWindowsReportsNothing)
{
    const ImportPatch patch(
        "GetVersionExW", +[](OSVERSIONINFOW*) -> BOOL { return FALSE; });
    EXPECT_FALSE(KELPKIT::IsWindowsXP() || KELPKIT::IsWindows7() || KELPKIT::IsWindows8());
}
