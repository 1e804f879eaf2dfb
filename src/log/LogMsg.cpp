#include "Kelpkit/Log.h"

#include "Kelpkit/Text.h"
#include "WindowsApi.h"

#include <log4cplus/configurator.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/hierarchy.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <shlwapi.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>

namespace KELPKIT
{
namespace
{

struct Severity {
    log4cplus::LogLevel level;
    int line;
};

// The line numbers belong to the log's format: layouts print them, and readers of logs tell severities by them. That
// is how LV_ALL and LV_TRACE differ, which share a level.
constexpr Severity kFatal = {log4cplus::FATAL_LOG_LEVEL, 53};
constexpr Severity kError = {log4cplus::ERROR_LOG_LEVEL, 48};
constexpr Severity kWarn = {log4cplus::WARN_LOG_LEVEL, 68};
constexpr Severity kInfo = {log4cplus::INFO_LOG_LEVEL, 58};
constexpr Severity kDebug = {log4cplus::DEBUG_LOG_LEVEL, 43};
constexpr Severity kTrace = {log4cplus::TRACE_LOG_LEVEL, 63};
constexpr Severity kAll = {log4cplus::TRACE_LOG_LEVEL, 73};

// So do the file and the function.
constexpr const char* kFile = "log\\LogMsg.cpp";
constexpr const char* kFunction = "void __cdecl KELPKIT::CLogMsg::LogMsg(enum KELPKIT::loglv,const wchar_t *)";

log4cplus::Logger g_logger = log4cplus::Logger::getInstance(L"log");
log4cplus::helpers::Properties g_properties;

const Severity* FindSeverity(loglv level)
{
    switch (level) {
    case LV_ALL:
        return &kAll;
    case LV_FATAL:
        return &kFatal;
    case LV_ERROR:
        return &kError;
    case LV_WARN:
        return &kWarn;
    case LV_INFO:
        return &kInfo;
    case LV_DEBUG:
        return &kDebug;
    case LV_TRACE:
        return &kTrace;
    case LV_OFF:
        break;
    }
    return nullptr;
}

// What the log is given: the text's bytes in the ANSI code page, one wide character for each. Streams would ask a
// locale, which may change, and lose bytes of 0x80 and more. ASCII, which most messages are, stays as it is.
std::wstring Message(const wchar_t* text)
{
    std::wstring message = text;
    if (std::all_of(message.begin(), message.end(), [](wchar_t c) { return c < 0x80; }))
        return message;
    const std::string bytes = UnicodeToAnsi(message);
    message.resize(bytes.size());
    std::transform(bytes.begin(), bytes.end(), message.begin(), [](unsigned char byte) { return byte; });
    return message;
}

// Creates every level of a folder that ends in a backslash. Levels that exist, the drive among them, just fail.
void CreateFolders(const std::wstring& folder)
{
    for (std::size_t end = folder.find(L'\\'); end != std::wstring::npos; end = folder.find(L'\\', end + 1))
        ::CreateDirectoryW(folder.substr(0, end).c_str(), nullptr);
}

// log4cplus replaces "${NAME}" by an environment variable, which is meant for what the property file says. The log file
// is the one that the caller named.
class Configurator : public log4cplus::PropertyConfigurator
{
public:
    Configurator(const log4cplus::helpers::Properties& all, const std::wstring& logFile) : PropertyConfigurator(all)
    {
        // The base class has cut "log4cplus." off the keys.
        properties.setProperty(L"appender.fileAppender.File", logFile);
    }
};

// log4cplus throws where a configuration makes no sense to it. Callers are promised that nothing is reported, save
// that memory ran out.
template <class Action>
void WithoutReport(const Action& action)
{
    try {
        action();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::length_error&) {
        throw;
    } catch (...) {
    }
}

} // namespace

CLogMsg::CLogMsg() = default;
CLogMsg& CLogMsg::operator=(const CLogMsg&) = default;
CLogMsg::~CLogMsg() = default;

void CLogMsg::LogMsg(loglv level, const wchar_t* text)
{
    const Severity* const severity = FindSeverity(level);
    if (severity == nullptr || text == nullptr)
        return;
    WithoutReport([&] {
        if (!g_logger.isEnabledFor(severity->level))
            return;
        log4cplus::detail::macro_forced_log(g_logger, severity->level, Message(text), kFile, severity->line, kFunction);
    });
}

void CLogMsg::SetProperties(const std::wstring& propertyFile)
{
    WithoutReport([&] { g_properties = log4cplus::helpers::Properties(propertyFile); });
}

void CLogMsg::SetLogPath(const std::wstring& logFile)
{
    const std::wstring folder = logFile.substr(0, logFile.rfind(L'\\') + 1);
    if (!::PathFileExistsW(folder.c_str()))
        CreateFolders(folder);
    WithoutReport([&] {
        g_properties.setProperty(L"log4cplus.appender.fileAppender.File", logFile);
        Configurator(g_properties, logFile).configure();
    });
}

} // namespace KELPKIT
