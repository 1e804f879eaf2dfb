#include "support/CodePage.h"
#include "support/FileContents.h"
#include "support/ImportPatch.h"
#include "support/LastError.h"
#include "support/LocaleRestorer.h"
#include "support/RecordingAppender.h"
#include "support/TempFolder.h"
#include "support/Threads.h"

#include <Kelpkit/Files.h>
#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <log4cplus/appender.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/hierarchy.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loglevel.h>
#include <log4cplus/spi/factory.h>
#include <log4cplus/spi/loggingevent.h>

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace KELPKIT;
using test::ImportPatch;
using test::LogRecord;
using test::ReadFileBytes;
using test::RecordingAppender;
using test::TempFolder;
using test::UnderCodePage936;
using test::UnderUtf8;
using test::Widened;
using test::WriteFileBytes;

namespace
{

class ThrowingAppender : public log4cplus::Appender
{
public:
    ~ThrowingAppender() override { destructorImpl(); }
    void close() override {}

protected:
    void append(const log4cplus::spi::InternalLoggingEvent&) override { throw std::runtime_error("appender"); }
};

// Is told what keeps an appender from writing.
class ThrowingErrorHandler : public log4cplus::ErrorHandler
{
public:
    void error(const log4cplus::tstring&) override
    {
        ++s_errors;
        throw std::runtime_error("error handler");
    }
    void reset() override {}

    static inline int s_errors;
};

// What an application adds to log4cplus for its property files: the appender factory "test::Throwing", from which
// log4cplus lets through only what is no std::exception, the layout "test::ThrowingLayout", and the level "THROWING".
class ThrowingAppenderFactory : public log4cplus::spi::AppenderFactory
{
public:
    const log4cplus::tstring& getTypeName() const override { return m_name; }
    log4cplus::SharedAppenderPtr createObject(const log4cplus::helpers::Properties&) override { throw "factory"; }

private:
    const log4cplus::tstring m_name = L"test::Throwing";
};

class ThrowingLayout : public log4cplus::Layout
{
public:
    explicit ThrowingLayout(const log4cplus::helpers::Properties& properties) : Layout(properties) {}
    void formatAndAppend(log4cplus::tostream&, const log4cplus::spi::InternalLoggingEvent&) override
    {
        throw std::runtime_error("layout");
    }
};

log4cplus::LogLevel ThrowingLevel(const log4cplus::tstring& name)
{
    if (name == L"THROWING")
        throw std::runtime_error("level");
    return log4cplus::NOT_SET_LOG_LEVEL;
}

void AddWhatThrows()
{
    using log4cplus::spi::LayoutFactory;
    static const bool added = [] {
        log4cplus::spi::getAppenderFactoryRegistry().put(std::make_unique<ThrowingAppenderFactory>());
        log4cplus::spi::getLayoutFactoryRegistry().put(
            std::make_unique<log4cplus::spi::FactoryTempl<ThrowingLayout, LayoutFactory>>(L"test::ThrowingLayout"));
        log4cplus::getLogLevelManager().pushFromStringMethod(&ThrowingLevel);
        return true;
    }();
    static_cast<void>(added);
}

// The log as a new process has it: no appender, every level enabled at the logger, an empty property set.
class Log : public testing::Test
{
public:
    Log() { Reset(); }
    ~Log() override { Reset(); }

protected:
    static void Reset()
    {
        log4cplus::Logger::getDefaultHierarchy().resetConfiguration();
        CLogMsg::SetProperties(L"");
    }

    static log4cplus::Logger Logger() { return log4cplus::Logger::getInstance(L"log"); }
};

class RecordedLog : public Log
{
protected:
    RecordedLog() : m_appender(new RecordingAppender)
    {
        Logger().addAppender(log4cplus::SharedAppenderPtr(m_appender));
        Logger().setLogLevel(log4cplus::TRACE_LOG_LEVEL);
    }

    const std::vector<LogRecord>& Records() const { return m_appender->records; }

    LogRecord Written(loglv level, const wchar_t* text)
    {
        m_appender->records.clear();
        CLogMsg::LogMsg(level, text);
        EXPECT_EQ(Records().size(), 1U);
        return Records().size() == 1 ? Records()[0] : LogRecord{};
    }

private:
    RecordingAppender* m_appender;
};

// A folder with a property file that logs bare messages through a rolling file appender.
class FileLog : public Log
{
public:
    FileLog() : m_folder(L"日志 log") { WriteProperties(kProperties); }
    ~FileLog() override { Reset(); } // closes the log, so that the folder can go

protected:
    static constexpr const char* kProperties = "log4cplus.rootLogger=TRACE, fileAppender\n"
                                               "log4cplus.appender.fileAppender=log4cplus::RollingFileAppender\n"
                                               "log4cplus.appender.fileAppender.MaxFileSize=50MB\n"
                                               "log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout\n"
                                               "log4cplus.appender.fileAppender.layout.ConversionPattern=%m%n\n";

    void WriteProperties(const std::string& text) { WriteFileBytes(PropertyFile(), text); }
    std::wstring PropertyFile() const { return m_folder / L"属性 log4cplus.properties"; }
    const TempFolder& Folder() const { return m_folder; }

    void StartLog(const std::wstring& logFile)
    {
        CLogMsg::SetProperties(PropertyFile());
        CLogMsg::SetLogPath(logFile);
    }

    // The lines of a log file, which end as text files do on Windows.
    static std::string Lines(const std::wstring& logFile)
    {
        std::string text = ReadFileBytes(logFile);
        StringReplace(text, "\r\n", "\n");
        return text;
    }

    // Whether a log with proper properties works, whatever was before.
    void ExpectWorks()
    {
        const std::wstring file = Folder() / (L"works " + std::to_wstring(++m_checks) + L".log");
        WriteProperties(kProperties);
        StartLog(file);
        CLogMsg::LogMsg(LV_TRACE, L"it works");
        EXPECT_EQ(Lines(file), "it works\n");
    }

private:
    TempFolder m_folder;
    int m_checks = 0;
};

// As "2026-11-20 11:14:56".
std::string LocalTimeText()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&now));
    return text;
}

// A variable of the environment as the C runtime has it, which is a copy of the process's own.
class RuntimeVariable
{
public:
    RuntimeVariable(const wchar_t* name, const wchar_t* value) : m_name(name) { Set(value); }
    RuntimeVariable(const RuntimeVariable&) = delete;
    RuntimeVariable& operator=(const RuntimeVariable&) = delete;
    ~RuntimeVariable() { Set(L""); }

private:
    void Set(const std::wstring& value) const { EXPECT_EQ(::_wputenv((m_name + L"=" + value).c_str()), 0); }

    std::wstring m_name;
};

} // namespace

TEST_F(RecordedLog, WritesEachSeverityAtItsLevelWithItsLine)
{
    const struct {
        loglv severity;
        int level;
        int line;
    } cases[] = {
        {LV_ALL, 0, 73},      {LV_FATAL, 50000, 53}, {LV_ERROR, 40000, 48}, {LV_WARN, 30000, 68},
        {LV_INFO, 20000, 58}, {LV_DEBUG, 10000, 43}, {LV_TRACE, 0, 63},
    };
    for (const auto& [severity, level, line] : cases) {
        const LogRecord record = Written(severity, L"text");
        EXPECT_EQ(record.level, level) << severity;
        EXPECT_EQ(record.line, line) << severity;
        EXPECT_EQ(record.file, L"log\\LogMsg.cpp");
        EXPECT_EQ(record.function, L"void __cdecl KELPKIT::CLogMsg::LogMsg(enum KELPKIT::loglv,const wchar_t *)");
        EXPECT_EQ(record.text, L"text");
    }
}

TEST_F(RecordedLog, TellsAllAndTraceApartByTheLineOnly)
{
    EXPECT_EQ(Written(LV_ALL, L"x").line, 73);
    EXPECT_EQ(Written(LV_TRACE, L"x").line, 63);
    EXPECT_EQ(Written(LV_ALL, L"x").level, Written(LV_TRACE, L"x").level);
}

TEST_F(RecordedLog, WritesNothingForOffAndForUnknownSeverities)
{
    for (const int severity : {0, -2, 7, 8, 100, -100, INT_MAX, INT_MIN})
        CLogMsg::LogMsg(static_cast<loglv>(severity), L"text");
    EXPECT_TRUE(Records().empty());
}

TEST_F(RecordedLog, WritesNothingForANullText)
{
    CLogMsg::LogMsg(LV_FATAL, nullptr);
    EXPECT_TRUE(Records().empty());
}

TEST_F(RecordedLog, WritesAnEmptyText)
{
    EXPECT_EQ(Written(LV_INFO, L"").text, L"");
}

TEST_F(RecordedLog, WidensTheAnsiBytesOneByOne)
{
    for (const wchar_t* const text : {L"模型文件", L"a中b", L"é€", L"\xD83D\xDE00", L"plain"})
        EXPECT_EQ(Written(LV_INFO, text).text, Widened(UnicodeToAnsi(text)));
}

TEST_F(RecordedLog, WidensEveryByteToItsOwnValue)
{
    for (unsigned unit = 1; unit < 0x10000; unit += 7) {
        const wchar_t text[] = {static_cast<wchar_t>(unit), 0};
        ASSERT_EQ(Written(LV_INFO, text).text, Widened(UnicodeToAnsi(text))) << unit;
    }
}

TEST_F(RecordedLog, WidensAlikeWhateverTheLocaleOfTheProcess)
{
    const test::LocaleRestorer restorer;
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    EXPECT_EQ(Written(LV_INFO, L"模型é").text, Widened(UnicodeToAnsi(L"模型é")));
}

TEST_F(RecordedLog, WritesNothingBelowTheEnabledLevel)
{
    Logger().setLogLevel(log4cplus::WARN_LOG_LEVEL);
    for (const loglv severity : {LV_ALL, LV_TRACE, LV_DEBUG, LV_INFO})
        CLogMsg::LogMsg(severity, L"text");
    EXPECT_TRUE(Records().empty());
    for (const loglv severity : {LV_WARN, LV_ERROR, LV_FATAL})
        CLogMsg::LogMsg(severity, L"text");
    EXPECT_EQ(Records().size(), 3U);
}

TEST_F(RecordedLog, ConvertsNothingBelowTheEnabledLevel)
{
    static int conversions = 0;
    conversions = 0;
    const ImportPatch patch(
        "WideCharToMultiByte", +[](UINT codePage, DWORD flags, const wchar_t* text, int size, char* out, int outSize,
                                   const char* defaultChar, BOOL* usedDefault) {
            ++conversions;
            return ::WideCharToMultiByte(codePage, flags, text, size, out, outSize, defaultChar, usedDefault);
        });
    Logger().setLogLevel(log4cplus::WARN_LOG_LEVEL);
    CLogMsg::LogMsg(LV_INFO, L"模型");
    EXPECT_EQ(conversions, 0);
    CLogMsg::LogMsg(LV_WARN, L"模型");
    EXPECT_EQ(conversions, 1);
}

TEST_F(RecordedLog, WritesALongText)
{
    const std::wstring text(1 << 20, L'中');
    EXPECT_EQ(Written(LV_INFO, text.c_str()).text, Widened(UnicodeToAnsi(text)));
}

TEST_F(Log, LetsNoExceptionOfAnAppenderThrough)
{
    Logger().addAppender(log4cplus::SharedAppenderPtr(new ThrowingAppender));
    EXPECT_NO_THROW(CLogMsg::LogMsg(LV_FATAL, L"text"));
}

TEST_F(FileLog, MessagesBeforeTheConfigurationDoNoHarm)
{
    EXPECT_NO_THROW(CLogMsg::LogMsg(LV_FATAL, L"before all"));
    CLogMsg::SetProperties(PropertyFile());
    EXPECT_NO_THROW(CLogMsg::LogMsg(LV_FATAL, L"before the path"));
    CLogMsg::SetLogPath(Folder() / L"run.log");
    EXPECT_EQ(Lines(Folder() / L"run.log"), "");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / L"run.log"), "text\n");
}

TEST_F(Log, SetLogPathBeforeSetPropertiesDefinesNoAppender)
{
    const TempFolder folder;
    CLogMsg::SetLogPath(folder / L"run.log");
    CLogMsg::LogMsg(LV_FATAL, L"text");
    EXPECT_TRUE(Logger().getAllAppenders().empty());
    EXPECT_TRUE(log4cplus::Logger::getRoot().getAllAppenders().empty());
    EXPECT_FALSE(CheckFileExis(folder / L"run.log"));
}

TEST_F(FileLog, SetPropertiesAloneConfiguresNothing)
{
    CLogMsg::SetProperties(PropertyFile());
    EXPECT_TRUE(log4cplus::Logger::getRoot().getAllAppenders().empty());
}

TEST_F(FileLog, WritesLinesToTheFile)
{
    StartLog(Folder() / L"运行 run.log");
    CLogMsg::LogMsg(LV_INFO, L"first");
    CLogMsg::LogMsg(LV_FATAL, L"second");
    EXPECT_EQ(Lines(Folder() / L"运行 run.log"), "first\nsecond\n");
}

TEST_F(FileLog, PrintsLevelFileLineAndFunctionWhereTheLayoutWantsThem)
{
    WriteProperties(std::string(kProperties) +
                    "log4cplus.appender.fileAppender.layout.ConversionPattern=%p|%F|%L|%M|%m%n\n");
    StartLog(Folder() / L"run.log");
    CLogMsg::LogMsg(LV_WARN, L"text");
    EXPECT_EQ(
        Lines(Folder() / L"run.log"),
        "WARN|log\\LogMsg.cpp|68|void __cdecl KELPKIT::CLogMsg::LogMsg(enum KELPKIT::loglv,const wchar_t *)|text\n");
}

TEST_F(FileLog, PrintsWholeDates)
{
    WriteProperties(std::string(kProperties) +
                    "log4cplus.appender.fileAppender.layout.ConversionPattern=%D{%Y-%m-%d %H:%M:%S}|%D{%S}|%m%n\n");
    StartLog(Folder() / L"run.log");
    const std::string before = LocalTimeText();
    CLogMsg::LogMsg(LV_INFO, L"text");
    const std::string after = LocalTimeText();

    const std::string line = Lines(Folder() / L"run.log");
    std::string shape = line;
    std::replace_if(
        shape.begin(), shape.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    ASSERT_EQ(shape, "0000-00-00 00:00:00|00|text\n");
    const std::string date = line.substr(0, before.size());
    EXPECT_LE(before, date);
    EXPECT_LE(date, after);
    EXPECT_EQ(line.substr(20, 2), date.substr(17));
}

TEST_F(FileLog, HoldsTheAnsiBytesOfAMessage)
{
    StartLog(Folder() / L"run.log");
    CLogMsg::LogMsg(LV_INFO, L"模型é€ ok");
    EXPECT_EQ(Lines(Folder() / L"run.log"), UnicodeToAnsi(L"模型é€ ok") + "\n");
}

TEST_F(FileLog, HoldsTheAnsiBytesAlsoAfterTheLocaleOfTheProcessChanged)
{
    const test::LocaleRestorer restorer;
    StartLog(Folder() / L"run.log");
    CLogMsg::LogMsg(LV_INFO, L"模型é€ before");
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    CLogMsg::LogMsg(LV_INFO, L"模型é€ after");
    CLogMsg::LogMsg(LV_INFO, L"plain");
    CLogMsg::SetLogPath(Folder() / L"second.log");
    CLogMsg::LogMsg(LV_INFO, L"模型é€ in the second");
    EXPECT_EQ(Lines(Folder() / L"run.log"),
              UnicodeToAnsi(L"模型é€ before") + "\n" + UnicodeToAnsi(L"模型é€ after") + "\nplain\n");
    EXPECT_EQ(Lines(Folder() / L"second.log"), UnicodeToAnsi(L"模型é€ in the second") + "\n");
}

TEST_F(FileLog, HoldsEveryByteValue)
{
    StartLog(Folder() / L"run.log");
    std::string expected;
    for (unsigned unit = 0x20; unit < 0x10000; unit += 5) {
        const wchar_t text[] = {static_cast<wchar_t>(unit), 0};
        CLogMsg::LogMsg(LV_INFO, text);
        expected += UnicodeToAnsi(text) + "\n";
    }
    EXPECT_EQ(Lines(Folder() / L"run.log"), expected);
}

namespace
{

// What a message is when it reaches an appender.
std::wstring Recorded(const wchar_t* message)
{
    auto* const appender = new RecordingAppender;
    log4cplus::Logger logger = log4cplus::Logger::getInstance(L"log");
    logger.addAppender(log4cplus::SharedAppenderPtr(appender));
    CLogMsg::LogMsg(LV_FATAL, message);
    const std::wstring text = appender->records.empty() ? L"" : appender->records[0].text;
    logger.removeAllAppenders();
    return text;
}

} // namespace

TEST_F(UnderCodePage936, ChineseMessageReachesTheLogAsItsGbkBytesWidened)
{
    EXPECT_EQ(Recorded(L"中"), L"\x00D6\x00D0");
}

TEST_F(UnderUtf8, MessageReachesTheLogAsItsUtf8BytesWidened)
{
    EXPECT_EQ(Recorded(L"中\xD83D\xDE00"), L"\x00E4\x00B8\x00AD\x00F0\x009F\x0098\x0080");
}

TEST_F(FileLog, SetLogPathCreatesEachMissingLevelFromTheTop)
{
    static std::vector<std::wstring> created;
    created.clear();
    const ImportPatch patch(
        "CreateDirectoryW", +[](const wchar_t* path, SECURITY_ATTRIBUTES* security) {
            created.emplace_back(path);
            return ::CreateDirectoryW(path, security);
        });
    const std::wstring top = Folder().Path();
    StartLog(top + L"\\甲 a\\乙 b\\run.log");
    EXPECT_TRUE(CheckFolderExis(top + L"\\甲 a\\乙 b"));
    ASSERT_GE(created.size(), 3U);
    EXPECT_EQ(created.front(), L"C:");
    EXPECT_EQ(created[created.size() - 2], top + L"\\甲 a");
    EXPECT_EQ(created.back(), top + L"\\甲 a\\乙 b");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(top + L"\\甲 a\\乙 b\\run.log"), "text\n");
}

TEST_F(FileLog, SetLogPathCreatesNothingWhereTheFolderExists)
{
    static int created = 0;
    const ImportPatch patch(
        "CreateDirectoryW", +[](const wchar_t*, SECURITY_ATTRIBUTES*) -> BOOL {
            ++created;
            return FALSE;
        });
    StartLog(Folder() / L"run.log");
    EXPECT_EQ(created, 0);
}

TEST_F(FileLog, SetLogPathWithABareFileNameCreatesNothingAndConfigures)
{
    static int created = 0;
    const ImportPatch patch(
        "CreateDirectoryW", +[](const wchar_t*, SECURITY_ATTRIBUTES*) -> BOOL {
            ++created;
            return FALSE;
        });
    ASSERT_TRUE(::SetCurrentDirectoryW(Folder().Path().c_str())) << test::LastErrorText();
    StartLog(L"run.log");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(created, 0);
    EXPECT_EQ(Lines(Folder() / L"run.log"), "text\n");
    ASSERT_TRUE(::SetCurrentDirectoryW(L"..")) << test::LastErrorText();
}

TEST_F(FileLog, SetLogPathMovesTheLog)
{
    StartLog(Folder() / L"first.log");
    CLogMsg::LogMsg(LV_INFO, L"one");
    CLogMsg::SetLogPath(Folder() / L"second.log");
    CLogMsg::LogMsg(LV_INFO, L"two");
    CLogMsg::SetLogPath(Folder() / L"first.log");
    CLogMsg::LogMsg(LV_INFO, L"three");
    EXPECT_EQ(Lines(Folder() / L"first.log"), "one\nthree\n");
    EXPECT_EQ(Lines(Folder() / L"second.log"), "two\n");
}

TEST_F(FileLog, SetLogPathOpensTheFileOfThatNameWhateverItHolds)
{
    const RuntimeVariable variable(L"KELPKIT_TEST_FOLDER", L"elsewhere");
    for (const wchar_t* const name :
         {L"${KELPKIT_TEST_FOLDER}.log", L"${KELPKIT_TEST_FOLDER.log", L"${}.log", L"%KELPKIT_TEST_FOLDER%.log",
          L"#a=b, c!.log", L" a  b.log", L"\x00D6\x00D0.log"}) {
        SCOPED_TRACE(UnicodeToUTF8(name));
        StartLog(Folder() / name);
        CLogMsg::LogMsg(LV_INFO, L"text");
        ASSERT_TRUE(CheckFileExis(Folder() / name));
        EXPECT_EQ(Lines(Folder() / name), "text\n");
    }
}

TEST_F(FileLog, FillsInVariablesThatThePropertyFileNames)
{
    const RuntimeVariable variable(L"KELPKIT_TEST_WORD", L"word");
    WriteProperties(std::string(kProperties) +
                    "log4cplus.appender.fileAppender.layout.ConversionPattern=${KELPKIT_TEST_WORD} %m%n\n");
    StartLog(Folder() / L"run.log");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / L"run.log"), "word text\n");
}

TEST_F(FileLog, SetPropertiesDropsThePathUntilTheNextSetLogPath)
{
    StartLog(Folder() / L"first.log");
    // The file names its own log now; it is used only as far as SetLogPath does not say otherwise.
    WriteProperties(std::string(kProperties) + "log4cplus.rootLogger=ERROR, fileAppender\n");
    CLogMsg::SetProperties(PropertyFile());
    CLogMsg::LogMsg(LV_INFO, L"still the first configuration");
    CLogMsg::SetLogPath(Folder() / L"second.log");
    CLogMsg::LogMsg(LV_INFO, L"below the level now");
    CLogMsg::LogMsg(LV_ERROR, L"text");
    EXPECT_EQ(Lines(Folder() / L"first.log"), "still the first configuration\n");
    EXPECT_EQ(Lines(Folder() / L"second.log"), "text\n");
}

TEST_F(FileLog, SetPropertiesFromAMissingFileEmptiesTheSet)
{
    StartLog(Folder() / L"first.log");
    CLogMsg::SetProperties(Folder() / L"missing");
    Logger().getDefaultHierarchy().resetConfiguration();
    CLogMsg::SetLogPath(Folder() / L"second.log");
    CLogMsg::LogMsg(LV_FATAL, L"text");
    EXPECT_FALSE(CheckFileExis(Folder() / L"second.log"));
}

TEST_F(FileLog, ReadsAPropertyFileWithForeignTextAndWindowsLineEnds)
{
    std::string text = kProperties;
    StringReplace(text, "\n", "\r\n");
    WriteProperties("# \xD6\xD0\xCE\xC4 \xE4\xB8\xAD \x80\xFF\r\n" + text);
    StartLog(Folder() / L"run.log");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / L"run.log"), "text\n");
}

TEST_F(FileLog, ReadsAPropertyFileWithForeignTextAfterTheLocaleOfTheProcessChanged)
{
    const test::LocaleRestorer restorer;
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    WriteProperties("# \xD6\xD0\xCE\xC4 \xE4\xB8\xAD \x80\xFF\n" + std::string(kProperties));
    StartLog(Folder() / L"run.log");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / L"run.log"), "text\n");
}

TEST_F(FileLog, LetsNoExceptionThroughForNonsenseInThePropertyFile)
{
    AddWhatThrows();
    const std::string nonsense[] = {
        "log4cplus.rootLogger=NONSENSE, fileAppender\n",
        "log4cplus.rootLogger=\n",
        "log4cplus.rootLogger=, , ,\n",
        "log4cplus.logger.log=NONSENSE, missingAppender\n",
        "log4cplus.appender.fileAppender=no::SuchAppender\n",
        "log4cplus.appender.fileAppender=\n",
        "log4cplus.appender.fileAppender.layout=no::SuchLayout\n",
        "log4cplus.appender.fileAppender.layout.ConversionPattern=%Q%{%\n",
        "log4cplus.appender.fileAppender.MaxFileSize=x\nlog4cplus.appender.fileAppender.MaxBackupIndex=-1\n",
        "log4cplus.appender.fileAppender.Threshold=NONSENSE\n",
        "log4cplus.appender.fileAppender.Locale=no such locale\n",
        "log4cplus.appender.fileAppender.filters.1=no::SuchFilter\n",
        "log4cplus.disable=NONSENSE\nlog4cplus.additivity.log=maybe\n",
        "log4cplus.rootLogger=${NO_SUCH_VARIABLE}, ${\n",
        std::string("\0\0\xFF\xFE=\0", 6),
        // What the application added to log4cplus throws.
        "log4cplus.rootLogger=THROWING, fileAppender\n",
        "log4cplus.logger.log=THROWING\n",
        "log4cplus.appender.fileAppender=test::Throwing\n",
        "log4cplus.appender.other=test::Throwing\n",
        "log4cplus.appender.fileAppender.layout=test::ThrowingLayout\n",
    };
    for (const std::string& lines : nonsense) {
        SCOPED_TRACE(lines);
        WriteProperties(kProperties + lines);
        EXPECT_NO_THROW(StartLog(Folder() / L"run.log"));
        EXPECT_NO_THROW(CLogMsg::LogMsg(LV_FATAL, L"text"));
        ExpectWorks();
        Reset();
    }
}

TEST_F(FileLog, WorksAgainAfterNonsense)
{
    WriteProperties(std::string(kProperties) + "log4cplus.rootLogger=NONSENSE, fileAppender\n");
    StartLog(Folder() / L"first.log");
    WriteProperties(kProperties);
    StartLog(Folder() / L"second.log");
    CLogMsg::LogMsg(LV_INFO, L"text");
    EXPECT_EQ(Lines(Folder() / L"second.log"), "text\n");
}

TEST_F(FileLog, DoesNoHarmWhereTheFileCannotBeWritten)
{
    ASSERT_TRUE(::CreateDirectoryW((Folder() / L"folder.log").c_str(), nullptr)) << test::LastErrorText();
    for (const std::wstring& path :
         {Folder() / L"folder.log", std::wstring(L"Q:\\no\\drive\\run.log"), std::wstring()}) {
        SCOPED_TRACE(UnicodeToUTF8(path));
        EXPECT_NO_THROW(StartLog(path));
        const log4cplus::SharedAppenderPtr appender = log4cplus::Logger::getRoot().getAppender(L"fileAppender");
        ASSERT_TRUE(appender);
        appender->setErrorHandler(std::make_unique<ThrowingErrorHandler>());
        ThrowingErrorHandler::s_errors = 0;
        for (int message = 0; message < 3; ++message)
            EXPECT_NO_THROW(CLogMsg::LogMsg(LV_FATAL, L"text"));
        EXPECT_GE(ThrowingErrorHandler::s_errors, 2)
            << "a stream that was never opened fails from its second message on";
        WriteProperties(kProperties);
        ExpectWorks();
    }
    EXPECT_TRUE(CheckFolderExis(Folder() / L"folder.log"));
}

TEST_F(FileLog, RollsOverIntoNumberedFiles)
{
    WriteProperties(std::string(kProperties) + "log4cplus.appender.fileAppender.MaxFileSize=200KB\n"
                                               "log4cplus.appender.fileAppender.MaxBackupIndex=3\n");
    StartLog(Folder() / L"滚动.log");
    // 205 lines of 1002 bytes are the first that are more than 200 KB.
    const auto line = [](int number) { return std::to_string(10000 + number) + std::string(995, 'x'); };
    for (int i = 0; i < 1100; ++i)
        CLogMsg::LogMsg(LV_INFO, AnsiToUnicode(line(i)).c_str());
    const auto lines = [&line](int begin, int end) {
        std::string text;
        for (int i = begin; i < end; ++i)
            text += line(i) + "\n";
        return text;
    };
    EXPECT_TRUE(Lines(Folder() / L"滚动.log") == lines(1025, 1100));
    EXPECT_TRUE(Lines(Folder() / L"滚动.log.1") == lines(820, 1025));
    EXPECT_TRUE(Lines(Folder() / L"滚动.log.2") == lines(615, 820));
    EXPECT_TRUE(Lines(Folder() / L"滚动.log.3") == lines(410, 615)) << "what was before is gone";
    EXPECT_FALSE(CheckFileExis(Folder() / L"滚动.log.4"));
}

TEST_F(FileLog, LosesAndTearsNothingOfEightThreads)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 10000;
    StartLog(Folder() / L"run.log");
    test::InThreads(kThreads, [](std::size_t thread) {
        for (int line = 0; line < kLines; ++line)
            CLogMsg::LogMsg(LV_INFO, (std::to_wstring(thread) + L" 线程 " + std::to_wstring(line)).c_str());
    });

    std::istringstream lines(Lines(Folder() / L"run.log"));
    std::map<int, int> next;
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const int thread = line[0] - '0';
        const std::string expected =
            UnicodeToAnsi(std::to_wstring(thread) + L" 线程 " + std::to_wstring(next[thread]++));
        ASSERT_EQ(line, expected);
    }
    EXPECT_EQ(count, kThreads * kLines);
    EXPECT_EQ(next.size(), static_cast<std::size_t>(kThreads));
}

TEST_F(FileLog, LosesAndTearsNothingWhileItMoves)
{
    constexpr int kMoves = 100;
    StartLog(Folder() / L"0.log");
    std::atomic<bool> ends = false;
    int sent[4] = {};
    std::thread threads[4];
    for (int i = 0; i < 4; ++i) {
        threads[i] = std::thread([&ends, &count = sent[i], i] {
            while (!ends)
                CLogMsg::LogMsg(LV_INFO, (std::to_wstring(i) + L" 线程 " + std::to_wstring(count++)).c_str());
        });
    }
    for (int i = 1; i <= kMoves; ++i)
        CLogMsg::SetLogPath(Folder() / (std::to_wstring(i) + L".log"));
    ends = true;
    for (std::thread& thread : threads)
        thread.join();

    int next[4] = {};
    for (int i = 0; i <= kMoves; ++i) {
        std::istringstream lines(Lines(Folder() / (std::to_wstring(i) + L".log")));
        for (std::string line; std::getline(lines, line);) {
            const int thread = line[0] - '0';
            ASSERT_EQ(line, UnicodeToAnsi(std::to_wstring(thread) + L" 线程 " + std::to_wstring(next[thread]++)));
        }
    }
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(next[i], sent[i]);
}

TEST(CLogMsg, CanBeMadeCopiedAndAssigned)
{
    CLogMsg first;
    const CLogMsg second = first;
    EXPECT_EQ(&(first = second), &first);
}
