#pragma once

/// @file
/// The running system: where the host program is, the temporary folder, names and addresses, the Windows version;
/// identifiers of the hardware; UUIDs.
///
/// None throws anything but std::bad_alloc and std::length_error, save where it says so; failures give an empty text or
/// false. Each may be called from any thread and keeps no state, save for the identifiers of the hardware.

#include "Export.h"

#include <string>

namespace KELPKIT
{

/// The folder of the running program's executable, with a trailing backslash. Paths of 260 characters and more are cut
/// there, as Windows cuts them.
///
/// Parent references are folded, each with the folder name before it; a name of one character is passed over and the
/// one before it goes, too. `\..` counts wherever it stands, also at the start of a longer name.
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

// Hardware
//
// What the machine says of its processor and disks, asked for once in the life of the process: later calls give the
// same, whatever was plugged in since. There is no lock; the first calls must not be made by several threads at once.
// What changes these identifiers, and what they are good for, is told in the guide.

/// The processor: vendor, signature, feature flags and serial number, the last three as the CPUID instruction gives
/// them, in upper-case hexadecimal digits: "GenuineIntel-000306C3-BFEBFBFF-0000000000000000". All processors of one
/// model have the same. Empty if the instruction faults; the next call then tries again.
KELPKIT_API std::wstring GetCPUId();

/// The first disk, as its model, a hyphen and its serial number, both without spaces around them: "-" alone where it has
/// neither, and empty if no disk answers. The first 16 drives are asked in their order, up to the first that is missing
/// or fails; those on USB and behind RAID controllers are left out. A handle to each of them stays open.
///
/// Where the process may write to the first drive, as administrators may, the drives are asked themselves. The
/// characters then stand as the drive stores them, exchanged in pairs: the model "ST1000DM003" is "TS0100MD00 3".
/// Otherwise Windows is asked, and the model is empty as a rule: "-WD-WCC4N1234567". So the same disk has two
/// identifiers. May initialise COM's security for the process; COM itself is afterwards as it was.
///
/// When Windows is asked, WMI is asked for the names of the disks. It is waited for at most two minutes for the
/// connection, and half a minute for each disk and for the end of their list. If it fails or takes longer, the drives
/// are identified without its names. The answers of the drives themselves have no time limit.
KELPKIT_API std::wstring GetHDDId();

/// A code for processor and disks together: for each disk, of which GetHDDId gives the first, the MD5 digest
/// (BuildMd5Code, Text.h) of GetCPUId with the disk's identifier behind it, joined by "-". 32 characters with one disk,
/// 65 with two. Where no disk answers it is the digest of GetCPUId alone.
KELPKIT_API std::wstring GetHardwareCode();

// UUIDs

/// A new random UUID (RFC 4122, version 4), such as "0f8fad5b-d9cb-469f-a165-70867728950e": 36 characters, hexadecimal
/// digits in lower case, whatever the locale. Every call seeds a generator of its own from the system's random numbers.
/// Should the system have none, throws boost::uuids::entropy_error, a std::runtime_error.
KELPKIT_API std::wstring GenerateUUID();

} // namespace KELPKIT
