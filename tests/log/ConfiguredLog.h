#pragma once

#include "support/FileContents.h"
#include "support/TempFolder.h"

#include <Kelpkit/Log.h>
#include <Kelpkit/Text.h>

#include <gtest/gtest.h>

#include <log4cplus/helpers/timehelper.h>
#include <log4cplus/hierarchy.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

#include <chrono>
#include <string>

namespace test
{

// The log with a folder for its files. It is closed at the end, so that the folder can go.
class ConfiguredLog : public testing::Test
{
public:
    ConfiguredLog() : m_folder(L"日志 log") { CloseLog(); }
    ~ConfiguredLog() override { CloseLog(); }

protected:
    const TempFolder& Folder() const { return m_folder; }
    std::wstring LogFile() const { return m_folder / L"运行 run.log"; }

    // Closes the log and drops its settings.
    static void CloseLog()
    {
        log4cplus::Logger::getDefaultHierarchy().resetConfiguration();
        KELPKIT::CLogMsg::SetProperties(L"");
    }

    // Configures the log from a property file of these bytes.
    void StartLog(const std::string& properties)
    {
        const std::wstring propertyFile = m_folder / L"属性 log4cplus.properties";
        WriteFileBytes(propertyFile, properties);
        KELPKIT::CLogMsg::SetProperties(propertyFile);
        KELPKIT::CLogMsg::SetLogPath(LogFile());
    }

    // Writes an event of the given time from now to the log.
    static void LogAt(std::chrono::hours fromNow, const wchar_t* text)
    {
        const log4cplus::Logger logger = log4cplus::Logger::getInstance(L"log");
        const log4cplus::spi::InternalLoggingEvent event(logger.getName(), log4cplus::INFO_LOG_LEVEL, L"",
                                                         log4cplus::MappedDiagnosticContextMap(), text, L"", L"",
                                                         log4cplus::helpers::now() + fromNow, L"file", 1, L"");
        logger.callAppenders(event);
    }

    // The lines of a log file, which end as text files do on Windows.
    static std::string Lines(const std::wstring& logFile)
    {
        std::string text = ReadFileBytes(logFile);
        KELPKIT::StringReplace(text, "\r\n", "\n");
        return text;
    }

private:
    TempFolder m_folder;
};

} // namespace test
