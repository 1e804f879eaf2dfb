#include "support/FailingCall.h"
#include "support/FileContents.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/Process.h"
#include "support/RecordingAppender.h"
#include "support/TempFolder.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/ModelUpgrade.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <log4cplus/logger.h>

#include <windows.h>

#include <sstream>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::ImportPatch;
using test::LogRecord;
using test::ReadFileBytes;
using test::RecordingAppender;
using test::TempFolder;
using test::WriteFileBytes;

namespace
{

constexpr const char* kModel = "QMX 1\nname gear\nv 0 0 1\nv 0 1 0\n";

std::wstring g_hostProgram;

DWORD WINAPI FakeGetModuleFileName(HMODULE, wchar_t* buffer, DWORD size)
{
    const std::size_t copied = g_hostProgram.copy(buffer, size - 1);
    buffer[copied] = L'\0';
    return static_cast<DWORD>(copied);
}

// The messages of a log, each checked for the level and line of a trace message.
std::vector<std::wstring> Traces(const std::vector<LogRecord>& records)
{
    std::vector<std::wstring> texts;
    for (const LogRecord& record : records) {
        EXPECT_EQ(record.level, 0);
        EXPECT_EQ(record.line, 63);
        texts.push_back(record.text);
    }
    return texts;
}

// A message as the log has it.
std::wstring Logged(const wchar_t* text)
{
    return test::Widened(UnicodeToAnsi(text));
}

// A host program in a folder of its own, beside which a converter may stand, a model, and the log.
class ModelUpgrade : public testing::Test
{
public:
    ModelUpgrade() : m_folder(L"升级 x"), m_appender(new RecordingAppender)
    {
        g_hostProgram = HostFolder() + L"host.exe";
        MakeDirectory(m_folder / L"host");
        MakeDirectory(m_folder / L"模型 models");
        WriteFileBytes(Model(), kModel);
        Logger().addAppender(log4cplus::SharedAppenderPtr(m_appender));
        Logger().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
    }
    ~ModelUpgrade() override { Logger().removeAllAppenders(); }

protected:
    static log4cplus::Logger Logger() { return log4cplus::Logger::getInstance(L"log"); }

    std::wstring HostFolder() const { return (m_folder / L"host") + L"\\"; }
    std::wstring ModelFolder() const { return (m_folder / L"模型 models") + L"\\"; }
    std::wstring Model() const { return ModelFolder() + L"gear.qmx"; }
    const TempFolder& Folder() const { return m_folder; }

    void InstallConverter(const std::wstring& program, const std::wstring& to = L"Pelvane.exe")
    {
        ASSERT_TRUE(::CopyFileW(test::BesideThisProgram(program).c_str(), (HostFolder() + to).c_str(), FALSE))
            << test::LastErrorText();
        // The converter finds its runtime beside itself.
        for (const wchar_t* const dll : {L"libstdc++-6.dll", L"libgcc_s_seh-1.dll", L"libwinpthread-1.dll"})
            ::CopyFileW(test::BesideThisProgram(dll).c_str(), (HostFolder() + dll).c_str(), FALSE);
    }

    bool Upgrade(const std::wstring& input, const std::wstring& secondArg, const std::wstring& outputName)
    {
        hsf = qmx = error = L"what was there before";
        return ConvertHoopsQmx(input, secondArg, outputName, hsf, qmx, error);
    }

    std::vector<std::wstring> Log() const { return Traces(m_appender->records); }

    // What the reporting converter wrote down, by line.
    std::vector<std::wstring> Report() const
    {
        std::istringstream report(ReadFileBytes(HostFolder() + L"report.txt"));
        std::vector<std::wstring> lines;
        for (std::string line; std::getline(report, line);)
            lines.push_back(UTF8ToUnicode(line));
        return lines;
    }

    std::wstring hsf;
    std::wstring qmx;
    std::wstring error;

private:
    TempFolder m_folder;
    RecordingAppender* m_appender;
    ImportPatch m_host{"GetModuleFileNameW", &FakeGetModuleFileName};
};

} // namespace

TEST_F(ModelUpgrade, GivesBothFilesOfAModelWithGeometry)
{
    InstallConverter(L"Pelvane.exe");
    EXPECT_TRUE(Upgrade(Model(), L"full", L"齿轮 gear"));
    EXPECT_EQ(qmx, ModelFolder() + L"齿轮 gear_new.qmx");
    EXPECT_EQ(hsf, ModelFolder() + L"齿轮 gear_new.hsf");
    EXPECT_EQ(error, L"");
    EXPECT_EQ(ReadFileBytes(qmx), "QMX 2\r\nname gear\r\nvertices 2\r\n");
    EXPECT_EQ(ReadFileBytes(hsf), "HSF vertices 2\r\nv 0 0 1\r\nv 0 1 0\r\n");
    EXPECT_TRUE(Log().empty());
}

TEST_F(ModelUpgrade, SucceedsWithoutGeometry)
{
    InstallConverter(L"Pelvane.exe");
    EXPECT_TRUE(Upgrade(Model(), L"qmx-only", L"gear"));
    EXPECT_EQ(qmx, ModelFolder() + L"gear_new.qmx");
    EXPECT_EQ(hsf, L"");
    EXPECT_EQ(error, L"");
    EXPECT_TRUE(Log().empty());
}

TEST_F(ModelUpgrade, FailsWhereOnlyTheGeometryWasWritten)
{
    InstallConverter(L"Pelvane.exe");
    EXPECT_FALSE(Upgrade(Model(), L"hsf-only", L"gear"));
    EXPECT_TRUE(CheckFileExis(ModelFolder() + L"gear_new.hsf"));
    EXPECT_EQ(qmx, L"");
    EXPECT_EQ(hsf, L"");
    EXPECT_EQ(error, L"Qmx文件升级失败!");
    EXPECT_EQ(Log(), (std::vector<std::wstring>{Logged(L"Qmx文件升级失败!")}));
}

TEST_F(ModelUpgrade, FailsWhereNothingWasWritten)
{
    InstallConverter(L"Pelvane.exe");
    for (const wchar_t* const mode : {L"none", L"fail", L"no such mode"}) {
        EXPECT_FALSE(Upgrade(Model(), mode, L"gear"));
        EXPECT_EQ(error, L"Qmx文件升级失败!");
        EXPECT_EQ(qmx + hsf, L"");
    }
    EXPECT_EQ(Log().size(), 3U);
}

TEST_F(ModelUpgrade, FailsForAMissingModel)
{
    InstallConverter(L"Pelvane.exe");
    EXPECT_FALSE(Upgrade(ModelFolder() + L"missing.qmx", L"full", L"gear"));
    EXPECT_EQ(error, L"Qmx文件升级失败!");
}

TEST_F(ModelUpgrade, FailsWithoutTheConverterAndClearsTheResults)
{
    EXPECT_FALSE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(qmx, L"");
    EXPECT_EQ(hsf, L"");
    EXPECT_EQ(error, L"转换工具Pelvane.exe不存在!");
    EXPECT_EQ(Log(), (std::vector<std::wstring>{Logged(L"转换工具Pelvane.exe不存在!")}));
}

TEST_F(ModelUpgrade, LooksForTheConverterBeforeAnythingElse)
{
    // Not even outputs that are there count without it.
    WriteFileBytes(ModelFolder() + L"gear_new.qmx", "QMX 2\n");
    EXPECT_FALSE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(error, L"转换工具Pelvane.exe不存在!");
}

TEST_F(ModelUpgrade, FailsWhereTheConverterDoesNotStart)
{
    WriteFileBytes(HostFolder() + L"Pelvane.exe", "no program");
    EXPECT_FALSE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(qmx, L"");
    EXPECT_EQ(hsf, L"");
    EXPECT_EQ(error, L"升级进程启动失败!");
    EXPECT_EQ(Log(), (std::vector<std::wstring>{Logged(L"升级进程启动失败!")}));
}

TEST_F(ModelUpgrade, FailsToStartAlsoWhereStaleOutputsAreThere)
{
    WriteFileBytes(HostFolder() + L"Pelvane.exe", "no program");
    WriteFileBytes(ModelFolder() + L"gear_new.qmx", "QMX 2\n");
    const test::FailingCall<decltype(::CreateProcessW)> failing("CreateProcessW", FALSE);
    EXPECT_FALSE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(error, L"升级进程启动失败!");
    EXPECT_EQ(qmx, L"");
}

TEST_F(ModelUpgrade, CountsStaleOutputsAsFound)
{
    InstallConverter(L"Pelvane.exe");
    WriteFileBytes(ModelFolder() + L"gear_new.qmx", "stale");
    EXPECT_TRUE(Upgrade(Model(), L"none", L"gear"));
    EXPECT_EQ(qmx, ModelFolder() + L"gear_new.qmx");
    EXPECT_EQ(hsf, L"");
    EXPECT_EQ(ReadFileBytes(qmx), "stale");
}

TEST_F(ModelUpgrade, CountsFoldersOfTheOutputsNamesAsFound)
{
    InstallConverter(L"Pelvane.exe");
    MakeDirectory(ModelFolder() + L"gear_new.hsf");
    EXPECT_FALSE(Upgrade(Model(), L"none", L"gear"));
    MakeDirectory(ModelFolder() + L"gear_new.qmx");
    EXPECT_TRUE(Upgrade(Model(), L"none", L"gear"));
    EXPECT_EQ(qmx, ModelFolder() + L"gear_new.qmx");
    EXPECT_EQ(hsf, ModelFolder() + L"gear_new.hsf");
    EXPECT_EQ(error, L"");
}

TEST_F(ModelUpgrade, FailsToStartAFolderOfTheConvertersName)
{
    MakeDirectory(HostFolder() + L"Pelvane.exe");
    EXPECT_FALSE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(error, L"升级进程启动失败!");
}

TEST_F(ModelUpgrade, LooksForTheOutputsBehindTheWholePathOfAnInputWithoutBackslash)
{
    InstallConverter(L"Pelvane.exe");
    ASSERT_TRUE(::SetCurrentDirectoryW(ModelFolder().c_str())) << test::LastErrorText();
    WriteFileBytes(ModelFolder() + L"gear.qmxout_new.qmx", "x");
    EXPECT_TRUE(Upgrade(L"gear.qmx", L"none", L"out"));
    EXPECT_EQ(qmx, L"gear.qmxout_new.qmx");
    ASSERT_TRUE(::SetCurrentDirectoryW(HostFolder().c_str())) << test::LastErrorText();
    ASSERT_TRUE(::SetCurrentDirectoryW(L"..\\..")) << test::LastErrorText();
}

// "/" is no separator here, whatever it is to the converter.
TEST_F(ModelUpgrade, LooksForTheOutputsBehindTheWholePathOfAnInputWithSlashesOnly)
{
    InstallConverter(L"Pelvane.exe");
    std::wstring input = Model();
    StringReplace(input, L"\\", L"/");
    EXPECT_FALSE(Upgrade(input, L"full", L"out"));
    EXPECT_TRUE(CheckFileExis(ModelFolder() + L"out_new.qmx")) << "where this converter has written them";
    WriteFileBytes(ModelFolder() + L"gear.qmxout_new.qmx", "x");
    EXPECT_TRUE(Upgrade(input, L"none", L"out"));
    EXPECT_EQ(qmx, input + L"out_new.qmx");
}

TEST_F(ModelUpgrade, LooksForTheOutputsBehindTheLastBackslashOfAnInput)
{
    InstallConverter(L"Pelvane.exe");
    WriteFileBytes(ModelFolder() + L"out_new.qmx", "x");
    EXPECT_TRUE(Upgrade(ModelFolder() + L"sub/gear.qmx", L"none", L"out"));
    EXPECT_EQ(qmx, ModelFolder() + L"out_new.qmx");
}

TEST_F(ModelUpgrade, JoinsAnArgumentThatEndsInABackslashToTheNext)
{
    InstallConverter(L"ReportingConverter.exe");
    EXPECT_FALSE(Upgrade(ModelFolder(), L"full", L"gear"));
    EXPECT_FALSE(Upgrade(Model(), L"full\\", L"gear"));
    EXPECT_EQ(error, L"Qmx文件升级失败!") << "this converter wants three arguments";

    WriteFileBytes(ModelFolder() + L"gear_new.qmx", "stale");
    EXPECT_TRUE(Upgrade(ModelFolder(), L"full", L"gear"));
    EXPECT_EQ(qmx, ModelFolder() + L"gear_new.qmx") << "a folder is looked into itself";
}

TEST_F(ModelUpgrade, TakesAnArgumentThatIsAlsoAResult)
{
    InstallConverter(L"Pelvane.exe");
    for (int pair = 0; pair < 9; ++pair) {
        const std::wstring name = L"gear" + std::to_wstring(pair);
        std::wstring arguments[] = {Model(), L"full", name};
        std::wstring others[3];
        std::wstring* results[] = {&others[0], &others[1], &others[2]};
        results[pair % 3] = &arguments[pair / 3];
        EXPECT_TRUE(ConvertHoopsQmx(arguments[0], arguments[1], arguments[2], *results[0], *results[1], *results[2]))
            << pair;
        EXPECT_EQ(*results[0], ModelFolder() + name + L"_new.hsf") << pair;
        EXPECT_EQ(*results[1], ModelFolder() + name + L"_new.qmx") << pair;
        EXPECT_EQ(*results[2], L"") << pair;
    }
}

TEST_F(ModelUpgrade, EndsEachArgumentAtItsFirstZeroCharacter)
{
    InstallConverter(L"Pelvane.exe");
    const std::wstring rest(L"\0\\x", 3);
    const std::vector<std::vector<std::wstring>> cases = {
        {Model() + rest, L"full", L"one"},
        {Model(), L"full" + rest, L"two"},
        {Model(), L"full", L"three" + rest},
        {Model() + rest, L"full" + rest, L"four" + rest},
    };
    for (const std::vector<std::wstring>& arguments : cases) {
        EXPECT_TRUE(Upgrade(arguments[0], arguments[1], arguments[2]));
        const std::wstring name = arguments[2].substr(0, arguments[2].find(L'\0'));
        EXPECT_EQ(qmx, ModelFolder() + name + L"_new.qmx");
        EXPECT_EQ(hsf, ModelFolder() + name + L"_new.hsf");
    }
}

TEST_F(ModelUpgrade, WaitsForTheConverterToEnd)
{
    InstallConverter(L"Pelvane.exe");
    const ULONGLONG start = ::GetTickCount64();
    EXPECT_TRUE(Upgrade(Model(), L"slow", L"gear"));
    EXPECT_GE(::GetTickCount64() - start, 1900U);
    EXPECT_EQ(qmx, ModelFolder() + L"gear_new.qmx");
}

TEST_F(ModelUpgrade, WaitsWithoutLimit)
{
    static std::vector<DWORD> limits;
    limits.clear();
    const ImportPatch patch(
        "WaitForSingleObject", +[](HANDLE handle, DWORD milliseconds) {
            limits.push_back(milliseconds);
            return ::WaitForSingleObject(handle, milliseconds);
        });
    InstallConverter(L"Pelvane.exe");
    EXPECT_TRUE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(limits, std::vector<DWORD>{INFINITE});
}

TEST_F(ModelUpgrade, LooksForTheOutputsAlsoWhereTheWaitFails)
{
    const ImportPatch patch(
        "WaitForSingleObject", +[](HANDLE handle, DWORD milliseconds) -> DWORD {
            ::WaitForSingleObject(handle, milliseconds);
            return WAIT_FAILED;
        });
    InstallConverter(L"Pelvane.exe");
    EXPECT_TRUE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(qmx, ModelFolder() + L"gear_new.qmx");
    EXPECT_EQ(error, L"");
}

TEST_F(ModelUpgrade, StartsTheConverterHiddenInTheCurrentFolder)
{
    InstallConverter(L"ReportingConverter.exe");
    ASSERT_TRUE(::SetCurrentDirectoryW(Folder().Path().c_str())) << test::LastErrorText();
    EXPECT_TRUE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_EQ(Report()[1], std::to_wstring(SW_HIDE));
    EXPECT_EQ(Report()[2], Folder().Path());
    ASSERT_TRUE(::SetCurrentDirectoryW(L"..")) << test::LastErrorText();
}

TEST_F(ModelUpgrade, HandsTheCommandLineOverCharacterForCharacter)
{
    static std::wstring commandLine;
    const ImportPatch patch(
        "CreateProcessW", +[](const wchar_t* application, wchar_t* given, SECURITY_ATTRIBUTES* process,
                              SECURITY_ATTRIBUTES* thread, BOOL inheritHandles, DWORD creationFlags, void* environment,
                              const wchar_t* folder, STARTUPINFOW* info, PROCESS_INFORMATION* result) {
            commandLine = given;
            return ::CreateProcessW(application, given, process, thread, inheritHandles, creationFlags, environment,
                                    folder, info, result);
        });
    InstallConverter(L"ReportingConverter.exe");
    const std::wstring converter = HostFolder() + L"Pelvane.exe";
    const std::wstring quotedConverter = L"\"" + converter + L"\"";
    const std::vector<std::vector<std::wstring>> cases = {
        {L"a", L"b", L"c"},
        {Model(), L"full", L"齿轮 gear"},
        {L"", L"", L""},
        {L"ends in a backslash\\", L"b", L"c"},
        {L"a", L"say \"hi\" now", L"c"},
        {L"a", L"%PATH% ^& | <x> \t", L"\xD83D\xDE00"},
    };
    for (const std::vector<std::wstring>& arguments : cases) {
        std::wstring tail;
        for (const std::wstring& argument : arguments)
            tail.append(L" \"").append(argument).append(L"\"");
        Upgrade(arguments[0], arguments[1], arguments[2]);
        EXPECT_EQ(commandLine, converter + tail);
        // The system puts the path into quotes once it knows where in its blanks the program's name ends.
        EXPECT_EQ(Report()[0], quotedConverter + tail);
    }
}

TEST_F(ModelUpgrade, SplitsAnArgumentAtItsDoubleQuote)
{
    // The converter then sees five arguments, not three, and refuses.
    InstallConverter(L"Pelvane.exe");
    EXPECT_FALSE(Upgrade(Model(), L"fu\" ll \"x", L"gear"));
    EXPECT_EQ(error, L"Qmx文件升级失败!");
}

TEST_F(ModelUpgrade, PassesCreateProcessTheCommandLineOnly)
{
    static STARTUPINFOW startup;
    static bool inherits;
    static DWORD flags;
    const ImportPatch patch(
        "CreateProcessW",
        +[](const wchar_t* application, wchar_t* commandLine, SECURITY_ATTRIBUTES* process, SECURITY_ATTRIBUTES* thread,
            BOOL inheritHandles, DWORD creationFlags, void* environment, const wchar_t* folder, STARTUPINFOW* info,
            PROCESS_INFORMATION*) -> BOOL {
            EXPECT_EQ(application, nullptr);
            EXPECT_NE(commandLine, nullptr);
            commandLine[0] = commandLine[0]; // it must be writable
            EXPECT_EQ(process, nullptr);
            EXPECT_EQ(thread, nullptr);
            EXPECT_EQ(environment, nullptr);
            EXPECT_EQ(folder, nullptr);
            inherits = inheritHandles != FALSE;
            flags = creationFlags;
            startup = *info;
            return FALSE;
        });
    InstallConverter(L"Pelvane.exe");
    EXPECT_FALSE(Upgrade(Model(), L"full", L"gear"));
    EXPECT_FALSE(inherits);
    EXPECT_EQ(flags, 0U);
    EXPECT_EQ(startup.cb, sizeof startup);
    EXPECT_EQ(startup.dwFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
    EXPECT_EQ(startup.wShowWindow, SW_HIDE);
    EXPECT_TRUE(startup.lpDesktop == nullptr && startup.lpTitle == nullptr);
    EXPECT_TRUE(startup.hStdInput == nullptr && startup.hStdOutput == nullptr && startup.hStdError == nullptr);
}

TEST_F(ModelUpgrade, LeavesTheHandlesOfTheConverterOpen)
{
    static PROCESS_INFORMATION started;
    const ImportPatch patch(
        "CreateProcessW", +[](const wchar_t* application, wchar_t* commandLine, SECURITY_ATTRIBUTES* process,
                              SECURITY_ATTRIBUTES* thread, BOOL inheritHandles, DWORD creationFlags, void* environment,
                              const wchar_t* folder, STARTUPINFOW* info, PROCESS_INFORMATION* result) {
            const BOOL done = ::CreateProcessW(application, commandLine, process, thread, inheritHandles, creationFlags,
                                               environment, folder, info, result);
            started = *result;
            return done;
        });
    InstallConverter(L"Pelvane.exe");
    EXPECT_FALSE(Upgrade(Model(), L"fail", L"gear"));
    DWORD exitCode = 0;
    EXPECT_TRUE(::GetExitCodeProcess(started.hProcess, &exitCode)) << test::LastErrorText();
    EXPECT_EQ(exitCode, 3U);
    EXPECT_TRUE(::GetExitCodeThread(started.hThread, &exitCode)) << test::LastErrorText();
    EXPECT_TRUE(::CloseHandle(started.hProcess)) << test::LastErrorText();
    EXPECT_TRUE(::CloseHandle(started.hThread)) << test::LastErrorText();
}

TEST_F(ModelUpgrade, TriesTheUnquotedConverterPathUpToItsBlankFirst)
{
    // The folder is "... x\host\": its name's first part would be a program "...-N升级.exe".
    InstallConverter(L"ReportingConverter.exe");
    EXPECT_TRUE(Upgrade(Model(), L"full", L"gear")) << "with no such program the converter itself is found";
    EXPECT_EQ(Report()[3], L"Pelvane.exe");

    const std::wstring first = Folder().Path().substr(0, Folder().Path().find(L' ')) + L".exe";
    ASSERT_TRUE(::CopyFileW(test::BesideThisProgram(L"Pelvane.exe").c_str(), first.c_str(), FALSE))
        << test::LastErrorText();
    ::DeleteFileW((HostFolder() + L"report.txt").c_str());
    Upgrade(Model(), L"full", L"gear");
    EXPECT_FALSE(CheckFileExis(HostFolder() + L"report.txt")) << "the other program was started instead";
    EXPECT_TRUE(::DeleteFileW(first.c_str())) << test::LastErrorText();
}

TEST_F(ModelUpgrade, FindsTheConverterBesideTheHostWhoseFolderIsFolded)
{
    InstallConverter(L"Pelvane.exe");
    g_hostProgram = HostFolder() + L"sub\\..\\host.exe";
    EXPECT_TRUE(Upgrade(Model(), L"full", L"gear"));
}
