#pragma once

/// @file
/// Crash dumps: one call, early, and a crash of the process leaves a minidump file.

#include "Export.h"

namespace KELPKIT
{

/// From now on an exception that reaches the top of a thread unhandled, whichever thread it is, leaves a minidump. The
/// crash then takes its normal course: the system's crash report shows, and the process ends with the exception's code.
///
/// C++ exceptions that nobody catches:
///   - mingw-w64: The C++ runtime calls std::terminate. Each call of it leaves a dump, also without an exception, and
///     ends the process with the exception 0xE06B656C. If the application has set a terminate handler before this call,
///     the dump is written first, then that handler is called, and it decides how the process ends. In threads of
///     CreateThread and _beginthreadex they are the exception 0x20474343, which leaves a dump, and no terminate handler
///     is called.
///   - Visual Studio: They are the exception 0xE06D7363, which leaves a dump. One that leaves a noexcept function, as
///     that of every std::thread is, ends in std::terminate, and so without a dump, unless the compiler lets it reach
///     the top of the thread first, which clang-cl does. Terminate handlers are not called for what leaves a dump, and
///     what calls std::terminate leaves none.
///
/// No exception, so no dump: abort, exit, TerminateProcess, and ends that Windows keeps from every handler, among them
/// heap corruption that it detects and most stack overflows. docs/crash.md lists them for each compiler, and what an
/// application can do.
///
/// The dump lies in the user's temporary folder, as Windows' GetTempPathW has it at the time of the crash; in `C:\`
/// where Windows knows none, and in the current folder where the path is longer than 259 characters. Its name is the
/// local time and the executable's file name: app.exe that crashes at 14:05:09 on 3 March 2024 leaves
/// 20240303140509_app.exe.dmp. A dump of the same name is overwritten. A dump's whole path is cut at 259 characters
/// (UTF-16 units).
///
/// Of the executable's file name as many bytes are taken as its full path has characters, which cuts a name that is
/// longer than half the path: `C:\a\longname.exe` has 17 characters, and 17 bytes of the name are "longname" and the
/// first byte of the dot, so the dump's name ends in _longname..dmp.
///
/// Nothing is reported, neither now nor at the crash: where no dump can be written, there is none. The handler takes no
/// memory from the heap. Two threads that crash at once may write the same file.
///
/// Call it once, early, from any thread. It takes the place of the process's unhandled-exception filter, which is no
/// longer called; a filter that is set later takes its place in turn, until another call. With mingw-w64 the same holds
/// for the terminate handler, except that the earlier one is called after the dump, and for the handler of SIGABRT,
/// which passes on to the earlier one every abort but libgcc's for an exception that `throw;` has thrown on. Where a
/// filter was set later, it gets the exception 0xE06B656C, unless the application has a terminate handler, which is
/// then called without a dump. Kelpkit.dll stays loaded until the process ends.
KELPKIT_API void StartCrashReport();

} // namespace KELPKIT
