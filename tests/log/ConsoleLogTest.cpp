#include "log/ConfiguredLog.h"
#include "support/FileContents.h"
#include "support/LocaleRestorer.h"
#include "support/OwnProcess.h"
#include "support/TempFolder.h"

#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <log4cplus/appender.h>
#include <log4cplus/helpers/loglog.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <clocale>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

using namespace KELPKIT;
using test::LocaleRestorer;

namespace
{

// A standard stream of the C library, redirected into a file.
class Redirection
{
public:
    Redirection(std::FILE* stream, std::wstring file) : m_stream(stream), m_file(std::move(file))
    {
        std::fflush(m_stream);
        m_saved = ::_dup(::_fileno(m_stream));
        const int target = ::_wopen(m_file.c_str(), _O_CREAT | _O_TRUNC | _O_WRONLY | _O_TEXT, _S_IREAD | _S_IWRITE);
        EXPECT_EQ(::_dup2(target, ::_fileno(m_stream)), 0);
        ::_close(target);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection()
    {
        std::fflush(m_stream);
        ::_dup2(m_saved, ::_fileno(m_stream));
        ::_close(m_saved);
    }

    std::string Bytes() const
    {
        std::fflush(m_stream);
        return test::ReadFileBytes(m_file);
    }

private:
    std::FILE* m_stream;
    std::wstring m_file;
    int m_saved;
};

// What a wide stream of C++ writes to, replaced.
class BufferSwap
{
public:
    BufferSwap(std::wostream& stream, std::wstreambuf* buffer) : m_stream(stream), m_saved(stream.rdbuf(buffer)) {}
    BufferSwap(const BufferSwap&) = delete;
    BufferSwap& operator=(const BufferSwap&) = delete;
    ~BufferSwap() { m_stream.rdbuf(m_saved); }

private:
    std::wostream& m_stream;
    std::wstreambuf* m_saved;
};

class ConsoleLog : public test::ConfiguredLog
{
protected:
    static constexpr const char* kProperties = "log4cplus.rootLogger=TRACE, console\n"
                                               "log4cplus.appender.console=log4cplus::ConsoleAppender\n"
                                               "log4cplus.appender.console.layout=log4cplus::PatternLayout\n"
                                               "log4cplus.appender.console.layout.ConversionPattern=%m%n\n";

    std::wstring MissingFile() const { return Folder() / L"没有 é.properties"; }
    std::string MissingFileReport() const
    {
        return "log4cplus:ERROR could not open file " + UnicodeToAnsi(MissingFile()) + "\r\n";
    }
    std::wstring Output() const { return Folder() / L"output"; }

    static void LogDirectly(const wchar_t* text)
    {
        log4cplus::detail::macro_forced_log(log4cplus::Logger::getInstance(L"log"), log4cplus::FATAL_LOG_LEVEL, text,
                                            "file", 1, "function");
    }
};

} // namespace

TEST_F(ConsoleLog, DiagnosticsNameAChineseFileWhole)
{
    const Redirection error(stderr, Output());
    CLogMsg::SetProperties(MissingFile());
    CLogMsg::SetProperties(MissingFile());
    EXPECT_EQ(error.Bytes(), MissingFileReport() + MissingFileReport());
    EXPECT_TRUE(std::wcerr.good());
}

TEST_F(ConsoleLog, DiagnosticsNameAChineseFileWholeAfterTheLocaleOfTheProcessChanged)
{
    const LocaleRestorer restorer;
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    const Redirection error(stderr, Output());
    CLogMsg::SetProperties(MissingFile());
    EXPECT_EQ(error.Bytes(), MissingFileReport());
    EXPECT_TRUE(std::wcerr.good());
}

TEST_F(ConsoleLog, MessagesAppearInTheAnsiCodePage)
{
    StartLog(kProperties);
    const Redirection output(stdout, Output());
    CLogMsg::LogMsg(LV_INFO, L"模型é€");
    CLogMsg::LogMsg(LV_INFO, L"plain");
    EXPECT_EQ(output.Bytes(), UnicodeToAnsi(L"模型é€") + "\r\nplain\r\n");
    EXPECT_TRUE(std::wcout.good());
}

TEST_F(ConsoleLog, MessagesAppearInTheAnsiCodePageAfterTheLocaleOfTheProcessChanged)
{
    const LocaleRestorer restorer;
    ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
    StartLog(kProperties);
    const Redirection output(stdout, Output());
    CLogMsg::LogMsg(LV_INFO, L"模型é€");
    CLogMsg::LogMsg(LV_INFO, L"plain");
    EXPECT_EQ(output.Bytes(), UnicodeToAnsi(L"模型é€") + "\r\nplain\r\n");
    EXPECT_TRUE(std::wcout.good());
}

TEST_F(ConsoleLog, MessagesAppearOnTheErrorStreamWhereThePropertiesSaySo)
{
    StartLog(std::string(kProperties) + "log4cplus.appender.console.logToStdErr=true\n");
    const Redirection error(stderr, Output());
    CLogMsg::LogMsg(LV_INFO, L"模型é€");
    EXPECT_EQ(error.Bytes(), UnicodeToAnsi(L"模型é€") + "\r\n");
    EXPECT_TRUE(std::wcerr.good());
}

TEST_F(ConsoleLog, CharactersOfDirectMessagesAppearInTheAnsiCodePageOrAreSubstituted)
{
    StartLog(kProperties);
    const Redirection output(stdout, Output());
    LogDirectly(L"模型 \x0416 \xD83D\xDE00 end");
    LogDirectly(L"plain");
    EXPECT_EQ(output.Bytes(), UnicodeToAnsi(L"模型 \x0416 \xD83D\xDE00 end") + "\r\nplain\r\n");
    EXPECT_TRUE(std::wcout.good());
}

TEST_F(ConsoleLog, KeepsTheOrderAmongTheApplicationsOwnOutput)
{
    StartLog(kProperties);
    const Redirection output(stdout, Output());
    std::wcout << L"before ";
    std::cout << "and before\n";
    CLogMsg::LogMsg(LV_INFO, L"模型");
    std::wcout << L"after ";
    std::printf("and after");
    EXPECT_EQ(output.Bytes(), "before and before\r\n" + UnicodeToAnsi(L"模型") + "\r\nafter and after");
}

TEST_F(ConsoleLog, KeepsTheOrderOnAStreamThatIsNotSynchronisedWithTheCLibrary)
{
    test::InOwnProcess([this] {
        std::ios_base::sync_with_stdio(false);
        ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
        StartLog(kProperties);
        const Redirection output(stdout, Output());
        std::wcout << L"before ";
        CLogMsg::LogMsg(LV_INFO, L"模型é€");
        std::wcout << L"after" << std::flush;
        EXPECT_EQ(output.Bytes(), "before " + UnicodeToAnsi(L"模型é€") + "\r\nafter");
        EXPECT_TRUE(std::wcout.good());
    });
}

TEST_F(ConsoleLog, BufferOfTheApplicationReceivesTheCharacters)
{
    StartLog(kProperties);
    std::wstringbuf buffer;
    const BufferSwap swap(std::wcout, &buffer);
    LogDirectly(L"模型é");
    EXPECT_EQ(buffer.str(), L"模型é\n");
}

TEST_F(ConsoleLog, FileOfTheApplicationReceivesSubstitutesForWhatItLacks)
{
    std::wofstream file((Folder() / L"file").c_str());
    const BufferSwap swap(std::wcerr, file.rdbuf());
    log4cplus::helpers::LogLog::getLogLog()->error(L"first 模 end");
    log4cplus::helpers::LogLog::getLogLog()->error(L"second");
    file.close();
    EXPECT_EQ(Lines(Folder() / L"file"), "log4cplus:ERROR first ? end\nlog4cplus:ERROR second\n");
    EXPECT_TRUE(std::wcerr.good());
}

TEST_F(ConsoleLog, WritesUnicodeWhereTheApplicationHasSetItsMode)
{
    const Redirection error(stderr, Output());
    ASSERT_EQ(::_setmode(::_fileno(stderr), _O_U16TEXT), _O_TEXT);
    log4cplus::helpers::LogLog::getLogLog()->error(L"模");
    EXPECT_NE(::_setmode(::_fileno(stderr), _O_TEXT), _O_TEXT);
    const std::wstring expected = L"log4cplus:ERROR 模\r\n";
    EXPECT_EQ(error.Bytes(),
              std::string(reinterpret_cast<const char*>(expected.data()), expected.size() * sizeof(wchar_t)));
    EXPECT_TRUE(std::wcerr.good());
}
