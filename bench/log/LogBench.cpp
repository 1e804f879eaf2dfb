#include "Bench.h"

#include "Kelpkit/Log.h"

#include "support/TempFolder.h"

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <cstddef>
#include <fstream>
#include <memory>
#include <string>

namespace bench
{
namespace
{

constexpr const char* kProperties = R"(log4cplus.rootLogger=INFO, fileAppender
log4cplus.appender.fileAppender=log4cplus::FileAppender
log4cplus.appender.fileAppender.ImmediateFlush=true
log4cplus.appender.fileAppender.layout=log4cplus::PatternLayout
log4cplus.appender.fileAppender.layout.ConversionPattern=%m%n
)";

// Everything is logged into files here.
const test::TempFolder& Folder()
{
    static const test::TempFolder folder;
    return folder;
}

void ConfigureKelpkit()
{
    const std::wstring properties = Folder() / L"log.properties";
    std::ofstream(properties.c_str()) << kProperties;
    KELPKIT::CLogMsg::SetProperties(properties);
    KELPKIT::CLogMsg::SetLogPath(Folder() / L"kelpkit.log");
}

std::shared_ptr<spdlog::logger> MakeSpdlog()
{
    const std::wstring path = Folder() / L"spdlog.log";
    auto logger = spdlog::basic_logger_st("log", std::string(path.begin(), path.end()));
    logger->set_pattern("%v");
    logger->flush_on(spdlog::level::info);
    return logger;
}

// As Kelpkit does, without its conversion to the ANSI code page.
void LogBare(const log4cplus::Logger& logger, const wchar_t* text)
{
    log4cplus::detail::macro_forced_log(logger, log4cplus::INFO_LOG_LEVEL, text, "log\\LogMsg.cpp", 58,
                                        "void __cdecl KELPKIT::CLogMsg::LogMsg(enum KELPKIT::loglv,const wchar_t *)");
}

} // namespace

void Register()
{
    ConfigureKelpkit();
    static const log4cplus::Logger logger = log4cplus::Logger::getInstance(L"log");
    static const auto spdLogger = MakeSpdlog();

    const auto& text = Keep<std::wstring>(L"model gear.qmx opened: 1,204 parts, 3 drawings");
    const std::string& narrow = Keep(std::string(text.begin(), text.end()));
    Comparison("log line", "\"%m%n\", flushed")
        .Kelpkit([&text] {
            KELPKIT::CLogMsg::LogMsg(KELPKIT::LV_INFO, text.c_str());
            return 0;
        })
        .Peer(
            "log4cplus's forced log",
            [&text] {
                LogBare(logger, text.c_str());
                return 0;
            },
            1.04)
        .Peer("spdlog", [&narrow] {
            spdLogger->info(narrow);
            return 0;
        });
    Comparison("log line", "below the level")
        .Kelpkit([&text] {
            KELPKIT::CLogMsg::LogMsg(KELPKIT::LV_DEBUG, text.c_str());
            return 0;
        })
        .Peer(
            "log4cplus's macro",
            [&text] {
                LOG4CPLUS_DEBUG(logger, text);
                return 0;
            },
            3)
        .Peer("spdlog", [&narrow] {
            spdLogger->debug(narrow);
            return 0;
        });

    Growth("log line, units", [](std::size_t size) {
        const std::wstring& line = Keep(std::wstring(size, L'x'));
        return [&line] {
            KELPKIT::CLogMsg::LogMsg(KELPKIT::LV_INFO, line.c_str());
            return 0;
        };
    });
}

} // namespace bench
