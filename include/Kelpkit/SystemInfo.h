#pragma once

/// The running system: where the host program is, the temporary folder, names and addresses, the Windows version;
/// UUIDs.
///
/// No function keeps state; each may be called from any thread. None throws anything but std::bad_alloc and
/// std::length_error, save where it says so; failures give an empty text or false.

#include "Export.h"

#include <string>

namespace KELPKIT
{

/// The folder of the running program's executable, with a trailing backslash. Paths of 260 characters and more are cut
/// there, as Windows cuts them.
///
/// Parent references are folded, each with the folder name before it; a name of one character is passed over and the
/// one before it goes, too. "\.." counts wherever it stands, also at the start of a longer name.
///
///     C:\App\bin\host.exe      "C:\App\bin\"
///     C:\a\bc\..\d\x.exe       "C:\a\d\"
///     C:\dir\a\..\x.exe        "C:\": both names go
///     C:\a\..\x.exe            "C:\a\..\": there is no earlier name, and it stays
KELPKIT_API std::wstring GetSysRoot();

/// The folder for temporary files, with a trailing backslash, as the Windows function of the same name gives it; empty
/// if that fails or the path is longer than 259 characters.
KELPKIT_API std::wstring GetTempPathW();

/// The NetBIOS name of the computer; empty if Windows does not tell.
KELPKIT_API std::wstring GetComputerNameW();

/// The first IPv4 address that the resolver lists for this host's own name, such as "192.168.0.7"; it may be a
/// loopback address. Empty if the name does not resolve. May wait for the network. Starts Winsock and ends it again
/// within the call.
KELPKIT_API std::wstring GetHostIP();

/// Whether Windows reports version 5.1 or 5.2 (or any later 5.x).
///
/// These three compare with the version that Windows reports to the process: without a manifest that names a later
/// one, every system from 8.1 on reports 6.2.
KELPKIT_API bool IsWindowsXP();

/// Whether Windows reports version 6.1 exactly.
KELPKIT_API bool IsWindows7();

/// Whether Windows reports version 6.2 exactly.
KELPKIT_API bool IsWindows8();

/// A new random UUID (RFC 4122, version 4), such as "0f8fad5b-d9cb-469f-a165-70867728950e": 36 characters, hexadecimal
/// digits in lower case. Every call seeds a generator of its own from the system's random numbers. Should the system
/// have none, throws boost::uuids::entropy_error, a std::runtime_error.
KELPKIT_API std::wstring GenerateUUID();

} // namespace KELPKIT
