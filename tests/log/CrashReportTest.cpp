// The handler's rules, with the system's answers made up. CrashDumpTest.cpp has crashes that are real.

#include <Kelpkit/CrashReport.h>

#include "support/FileContents.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <dbghelp.h>

#include <cstring>
#include <exception>
#include <initializer_list>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using test::ImportPatch;
using test::TempFolder;

namespace
{

// What the system answers, and how it was called, in the order of the calls.
struct System {
    std::wstring program = L"C:\\Program Files\\App\\app.exe";
    std::wstring tempFolder = L"C:\\Temp\\"; // empty: there is none
    SYSTEMTIME now = {2024, 3, 0, 3, 14, 5, 9, 999};
    HANDLE file = reinterpret_cast<HANDLE>(0x1234);
    BOOL written = TRUE;

    std::vector<std::string> calls;
    std::wstring path;
};

System g_system;
EXCEPTION_POINTERS g_exception;

UINT WINAPI FakeSetErrorMode(UINT mode)
{
    EXPECT_EQ(mode, 0U);
    g_system.calls.emplace_back("SetErrorMode");
    return 0;
}

// Copies what fits and terminates it, as Windows does.
DWORD WINAPI FakeGetModuleFileName(HMODULE module, wchar_t* buffer, DWORD size)
{
    EXPECT_EQ(module, nullptr);
    EXPECT_EQ(size, 260U);
    g_system.calls.emplace_back("GetModuleFileNameW");
    if (g_system.program.empty())
        return 0;
    const std::size_t copied = g_system.program.copy(buffer, size - 1);
    buffer[copied] = L'\0';
    return copied < g_system.program.size() ? size : static_cast<DWORD>(copied);
}

// Writes nothing where it does not fit, and says the size that would, as Windows does.
DWORD WINAPI FakeGetTempPath(DWORD size, wchar_t* buffer)
{
    EXPECT_EQ(size, 260U);
    g_system.calls.emplace_back("GetTempPathW");
    const std::wstring& folder = g_system.tempFolder;
    if (folder.size() >= size)
        return static_cast<DWORD>(folder.size() + 1);
    if (!folder.empty())
        buffer[folder.copy(buffer, size)] = L'\0';
    return static_cast<DWORD>(folder.size());
}

void WINAPI FakeGetLocalTime(SYSTEMTIME* now)
{
    g_system.calls.emplace_back("GetLocalTime");
    *now = g_system.now;
}

HANDLE WINAPI FakeCreateFile(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                             DWORD disposition, DWORD attributes, HANDLE pattern)
{
    EXPECT_EQ(access, 0xC0000000U);
    EXPECT_EQ(share, 3U);
    EXPECT_EQ(security, nullptr);
    EXPECT_EQ(disposition, 2U);
    EXPECT_EQ(attributes, 0U);
    EXPECT_EQ(pattern, nullptr);
    g_system.calls.emplace_back("CreateFileW");
    g_system.path = path;
    return g_system.file;
}

BOOL WINAPI FakeMiniDumpWriteDump(HANDLE process, DWORD processId, HANDLE file, MINIDUMP_TYPE type,
                                  MINIDUMP_EXCEPTION_INFORMATION* information,
                                  MINIDUMP_USER_STREAM_INFORMATION* streams, MINIDUMP_CALLBACK_INFORMATION* callback)
{
    EXPECT_EQ(process, ::GetCurrentProcess());
    EXPECT_EQ(processId, ::GetCurrentProcessId());
    EXPECT_EQ(file, g_system.file);
    EXPECT_EQ(type, MiniDumpNormal);
    EXPECT_EQ(information->ThreadId, ::GetCurrentThreadId());
    EXPECT_EQ(information->ExceptionPointers, &g_exception);
    EXPECT_EQ(information->ClientPointers, 1);
    EXPECT_EQ(streams, nullptr);
    EXPECT_EQ(callback, nullptr);
    g_system.calls.emplace_back("MiniDumpWriteDump");
    return g_system.written;
}

// What writes the dumps.
decltype(&::MiniDumpWriteDump) g_writeDump = nullptr;

BOOL WINAPI CallWriteDump(HANDLE process, DWORD processId, HANDLE file, MINIDUMP_TYPE type,
                          MINIDUMP_EXCEPTION_INFORMATION* information, MINIDUMP_USER_STREAM_INFORMATION* streams,
                          MINIDUMP_CALLBACK_INFORMATION* callback)
{
    return g_writeDump(process, processId, file, type, information, streams, callback);
}

FARPROC WINAPI FindCallWriteDump(HMODULE module, const char* name)
{
    EXPECT_EQ(module, ::GetModuleHandleW(L"dbghelp.dll"));
    EXPECT_STREQ(name, "MiniDumpWriteDump");
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&CallWriteDump));
}

BOOL WINAPI FakeCloseHandle(HANDLE handle)
{
    EXPECT_EQ(handle, g_system.file);
    g_system.calls.emplace_back("CloseHandle");
    return TRUE;
}

// The filter of the process, which is taken out.
LPTOP_LEVEL_EXCEPTION_FILTER TakeFilter()
{
    return ::SetUnhandledExceptionFilter(nullptr);
}

LONG WINAPI OtherFilter(EXCEPTION_POINTERS*)
{
    ADD_FAILURE() << "the filter that was set before is called";
    return EXCEPTION_EXECUTE_HANDLER;
}

// Takes the handler from StartCrashReport, and puts back the filter and the terminate handler that were there before.
class CrashReport : public testing::Test
{
public:
    CrashReport()
    {
        g_system = System();
        g_writeDump = &FakeMiniDumpWriteDump;
        m_before = ::SetUnhandledExceptionFilter(&OtherFilter);
        m_terminateBefore = std::get_terminate();
        const ImportPatch find("GetProcAddress", &FindCallWriteDump);
        KELPKIT::StartCrashReport();
        m_handler = TakeFilter();
    }
    ~CrashReport() override
    {
        ::SetUnhandledExceptionFilter(m_before);
        std::set_terminate(m_terminateBefore);
    }

protected:
    // Calls the handler with the system's answers made up, and returns the path of the dump.
    std::wstring Path() const
    {
        const ImportPatch errorMode("SetErrorMode", &FakeSetErrorMode);
        const ImportPatch moduleFileName("GetModuleFileNameW", &FakeGetModuleFileName);
        const ImportPatch tempPath("GetTempPathW", &FakeGetTempPath);
        const ImportPatch localTime("GetLocalTime", &FakeGetLocalTime);
        const ImportPatch createFile("CreateFileW", &FakeCreateFile);
        const ImportPatch closeHandle("CloseHandle", &FakeCloseHandle);
        EXPECT_EQ(m_handler(&g_exception), 0);
        return g_system.path;
    }

    // The executable's name in the dump's, for an executable of this path.
    std::wstring NameFor(const std::wstring& program) const
    {
        g_system = System();
        g_system.program = program;
        const std::wstring start = L"C:\\Temp\\20240303140509_";
        const std::wstring path = Path();
        EXPECT_EQ(path.compare(0, start.size(), start), 0);
        EXPECT_EQ(path.substr(path.size() - 4), L".dmp");
        return path.substr(start.size(), path.size() - 4 - start.size());
    }

    LPTOP_LEVEL_EXCEPTION_FILTER m_handler = nullptr;

private:
    LPTOP_LEVEL_EXCEPTION_FILTER m_before = nullptr;
    std::terminate_handler m_terminateBefore = nullptr;
};

} // namespace

TEST_F(CrashReport, InstallsAFilter)
{
    EXPECT_NE(m_handler, nullptr);
    EXPECT_NE(m_handler, &OtherFilter);
}

TEST_F(CrashReport, InstallsTheSameFilterWhenCalledAgain)
{
    KELPKIT::StartCrashReport();
    KELPKIT::StartCrashReport();
    EXPECT_EQ(TakeFilter(), m_handler);
}

TEST_F(CrashReport, TakesItsStepsInOrder)
{
    Path();
    EXPECT_EQ(g_system.calls,
              (std::vector<std::string>{"SetErrorMode", "GetModuleFileNameW", "GetTempPathW", "GetLocalTime",
                                        "CreateFileW", "MiniDumpWriteDump", "CloseHandle"}));
}

TEST_F(CrashReport, WritesNoDumpWhereTheFileCannotBeMade)
{
    g_system.file = INVALID_HANDLE_VALUE;
    Path();
    EXPECT_EQ(g_system.calls.back(), "CreateFileW");
}

TEST_F(CrashReport, MakesNoFileWhereTheSystemHasNoDumpWriter)
{
    {
        const ImportPatch find(
            "GetProcAddress", +[](HMODULE, const char*) -> FARPROC { return nullptr; });
        KELPKIT::StartCrashReport();
    }
    Path();
    EXPECT_EQ(g_system.calls, std::vector<std::string>{"SetErrorMode"});
}

TEST_F(CrashReport, ClosesTheFileWhereTheDumpFails)
{
    g_system.written = FALSE;
    Path();
    EXPECT_EQ(g_system.calls.back(), "CloseHandle");
}

TEST_F(CrashReport, RestoresTheSystemsErrorMode)
{
    g_system.file = INVALID_HANDLE_VALUE;
    const ImportPatch createFile("CreateFileW", &FakeCreateFile);
    const UINT before = ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    m_handler(&g_exception);
    EXPECT_EQ(::GetErrorMode(), 0U);
    ::SetErrorMode(before);
}

TEST_F(CrashReport, NamesTheDumpByTimeAndExecutableWithItsExtension)
{
    EXPECT_EQ(Path(), L"C:\\Temp\\20240303140509_app.exe.dmp");
}

TEST_F(CrashReport, PadsThePartsOfTheTimeWithZeros)
{
    const std::pair<SYSTEMTIME, const wchar_t*> cases[] = {
        {{1601, 1, 1, 1, 0, 0, 0, 0}, L"16010101000000"},        {{2026, 11, 0, 30, 23, 59, 58, 0}, L"20261130235958"},
        {{2000, 10, 0, 10, 10, 10, 10, 0}, L"20001010101010"},   {{999, 9, 0, 9, 9, 9, 9, 0}, L"09990909090909"},
        {{30827, 12, 0, 31, 23, 59, 59, 0}, L"308271231235959"},
    };
    for (const auto& [now, text] : cases) {
        SCOPED_TRACE(text);
        g_system.now = now;
        EXPECT_EQ(Path(), L"C:\\Temp\\" + std::wstring(text) + L"_app.exe.dmp");
    }
}

TEST_F(CrashReport, WritesToTheRootOfDriveCWhereThereIsNoTemporaryFolder)
{
    g_system.tempFolder.clear();
    EXPECT_EQ(Path(), L"C:\\20240303140509_app.exe.dmp");
}

TEST_F(CrashReport, WritesToTheCurrentFolderWhereTheTemporaryOneIsTooLong)
{
    for (const std::size_t length : std::initializer_list<std::size_t>{260, 261}) {
        SCOPED_TRACE(length);
        g_system.tempFolder = std::wstring(length, L't');
        EXPECT_EQ(Path(), L"20240303140509_app.exe.dmp");
    }
}

TEST_F(CrashReport, CutsAnExecutablesNameThatIsLongerThanHalfItsPath)
{
    // As many bytes as the path has characters; the last one may be half of a character.
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"C:\\a\\longname.exe", L"longname."}, // 17 bytes
        {L"C:\\app.exe", L"app.e"},             // 10 bytes
        {L"C:\\ab\\xy.exe", L"xy.exe"},         // 12 bytes, of 12
        {L"C:\\a\\xy.exe", L"xy.exe"},          // 11 bytes, of 12: the other half of the last character is zero
        {L"C:\\a\\xy.ex中", L"xy.ex-"},
        {L"C:\\a\\xy.ex一", L"xy.ex"},
        {L"C:\\齿轮模型软件.exe", L"齿轮模型软件."}, // 13 characters
        {L"C:\\a.b", L"a.b"},
    };
    for (const auto& [program, name] : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(program)));
        EXPECT_EQ(NameFor(program), name);
    }
}

TEST_F(CrashReport, KeepsAnExecutablesNameThatIsNotLonger)
{
    const std::wstring names[] = {L"a",    L"app.exe",      L"齿轮 gear.exe",
                                  L".exe", L"two.dots.exe", std::wstring(90, L'n') + L".exe"};
    for (const std::wstring& name : names) {
        SCOPED_TRACE(testing::PrintToString(name));
        EXPECT_EQ(NameFor(L"C:\\" + std::wstring(100, L'f') + L"\\" + name), name);
    }
}

TEST_F(CrashReport, TakesTheNameFromTheLastBackslashOn)
{
    EXPECT_EQ(NameFor(L"\\\\server\\share\\a b\\app.exe"), L"app.exe");
    EXPECT_EQ(NameFor(L"C:\\folder\\sub/app.exe"), L"sub/app.exe");
    EXPECT_EQ(NameFor(L"C:\\folder\\"), L"");
}

TEST_F(CrashReport, LeavesTheNameEmptyWhereThePathHasNoBackslash)
{
    EXPECT_EQ(NameFor(L"app.exe"), L"");
    EXPECT_EQ(NameFor(L"C:/folder/app.exe"), L"");
    EXPECT_EQ(NameFor(L""), L"");
}

TEST_F(CrashReport, CutsTheNameOfTheLongestPath)
{
    // 259 characters, so 129 characters of the name and half of the next.
    const std::wstring name = std::wstring(129, L'齿') + L"中" + std::wstring(100, L'n');
    const std::wstring folder = L"C:\\" + std::wstring(259 - 4 - name.size(), L'f') + L"\\";
    const std::wstring cut = std::wstring(129, L'齿') + L"-";
    EXPECT_EQ(NameFor(folder + name), cut);
    // What is longer yet, Windows cuts itself.
    EXPECT_EQ(NameFor(folder + name + L"nn"), cut);
}

TEST_F(CrashReport, CutsThePathOfTheDumpAt259Characters)
{
    g_system.program = L"C:\\" + std::wstring(100, L'f') + L"\\" + std::wstring(90, L'n') + L".exe";
    const std::wstring file = L"20240303140509_" + std::wstring(90, L'n') + L".exe.dmp";
    for (const std::size_t folderLength : std::initializer_list<std::size_t>{259, 258, 250, 200, 147, 146, 145, 10}) {
        SCOPED_TRACE(folderLength);
        g_system.tempFolder = std::wstring(folderLength - 1, L't') + L"\\";
        EXPECT_EQ(Path(), (g_system.tempFolder + file).substr(0, 259));
    }
}

TEST_F(CrashReport, LetsASecondThreadWriteTheSameFileMeanwhile)
{
    const TempFolder folder;
    g_system.tempFolder = folder.Path() + L"\\";
    static LPTOP_LEVEL_EXCEPTION_FILTER s_handler;
    static std::vector<DWORD> s_threads;
    s_handler = m_handler;
    s_threads.clear();
    const ImportPatch moduleFileName("GetModuleFileNameW", &FakeGetModuleFileName);
    const ImportPatch tempPath("GetTempPathW", &FakeGetTempPath);
    const ImportPatch localTime("GetLocalTime", &FakeGetLocalTime);
    // The first dump is half written when the second thread crashes.
    g_writeDump = [](HANDLE, DWORD, HANDLE file, MINIDUMP_TYPE, MINIDUMP_EXCEPTION_INFORMATION* information,
                     MINIDUMP_USER_STREAM_INFORMATION*, MINIDUMP_CALLBACK_INFORMATION*) -> BOOL {
        s_threads.push_back(information->ThreadId);
        DWORD written = 0;
        if (s_threads.size() == 2)
            return ::WriteFile(file, "two", 3, &written, nullptr);
        EXPECT_TRUE(::WriteFile(file, "first", 5, &written, nullptr)) << test::LastErrorText();
        std::thread([] { s_handler(&g_exception); }).join();
        return TRUE;
    };
    EXPECT_EQ(m_handler(&g_exception), 0);
    ASSERT_EQ(s_threads.size(), 2U);
    EXPECT_EQ(s_threads[0], ::GetCurrentThreadId());
    EXPECT_NE(s_threads[1], s_threads[0]);
    EXPECT_EQ(test::ReadFileBytes(folder / L"20240303140509_app.exe.dmp"), "two");
}

TEST_F(CrashReport, OverwritesADumpOfTheSameName)
{
    const TempFolder folder;
    g_system.tempFolder = folder.Path() + L"\\";
    const std::wstring path = folder / L"20240303140509_app.exe.dmp";
    test::WriteFileBytes(path, "an older dump");
    const ImportPatch moduleFileName("GetModuleFileNameW", &FakeGetModuleFileName);
    const ImportPatch tempPath("GetTempPathW", &FakeGetTempPath);
    const ImportPatch localTime("GetLocalTime", &FakeGetLocalTime);
    g_writeDump = [](HANDLE, DWORD, HANDLE file, MINIDUMP_TYPE, MINIDUMP_EXCEPTION_INFORMATION*,
                     MINIDUMP_USER_STREAM_INFORMATION*, MINIDUMP_CALLBACK_INFORMATION*) -> BOOL {
        DWORD written = 0;
        return ::WriteFile(file, "new", 3, &written, nullptr);
    };
    EXPECT_EQ(m_handler(&g_exception), 0);
    EXPECT_EQ(test::ReadFileBytes(path), "new");
}
