#include "log/ConfiguredLog.h"
#include "support/FileContents.h"
#include "support/FileHolder.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <chrono>
#include <sstream>
#include <string>

using namespace KELPKIT;
using test::FileHolder;
using test::ReadFileBytes;
using test::WriteFileBytes;

namespace
{

// Holds a file as a viewer does: others may read and write it, but neither rename nor delete.
class Viewer : public FileHolder
{
public:
    explicit Viewer(const std::wstring& path) : FileHolder(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE) {}
};

class RollingLog : public test::ConfiguredLog
{
protected:
    static std::string Properties(const std::string& appender, const std::string& more)
    {
        std::string text = "\xEF\xBB\xBF# in UTF-8\n"
                           "log4cplus.rootLogger=TRACE, fileAppender\n"
                           "log4cplus.appender.fileAppender=log4cplus::" +
                           appender +
                           "\n"
                           "log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout\n"
                           "log4cplus.appender.fileAppender.layout.ConversionPattern=%m%n\n";
        std::istringstream lines(more);
        for (std::string line; std::getline(lines, line);)
            text.append("log4cplus.appender.fileAppender.").append(line).append("\n");
        return text;
    }

    std::string DayFiles() const { return "FilenamePattern=" + UnicodeToUTF8(Folder() / L"天 %d.txt") + "\n"; }
    std::wstring Backup(int index) const { return LogFile() + L"." + std::to_wstring(index); }

    // Numbered lines of one kilobyte; some two hundred fill the smallest file.
    void LogLines(int count)
    {
        for (; count > 0; --count)
            CLogMsg::LogMsg(LV_INFO, (std::to_wstring(m_lines++) + std::wstring(1020, L'.')).c_str());
    }

    // The numbers of the lines in a file, as text: "0 1 2 ".
    static std::string Numbers(const std::wstring& file)
    {
        std::string numbers;
        std::istringstream lines(Lines(file));
        for (std::string line; std::getline(lines, line);)
            numbers.append(line, 0, line.find('.')).append(" ");
        return numbers;
    }

    static std::string NumbersBetween(int begin, int end)
    {
        std::string numbers;
        for (; begin != end; ++begin)
            numbers += std::to_string(begin) + " ";
        return numbers;
    }

    int LineCount() const { return m_lines; }

    // Beside the log itself, which such a pattern finds on some systems.
    std::wstring OnlyFileLike(const std::wstring& pattern) const
    {
        std::wstring only;
        WIN32_FIND_DATAW found = {};
        const HANDLE find = ::FindFirstFileW((Folder() / pattern).c_str(), &found);
        for (BOOL more = find != INVALID_HANDLE_VALUE; more; more = ::FindNextFileW(find, &found)) {
            const std::wstring path = Folder() / found.cFileName;
            if (path == LogFile())
                continue;
            EXPECT_EQ(only, L"") << "a second file";
            only = path;
        }
        ::FindClose(find);
        return only;
    }

    // The log is held when its period ends; what it holds then goes to a file like the pattern later.
    void ExpectToGoOnWhileHeld(const std::wstring& pattern) const
    {
        CLogMsg::LogMsg(LV_INFO, L"first");
        {
            const Viewer viewer(LogFile());
            LogAt(std::chrono::hours(48), L"second");
            EXPECT_EQ(Lines(LogFile()), "first\nsecond\n");
        }
        LogAt(std::chrono::hours(48), L"third");
        EXPECT_EQ(Lines(LogFile()), "third\n");
        EXPECT_EQ(Lines(OnlyFileLike(pattern)), "first\nsecond\n");
    }

private:
    int m_lines = 0;
};

class SizeRollingLog : public RollingLog
{
protected:
    void StartRollingLog(int backups, const std::string& more = "")
    {
        StartLog(Properties("RollingFileAppender",
                            "MaxFileSize=200KB\nMaxBackupIndex=" + std::to_string(backups) + "\n" + more));
    }
};

} // namespace

TEST_F(SizeRollingLog, GoesOnInAHeldFileAndRollsOverOnceItIsFree)
{
    StartRollingLog(3);
    {
        const Viewer viewer(LogFile());
        LogLines(300);
        EXPECT_EQ(Numbers(LogFile()), NumbersBetween(0, 300));
        EXPECT_FALSE(CheckFileExis(Backup(1)));
    }
    LogLines(10);
    EXPECT_EQ(Numbers(Backup(1)) + Numbers(LogFile()), NumbersBetween(0, 310));
    EXPECT_FALSE(CheckFileExis(Backup(2)));
}

TEST_F(SizeRollingLog, TouchesNoBackupWhileTheFileIsHeld)
{
    StartRollingLog(2);
    WriteFileBytes(Backup(1), "one");
    WriteFileBytes(Backup(2), "two");
    {
        const Viewer viewer(LogFile());
        LogLines(300);
        EXPECT_EQ(ReadFileBytes(Backup(1)), "one");
        EXPECT_EQ(ReadFileBytes(Backup(2)), "two");
    }
    LogLines(10);
    EXPECT_EQ(ReadFileBytes(Backup(2)), "one");
    EXPECT_EQ(Numbers(Backup(1)) + Numbers(LogFile()), NumbersBetween(0, 310));
}

TEST_F(SizeRollingLog, TouchesNothingWhileABackupIsHeld)
{
    for (int held = 1; held <= 3; ++held) {
        SCOPED_TRACE(held);
        CloseLog();
        ::DeleteFileW(LogFile().c_str());
        StartRollingLog(3);
        for (int i = 1; i <= 3; ++i)
            WriteFileBytes(Backup(i), std::to_string(i));
        const int first = LineCount();
        {
            const Viewer viewer(Backup(held));
            LogLines(300);
            EXPECT_EQ(Numbers(LogFile()), NumbersBetween(first, first + 300));
            for (int i = 1; i <= 3; ++i)
                EXPECT_EQ(ReadFileBytes(Backup(i)), std::to_string(i));
        }
        LogLines(10);
        EXPECT_EQ(ReadFileBytes(Backup(3)), "2");
        EXPECT_EQ(ReadFileBytes(Backup(2)), "1");
        EXPECT_EQ(Numbers(Backup(1)) + Numbers(LogFile()), NumbersBetween(first, first + 310));
    }
}

TEST_F(SizeRollingLog, MovesBackupsUpOnlyAsFarAsThereIsAGap)
{
    StartRollingLog(3);
    WriteFileBytes(Backup(1), "one");
    WriteFileBytes(Backup(3), "three");
    LogLines(250);
    EXPECT_EQ(ReadFileBytes(Backup(3)), "three");
    EXPECT_EQ(ReadFileBytes(Backup(2)), "one");
    EXPECT_EQ(Numbers(Backup(1)) + Numbers(LogFile()), NumbersBetween(0, 250));
}

TEST_F(SizeRollingLog, ReplacesTheLastBackup)
{
    StartRollingLog(2);
    LogLines(850); // four times full
    const std::string kept = Numbers(Backup(2)) + Numbers(Backup(1)) + Numbers(LogFile());
    EXPECT_EQ(kept, NumbersBetween(std::stoi(kept), 850));
    EXPECT_GT(std::stoi(kept), 0);
    EXPECT_FALSE(CheckFileExis(Backup(3)));
}

TEST_F(SizeRollingLog, LosesNothingUnderALockFile)
{
    StartRollingLog(3, "UseLockFile=true\n");
    {
        const Viewer viewer(LogFile());
        LogLines(300);
        EXPECT_EQ(Numbers(LogFile()), NumbersBetween(0, 300));
    }
    LogLines(10);
    EXPECT_EQ(Numbers(Backup(1)) + Numbers(LogFile()), NumbersBetween(0, 310));
}

// As two processes do, each holds the file of the other.
TEST_F(SizeRollingLog, LosesNothingWhereTwoLogsShareAFileUnderALockFile)
{
    StartLog(Properties("RollingFileAppender", "MaxFileSize=200KB\nUseLockFile=true\n") +
             "log4cplus.rootLogger=TRACE, fileAppender, second\n"
             "log4cplus.appender.second=log4cplus::RollingFileAppender\n"
             "log4cplus.appender.second.layout=log4cplus::PatternLayout\n"
             "log4cplus.appender.second.layout.ConversionPattern=%m%n\n"
             "log4cplus.appender.second.MaxFileSize=200KB\n"
             "log4cplus.appender.second.UseLockFile=true\n"
             "log4cplus.appender.second.File=" +
             UnicodeToUTF8(LogFile()) + "\n");
    LogLines(150);
    std::string twice;
    for (int line = 0; line != 150; ++line)
        twice += std::to_string(line) + " " + std::to_string(line) + " ";
    EXPECT_EQ(Numbers(LogFile()), twice);
}

TEST_F(RollingLog, DailyLogGoesOnInAHeldFile)
{
    StartLog(Properties("DailyRollingFileAppender", "Schedule=DAILY\nRollOnClose=false\n"));
    ExpectToGoOnWhileHeld(L"运行 run.log.?*");
}

TEST_F(RollingLog, DailyLogTouchesNothingWhileABackupIsHeld)
{
    StartLog(Properties("DailyRollingFileAppender", "Schedule=DAILY\nRollOnClose=false\nDatePattern=年%Y\n"));
    CLogMsg::LogMsg(LV_INFO, L"first");
    LogAt(std::chrono::hours(48), L"second");
    const std::wstring day = OnlyFileLike(L"运行 run.log.?*");
    LogAt(std::chrono::hours(48), L"third");
    {
        const Viewer viewer(day + L".1");
        LogAt(std::chrono::hours(48), L"fourth");
        EXPECT_EQ(Lines(LogFile()), "third\nfourth\n");
        EXPECT_EQ(Lines(day), "second\n");
        EXPECT_EQ(Lines(day + L".1"), "first\n");
    }
    LogAt(std::chrono::hours(48), L"fifth");
    EXPECT_EQ(Lines(LogFile()), "fifth\n");
    EXPECT_EQ(Lines(day), "third\nfourth\n");
    EXPECT_EQ(Lines(day + L".1"), "second\n");
    EXPECT_EQ(Lines(day + L".2"), "first\n");
}

TEST_F(RollingLog, DailyLogThatIsHeldAtItsCloseKeepsItsLines)
{
    StartLog(Properties("DailyRollingFileAppender", "Schedule=DAILY\n"));
    CLogMsg::LogMsg(LV_INFO, L"first");
    const Viewer viewer(LogFile());
    CloseLog();
    EXPECT_EQ(Lines(LogFile()), "first\n");
}

TEST_F(RollingLog, TimeBasedLogGoesOnInAHeldFile)
{
    StartLog(Properties("TimeBasedRollingFileAppender", DayFiles() + "RollOnClose=false\n"));
    ExpectToGoOnWhileHeld(L"天 *.txt");
}

TEST_F(RollingLog, TimeBasedLogThatIsHeldAtItsCloseKeepsItsLines)
{
    StartLog(Properties("TimeBasedRollingFileAppender", DayFiles()));
    CLogMsg::LogMsg(LV_INFO, L"first");
    const Viewer viewer(LogFile());
    CloseLog();
    EXPECT_EQ(Lines(LogFile()), "first\n");
}

TEST_F(RollingLog, TimeBasedLogKeepsWhatAnEarlierRunOfThePeriodWrote)
{
    for (const wchar_t* const text : {L"first", L"second"}) {
        StartLog(Properties("TimeBasedRollingFileAppender", DayFiles()));
        CLogMsg::LogMsg(LV_INFO, text);
        CloseLog();
    }
    EXPECT_EQ(Lines(OnlyFileLike(L"天 *.txt")), "second\n");
    EXPECT_EQ(Lines(OnlyFileLike(L"天 *.txt.1")), "first\n");
}

TEST_F(RollingLog, TimeBasedLogCreatesTheFolderOfThePeriod)
{
    StartLog(Properties("TimeBasedRollingFileAppender",
                        "FilenamePattern=" + UnicodeToUTF8(Folder() / L"月\\%d{MM}.txt") + "\nCreateDirs=true\n"));
    CLogMsg::LogMsg(LV_INFO, L"text");
    CloseLog();
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    const std::wstring month = std::to_wstring(100 + now.wMonth).substr(1);
    EXPECT_EQ(Lines(Folder() / (L"月\\" + month + L".txt")), "text\n");
}

TEST_F(RollingLog, TimeBasedLogWithoutAFileOfItsOwnKeepsItsLinesAtItsClose)
{
    StartLog(Properties("NullAppender", "") +
             "log4cplus.rootLogger=TRACE, timed\n"
             "log4cplus.appender.timed=log4cplus::TimeBasedRollingFileAppender\n"
             "log4cplus.appender.timed.layout=log4cplus::SimpleLayout\n"
             "log4cplus.appender.timed." +
             DayFiles());
    CLogMsg::LogMsg(LV_INFO, L"text");
    CloseLog();
    EXPECT_EQ(Lines(OnlyFileLike(L"天 *.txt")), "INFO - text\n");
}
