#pragma once

/// @file
/// The message log: one log4cplus logger, named "log", for the whole process.
///
/// The application says where the log goes, once, early:
///
///     CLogMsg::SetProperties(L"C:\\App\\log4cplus.properties");
///     CLogMsg::SetLogPath(L"D:\\Logs\\run.log");
///     CLogMsg::LogMsg(LV_INFO, L"ready");
///
/// The property file must define the logger "log" or the root logger, and an appender named fileAppender that writes
/// to a file, with its layout. No operation reports failure.

#include "Export.h"

#include <string>

namespace KELPKIT
{

/// Severities, with the log4cplus level at which each is written. Any other value writes nothing.
enum loglv : int {
    LV_ALL = -1,  ///< TRACE (0), like LV_TRACE
    LV_OFF = 0,   ///< nothing is written
    LV_FATAL = 1, ///< FATAL (50000)
    LV_ERROR = 2, ///< ERROR (40000)
    LV_WARN = 3,  ///< WARN (30000)
    LV_INFO = 4,  ///< INFO (20000)
    LV_DEBUG = 5, ///< DEBUG (10000)
    LV_TRACE = 6, ///< TRACE (0)
};

/// Holds nothing; all its operations are static.
class CLogMsg
{
public:
    /// Does nothing.
    KELPKIT_API CLogMsg();
    /// Copies nothing.
    CLogMsg(const CLogMsg& other) = default;
    /// Assigns nothing.
    KELPKIT_API CLogMsg& operator=(const CLogMsg& other);
    KELPKIT_API ~CLogMsg();

    /// Writes text, zero-terminated, at the given severity; a null text writes nothing. May be called from any thread.
    ///
    /// The text goes through the ANSI code page, and each byte of that becomes one wide character of the log event:
    /// under code page 936, L"\u4E2D" arrives at the appenders as the two characters U+00D6 U+00D0, and in a log file
    /// as the bytes D6 D0, so that the file reads as GBK. Characters that the code page lacks are lost.
    ///
    /// Every event names the same file and function, and a line number that stands for the severity: FATAL 53,
    /// ERROR 48, WARN 68, INFO 58, DEBUG 43, TRACE 63, ALL 73.
    KELPKIT_API static void LogMsg(loglv level, const wchar_t* text);

    /// Reads a log4cplus property file; its contents replace the library's property set, a log path set earlier
    /// included. The file is in UTF-8 or UTF-16 with a byte-order mark, or in the ANSI code page without one. A file
    /// that cannot be read leaves the set empty. Takes effect with the next SetLogPath. Must not run while another
    /// thread is in SetProperties or SetLogPath.
    KELPKIT_API static void SetProperties(const std::wstring& propertyFile);

    /// Makes the log go to logFile, a full path with backslashes: creates its folder, parents included, stores the path
    /// as the property log4cplus.appender.fileAppender.File, and configures log4cplus's default hierarchy from the
    /// property set. May be called again to move the log. Without SetProperties before, no appender is defined and
    /// nothing is written. Where memory runs out while log4cplus gives up the appenders before, it ends the process. Must
    /// not run while another thread is in SetProperties or SetLogPath.
    ///
    /// Other threads may log meanwhile; each message arrives before or after the change, none is lost.
    ///
    /// The file opened is the one named, also where the name holds "${NAME}", which log4cplus replaces by an
    /// environment variable everywhere else.
    KELPKIT_API static void SetLogPath(const std::wstring& logFile);
};

} // namespace KELPKIT
