#pragma once

#include <log4cplus/appender.h>
#include <log4cplus/spi/loggingevent.h>

#include <string>
#include <vector>

namespace test
{

struct LogRecord {
    int level;
    std::wstring file;
    int line;
    std::wstring function;
    std::wstring text;
};

// Keeps each log event as it arrives.
class RecordingAppender : public log4cplus::Appender
{
public:
    ~RecordingAppender() override { destructorImpl(); }
    void close() override {}

    std::vector<LogRecord> records;

protected:
    void append(const log4cplus::spi::InternalLoggingEvent& event) override
    {
        records.push_back(
            {event.getLogLevel(), event.getFile(), event.getLine(), event.getFunction(), event.getMessage()});
    }
};

// A narrow text with each byte widened to a character of its own, as the log has it.
inline std::wstring Widened(const std::string& bytes)
{
    std::wstring wide;
    for (const char c : bytes)
        wide += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return wide;
}

} // namespace test
