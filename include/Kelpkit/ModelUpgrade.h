#pragma once

/// @file
/// Upgrade of model files by the external converter.

#include "Export.h"

#include <string>

namespace KELPKIT
{

/// Upgrades a .qmx model file, together with its HOOPS Stream File (.hsf), by running the converter Pelvane.exe from
/// the folder of the host program's executable. The converter runs hidden; the call waits for it without limit.
///
///     std::wstring hsf, qmx, error;
///     if (ConvertHoopsQmx(L"D:\\Models\\gear.qmx", L"full", L"gear", hsf, qmx, error))
///         ...                                     // qmx is "D:\Models\gear_new.qmx"
///
/// strInputFile   The converter's first argument. The outputs are looked for in its folder, which ends at the last
///                backslash (GetFileDir). "/" is no separator: of a path without a backslash, such as
///                "D:/Models/gear.qmx", the whole path stands before their names.
/// strSecondArg   The converter's second argument, passed on as it is.
/// strOutputName  The converter's third argument: the outputs are named strOutputName + "_new.qmx" and "_new.hsf".
/// strNewHsfFile  Receives the path of the new .hsf file; empty if the model has none, or on failure.
/// strNewQmxFile  Receives the path of the new .qmx file; empty on failure.
/// strErrorMsg    Receives the reason of a failure, else empty: one of three Chinese texts, which the guide quotes, for
///                a converter that is missing, one that does not start, and a new .qmx file that is missing. The same
///                text is logged at LV_TRACE.
///
/// Returns whether the new .qmx file is there. That is all that is looked at: a converter that fails is noticed by the
/// missing file only, and a file left by an earlier run counts as found.
///
/// The command line is the converter's path, then the three arguments, each in double quotes. Nothing is escaped: a
/// double quote in an argument splits it, and a backslash at the end of one joins it to the next. Either way the
/// converter does not get its three arguments; so an input path must not end in a backslash. The converter's path is
/// not quoted: where it holds a blank, Windows tries the part before the blank as a program first.
///
/// May be called from any thread. Two calls for the same folder and strOutputName at a time write the same files. The
/// process and thread handles of the converter stay open. Each argument ends at its first zero character. The results
/// are three distinct strings; each may also be an argument.
KELPKIT_API bool ConvertHoopsQmx(const std::wstring& strInputFile, const std::wstring& strSecondArg,
                                 const std::wstring& strOutputName, std::wstring& strNewHsfFile,
                                 std::wstring& strNewQmxFile, std::wstring& strErrorMsg);

} // namespace KELPKIT
