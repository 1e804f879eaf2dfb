// Runs the configurations that docs/log.md shows, as they stand there.

#include "log/ConfiguredLog.h"
#include "support/FileContents.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/Process.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <log4cplus/hierarchy.h>
#include <log4cplus/logger.h>

#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

using namespace KELPKIT;
using test::BesideThisProgram;
using test::ImportPatch;
using test::ReadFileBytes;
using test::StartedProgram;
using test::WriteFileBytes;

namespace
{

#ifdef __MINGW32__
constexpr const wchar_t* kLog4cplus = L"liblog4cplusU.dll";
#else
constexpr const wchar_t* kLog4cplus = L"log4cplusU.dll";
#endif

std::vector<std::string> LinesOf(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// The first block of code below a heading of the guide.
std::string BlockBelow(const std::string& heading)
{
    static const std::string kIndent(4, ' ');
    std::string block;
    bool isBelow = false;
    for (const std::string& line : LinesOf(ReadFileBytes(BesideThisProgram(L"log.md")))) {
        if (line == "### " + heading)
            isBelow = true;
        else if (isBelow && line.substr(0, 4) == kIndent)
            block += line.substr(4) + "\n";
        else if (!block.empty())
            break;
    }
    EXPECT_NE(block, "") << heading;
    return block;
}

class LogGuide : public test::ConfiguredLog
{
protected:
    // LogWriter's command line for a log that the guide configures.
    std::wstring LogWriter(const std::string& heading, const std::wstring& name, int count) const
    {
        const std::wstring properties = Folder() / L"log4cplus.properties";
        WriteFileBytes(properties, BlockBelow(heading));
        return LogWriter(properties, LogFile(), name, count);
    }

    static std::wstring LogWriter(const std::wstring& properties, const std::wstring& file, const std::wstring& name,
                                  int count)
    {
        return L"\"" + BesideThisProgram(L"LogWriter.exe") + L"\" \"" + properties + L"\" \"" + file + L"\" " + name +
               L" " + std::to_wstring(count);
    }
};

// The lines of a log match these patterns one by one.
void ExpectLines(const std::wstring& file, const std::vector<std::string>& patterns)
{
    const std::vector<std::string> lines = LinesOf(ReadFileBytes(file));
    ASSERT_EQ(lines.size(), patterns.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(patterns[i]))) << lines[i];
}

const std::string kDate = "[0-9]{4}-[0-9]{2}-[0-9]{2} ";
const std::string kTime = "[0-9]{2}:[0-9]{2}:[0-9]{2} ";

// The local date of a time, as in "2026-11-22".
std::wstring DateOf(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::wstring text(10, L'\0');
    std::wcsftime(text.data(), text.size() + 1, L"%Y-%m-%d", std::localtime(&seconds));
    return text;
}

void SetLastWrite(const std::wstring& path, std::chrono::system_clock::time_point time)
{
    constexpr long long kTicksTo1970 = 116444736000000000; // of 100 nanoseconds, from 1601 on
    const long long ticks =
        std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count() / 100 + kTicksTo1970;
    const FILETIME fileTime = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    const HANDLE file =
        ::CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(::SetFileTime(file, nullptr, nullptr, &fileTime)) << test::LastErrorText();
    ::CloseHandle(file);
}

} // namespace

TEST_F(LogGuide, GoesOnInTheFileOfTheRunBefore)
{
    StartLog(BlockBelow("Several days in one file"));
    CLogMsg::LogMsg(LV_INFO, L"first");
    CloseLog();
    StartLog(BlockBelow("Several days in one file"));
    CLogMsg::LogMsg(LV_WARN, L"second");
    CLogMsg::SetLogPath(LogFile());
    CLogMsg::LogMsg(LV_FATAL, L"third");
    ExpectLines(LogFile(),
                {kDate + kTime + "INFO  first", kDate + kTime + "WARN  second", kDate + kTime + "FATAL third"});
}

TEST_F(LogGuide, EmptiesTheFileWithoutAppend)
{
    std::string properties = BlockBelow("Several days in one file");
    const std::string append = "log4cplus.appender.fileAppender.Append=true\n";
    ASSERT_NE(properties.find(append), std::string::npos);
    properties.erase(properties.find(append), append.size());
    StartLog(properties);
    CLogMsg::LogMsg(LV_INFO, L"first");
    CLogMsg::SetLogPath(LogFile());
    CLogMsg::LogMsg(LV_INFO, L"second");
    ExpectLines(LogFile(), {kDate + kTime + "INFO  second"});
}

TEST_F(LogGuide, LimitsTheSize)
{
    StartLog(BlockBelow("Limited in size"));
    const std::wstring filler(1000, L'x');
    constexpr int kMessages = 25000; // 25 MB in files of 10
    for (int i = 0; i < kMessages; ++i)
        CLogMsg::LogMsg(LV_INFO, (std::to_wstring(i) + L" " + filler).c_str());
    CloseLog();
    EXPECT_FALSE(CheckFileExis(LogFile() + L".3"));
    int next = 0;
    for (const wchar_t* const suffix : {L".2", L".1", L""}) {
        const std::string text = ReadFileBytes(LogFile() + suffix);
        EXPECT_LT(text.size(), (10U << 20) + 2000);
        for (const std::string& line : LinesOf(text)) {
            const std::string number = line.substr(std::string("2026-11-22 11:14:56 INFO  ").size());
            ASSERT_EQ(number.substr(0, number.find(' ')), std::to_string(next++));
        }
    }
    EXPECT_EQ(next, kMessages);
}

TEST_F(LogGuide, BeginsAFileEachDay)
{
    const auto today = std::chrono::system_clock::now();
    StartLog(BlockBelow("One file a day"));
    CLogMsg::LogMsg(LV_INFO, L"first");
    CloseLog();
    StartLog(BlockBelow("One file a day"));
    CLogMsg::LogMsg(LV_INFO, L"second");
    LogAt(std::chrono::hours(25), L"third");
    CLogMsg::LogMsg(LV_INFO, L"fourth");
    CloseLog();
    ExpectLines(LogFile() + L"." + DateOf(today), {kTime + "INFO  first", kTime + "INFO  second"});
    ExpectLines(LogFile(), {kTime + "INFO  third", kTime + "INFO  fourth"});
}

TEST_F(LogGuide, BeginsAFileWhereThatOfAnotherDayIsFound)
{
    const auto now = std::chrono::system_clock::now();
    StartLog(BlockBelow("One file a day"));
    CLogMsg::LogMsg(LV_INFO, L"first");
    CloseLog();
    SetLastWrite(LogFile(), now - std::chrono::hours(49));
    StartLog(BlockBelow("One file a day"));
    CLogMsg::LogMsg(LV_INFO, L"second");
    CLogMsg::LogMsg(LV_INFO, L"third");
    CloseLog();
    ExpectLines(LogFile() + L"." + DateOf(now - std::chrono::hours(49)), {kTime + "INFO  first"});
    ExpectLines(LogFile(), {kTime + "INFO  second", kTime + "INFO  third"});
}

TEST_F(LogGuide, TakesTheLinesOfSeveralProcesses)
{
    constexpr int kLines = 5000;
    StartLog(BlockBelow("Several processes"));
    int own = 0;
    {
        const StartedProgram other(LogWriter("Several processes", L"other", kLines));
        while (!other.HasEnded(0))
            CLogMsg::LogMsg(LV_ERROR, (L"own " + std::to_wstring(own++)).c_str());
        EXPECT_EQ(other.ExitCode(), 0U);
    }
    CloseLog();
    const std::regex whole(kDate + kTime + "[0-9]+ ERROR (own|other) ([0-9]+)");
    std::map<std::string, int> next;
    for (const std::string& line : LinesOf(ReadFileBytes(LogFile()))) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(line, parts, whole)) << line;
        ASSERT_EQ(parts[2], std::to_string(next[parts[1]]++));
    }
    EXPECT_EQ(next, (std::map<std::string, int>{{"own", own}, {"other", kLines}}));
}

TEST_F(LogGuide, WritesErrorsToAFileOfTheirOwn)
{
    const std::wstring temp = _wgetenv(L"TEMP");
    ASSERT_EQ(_wputenv((L"TEMP=" + Folder().Path()).c_str()), 0);
    StartLog(BlockBelow("Errors in a file of their own"));
    ASSERT_EQ(_wputenv((L"TEMP=" + temp).c_str()), 0);
    CLogMsg::LogMsg(LV_INFO, L"first");
    CLogMsg::LogMsg(LV_ERROR, L"second");
    CLogMsg::LogMsg(LV_WARN, L"third");
    CLogMsg::LogMsg(LV_FATAL, L"fourth");
    CloseLog();
    ExpectLines(LogFile(), {kDate + kTime + "INFO  first", kDate + kTime + "ERROR second",
                            kDate + kTime + "WARN  third", kDate + kTime + "FATAL fourth"});
    ExpectLines(Folder() / L"App\\errors.log", {kDate + kTime + "ERROR second", kDate + kTime + "FATAL fourth"});
}

TEST_F(LogGuide, WritesToTheConsole)
{
    const std::wstring output = Folder() / L"output";
    EXPECT_EQ(test::Run(L"cmd /c \"" + LogWriter("Console", L"text", 2) + L" > \"" + output + L"\"\""), 0U);
    ExpectLines(output, {"ERROR text 0", "ERROR text 1"});
}

TEST_F(LogGuide, WritesToTheDebugger)
{
    static std::vector<std::wstring> received;
    received.clear();
    const ImportPatch patch(
        kLog4cplus, "OutputDebugStringW", +[](const wchar_t* text) { received.emplace_back(text); });
    StartLog(BlockBelow("Debugger"));
    const std::wstring known = AnsiToUnicode(UnicodeToAnsi(L"模型é")); // "?" for what the code page lacks
    CLogMsg::LogMsg(LV_INFO, known.c_str());
    EXPECT_EQ(received, std::vector<std::wstring>{L"INFO  " + known + L"\n"});
}

TEST_F(LogGuide, WritesToTheEventLog)
{
    static std::vector<std::pair<WORD, std::wstring>> received;
    static std::wstring source;
    received.clear();
    const ImportPatch registration(
        kLog4cplus, "RegisterEventSourceW", +[](const wchar_t* server, const wchar_t* name) {
            source = name;
            return ::RegisterEventSourceW(server, name);
        });
    const ImportPatch report(
        kLog4cplus, "ReportEventW",
        +[](HANDLE, WORD type, WORD, DWORD, void*, WORD count, DWORD, const wchar_t** texts, void*) -> BOOL {
            EXPECT_EQ(count, 1);
            received.emplace_back(type, texts[0]);
            return TRUE;
        });
    StartLog(BlockBelow("Event log"));
    CLogMsg::LogMsg(LV_INFO, L"below the level");
    const std::wstring known = AnsiToUnicode(UnicodeToAnsi(L"模型é")); // "?" for what the code page lacks
    CLogMsg::LogMsg(LV_WARN, known.c_str());
    CLogMsg::LogMsg(LV_ERROR, L"third");
    const std::vector<std::pair<WORD, std::wstring>> expected = {{EVENTLOG_WARNING_TYPE, known},
                                                                 {EVENTLOG_ERROR_TYPE, L"third"}};
    EXPECT_EQ(received, expected);
    EXPECT_EQ(source, L"App");
}

TEST_F(LogGuide, SaysOnceThatThereIsNoConfiguration)
{
    const std::wstring output = Folder() / L"output";
    EXPECT_EQ(test::Run(L"cmd /c \"" + LogWriter(L"", L"", L"text", 3) + L" > \"" + output + L"\" 2>&1\""), 0U);
    EXPECT_EQ(LinesOf(ReadFileBytes(output)), LinesOf(BlockBelow("No configuration at all")));
}
